// The records of one drawing in file order, their texts, names and handles. Knows nothing of what
// they mean together: blocks and tables are views on this list (see structure.h).
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cad/api/export.h"
#include "cad/drawing/stamps.h"
#include "cad/drawing/texts.h"
#include "cad/dxf/scanner.h"

namespace cad {

// Which text something was worked out from; differs as soon as the text may have changed.
struct TextKey {
  const char* bytes = nullptr;
  std::uint64_t generation = 0;
  friend bool operator==(const TextKey&, const TextKey&) = default;
};

class CAD_API Records {
 public:
  Records();
  // Takes the records that were found in a file; `source` is the memory in which their texts lie.
  void take(ScannedFile file);
  void addSource(Block source) { sources_.push_back(std::move(source)); }

  const Format& format() const { return format_; }
  const Record& operator[](std::uint32_t i) const { return list_[i]; }
  Record& edit(std::uint32_t i) { return list_[i]; }
  std::uint32_t count() const { return static_cast<std::uint32_t>(list_.size()); }
  std::uint32_t first() const { return first_; }
  std::uint32_t last() const { return last_; }
  // Puts a record into the file order, right before another one (0: at the end).
  std::uint32_t link(const Record& fresh, std::uint32_t before);
  // One that stands for what the file does not have, outside the file order.
  std::uint32_t standIn(Record stand, const TagList& text);
  // Gives such a one its place after all.
  void place(std::uint32_t i, std::uint32_t before);
  // What stands before the first record and behind the last.
  std::string_view preamble() const { return preamble_; }
  std::string_view trailer() const { return trailer_; }
  void dropTrailer() { trailer_ = {}; }

  // --- names: symbols of the drawing, and apart from them the words of the format (types of
  // records, sections and tables)
  NameTable& names() { return names_; }
  const NameTable& names() const { return names_; }
  NameTable& types() { return types_; }
  const NameTable& types() const { return types_; }
  NameSets& sets() { return sets_; }
  const NameSets& sets() const { return sets_; }
  const std::u16string& typeName(std::uint32_t i) const { return types_.text(list_[i].typeName); }

  // --- handles
  std::uint32_t byHandle(std::uint64_t handle) const;
  void registerHandle(std::uint64_t handle, std::uint32_t record);
  std::uint64_t takeHandle();
  // The same, or 0 in a drawing that numbers nothing.
  std::uint64_t newHandle() { return usesHandles_ ? takeHandle() : 0; }
  std::uint64_t nextHandle() const { return nextHandle_; }
  // From now on new handles begin here at the earliest. False for a number so near the end of
  // their range that new ones could run out of it; it is not followed.
  bool beginHandlesAt(std::uint64_t seed);
  // Objects of the file whose handles lie there.
  std::uint32_t lateHandles() const { return lateHandles_; }
  bool usesHandles() const { return usesHandles_; }
  void setUsesHandles(bool uses) { usesHandles_ = uses; }

  // --- texts
  void parse(std::uint32_t i, TagList& tags) const { tags.parse(format_, list_[i].text()); }
  TextKey textKey(std::uint32_t i) const { return {list_[i].bytes, texts_.generation()}; }
  // The tags of an attribute definition, kept parsed: every new reference of a block reads them.
  // Null for other objects.
  const TagList* definitionTags(std::uint32_t i) const;
  // Gives a record the text of these tags and indexes it. False, and nothing has changed, when it
  // has this very text already; `keep` is called before the first change. `like`, if given, is a
  // record of the same make (see stamps.h), and the handle is there already.
  template <class Keep>
  bool setText(std::uint32_t i, const TagList& tags, const Record* like, Keep&& keep);
  // A copy of a record's state refers to its text, or no longer does.
  void hold(const Record& state) {
    if (state.is(Record::stored)) texts_.hold(state.bytes);
  }
  void release(const Record& state) {
    if (state.is(Record::stored)) texts_.release(state.bytes);
  }
  std::size_t textBytes() const { return texts_.bytes(); }

 private:
  void replaceText(std::uint32_t i, const TagList& tags, std::string_view text, const Record* like);

  Format format_;
  std::vector<Block> sources_;
  TextStore texts_;
  std::string_view preamble_, trailer_;
  RecordList list_;
  std::uint32_t first_ = 0, last_ = 0;
  NameTable names_, types_;
  NameSets sets_;
  Stamps stamps_;  // of objects that have their handles

  std::vector<std::uint32_t> denseHandles_;
  std::unordered_map<std::uint64_t, std::uint32_t> sparseHandles_;
  std::uint64_t nextHandle_ = 1;
  std::uint32_t lateHandles_ = 0;
  bool usesHandles_ = true;
  struct Parsed {
    TextKey key;
    std::unique_ptr<TagList> tags;
  };
  mutable std::unordered_map<std::uint32_t, Parsed> definitions_;
};

template <class Keep>
bool Records::setText(std::uint32_t i, const TagList& tags, const Record* like, Keep&& keep) {
  const std::string_view text = texts_.store(tags);
  if (list_[i].bytes && list_[i].text() == text) {
    texts_.forget(text);
    return false;
  }
  keep();
  replaceText(i, tags, text, like);
  return true;
}

}  // namespace cad
