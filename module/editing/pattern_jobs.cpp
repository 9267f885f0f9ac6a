// Changes of patterns and curves, and what they leave inconsistent.
#include <algorithm>

#include "module/editing/some_names.h"
#include "module/editing/table_jobs.h"
#include "module/inp/full_form.h"
#include "module/network/element_data.h"
#include "module/network/kept_text.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/schema.h"
#include "module/network/settings_store.h"
#include "platform/text.h"

namespace vessora {

using schema::Field;

namespace {

// Where elements name a record.
struct Use {
  const schema::Kind& kind;
  Field field;
};

// What the store offers and the notices are called, for each kind of record.
struct Patterns {
  using Record = EpaPattern;
  static constexpr auto load = LoadPatterns;
  static constexpr auto add = AddPattern;
  static constexpr auto replace = ReplacePattern;
  static constexpr NoticeCode missing = NoticeCode::patternMissing;
  static constexpr NoticeCode twice = NoticeCode::patternTwice;
  static constexpr NoticeCode empty = NoticeCode::patternEmpty;
  static constexpr NoticeCode erasedElsewhere = NoticeCode::patternErasedElsewhere;
  static constexpr Use uses[] = {{schema::kJunc, Field::pattern},
                                 {schema::kResv, Field::pattern},
                                 {schema::kPump, Field::speedPattern},
                                 {schema::kPump, Field::pricePattern}};
  static constexpr RenamedKind renamed = RenamedKind::pattern;
  static bool hasValues(const EpaPattern& pattern) { return !pattern.multipliers.empty(); }
};
struct Curves {
  using Record = EpaCurve;
  static constexpr auto load = LoadCurves;
  static constexpr auto add = AddCurve;
  static constexpr auto replace = ReplaceCurve;
  static constexpr NoticeCode missing = NoticeCode::curveMissing;
  static constexpr NoticeCode twice = NoticeCode::curveTwice;
  static constexpr NoticeCode empty = NoticeCode::curveEmpty;
  static constexpr NoticeCode erasedElsewhere = NoticeCode::curveErasedElsewhere;
  // The setting of a valve is a curve when the valve is of the type that has one.
  static constexpr Use uses[] = {{schema::kTank, Field::volumeCurve},
                                 {schema::kPump, Field::headCurve},
                                 {schema::kPump, Field::efficiencyCurve},
                                 {schema::kValv, Field::setting}};
  static constexpr RenamedKind renamed = RenamedKind::curve;
  static bool hasValues(const EpaCurve& curve) { return !curve.points.empty(); }
};

constexpr char16_t kValveWithCurve[] = u"GPV";

// --- who names it --------------------------------------------------------------------------------

bool names(const Chain& data, const Use& use, std::u16string_view name) {
  const schema::List& list = use.kind.data;
  if (textAt(data, list, use.field) != name) return false;
  return use.field != Field::setting || textAt(data, list, Field::type) == kValveWithCurve;
}

template <class Kind>
SomeNames elementsNaming(std::u16string_view network, std::u16string_view name) {
  SomeNames elements;
  for (const Use& use : Kind::uses) {
    const std::u16string layer = schema::layerName(use.kind.layer, network);
    for (const AcDbObjectId id : SelectionSet(u"_X", blocksOnLayerFilter(layer))) {
      const Opened<AcDbBlockReference> block(id);
      if (!block) continue;
      const Chain data(block->xData(app::kImport));
      if (names(data, use, name)) elements.add(textAt(data, use.kind.data, Field::id));
    }
  }
  return elements;
}

template <class Kind>
std::ptrdiff_t countOf(std::u16string_view network, std::u16string_view name) {
  std::vector<typename Kind::Record> records;
  Kind::load(records, network);
  return std::count_if(records.begin(), records.end(),
                       [name](const auto& record) { return record.id == name; });
}

// --- what a change leaves ------------------------------------------------------------------------

template <class Kind>
void warnOfUses(std::u16string_view network, std::u16string_view name, Notices& warnings) {
  if (name.empty() || countOf<Kind>(network, name) > 0) return;
  const SomeNames elements = elementsNaming<Kind>(network, name);
  if (!elements.empty()) {
    warnings.push_back({Kind::missing, std::u16string(name), elements.text()});
  }
  EpaSettings settings;
  if (std::is_same_v<Kind, Patterns> && LoadSettings(settings, network) &&
      settings.energyPattern == name) {
    warnings.push_back({NoticeCode::energyPatternMissing, std::u16string(name)});
  }
}

template <class Kind>
void warnOfRecord(std::u16string_view network, const typename Kind::Record& record,
                  Notices& warnings) {
  if (!Kind::hasValues(record)) warnings.push_back({Kind::empty, record.id.str()});
  if (countOf<Kind>(network, record.id) > 1) warnings.push_back({Kind::twice, record.id.str()});
}

template <class Kind>
TableResult add(std::u16string_view network, const typename Kind::Record& record) {
  TableResult result;
  Kind::add(record, network);
  warnOfRecord<Kind>(network, record, result.warnings);
  return result;
}

// --- in full -------------------------------------------------------------------------------------

// Puts a new name onto the block of an element that has the old one, on either of its sides.
void renameUse(AcDbBlockReference& block, const Use& use, std::u16string_view from,
               std::u16string_view to) {
  const std::u16string_view tag = schema::tagOf(use.kind, use.field);
  std::u16string text;
  if (!tag.empty() && ReadAttribute(&block, tag, text) && text == from) {
    WriteAttribute(&block, tag, to);
  }
  const Chain data(block.xData(app::kImport));
  if (textAt(data, use.kind.data, use.field) != from) return;
  setTextItem(data.item(schema::placeOf(use.kind.data, use.field)), to);
  block.setXData(data.get());
}

bool isValveWithCurve(AcDbBlockReference& block) {
  std::u16string type;
  ReadAttribute(&block, schema::tagOf(schema::kValv, Field::type), type);
  return type == kValveWithCurve;
}

template <class Kind>
void renameUses(std::u16string_view network, std::u16string_view from, std::u16string_view to) {
  for (const Use& use : Kind::uses) {
    const std::u16string layer = schema::layerName(use.kind.layer, network);
    for (const AcDbObjectId id : SelectionSet(u"_X", blocksOnLayerFilter(layer))) {
      const Opened<AcDbBlockReference> block(id, AcDb::kForWrite);
      if (!block || (use.field == Field::setting && !isValveWithCurve(*block))) continue;
      renameUse(*block, use, from, to);
    }
  }
}

// The default pattern is a number in settings: of other names only what they begin with.
void renameInSettings(std::u16string_view network, std::u16string_view from,
                      std::u16string_view to) {
  EpaSettings settings;
  if (!LoadSettings(settings, network)) return;
  const EpaSettings before = settings;
  if (settings.energyPattern == from) settings.energyPattern = to;
  if (shortest(settings.defaultPattern) == from) settings.defaultPattern = platform::wtof(to);
  if (!(settings == before)) SaveSettings(settings, false);
}

// Who names a record follows its new name.
template <class Kind>
void rename(std::u16string_view network, std::u16string_view from, std::u16string_view to) {
  addRename(network, Kind::renamed, from, to);
  renameUses<Kind>(network, from, to);
  if (std::is_same_v<Kind, Patterns>) renameInSettings(network, from, to);
}

template <class Kind>
bool isStored(std::u16string_view network, const typename Kind::Record& record,
              std::u16string_view oldName) {
  std::vector<typename Kind::Record> records;
  Kind::load(records, network);
  const auto own = std::find_if(records.begin(), records.end(),
                                [&](const auto& stored) { return stored.id == oldName; });
  return own != records.end() && *own == record;
}

template <class Kind>
TableResult replace(std::u16string_view network, const typename Kind::Record& record,
                    std::u16string_view oldName) {
  TableResult result;
  if (inpIsFull()) {
    if (isStored<Kind>(network, record, oldName)) return result;
    Kind::replace(record, oldName, network);
    if (!(record.id == oldName)) rename<Kind>(network, oldName, record.id);
    warnOfRecord<Kind>(network, record, result.warnings);
    return result;
  }
  std::vector<std::u16string> networks;
  wide256 defaultName;
  ListNetworks(networks, defaultName);
  for (const std::u16string& other : networks) {
    if (other != network && countOf<Kind>(other, oldName) > 0) {
      result.warnings.push_back({Kind::erasedElsewhere, std::u16string(oldName), other});
    }
  }
  Kind::replace(record, oldName, network);
  warnOfRecord<Kind>(network, record, result.warnings);
  warnOfUses<Kind>(network, oldName, result.warnings);
  return result;
}

}  // namespace

TableResult addPattern(std::u16string_view network, const EpaPattern& pattern) {
  return add<Patterns>(network, pattern);
}
TableResult replacePattern(std::u16string_view network, const EpaPattern& pattern,
                           std::u16string_view oldName) {
  return replace<Patterns>(network, pattern, oldName);
}
TableResult deletePattern(std::u16string_view network, std::u16string_view name) {
  TableResult result;
  DeletePattern(name, network);
  if (inpIsFull()) forgetRename(network, RenamedKind::pattern, name);
  warnOfUses<Patterns>(network, name, result.warnings);
  return result;
}

TableResult addCurve(std::u16string_view network, const EpaCurve& curve) {
  return add<Curves>(network, curve);
}
TableResult replaceCurve(std::u16string_view network, const EpaCurve& curve,
                         std::u16string_view oldName) {
  return replace<Curves>(network, curve, oldName);
}
TableResult deleteCurve(std::u16string_view network, std::u16string_view name) {
  TableResult result;
  DeleteCurve(name, network);
  if (inpIsFull()) forgetRename(network, RenamedKind::curve, name);
  if (countOf<Curves>(network, name) > 0) {
    result.warnings.push_back({NoticeCode::curveStays, std::u16string(name)});
  }
  warnOfUses<Curves>(network, name, result.warnings);
  return result;
}

}  // namespace vessora
