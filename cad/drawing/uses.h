// Where a drawing names its layers, line types, styles, blocks, dimension styles and applications:
// what must follow when one gets another name, and what keeps one from being erased.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "cad/drawing/header.h"

namespace cad {

// Calls `visit` with each living record that names the entry of this kind, its tags, and the places
// of the name in them, until it answers false. True when all were visited.
using VisitUse = std::function<bool(std::uint32_t record, TagList& tags, const std::vector<int>&)>;
bool eachUse(const Records& records, Type kind, std::uint32_t name, const VisitUse& visit);
// Whether anything but the entry itself, or the definition of the block itself, names it.
bool isUsed(const Records& records, Type kind, std::uint32_t name);
// The header variables that name an entry of this kind.
std::vector<std::string_view> headerUses(Type kind);

}  // namespace cad
