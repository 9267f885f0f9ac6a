#include "apps/desktop/results/result_set.h"

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <utility>

#include "apps/program/words.h"
#include "epanet/result_units.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/text.h"

namespace desktop {

using program::words;

namespace {

// Why the results are none of the network's; empty when they are. The module judges as it does
// before it writes them.
std::string refusalOf(vessora::Jobs& jobs, const std::string& path, const std::u16string& network) {
  const std::u16string wide = platform::widen(path);
  const vessora::Report report = jobs.openReport(wide);
  const vessora::ReportPeriods periods = jobs.periodsOf(report);
  if (!periods.readable) {
    return program::describe(vessora::Notice{vessora::NoticeCode::reportUnreadable, wide});
  }
  if (!periods.faults.empty()) return path + ": " + program::describe(periods.faults.front());
  const std::u16string first = periods.times.empty() ? std::u16string() : periods.times.front();
  const vessora::ReportRows rows = jobs.rowsOf(report, first, periods.lowerCaseHrs);
  const std::string no = program::faultOf(jobs.examineResults(rows, network), network);
  return no.empty() ? no : path + ": " + no;
}

std::string idOf(std::u16string_view name, bool utf8) {
  static const platform::CodePage ansi = platform::CodePage::named("ANSI_1252");
  if (utf8) return platform::narrow(name);
  std::string bytes;
  ansi.encode(bytes, name, nullptr);
  return bytes;
}

float single(const std::optional<double>& value) {
  return value ? static_cast<float>(*value) : ResultSet::kMissing;
}

}  // namespace

// One period after another into the arrays.
class ResultSet::Reader {
 public:
  Reader(ResultSet& set, const epanet::Results& results, double specificGravity)
      : set_(set), results_(results), gravity_(specificGravity) {
    for (std::size_t q = 0; q < kQuantities; ++q) {
      const std::size_t count = set.elements(static_cast<Quantity>(q)).size();
      set.values_[q].assign(count * set.periods_.size(), kMissing);
    }
    for (const ResultElement& node : set.nodes_) nodes_.push_back({idOf(node.name, utf8())});
    for (const ResultElement& link : set.links_) links_.push_back({idOf(link.name, utf8())});
  }

  // The name of a unit that nothing is known of; empty when all has gone well.
  std::string read(std::size_t k) {
    epanet::PeriodValues values = results_.values(k);
    // Metres of the network's liquid, which may be heavier than water.
    const bool ofWeight = epanet::growsWithGravity(values.units.pressure);
    const double column = ofWeight && gravity_ > 0 ? 1 / gravity_ : 1;
    if (std::string unknown = epanet::convertToDrawing(values); !unknown.empty()) return unknown;
    nameUnits(values.units);
    take(values.nodes, nodes_, [&](std::size_t i, const epanet::NodeValues& v) {
      put(Quantity::demand, k, i, single(v.demand));
      put(Quantity::head, k, i, single(v.head));
      put(Quantity::pressure, k, i, single(v.pressure) * static_cast<float>(column));
      put(Quantity::nodeQuality, k, i, single(v.quality));
    });
    take(values.links, links_, [&](std::size_t i, const epanet::LinkValues& v) {
      put(Quantity::flow, k, i, single(v.flow));
      put(Quantity::velocity, k, i, single(v.velocity));
      put(Quantity::headloss, k, i, single(v.headloss));
      put(Quantity::linkQuality, k, i, single(v.quality));
    });
    return {};
  }

  // What no period has is not there at all.
  void finish() {
    for (std::vector<float>& all : set_.values_) {
      if (std::ranges::all_of(all, [](float v) { return std::isnan(v); })) all = {};
    }
  }

 private:
  struct Place {
    std::string id;
    std::size_t row = 0;  // where the period before had it
  };

  bool utf8() const { return results_.isUtf8(); }

  // Periods have their rows in one order, as a rule: a row is looked for only where that fails.
  template <class Values, class Put>
  void take(const epanet::ValueTable<Values>& table, std::vector<Place>& places, Put put) {
    const auto& rows = table.rows();
    const bool moved = std::ranges::any_of(places, [&](const Place& place) {
      return place.row >= rows.size() || rows[place.row].id != place.id;
    });
    if (moved) find(rows, places);
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (places[i].row < rows.size()) put(i, rows[places[i].row].values);
    }
  }

  // Of rows with one id the first counts; beyond the rows for an element without one.
  template <class Rows>
  static void find(const Rows& rows, std::vector<Place>& places) {
    std::unordered_map<std::string_view, std::size_t> byId;
    byId.reserve(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) byId.try_emplace(rows[row].id, row);
    for (Place& place : places) {
      const auto found = byId.find(place.id);
      place.row = found == byId.end() ? rows.size() : found->second;
    }
  }

  void put(Quantity q, std::size_t period, std::size_t element, float value) {
    const std::size_t count = set_.elements(q).size();
    set_.values_[static_cast<std::size_t>(q)][period * count + element] = value;
  }

  void nameUnits(const epanet::ValueUnits& units) {
    const auto name = [&](Quantity q, std::string_view unit) {
      set_.units_[static_cast<std::size_t>(q)] = unit;
    };
    name(Quantity::demand, "l/s");
    name(Quantity::head, "m");
    name(Quantity::pressure, "m");
    name(Quantity::flow, "l/s");
    name(Quantity::velocity, "m/s");
    name(Quantity::headloss, "m/km");
    if (units.nodeQuality.empty()) return;
    name(Quantity::nodeQuality, units.nodeQuality);
    name(Quantity::linkQuality, units.nodeQuality);
  }

  ResultSet& set_;
  const epanet::Results& results_;
  double gravity_;
  std::vector<Place> nodes_, links_;
};

platform::Result<ResultSet> ResultSet::open(vessora::Jobs& jobs, const std::string& path,
                                            std::u16string_view network) {
  ResultSet set;
  set.network_ = network;
  if (std::string no = refusalOf(jobs, path, set.network_); !no.empty()) {
    return platform::Error{std::move(no)};
  }
  auto bytes = platform::readFile(path);
  if (!bytes) return platform::Error{bytes.error()};
  const epanet::OpenedResults opened = epanet::openResults(std::move(*bytes));
  if (!opened.results || opened.results->periods().empty()) {
    return platform::Error{path + ": " + words("non ci sono risultati")};
  }
  set.periods_ = opened.results->periods();
  for (vessora::ListedElement& element : jobs.elementsOf(network)) {
    const bool pipe = element.kind == vessora::ElementKind::pipe;
    auto& list = vessora::isNode(element.kind) ? set.nodes_ : set.links_;
    list.push_back({std::move(element.name), pipe ? 0 : element.id.index(),
                    pipe ? element.id.index() : element.course.index()});
  }
  Reader reader(set, *opened.results, jobs.settingsOf(network).specificGravity);
  for (std::size_t k = 0; k < set.periods_.size(); ++k) {
    if (const std::string unknown = reader.read(k); !unknown.empty()) {
      return platform::Error{
          path + ": " +
          program::describe(vessora::Notice{vessora::NoticeCode::reportUnitUnknown,
                                            platform::decodeBytes(unknown)})};
    }
  }
  reader.finish();
  return set;
}

}  // namespace desktop
