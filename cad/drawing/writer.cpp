#include "cad/drawing/writer.h"

#include <algorithm>

#include "platform/check.h"

namespace cad {
namespace {

// Tags that releases before the drawing's would stumble over: line weight and plot style came with
// R2000, true colour and transparency with R2004, the locks of attributes with R2007.
void dropNewerTags(TagList& tags, int version) {
  if (version >= 1021) return;
  const bool attribute = tags.is(0, "ATTRIB") || tags.is(0, "ATTDEF");
  TagRange own = tags.is(0, "LAYER") ? tags.body() : tags.subclass("AcDbEntity");
  for (int i = tags.xdataBegin() - 1; i > 0; --i) {
    const int c = tags[i].code;
    const bool common = i >= own.begin && i < own.end;
    if ((attribute && c == 280) ||
        (common && version < 1018 && (c == 420 || c == 430 || c == 440 || c == 347 || c == 348)) ||
        (common && version < 1015 && (c == 370 || c == 390 || c == 290 || c == 410))) {
      tags.erase(i, i + 1);
      if (i < own.begin) --own.begin;
      if (i < own.end) --own.end;
    }
  }
}

// Before R13: the codes up to 79, those of dimension styles, and the extrusion.
void dropAllNewerTags(TagList& tags, bool entity) {
  const bool linetype = tags.is(0, "LTYPE");
  for (int i = tags.xdataBegin() - 1; i > 0; --i) {
    const int c = tags[i].code;
    const bool known = c < 80 || (c >= 140 && c <= 148) || (c >= 170 && c <= 178) || c == 210 ||
                       c == 220 || c == 230;
    const bool complex =
        linetype && (c == 74 || c == 75 || c == 9 || (c >= 44 && c <= 46) || c == 50);
    if (!known || complex || c == 5 || (entity && (c == 48 || c == 60))) tags.erase(i, i + 1);
  }
}

// The owner stands behind the 102 groups and before the first marker.
void setOwner(TagList& tags, int handleCode, std::uint64_t owner) {
  int at = tags.find(handleCode, 1) + 1;
  while (at < tags.size() && tags[at].code != 100 && tags[at].code != 330) {
    if (tags[at].code == 102) {
      do ++at;
      while (at < tags.size() && tags[at].code != 102);
    }
    ++at;
  }
  at = std::min(at, tags.size());
  if (at < tags.size() && tags[at].code == 330) {
    tags.setHandle(at, owner);
  } else {
    tags.insertHandle(at, 330, owner);
  }
}

}  // namespace

void Writer::rewrite(std::uint32_t record, const TagList& tags, const Record* like) {
  VESSORA_CHECK(record > 0 && record < records_.count(), "no such record to be written");
  Record before;
  if (records_.setText(record, tags, like, [&] {
        history_.keep(record);
        before = records_[record];
      })) {
    index_.note(record, before);
  }
}

std::uint32_t Writer::add(const TagList& tags, const Place& place, std::uint64_t handle,
                          const Record* like) {
  Record fresh;
  fresh.handle = handle;
  fresh.owner = place.owner;
  fresh.set(Record::space, place.space);
  fresh.set(Record::child, place.child);
  const std::uint32_t i = records_.link(fresh, place.before);
  history_.made(i);
  rewrite(i, tags, like);
  if (records_[i].handle) records_.registerHandle(records_[i].handle, i);
  const Type type = records_[i].type;
  if (place.space && type != Type::polyline && type != Type::seqend && type != Type::attrib &&
      !records_[i].is(Record::paper)) {
    if (const int at = tags.find(10); at >= 0) drawn_[records_[i].layer].addPoint(tags.point(at));
  }
  if (observer_ && (i & 0xFFF) == 0) observer_(i);
  return i;
}

std::uint32_t Writer::addLike(TagList& tags, const Place& place, const Record& like) {
  const std::uint64_t handle = records_.newHandle();
  tags.insertHandles(handle, records_[place.owner].handle);
  return add(tags, place, handle, &like);
}

std::uint32_t Writer::addComplete(TagList& tags, const Place& place) {
  complete(tags, records_.newHandle(), place);
  return add(tags, place);
}

void Writer::complete(TagList& tags, std::uint64_t handle, const Place& place) const {
  const Format& format = records_.format();
  tags.transcode(format);
  if (!format.hasHandlesAndMarkers()) {
    dropAllNewerTags(tags, place.entity);
    if (records_.usesHandles() && handle) tags.insertHandle(1, 5, handle);
    if (place.paper) tags.insertInteger(std::min(2, tags.size()), 67, 1);
    return;
  }
  const int code = tags.is(0, "DIMSTYLE") ? 105 : 5;
  const int oldHandle = tags.find(code, 1, tags.xdataBegin());
  if (oldHandle >= 0 && oldHandle < 3) {
    tags.setHandle(oldHandle, handle);
  } else {
    tags.insertHandle(1, code, handle);
  }
  setOwner(tags, code, records_[place.owner].handle);
  dropNewerTags(tags, format.version);
  if (place.entity && place.paper) {
    tags.insertInteger(tags.subclass("AcDbEntity").begin, 67, 1);
  }
}

void Writer::setErased(std::uint32_t record, bool erased) {
  if (records_[record].is(Record::erased) == erased) return;
  history_.keep(record);
  records_.edit(record).set(Record::erased, erased);
  if (!erased) index_.note(record, Record());
}

}  // namespace cad
