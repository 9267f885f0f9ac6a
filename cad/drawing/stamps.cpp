#include "cad/drawing/stamps.h"

#include "cad/dxf/bytes.h"

namespace cad {
namespace {

// Whether a value names something or is read by the index. Handles differ from object to object and
// are read apart.
bool belongsToMake(int code) {
  switch (code) {
    case 0:
    case 2:
    case 6:
    case 7:
    case 8:
    case 60:
    case 66:
    case 67:
    case 70:
    case 100:
    case 102:
    case 1001:
      return true;
    default:
      return false;
  }
}

}  // namespace

Stamp::Stamp(const TagList& tags) {
  for (int i = 0; i < tags.size(); ++i) {
    const bool counts = belongsToMake(tags[i].code);
    marks.push_back({tags[i].code, counts, counts ? tags[i].size : 0});
    if (counts) values += tags[i].bytes();
  }
}

bool Stamp::fits(const TagList& tags) const {
  if (static_cast<std::size_t>(tags.size()) != marks.size()) return false;
  const char* value = values.data();
  const Tag* tag = &tags[0];
  for (const Mark& mark : marks) {
    if (tag->code != mark.code) return false;
    if (mark.counts) {
      if (tag->size != mark.size || !sameShort(tag->value, value, mark.size)) return false;
      value += mark.size;
    }
    ++tag;
  }
  return true;
}

const Record* Stamps::follow(std::size_t place) {
  all_[latest_]->next = place;
  latest_ = place;
  return &all_[place]->like;
}

const Record* Stamps::find(const TagList& tags) {
  if (all_.empty()) return nullptr;
  const std::size_t guess = all_[latest_]->next;
  if (all_[guess]->fits(tags)) return follow(guess);
  for (std::size_t i = 0; i < all_.size(); ++i) {
    if (i != guess && all_[i]->fits(tags)) return follow(i);
  }
  return nullptr;
}

void Stamps::keep(std::unique_ptr<Stamp> stamp) {
  std::size_t place = all_.size();
  if (place < kMost) {
    all_.push_back(nullptr);
  } else {
    place = oldest_;
    oldest_ = (oldest_ + 1) % kMost;
  }
  stamp->next = place;
  all_[place] = std::move(stamp);
  follow(place);
}

void Stamps::clear() {
  all_.clear();
  latest_ = oldest_ = 0;
}

}  // namespace cad
