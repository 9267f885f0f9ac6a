#include "module/network/settings_store.h"

#include <unordered_map>

#include "module/network/schema.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {
namespace {

constexpr int kListLimit = 10000;

// The stored list behind the header, item by item: the one place that knows its order.
template <class Settings, class Items>
void forEachItem(Settings& s, Items&& item) {
  item.text(s.name);
  item.unread(s.flowUnits);
  item.text(s.headloss);
  item.real(s.specificGravity);
  item.real(s.viscosity);
  item.integer(s.trials);
  item.real(s.accuracy);
  item.text(s.unbalanced);
  item.real(s.defaultPattern);
  item.real(s.demandMultiplier);
  item.real(s.emitterExponent);
  item.unread(s.qualityFlag);
  item.text(s.qualityParam);
  item.unread(s.qualityUnits);
  item.real(s.diffusivity);
  item.text(s.traceNode);
  item.real(s.tolerance);
  item.real(s.bulkOrder);
  item.text(s.wallOrder);
  item.real(s.globalBulk);
  item.real(s.globalWall);
  item.real(s.limitingPotential);
  item.real(s.roughnessCorrelation);
  item.text(s.duration);
  item.text(s.hydraulicStep);
  item.text(s.qualityStep);
  item.text(s.patternStep);
  item.text(s.patternStart);
  item.text(s.reportStep);
  item.text(s.reportStart);
  item.text(s.startClock);
  item.unread(s.statistic);
  item.real(s.globalEfficiency);
  item.real(s.globalPrice);
  item.text(s.energyPattern);
  item.real(s.demandCharge);
  item.integer(s.isDefault);  // last: lists of an older layout end before it
}

// Fields whose item is missing stay as they are.
struct Loader {
  XDataReader data;
  template <class Text>
  void text(Text& field) {
    if (!data.done()) field = data.text();
  }
  template <class Text>
  void unread(Text&) {
    data.skip();
  }
  void real(double& field) {
    if (!data.done()) field = data.real();
  }
  template <class Integer>
  void integer(Integer& field) {
    if (!data.done()) field = static_cast<Integer>(static_cast<std::int16_t>(data.integer()));
  }
};

struct Saver {
  XDataBuilder data{app::kSettings};
  template <class Text>
  void text(const Text& field) {
    data.text(field);
  }
  template <class Text>
  void unread(const Text& field) {
    data.text(field);
  }
  void real(double field) { data.real(field); }
  void integer(int field) { data.integer(field); }
};

SelectionSet::Select throughFamily() { return HNGeometry::ksr_ssget; }

// The hours are the first two characters, whatever they are; what stands from the fourth on is
// kept.
void foldDays(EpaSettings& settings) {
  if (settings.durationDays == 0) return;
  const std::u16string old = settings.duration.str();
  const std::int64_t hours = platform::wtoi(std::u16string_view(old).substr(0, 2)) +
                             std::int64_t{24} * settings.durationDays;
  std::u16string folded = platform::format(u"%d:", hours);
  if (old.size() > 3) folded.append(old, 3);
  settings.duration = folded;
}

// Calls visit(point, data) for the settings points, in drawing order, until it answers true.
template <class Visit>
bool findPoint(AcDb::OpenMode mode, Visit visit) {
  const SelectionSet set(u"_X", reservedFilter(app::kSettings), throughFamily());
  for (const AcDbObjectId id : set) {
    const Opened<AcDbPoint> point(id, mode);
    if (!point) continue;
    const Chain data(point->xData(app::kSettings));
    if (data && visit(*point, data)) return true;
  }
  return false;
}

bool isFlaggedDefault(AcDbObjectId id) {
  const Opened<AcDbPoint> point(id);
  if (!point) return false;
  const Chain data(point->xData(app::kSettings));
  const resbuf* flag = data.item(schema::kSettingsFlag);
  return flag && acutKindOf(flag->restype) == RbKind::int16 && flag->resval.rint > 0;
}

}  // namespace

bool LoadSettings(EpaSettings& settings, std::u16string_view name) {
  return findPoint(AcDb::kForRead, [&](const AcDbPoint&, const Chain& data) {
    if (data.text(schema::kSettingsName) != name) return false;
    forEachItem(settings, Loader{XDataReader(data)});
    return true;
  });
}

void SaveSettings(EpaSettings& settings, bool create) {
  foldDays(settings);
  // Not every way here has registered the application; without, the host takes no data of it.
  acdbRegApp(app::kSettings);
  Saver saver;
  forEachItem(static_cast<const EpaSettings&>(settings), saver);
  const Chain list = saver.data.take();
  makeReservedLayer();
  if (create) {
    HNGeometry::addPOINT({2, 2, 2}, layer::kReserved, 2, list.get());
    return;
  }
  findPoint(AcDb::kForWrite, [&](AcDbPoint& point, const Chain& data) {
    if (data.text(schema::kSettingsName) == settings.name) point.setXData(list.get());
    return false;
  });
}

std::vector<AcDbObjectId> settingsPoints(std::u16string_view name) {
  std::vector<AcDbObjectId> points;
  findPoint(AcDb::kForRead, [&](const AcDbPoint& point, const Chain& data) {
    if (data.text(schema::kSettingsName) == name) points.push_back(point.objectId());
    return false;
  });
  return points;
}

std::u16string withSeconds(std::u16string_view time) {
  if (time.empty() || time.size() > 6) return std::u16string(time);
  const std::u16string hours(time.size() == 1 || time.size() == 4 ? 1 : 0, u'0');
  return hours + std::u16string(time) + (time.size() < 4 ? u":00:00" : u":00");
}

void ListNetworks(std::vector<std::u16string>& names, wide256& defaultName) {
  names.clear();
  defaultName.clear();
  KsrDatoArray filter;
  filter.Add(1001, app::kSettings);
  filter.Add(8, layer::kReserved);
  filter.Add(RTDXF0, u"POINT");
  std::vector<KsrEntityID> points;
  KsrEntityUtils* utils = KsrFactory::GetEntityUtils();
  if (utils->SsGet(u"_X", filter, points, kListLimit) != RTNORM) return;
  // What counts for a name is what loading it would find: the first point of that name. The last
  // flagged name wins.
  std::unordered_map<std::u16string, bool> flags;
  for (const KsrEntityID& point : points) {
    KsrDatoArray rows;
    utils->GetXData(point, app::kSettings, rows);
    if (rows.GetCount() < 2) continue;
    names.push_back(rows[1].text);
    const auto [entry, first] = flags.try_emplace(names.back(), false);
    if (first) entry->second = isFlaggedDefault(point.id);
    if (entry->second) defaultName = names.back();
  }
}

}  // namespace vessora
