// The tags of one object, typed access to them, and edits in place.
//
// A tag keeps the very bytes it was read from. What nobody changes is written back from those
// bytes, so an edited object keeps its unknown tags, their order and their spelling; only the tags
// that were set are written anew. Values are held in the encoding of the drawing (Format) all the
// time and are converted when they are asked for.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cad/api/ge.h"
#include "cad/dxf/arena.h"
#include "cad/dxf/format.h"

namespace cad {

struct Tag {
  const char* start = nullptr;  // where the tag stands in the object's text; null when made here
  const char* value = nullptr;  // the encoded value, without line end or terminator
  std::uint32_t size = 0;       // bytes of the encoded value
  std::uint32_t total = 0;      // bytes from start to the end of the tag's text
  std::int16_t code = 0;

  std::string_view bytes() const { return {value, size}; }
};

// A stretch of tags: [begin, end).
struct TagRange {
  int begin = 0, end = 0;
  bool empty() const { return begin >= end; }
};

class TagList {
 public:
  TagList() : arena_(4096) {}

  // Reads the text of one object, which must outlive the list. False when it is no sequence of
  // tags.
  bool parse(const Format& format, std::string_view text);
  // Starts an object of its own: "0 TYPE".
  void create(const Format& format, std::string_view type);
  // The same of a type's name that outlives the list.
  void createLiteral(const Format& format, std::string_view type);
  // Becomes a copy of tags that were made, not read.
  void copy(const TagList& made);
  // Turns every value into another format's encoding.
  void transcode(const Format& to);
  void clear();

  const Format& format() const { return *format_; }
  int size() const { return static_cast<int>(tags_.size()); }
  const Tag& operator[](int i) const { return tags_[static_cast<std::size_t>(i)]; }

  // --- finding. All give -1 when there is none. Indices shift when tags are inserted or erased.
  int find(int code, int from = 0, int to = -1) const;
  int find(int code, TagRange range) const { return find(code, range.begin, range.end); }
  // In body(), with one walk.
  int findOwn(int code) const;
  // Tags between the marker "100 name" and the next marker or the extended data. Objects of
  // drawings without markers are one single stretch, from the second tag to the extended data.
  TagRange subclass(std::string_view name, int occurrence = 1) const;
  // The object's own tags: everything before the extended data.
  TagRange body() const { return {1, xdataBegin()}; }
  // Index of the first 1001 that begins extended data, or size().
  int xdataBegin() const;
  // The items of one application, its 1001 included; names compare without case.
  TagRange xdata(std::u16string_view application) const;
  // A "102 {NAME" group with both ends, or empty.
  TagRange group(std::string_view name) const;

  // --- values
  // Bytes (310, 1004) read as hex digits, also those of binary files.
  std::u16string text(int i) const;
  double real(int i) const;
  std::int64_t integer(int i) const;
  std::uint64_t handle(int i) const;
  bool is(int i, std::string_view ascii) const { return (*this)[i].bytes() == ascii; }
  AcGePoint3d point(int i) const;  // the 10-20-30 triple that begins at i; a missing axis is 0

  double realOr(int code, double fallback, TagRange range) const;
  std::int64_t integerOr(int code, std::int64_t fallback, TagRange range) const;
  std::u16string textOr(int code, std::u16string_view fallback, TagRange range) const;

  // --- editing
  void setText(int i, std::u16string_view text);
  void setAscii(int i, std::string_view text);
  void setReal(int i, double value);
  void setInteger(int i, std::int64_t value);
  void setHandle(int i, std::uint64_t handle);
  void insertText(int at, int code, std::u16string_view text);
  void insertAscii(int at, int code, std::string_view text);
  void insertReal(int at, int code, double value);
  void insertInteger(int at, int code, std::int64_t value);
  void insertHandle(int at, int code, std::uint64_t handle);
  // The handles of an object (5) and of its owner (330), right behind the type.
  void insertHandles(std::uint64_t own, std::uint64_t owner);
  void erase(int from, int to);
  // The same at the end.
  void addText(int code, std::u16string_view text) { insertText(size(), code, text); }
  void addAscii(int code, std::string_view text) { insertAscii(size(), code, text); }
  // A text that outlives the list, such as a literal: kept without a copy.
  void addLiteral(int code, std::string_view text) {
    Tag t;
    t.value = text.data();
    t.size = static_cast<std::uint32_t>(text.size());
    t.code = static_cast<std::int16_t>(code);
    tags_.push_back(t);
  }
  void addReal(int code, double v) { insertReal(size(), code, v); }
  void addInteger(int code, std::int64_t v) { insertInteger(size(), code, v); }
  void addHandle(int code, std::uint64_t h) { insertHandle(size(), code, h); }
  void addPoint(int code, const AcGePoint3d& p);
  // Sets the three tags of a whole point, whatever they say.
  void replacePoint(int i, const AcGePoint3d& p);
  // Sets a value inside a stretch, inserting the tag at the stretch's end (or `before` the first
  // tag of one of the codes, in order of codes) when it has none.
  void putReal(int code, double value, TagRange range);
  void putInteger(int code, std::int64_t value, TagRange range);
  void putText(int code, std::u16string_view value, TagRange range);
  void putPoint(int code, const AcGePoint3d& p, TagRange range);
  // Copies a tag of another list (of equal or other format) to `at`.
  void insertCopy(int at, const TagList& from, int i);

  // The text of the whole object, at the end of `out` (an upper bound of its size first).
  std::size_t writtenSize() const;
  char* write(char* out) const;

 private:
  Tag& at(int i) { return tags_[static_cast<std::size_t>(i)]; }
  Tag make(int code, std::string_view encoded);
  Tag makeText(int code, std::u16string_view text);
  Tag makeReal(int code, double value);
  Tag makeInteger(int code, std::int64_t value);
  Tag makeHandle(int code, std::uint64_t handle);
  void place(int at, const Tag& tag) { tags_.insert(tags_.begin() + at, tag); }
  char* writeBinary(const Tag& tag, char* out) const;
  char* writeAscii(const Tag& tag, char* out) const;

  static const Format& neutral();
  const Format* format_ = &neutral();
  std::vector<Tag> tags_;
  Arena arena_;
  std::string scratch_;
};

// A list of tags for the span of its owner, from a pool to which it goes back by itself: opening
// objects by the million must not allocate.
struct ReturnTags {
  void operator()(TagList* tags) const noexcept;
};
using BorrowedTags = std::unique_ptr<TagList, ReturnTags>;
BorrowedTags borrowTags();

// Reads one tag at `at` of a file's text and moves `at` behind it. False at the end of the text or
// when what stands there is no tag.
bool readAsciiTag(std::string_view text, std::size_t& at, Tag& tag);
bool readBinaryTag(std::string_view text, std::size_t& at, bool wideCodes, Tag& tag);

// Numbers in tags, without locale: bad text gives 0.
double parseTagReal(std::string_view text);
std::int64_t parseTagInteger(std::string_view text);
std::uint64_t parseTagHandle(std::string_view text);

}  // namespace cad
