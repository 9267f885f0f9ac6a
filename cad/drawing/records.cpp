#include "cad/drawing/records.h"

#include <algorithm>

#include "platform/check.h"

namespace cad {
namespace {
// New handles stay below this: what is left above it would be used up before anybody notices.
constexpr std::uint64_t kLastHandle = std::uint64_t{1} << 60;
}  // namespace

Records::Records() { enterTypeNames(types_); }

void Records::take(ScannedFile file) {
  format_ = file.format;
  preamble_ = file.preamble;
  trailer_ = file.trailer;
  list_ = std::move(file.records);
  for (std::uint32_t i = 1; i < count(); ++i) {
    list_[i].previous = i - 1;
    list_[i].next = i + 1 < count() ? i + 1 : 0;
  }
  first_ = 1;
  last_ = count() - 1;
}

std::uint32_t Records::link(const Record& fresh, std::uint32_t before) {
  VESSORA_CHECK(before < count(), "a new record's place is not in the drawing");
  list_.push_back(fresh);
  place(count() - 1, before);
  return count() - 1;
}

void Records::place(std::uint32_t i, std::uint32_t before) {
  Record& r = list_[i];
  r.next = before;
  r.previous = before ? list_[before].previous : last_;
  (r.previous ? list_[r.previous].next : first_) = i;
  (before ? list_[before].previous : last_) = i;
}

std::uint32_t Records::standIn(Record stand, const TagList& tags) {
  const std::string_view text = texts_.store(tags);
  stand.bytes = text.data();
  stand.size = static_cast<std::uint32_t>(text.size());
  stand.set(Record::synthetic);
  stand.set(Record::stored);
  list_.push_back(stand);
  return count() - 1;
}

void Records::registerHandle(std::uint64_t handle, std::uint32_t record) {
  if (handle == 0) return;
  if (handle < 8 * static_cast<std::uint64_t>(list_.size()) + 65536) {
    if (handle >= denseHandles_.size()) {
      denseHandles_.resize(std::max<std::size_t>(handle + 1, denseHandles_.size() * 3 / 2), 0);
    }
    denseHandles_[handle] = record;
  } else {
    sparseHandles_[handle] = record;
  }
  if (!beginHandlesAt(handle + 1)) ++lateHandles_;
}

bool Records::beginHandlesAt(std::uint64_t seed) {
  if (seed == 0 || seed > kLastHandle) return false;
  nextHandle_ = std::max(nextHandle_, seed);
  return true;
}

std::uint32_t Records::byHandle(std::uint64_t handle) const {
  if (handle < denseHandles_.size() && denseHandles_[handle]) return denseHandles_[handle];
  const auto it = sparseHandles_.find(handle);
  return it == sparseHandles_.end() ? 0 : it->second;
}

std::uint64_t Records::takeHandle() {
  VESSORA_CHECK(nextHandle_ != 0 && nextHandle_ < ~std::uint64_t{0}, "the handles have run out");
  return nextHandle_++;
}

const TagList* Records::definitionTags(std::uint32_t i) const {
  if (list_[i].type != Type::attdef) return nullptr;
  Parsed& parsed = definitions_[i];
  if (!(parsed.key == textKey(i))) {
    parsed.tags = std::make_unique<TagList>();
    parse(i, *parsed.tags);
    parsed.key = textKey(i);
  }
  return parsed.tags.get();
}

void Records::replaceText(std::uint32_t i, const TagList& tags, std::string_view text,
                          const Record* like) {
  Record& r = list_[i];
  const Record before = r;
  r.bytes = text.data();
  r.size = static_cast<std::uint32_t>(text.size());
  const bool stamped = !like && before.handle && Stamp::suits(tags);
  if (stamped) like = stamps_.find(tags);
  if (like) {
    copyIndex(r, *like);
  } else {
    indexTags(r, tags, {names_, types_, sets_});
    r.handle = before.handle ? before.handle : r.handle;
    if (stamped) {
      auto stamp = std::make_unique<Stamp>(tags);
      stamp->like = r;
      stamps_.keep(std::move(stamp));
    }
  }
  if (before.is(Record::hasParts)) r.set(Record::hasParts);
  r.set(Record::changed);
  r.set(Record::stored);
  release(before);
}

}  // namespace cad
