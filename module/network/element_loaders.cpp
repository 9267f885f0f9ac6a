#include "module/network/element_loaders.h"

#include "module/network/node_update.h"
#include "platform/text.h"

namespace vessora {

// --- attributes ----------------------------------------------------------------------------------

namespace {

// An element's attributes and where they go: the id first, then the other fields.
template <std::size_t N>
struct AttributeFields {
  std::u16string_view tags[N + 1];
  wide256* id;
  wide50* fields[N];

  bool read(AcDbBlockReference* block) const {
    std::u16string texts[N + 1];
    const unsigned found = readAttributes(block, tags, texts, N + 1);
    *id = texts[0];
    for (std::size_t i = 0; i < N; ++i) *fields[i] = texts[i + 1];
    return (found & 1U) != 0;
  }
  void write(AcDbBlockReference* block) const {
    WriteAttribute(block, tags[0], *id);
    for (std::size_t i = 0; i < N; ++i) WriteAttribute(block, tags[i + 1], *fields[i]);
  }
};

AttributeFields<2> fieldsOf(EpaJunc& j) {
  return {{tag::kId, tag::kElevation, tag::kDemand}, &j.id, {&j.elev, &j.demand}};
}
AttributeFields<1> fieldsOf(EpaResv& r) { return {{tag::kId, tag::kHead}, &r.id, {&r.head}}; }
AttributeFields<6> fieldsOf(EpaTank& t) {
  return {{tag::kId, tag::kElevation, tag::kDiameter, tag::kInitLevel, tag::kMinLevel,
           tag::kMaxLevel, tag::kMinVolume},
          &t.id,
          {&t.elev, &t.diameter, &t.initLevel, &t.minLevel, &t.maxLevel, &t.minVol}};
}
AttributeFields<4> fieldsOf(EpaValv& v) {
  return {{tag::kId, tag::kDiameter, tag::kValveType, tag::kSetting, tag::kMinorLoss},
          &v.id,
          {&v.diameter, &v.type, &v.setting, &v.minorLoss}};
}
AttributeFields<1> fieldsOf(EpaPump& p) { return {{tag::kId, tag::kStatus}, &p.id, {&p.status}}; }

template <class Record>
void writeAttributes(AcDbBlockReference* block, Record record) {
  fieldsOf(record).write(block);
}

}  // namespace

bool takeAttributes(AcDbBlockReference* block, EpaJunc& junc) { return fieldsOf(junc).read(block); }
bool takeAttributes(AcDbBlockReference* block, EpaResv& resv) { return fieldsOf(resv).read(block); }
bool takeAttributes(AcDbBlockReference* block, EpaTank& tank) { return fieldsOf(tank).read(block); }
bool takeAttributes(AcDbBlockReference* block, EpaValv& valv) { return fieldsOf(valv).read(block); }
bool takeAttributes(AcDbBlockReference* block, EpaPump& pump) { return fieldsOf(pump).read(block); }

// --- extended data -------------------------------------------------------------------------------

void takeText(XDataReader& data, wide50& field) {
  if (!data.done()) field = data.text();
}
void takeText(XDataReader& data, wide256& field) {
  if (!data.done()) field = data.text();
}
void takeReal(XDataReader& data, wide50& field) {
  if (!data.done()) storeReal(field, data.real());
}

void takeData(XDataReader data, EpaJunc& junc) {
  data.skip();
  takeReal(data, junc.emitter);
  takeText(data, junc.pattern);
}

void takeData(XDataReader data, EpaResv& resv) {
  data.skip();
  data.skip();
  takeText(data, resv.pattern);
}

void takeData(XDataReader data, EpaTank& tank) {
  data.skip();
  takeText(data, tank.volCurve);
}

void takeData(XDataReader data, EpaPipe& pipe) {
  takeText(data, pipe.id);
  takeReal(data, pipe.length);
  takeReal(data, pipe.diameter);
  takeReal(data, pipe.roughness);
  takeReal(data, pipe.minorLoss);
  takeText(data, pipe.status);
  takeText(data, pipe.node1);
  takeText(data, pipe.node2);
}

namespace {

// A real that means nothing where it is 0, or where it is not positive.
void takeOptionalReal(XDataReader& data, wide50& field, bool positive) {
  if (data.done()) return;
  const double value = data.real();
  if (value == 0 || (positive && value < 0)) {
    field.clear();
  } else {
    storeReal(field, value);
  }
}

}  // namespace

void takeData(XDataReader data, EpaPump& pump) {
  data.skip();
  takeText(data, pump.node1);
  takeText(data, pump.node2);
  takeText(data, pump.headCurve);
  takeOptionalReal(data, pump.power, false);
  takeOptionalReal(data, pump.speed, false);
  // Lists of an older layout end here, or go on with a point.
  if (data.done() || data.code() == 1010) return;
  takeText(data, pump.speedPattern);
  takeText(data, pump.effCurve);
  takeOptionalReal(data, pump.price, true);
  takeText(data, pump.pricePattern);
}

// --- readers -------------------------------------------------------------------------------------

namespace {

template <class Record>
void readBlock(Record& record, AcDbBlockReference* block) {
  record.objectId = block->objectId();
  takeAttributes(block, record);
  if (const Chain data(block->xData(app::kImport)); data) takeData(XDataReader(data), record);
}

}  // namespace

void ReadJunc(EpaJunc& junc, AcDbBlockReference* block) { readBlock(junc, block); }
void ReadResv(EpaResv& resv, AcDbBlockReference* block) { readBlock(resv, block); }
void ReadTank(EpaTank& tank, AcDbBlockReference* block) { readBlock(tank, block); }
void ReadPump(EpaPump& pump, AcDbBlockReference* block) { readBlock(pump, block); }

void ReadValv(EpaValv& valv, AcDbBlockReference* block) {
  valv.objectId = block->objectId();
  takeAttributes(block, valv);
  const Chain data(block->xData(app::kImport));
  if (data.item(4)) valv.status = data.text(4);
  if (data.item(7)) valv.node1 = data.text(7);
  if (data.item(8)) valv.node2 = data.text(8);
}

void ReadPipe(EpaPipe& pipe, std::u16string& material, AcDb3dPolyline* polyline) {
  pipe.objectId = polyline->objectId();
  if (const Chain data(polyline->xData(app::kImport)); data) takeData(XDataReader(data), pipe);
  const Chain data(polyline->xData(app::kMaterial));
  if (data.item(1)) material = data.text(1);
}

// --- nodes ---------------------------------------------------------------------------------------

namespace {

double heightIn(AcDbBlockReference* block, std::u16string_view heightTag) {
  std::u16string text;
  ReadAttribute(block, heightTag, text);
  return platform::wtof(text);
}

}  // namespace

void UpdateJunc(Opened<AcDbBlockReference> block, const EpaJunc& junc, double emitter) {
  if (!block) return;
  const double oldHeight = heightIn(block.get(), tag::kElevation);
  writeAttributes(block.get(), junc);
  block->setXData(JuncData(junc.id, emitter, junc.pattern).get());
  block->setColorIndex(emitter > 0 ? 1 : 256);
  moveNode(std::move(block), {oldHeight, platform::wtof(junc.elev), junc.id, true});
}

void UpdateResv(Opened<AcDbBlockReference> block, const EpaResv& resv) {
  if (!block) return;
  const double oldHeight = heightIn(block.get(), tag::kHead);
  writeAttributes(block.get(), resv);
  block->setXData(ResvData(resv.id, resv.pattern).get());
  moveNode(std::move(block), {oldHeight, platform::wtof(resv.head), resv.id, false});
}

void UpdateTank(Opened<AcDbBlockReference> block, const EpaTank& tank) {
  if (!block) return;
  const double oldHeight = heightIn(block.get(), tag::kElevation);
  writeAttributes(block.get(), tank);
  block->setXData(TankData(tank.id, tank.volCurve).get());
  moveNode(std::move(block), {oldHeight, platform::wtof(tank.elev), tank.id, false});
}

// --- links ---------------------------------------------------------------------------------------

namespace {

// Gives the new id to the companion polylines that have it already or still have the old one.
void renameCompanions(std::u16string_view layer, std::u16string_view oldId,
                      std::u16string_view newId) {
  const Chain bare = CompanionData(newId);
  const SelectionSet set(u"_X", elementPolylineFilter(layer));
  for (const AcDbObjectId id : set) {
    const Opened<AcDb3dPolyline> polyline(id);
    if (!polyline) continue;
    const Chain data(polyline->xData(app::kImport));
    const std::u16string_view own = data.text(1);
    if (!data.item(1) || (own != newId && own != oldId)) continue;
    polyline->upgradeOpen();
    polyline->setXData(bare.get());
  }
}

}  // namespace

void UpdateValv(Opened<AcDbBlockReference> block, const EpaValv& valv, std::u16string_view layer) {
  if (!block) return;
  std::u16string oldId;
  ReadAttribute(block.get(), tag::kId, oldId);
  writeAttributes(block.get(), valv);
  EpaValv stored = valv;
  const Chain old(block->xData(app::kImport));
  stored.node1 = old.text(7);
  stored.node2 = old.text(8);
  // Drawings have 0 at the places of diameter and minor loss once a valve has been changed; who
  // reads those there relies on it.
  block->setXData(ValvData(stored, 0, 0).get());
  block.close();
  renameCompanions(layer, oldId, valv.id);
}

void UpdatePump(Opened<AcDbBlockReference> block, const EpaPump& pump, std::u16string_view layer) {
  if (!block) return;
  std::u16string oldId;
  ReadAttribute(block.get(), tag::kId, oldId);
  writeAttributes(block.get(), pump);
  block->setXData(PumpData(pump).get());
  block.close();
  renameCompanions(layer, oldId, pump.id);
}

}  // namespace vessora
