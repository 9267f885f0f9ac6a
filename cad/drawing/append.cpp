// Taking new objects into a drawing.
#include <algorithm>

#include "cad/drawing/drawing.h"
#include "platform/check.h"

namespace cad {
namespace {

// The first version that can hold what these tags describe.
int sinceOf(const TagList& tags) {
  if (tags.is(0, "ACAD_TABLE") || tags.is(0, "TABLESTYLE")) return 1018;
  if (tags.is(0, "LWPOLYLINE")) return 1014;
  if (tags.is(0, "DICTIONARY") || tags.is(0, "XRECORD")) return 1012;
  return 0;
}

}  // namespace

Acad::ErrorStatus Drawing::append(std::uint32_t owner, AcDbObject& object) {
  ViewState& v = *object.view_;
  if (v.drawing) return Acad::eAlreadyInDb;
  object.beforeCommit();
  TagList& tags = *v.tags;
  if (sinceOf(tags) > format().version) return Acad::eInvalidDwgVersion;
  tags.transcode(format());
  Place place;
  if (const auto s = placeOf(owner, tags, place); s != Acad::eOk) return s;
  const Record* const known = knownLike(tags, place);
  const Record like = known ? *known : Record();
  if (!known) {
    if (const auto s = checkNames(tags, place); s != Acad::eOk) return s;
  }
  if (place.child) place.before = endOfParts(owner, place);
  if (!known) settleReferences(tags, place);
  adopt(object, place, known ? &like : nullptr);
  return Acad::eOk;
}

// Stamps for objects without handle and owner hold as long as all that they name stays.
Stamps& Drawing::freshStamps() {
  if (stampsOf_ != history_.definitions()) {
    stamps_.clear();
    stampsOf_ = history_.definitions();
  }
  return stamps_;
}

// A record of the make of a new entity, all of whose names the drawing has; null when none is
// known.
const Record* Drawing::knownLike(const TagList& tags, const Place& place) {
  return place.entity && !place.paper ? freshStamps().find(tags) : nullptr;
}

// Adds an object whose names are settled. `like` is what knownLike said.
std::uint32_t Drawing::addNew(TagList& tags, const Place& place, const Record* like) {
  if (like) return writer_.addLike(tags, place, *like);
  std::unique_ptr<Stamp> stamp;
  if (place.entity && !place.paper && format().hasHandlesAndMarkers() && Stamp::suits(tags) &&
      tags.size() > 1 && tags[1].code == 100) {
    stamp = std::make_unique<Stamp>(tags);
  }
  const int size = tags.size();
  const std::uint32_t i = writer_.addComplete(tags, place);
  if (stamp && tags.size() == size + 2) {
    stamp->like = records_[i];
    freshStamps().keep(std::move(stamp));
  }
  return i;
}

// Where a new object belongs, by what its owner is.
Acad::ErrorStatus Drawing::placeOf(std::uint32_t owner, const TagList& tags, Place& place) {
  const Record& o = records_[owner];
  place.owner = owner;
  if (o.type == Type::polyline || o.type == Type::insert) {
    place.before = o.next;
    place.entity = place.child = true;
    place.space = o.is(Record::space);
    place.paper = o.is(Record::paper);
    return place.before ? Acad::eOk : Acad::eKeyNotFound;
  }
  if (structure_.block(owner)) {
    if (structure_.isSpace(owner)) structure_.sectionEnd(u"ENTITIES");
    place.before = structure_.endOf(owner);
    if (!place.before) return Acad::eKeyNotFound;
    place.entity = true;
    place.space = structure_.isSpace(owner) || records_[place.before].type == Type::endsec;
    place.paper = owner == structure_.paperSpace();
    return Acad::eOk;
  }
  if (o.type == Type::table) {
    const Type entryType = structure_.entryTypeOf(owner);
    const TableInfo* table = structure_.table(entryType);
    if (!table || !table->endtab || !tags.is(0, nameOf(entryType))) return Acad::eKeyNotFound;
    place.before = table->endtab;
    return Acad::eOk;
  }
  if (!format().hasHandlesAndMarkers()) return Acad::eInvalidInput;
  place.before = structure_.sectionEnd(u"OBJECTS");
  return place.before ? Acad::eOk : Acad::eKeyNotFound;
}

// What the new object is called and what it names must be possible in this drawing.
Acad::ErrorStatus Drawing::checkNames(const TagList& tags, Place& place) {
  const TagRange body = tags.body();
  const int version = format().version;
  if (place.entity) {
    const int layer = tags.find(8, body);  // an object without a layer lies on "0"
    place.newLayer = layer >= 0 && !structure_.hasLayer(tags, layer);
    if (place.newLayer && !usableName(tags.text(layer), version)) return Acad::eInvalidInput;
    if (!tags.is(0, "INSERT")) return Acad::eOk;
    const int block = tags.find(2, body);
    return block >= 0 && structure_.blockNamed(tags.text(block)) ? Acad::eOk : Acad::eKeyNotFound;
  }
  if (records_[place.owner].type != Type::table) return Acad::eOk;
  const std::u16string name = tags.textOr(2, u"", body);
  if (!usableName(name, version)) return Acad::eInvalidInput;
  const Type entryType = structure_.entryTypeOf(place.owner);
  return structure_.tableEntry(entryType, name) ? Acad::eDuplicateRecordName : Acad::eOk;
}

// A new object names nothing that the drawing does not have: its layer and applications are made,
// a line type or text style that is not there gives way to the default.
void Drawing::settleReferences(TagList& tags, const Place& place) {
  const auto nameAt = [&](int i) { return names().ofBytes(tags.format(), tags[i].bytes()); };
  const int end = tags.xdataBegin();
  for (int i = end; i < tags.size(); ++i) {
    if (tags[i].code == 1001 && !structure_.tableEntry(Type::appid, nameAt(i))) {
      structure_.registerApplication(tags.text(i));
    }
  }
  if (!place.entity) return;
  if (place.newLayer) structure_.layerNamed(tags.text(tags.find(8, tags.body())), true);
  const auto settle = [&](int code, TagRange range, auto&& has) {
    const int i = tags.find(code, range);
    if (i >= 0 && !has(i)) tags.erase(i, i + 1);
  };
  if (tags.find(6, 1, end) >= 0) {
    settle(6, tags.subclass("AcDbEntity"),
           [&](int i) { return structure_.hasLinetype(tags.text(i)); });
  }
  if (tags.find(7, 1, end) < 0) return;
  settle(7, tags.subclass("AcDbText"),
         [&](int i) { return structure_.tableEntry(Type::style, nameAt(i)) != 0; });
}

// The mark behind the last part of an entity, made with the first part.
std::uint32_t Drawing::endOfParts(std::uint32_t owner, const Place& place) {
  std::uint32_t end = lastOwner_ == owner ? lastEnd_ : place.before;
  while (end && records_[end].is(Record::child) && records_[end].owner == owner &&
         records_[end].type != Type::seqend) {
    end = records_[end].next;
  }
  if (!end || records_[end].owner != owner || records_[end].type != Type::seqend) {
    end = addSequenceEnd(owner, end, place);
  }
  writer_.setErased(end, false);  // when the command that made it was taken back
  lastOwner_ = owner;
  lastEnd_ = end;
  return end;
}

std::uint32_t Drawing::addSequenceEnd(std::uint32_t owner, std::uint32_t before,
                                      const Place& like) {
  const auto tags = borrowTags();
  tags->create(format(), "SEQEND");
  tags->addAscii(100, "AcDbEntity");
  tags->addText(8, names().text(records_[owner].layer));
  Place place = like;
  place.before = before;
  place.owner = owner;
  place.child = true;
  return addNew(*tags, place, knownLike(*tags, place));
}

// The one place where an object becomes the drawing's; it stays open for write.
void Drawing::adopt(AcDbObject& object, const Place& place, const Record* like) {
  ViewState& v = *object.view_;
  const std::uint32_t i = addNew(*v.tags, place, like);
  if (records_[place.owner].type == Type::table) {
    structure_.enterName(i, records_[i].name);
  }
  if (records_[i].type == Type::insert && !place.child) dropInsertCache(records_[i].name);
  if (records_[i].type == Type::polyline) addSequenceEnd(i, place.before, place);
  v.drawing = this;
  v.record = i;
  v.writing = true;
  v.readers = 0;
  v.modified = false;
  records_.edit(i).set(Record::open);
  open_.push_back(&object);
  object.afterAppend();
}

}  // namespace cad
