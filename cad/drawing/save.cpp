// Writing a drawing: the texts of its records, one after another.
#include <algorithm>
#include <ctime>

#include "cad/drawing/drawing.h"
#include "platform/check.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/words.h"

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

// What a changed drawing must say of itself: which handles are free, and when it was changed; one
// whose handles were repaired too. No part of what commands do and undo.
void Drawing::updateHeader() {
  if (!isChanged() && !renumbered_) return;
  structure_.writeMarks();
  records_.dropTrailer();
  const std::uint32_t header = structure_.section(u"HEADER").begin;
  if (!header) return;
  const History::Pause pause(history_);
  const auto tags = borrowTags();
  const auto find = [&](std::string_view name) {
    for (int i = 1; i + 1 < tags->size(); ++i) {
      if ((*tags)[i].code == 9 && (*tags)[i].bytes() == name) return i + 1;
    }
    return 0;
  };
  records_.parse(header, *tags);
  if (const int i = find("$HANDSEED"); i && (*tags)[i].code == 5) {
    if (records_.usesHandles()) tags->setHandle(i, records_.nextHandle());
  } else if (!i && format().hasHandlesAndMarkers()) {
    tags->addAscii(9, "$HANDSEED");
    tags->addHandle(5, records_.nextHandle());
  }
  for (const auto& [name, local] : {std::pair{"$TDUPDATE", true}, {"$TDUUPDATE", false}}) {
    if (const int i = find(name); i && (*tags)[i].code == 40) tags->setReal(i, julianNow(local));
  }
  writer_.rewrite(header, *tags);
  records_.edit(header).handle = 0;
}

void Drawing::fitView() {
  const std::uint32_t viewport = structure_.tableEntry(Type::vport, u"*Active");
  const auto tags = borrowTags();
  AcDbExtents box;
  for (const auto& [name, points] : writer_.drawn()) {
    const std::uint32_t layer = structure_.tableEntry(Type::layer, name);
    if (layer) records_.parse(layer, *tags);
    const bool hidden = layer && (tags->integerOr(70, 0, tags->body()) & 1 ||
                                  tags->integerOr(62, 7, tags->body()) < 0);
    if (!hidden) box.addExt(points);
  }
  if (box.isEmpty() || !viewport) return;
  const AcGePoint3d &low = box.minPoint(), &high = box.maxPoint();
  records_.parse(viewport, *tags);
  const TagRange body = tags->body();
  const double aspect = std::max(0.1, tags->realOr(41, 1, body));
  const double height = std::max({high.y - low.y, (high.x - low.x) / aspect, 10.0}) * 1.1;
  const double center[] = {(low.x + high.x) / 2, (low.y + high.y) / 2};
  for (int k = 0; k < 2; ++k) {
    if (const int i = tags->find(12 + 10 * k, body); i >= 0) tags->setReal(i, center[k]);
  }
  if (const int i = tags->find(40, body); i >= 0) tags->setReal(i, height);
  writer_.rewrite(viewport, *tags);
  for (const auto& [name, point] : {std::pair{"$EXTMIN", low}, {"$EXTMAX", high}}) {
    TagRange range;
    if (!header_.variable(name, *tags, range) || range.empty()) continue;
    tags->putPoint(10, point, range);
    writer_.rewrite(structure_.section(u"HEADER").begin, *tags);
  }
}

// The tags of an object that lists others, without those that have been erased: members of groups
// and drawing orders, entries of dictionaries, reactors. False when it lists none of them.
bool Drawing::prune(std::uint32_t record, TagList& kept) const {
  const auto tags = borrowTags();
  records_.parse(record, *tags);
  const std::u16string type = platform::upper(records_.typeName(record));
  const bool group = type == u"GROUP", order = type == u"SORTENTSTABLE";
  const bool dictionary = records_[record].type == Type::dictionary;
  const TagRange reactors = tags->group("ACAD_REACTORS");
  const auto isGone = [&](int i) {
    if (i >= tags->size()) return false;
    const std::uint32_t other = byHandle(tags->handle(i));
    return other && records_[other].is(Record::erased);
  };
  kept.create(format(), (*tags)[0].bytes());
  for (int i = 1; i < tags->size(); ++i) {
    const int code = (*tags)[i].code;
    const int next = i + 1 < tags->size() ? (*tags)[i + 1].code : 0;
    const bool member = (group && code == 340) || (order && code == 331) ||
                        (code == 330 && i >= reactors.begin && i < reactors.end);
    if (member && isGone(i)) {
      if (order && next == 5) ++i;
    } else if (dictionary && code == 3 && (next == 350 || next == 360) && isGone(i + 1)) {
      ++i;
    } else {
      kept.insertCopy(kept.size(), *tags, i);
    }
  }
  return kept.size() != tags->size();
}

// Calls sink with the longest stretches that lie together in memory. What objects list that has
// been erased is left out of the file and stays in the drawing: the erasing may be taken back.
template <class Sink>
void Drawing::writeTo(Sink&& sink) const {
  const std::uint32_t objects = structure_.section(u"OBJECTS").begin;
  bool inObjects = false;
  TagList kept;
  std::string own;
  std::string_view pending = records_.preamble();
  std::uint32_t before = 0;
  for (std::uint32_t i = records_.first(); i; i = records_[i].next) {
    const Record& r = records_[i];
    VESSORA_CHECK(r.previous == before && r.bytes, "the order of records is broken");
    before = i;
    if (i == objects) inObjects = erasedMembers_;
    if (r.type == Type::endsec) inObjects = false;
    if (r.is(Record::erased) || r.is(Record::synthetic)) continue;
    std::string_view text = r.text();
    const bool pruned = inObjects && i != objects && prune(i, kept);
    const bool adjoins = !pruned && pending.data() + pending.size() == text.data();
    // Neighbours in the file: the common case, decided without a look at the text.
    if (adjoins && !r.is(Record::stored)) {
      pending = {pending.data(), pending.size() + text.size()};
      continue;
    }
    // A text that ends without a line end (the last one of a file) must not run into the next.
    const bool ended =
        format().binary || i == records_.first() || pending.empty() || pending.back() == '\n';
    if (adjoins && ended) {
      pending = {pending.data(), pending.size() + text.size()};
      continue;
    }
    if (!pending.empty()) {
      sink(pending);
      if (!ended) sink(std::string_view("\n"));
    }
    if (pruned) {
      own.resize(kept.writtenSize() + 16);
      text = {own.data(), static_cast<std::size_t>(kept.write(own.data()) - own.data())};
    }
    pending = text;
    if (pruned) {
      sink(pending);
      pending = {};
    }
  }
  VESSORA_CHECK(before == records_.last(), "the order of records does not reach its end");
  if (!pending.empty()) sink(pending);
  if (!records_.trailer().empty()) sink(records_.trailer());
}

std::string Drawing::toBytes() {
  updateHeader();
  std::string out;
  writeTo([&](std::string_view s) { out += s; });
  return out;
}

platform::Result<void> Drawing::save(const std::string& path, const SaveOptions& options) {
  if (!open_.empty()) {
    return platform::Error{
        path + platform::words(": non salvato: un oggetto del disegno è ancora aperto")};
  }
  updateHeader();
  auto file = platform::SaveFile::begin(path);
  if (!file) return platform::Error{file.error()};
  writeTo([&](std::string_view s) { file->write(s); });
  auto done = file->commit(options.keepBackup);
  if (done) history_.setChanged(false);
  return done;
}

}  // namespace cad
