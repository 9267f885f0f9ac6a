// Writing a drawing: the texts of its records, one after another.
#include <algorithm>
#include <ctime>

#include "cad/drawing/drawing.h"
#include "platform/files.h"

namespace cad {
namespace {

// Days since the beginning of the Julian calendar count, with the time of day as fraction: the form
// of the header's time variables.
double julianNow(bool local) {
  const std::time_t now = std::time(nullptr);
  std::tm t{};
  if (local) {
    localtime_r(&now, &t);
  } else {
    gmtime_r(&now, &t);
  }
  const int a = (14 - (t.tm_mon + 1)) / 12, y = t.tm_year + 1900 + 4800 - a,
            m = t.tm_mon + 1 + 12 * a - 3;
  const int day = t.tm_mday + (153 * m + 2) / 5 + 365 * y + y / 4 - y / 100 + y / 400 - 32045;
  return day + (t.tm_hour * 3600 + t.tm_min * 60 + t.tm_sec) / 86400.0;
}

}  // namespace

void Drawing::setHeader(TagList& tags, std::string_view name, int code, double real,
                        std::uint64_t handle) {
  for (int i = 1; i < tags.size(); ++i) {
    if (tags[i].code != 9 || tags[i].bytes() != name) continue;
    if (i + 1 < tags.size() && tags[i + 1].code == code) {
      code == 5 ? tags.setHandle(i + 1, handle) : tags.setReal(i + 1, real);
    }
    return;
  }
  if (code != 5 || !format_.hasHandlesAndMarkers()) return;
  tags.insertAscii(tags.size(), 9, name);
  tags.insertHandle(tags.size(), 5, handle);
}

// What a changed drawing must say of itself: which handles are free, and when it was changed.
void Drawing::updateHeader() {
  if (!changed_) return;
  for (const std::uint32_t i : marks_) records_[i].set(Record::synthetic, false);
  marks_.clear();
  trailer_ = {};
  dropErasedMembers();
  const auto it = sections_.find(u"HEADER");
  if (it == sections_.end()) return;
  auto tags = borrowTags();
  parse(it->second.first, *tags);
  if (usesHandles_) setHeader(*tags, "$HANDSEED", 5, 0, nextHandle_);
  setHeader(*tags, "$TDUPDATE", 40, julianNow(true), 0);
  setHeader(*tags, "$TDUUPDATE", 40, julianNow(false), 0);
  commit(it->second.first, *tags);
  records_[it->second.first].handle = 0;
  returnTags(std::move(tags));
}

void Drawing::fitView() {
  const std::uint32_t viewport = tableEntry(Type::vport, u"*Active");
  auto tags = borrowTags();
  AcDbExtents box;
  for (const auto& [name, points] : drawn_) {
    const std::uint32_t layer = tableEntry(Type::layer, names_.text(name));
    if (layer) parse(layer, *tags);
    const bool hidden = layer && (tags->integerOr(70, 0, tags->body()) & 1 ||
                                  tags->integerOr(62, 7, tags->body()) < 0);
    if (!hidden) box.addExt(points);
  }
  if (box.isEmpty() || !viewport) return returnTags(std::move(tags));
  const AcGePoint3d &low = box.minPoint(), &high = box.maxPoint();
  parse(viewport, *tags);
  const TagRange body = tags->body();
  const double aspect = std::max(0.1, tags->realOr(41, 1, body));
  const double height = std::max({high.y - low.y, (high.x - low.x) / aspect, 10.0}) * 1.1;
  const double center[] = {(low.x + high.x) / 2, (low.y + high.y) / 2};
  for (int k = 0; k < 2; ++k) {
    if (const int i = tags->find(12 + 10 * k, body); i >= 0) tags->setReal(i, center[k]);
  }
  if (const int i = tags->find(40, body); i >= 0) tags->setReal(i, height);
  commit(viewport, *tags);
  const auto header = sections_.find(u"HEADER");
  if (header != sections_.end()) {
    parse(header->second.first, *tags);
    for (int i = 1; i + 3 < tags->size(); ++i) {
      const bool least = (*tags)[i].bytes() == "$EXTMIN";
      if ((*tags)[i].code != 9 || (!least && (*tags)[i].bytes() != "$EXTMAX")) continue;
      const AcGePoint3d& p = least ? low : high;
      tags->putPoint(10, p, {i + 1, i + 4});
    }
    commit(header->second.first, *tags);
  }
  returnTags(std::move(tags));
}

// Calls sink with the longest stretches that lie together in memory.
template <class Sink>
void Drawing::writeTo(Sink&& sink) {
  std::string_view pending = preamble_;
  for (std::uint32_t i = first_; i; i = records_[i].next) {
    const Record& r = records_[i];
    if (r.is(Record::erased) || r.is(Record::synthetic)) continue;
    // A text that ends without a line end (the last one of a file) must not run into the next.
    const bool ended = format_.binary || i == first_ || pending.empty() || pending.back() == '\n';
    if (ended && pending.data() + pending.size() == r.bytes) {
      pending = {pending.data(), pending.size() + r.size};
      continue;
    }
    if (!pending.empty()) {
      sink(pending);
      if (!ended) sink(std::string_view("\n"));
    }
    pending = r.text();
  }
  if (!pending.empty()) sink(pending);
  if (!trailer_.empty()) sink(trailer_);
}

std::string Drawing::toBytes() {
  updateHeader();
  std::string out;
  writeTo([&](std::string_view s) { out += s; });
  return out;
}

platform::Result<void> Drawing::save(const std::string& path, const SaveOptions& options) {
  if (!open_.empty()) {
    return platform::Error{path + ": not saved: an object of the drawing is still open"};
  }
  updateHeader();
  auto file = platform::SaveFile::begin(path);
  if (!file) return platform::Error{file.error()};
  writeTo([&](std::string_view s) { file->write(s); });
  auto done = file->commit(options.keepBackup);
  if (done) changed_ = false;
  return done;
}

}  // namespace cad
