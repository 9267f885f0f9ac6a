#include "apps/cli/networks.h"

#include "apps/cli/host.h"
#include "cad/family/hn_geometry.h"
#include "cad/family/ksr.h"
#include "platform/text.h"

namespace cli {
namespace {

constexpr char16_t kSettings[] = u"HN-C_EPA_IMPOSTAZIONI";
constexpr char16_t kReserved[] = u"HN-RISERVATO";

// The ids that pass a filter, which is released.
std::vector<AcDbObjectId> select(resbuf* filter) {
  std::vector<AcDbObjectId> ids;
  ads_name set;
  if (acedSSGet(u"_X", nullptr, nullptr, filter, set) == RTNORM) {
    std::int32_t count = 0;
    acedSSLength(set, &count);
    ids.resize(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
      ads_name name;
      acedSSName(set, i, name);
      acdbGetObjectId(ids[static_cast<std::size_t>(i)], name);
    }
    acedSSFree(set);
  }
  acutRelRb(filter);
  return ids;
}

std::vector<AcDbObjectId> settingsPoints() {
  return select(acutBuildList(1001, kSettings, 8, kReserved, RTDXF0, u"POINT", RTNONE));
}

std::vector<AcDbObjectId> onLayer(const std::u16string& layer, const char16_t* type) {
  return select(acutBuildList(8, layer, RTDXF0, type, RTNONE));
}

std::u16string textAt(const resbuf* chain, int position) {
  while (chain && position-- > 0) chain = chain->rbnext;
  return chain && acutKindOf(chain->restype) == RbKind::text ? chain->resval.rstring : u"";
}

// The period of the first element that has results.
void readPeriod(NetworkInfo& info) {
  for (const char16_t* prefix : {u"JUNC-", u"RESV-", u"TANK-", u"PIPE-"}) {
    for (const AcDbObjectId id :
         select(acutBuildList(8, prefix + info.name, 1001, u"HN-C_PERIOD_RPT", RTNONE))) {
      AcDbObject* object = nullptr;
      if (acdbOpenObject(object, id) != Acad::eOk) continue;
      resbuf* data = object->xData(u"HN-C_PERIOD_RPT");
      object->close();
      info.hasResults = data != nullptr;
      info.period = textAt(data, 1);
      acutRelRb(data);
      if (info.hasResults) return;
    }
  }
}

}  // namespace

NetworkInfo countNetwork(const std::u16string& name) {
  NetworkInfo n;
  n.name = name;
  const auto count = [&](const char16_t* prefix, const char16_t* type) {
    return static_cast<int>(onLayer(prefix + name, type).size());
  };
  n.junctions = count(u"JUNC-", u"INSERT");
  n.reservoirs = count(u"RESV-", u"INSERT");
  n.tanks = count(u"TANK-", u"INSERT");
  n.pipes = count(u"PIPE-", u"POLYLINE");
  n.pumps = count(u"PUMP-", u"INSERT");
  n.valves = count(u"VALV-", u"INSERT");
  readPeriod(n);
  return n;
}

std::vector<NetworkInfo> listNetworks() {
  std::vector<NetworkInfo> networks;
  for (const AcDbObjectId id : settingsPoints()) {
    AcDbObject* point = nullptr;
    if (acdbOpenObject(point, id) != Acad::eOk) continue;
    resbuf* data = point->xData(kSettings);
    point->close();
    if (data) {
      NetworkInfo n = countNetwork(textAt(data, 1));
      const resbuf* flag = data;
      for (int i = 0; flag && i < 37; ++i) flag = flag->rbnext;
      n.isDefault = flag && acutKindOf(flag->restype) == RbKind::int16 && flag->resval.rint > 0;
      networks.push_back(std::move(n));
    }
    acutRelRb(data);
  }
  return networks;
}

std::string countsLine(const NetworkInfo& n) {
  const auto part = [](const char* it, const char* en, int count) {
    return words(it, en) + " " + std::to_string(count);
  };
  return part("nodi", "junctions", n.junctions) + ", " +
         part("serbatoi", "reservoirs", n.reservoirs) + ", " + part("vasche", "tanks", n.tanks) +
         ", " + part("condotte", "pipes", n.pipes) + ", " + part("pompe", "pumps", n.pumps) + ", " +
         part("valvole", "valves", n.valves);
}

bool chooseNetwork(const std::u16string& name) {
  bool found = false;
  for (const AcDbObjectId id : settingsPoints()) {
    AcDbObject* point = nullptr;
    if (acdbOpenObject(point, id, AcDb::kForWrite) != Acad::eOk) continue;
    resbuf* data = point->xData(kSettings);
    const bool own = textAt(data, 1) == name;
    found |= own;
    resbuf* last = data;
    int items = 0;
    while (last && last->rbnext) last = last->rbnext, ++items;
    if (items == 37 && acutKindOf(last->restype) == RbKind::int16) {
      last->resval.rint = own ? 1 : 0;
      point->setXData(data);
    } else if (own && items == 36) {
      last->rbnext = acutBuildList(1070, 1, RTNONE);
      point->setXData(data);
    }
    acutRelRb(data);
    point->close();
  }
  if (found) return true;
  // A network of the sibling module has no settings of ours: it stands on the layer of its name.
  if (name.rfind(u"HN-AQ", 0) != 0) return false;
  if (select(acutBuildList(8, name, RTNONE)).empty()) return false;
  acdbRegApp(kSettings);
  resbuf* data = acutBuildList(1001, kSettings, 1000, name, RTNONE);
  resbuf* tail = data->rbnext;
  for (int i = 2; i <= 37; ++i) {
    tail->rbnext = i == 37 ? acutBuildList(1070, 1, RTNONE) : acutBuildList(1000, u"", RTNONE);
    tail = tail->rbnext;
  }
  HNGeometry::addPOINT({2, 2, 2}, kReserved, 2, data);
  acutRelRb(data);
  return true;
}

}  // namespace cli
