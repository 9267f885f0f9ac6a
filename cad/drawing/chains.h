// Tags as result chains, and back: extended data and free records travel so.
#pragma once

#include <string>

#include "cad/api/resbuf.h"
#include "cad/dxf/tags.h"

namespace cad {

// What of a stretch of tags does not go into its chain.
enum class ChainParts { all, withoutHandles, withoutHandlesAndBytes };

// The chain of a stretch of tags, owned by the caller; null for none. The axes of a point become
// one node.
resbuf* chainOf(const TagList& tags, TagRange range, ChainParts parts = ChainParts::all);

// Puts the tags of a chain at a place; where the next one would go. Nodes of no kind are left out.
int insertChain(TagList& tags, int at, const resbuf* chain, const resbuf* end = nullptr);

// A run of bytes at the end of the list, as tags of the code with as many bytes as one may hold.
void addBytes(TagList& tags, int code, std::string_view bytes);
// Appends the bytes of all tags of the code in a stretch. False when one of them is no row of pairs
// of hex digits.
bool readBytes(const TagList& tags, int code, TagRange range, std::string& bytes);

}  // namespace cad
