#include "module/results/full_results.h"

#include <array>
#include <charconv>
#include <utility>

#include "epanet/report.h"
#include "epanet/result_units.h"
#include "module/inp/full_form.h"
#include "module/network/element_data.h"
#include "module/network/settings_store.h"
#include "module/results/result_import.h"
#include "platform/files.h"
#include "platform/text.h"

namespace vessora {

using schema::Field;

// --- files ---------------------------------------------------------------------------------------

std::shared_ptr<const FullReport> FullReport::load(std::u16string_view path) {
  auto bytes = platform::readFile(platform::nativePath(path));
  return bytes ? std::make_shared<const FullReport>(std::move(*bytes)) : nullptr;
}

FullReport::FullReport(std::string bytes) : opened_(epanet::openResults(std::move(bytes))) {}

namespace {

NoticeCode codeOf(epanet::OutputFault fault) {
  switch (fault) {
    case epanet::OutputFault::wrongCounts:
      return NoticeCode::outputCountsWrong;
    case epanet::OutputFault::wrongUnits:
      return NoticeCode::outputUnitsUnknown;
    case epanet::OutputFault::wrongLinks:
      return NoticeCode::outputLinksWrong;
    case epanet::OutputFault::wrongSize:
      return NoticeCode::outputSizeWrong;
    default:
      return NoticeCode::outputTooShort;
  }
}

// Why a file has no results: the run failed, or nobody asked for tables.
Notice whyEmpty(const epanet::Results& results) {
  if (const auto* report = dynamic_cast<const epanet::Report*>(&results)) {
    for (const epanet::ReportMessage& message : report->messages()) {
      if (!message.isError) continue;
      const std::string words = std::to_string(message.code) + ": " + message.words +
                                (message.row.empty() ? "" : " " + message.row);
      return {NoticeCode::runFailed, platform::decodeBytes(words)};
    }
    if (!report->hasEmblem()) return {NoticeCode::notResults};
  }
  return {results.isCut() ? NoticeCode::reportCut : NoticeCode::reportWithoutTables};
}

}  // namespace

ReportPeriods FullReport::periods() const {
  ReportPeriods periods;
  periods.full = periods.readable = true;
  if (!opened_.results) {
    periods.faults.push_back({codeOf(opened_.fault)});
    return periods;
  }
  const auto& all = opened_.results->periods();
  if (all.empty()) periods.faults.push_back(whyEmpty(*opened_.results));
  for (const epanet::Period& period : all) {
    if (!period.name.empty()) periods.times.push_back(platform::decodeBytes(period.name));
    if (period.seconds >= 0 || all.size() > 1) periods.several = true;
  }
  return periods;
}

// --- a period ------------------------------------------------------------------------------------

namespace {

// The columns without which there is nothing to store, by the names that they have under [REPORT].
std::string missingColumns(const epanet::PeriodValues& values) {
  std::string missing;
  const auto need = [&](const std::string& unit, const char* name) {
    if (unit.empty()) missing += (missing.empty() ? "" : ", ") + (name + std::string(" YES"));
  };
  const epanet::ValueUnits& units = values.units;
  if (values.hasNodes) {
    need(units.demand, "DEMAND");
    need(units.head, "HEAD");
    need(units.pressure, "PRESSURE");
  }
  if (values.hasLinks) {
    need(units.flow, "FLOW");
    need(units.velocity, "VELOCITY");
    need(units.headloss, "HEADLOSS");
  }
  return missing;
}

}  // namespace

FullPeriod::FullPeriod(std::shared_ptr<const FullReport> report, std::u16string_view time)
    : report_(std::move(report)) {
  const epanet::Results* const results = report_->results();
  if (!results) return;
  const auto& periods = results->periods();
  for (std::size_t k = 0; k < periods.size(); ++k) {
    const bool only = time.empty() && periods.size() == 1;
    if (!only && platform::decodeBytes(periods[k].name) != time) continue;
    values_ = results->values(k);
    missingColumns_ = missingColumns(values_);
    ofWeight_ = epanet::growsWithGravity(values_.units.pressure);
    unknownUnit_ = epanet::convertToDrawing(values_);
    return;
  }
}

std::string FullPeriod::bytesOf(std::u16string_view name) const {
  return FileText(report_->results()->isUtf8()).bytes(name);
}

const epanet::NodeValues* FullPeriod::node(std::u16string_view name) const {
  const epanet::NodeValues* const found = values_.nodes.find(bytesOf(name));
  return found && found->demand && found->head && found->pressure ? found : nullptr;
}

const epanet::LinkValues* FullPeriod::link(std::u16string_view name) const {
  const epanet::LinkValues* const found = values_.links.find(bytesOf(name));
  return found && found->flow && found->velocity && found->headloss ? found : nullptr;
}

double FullPeriod::columnOf(std::u16string_view network) const {
  EpaSettings settings;
  const bool known = ofWeight_ && LoadSettings(settings, network);
  return known && settings.specificGravity > 0 ? 1 / settings.specificGravity : 1;
}

// --- what they are worth -------------------------------------------------------------------------

Notices FullPeriod::faults() const {
  if (!missingColumns_.empty()) {
    return {{NoticeCode::reportColumnsMissing, platform::widen(missingColumns_)}};
  }
  if (!unknownUnit_.empty()) {
    return {{NoticeCode::reportUnitUnknown, platform::decodeBytes(unknownUnit_)}};
  }
  return {};
}

namespace {

std::u16string numbersOf(const std::vector<std::uint64_t>& lines) {
  constexpr std::size_t kNamed = 5;
  std::string text;
  for (std::size_t i = 0; i < lines.size() && i < kNamed; ++i) {
    text += (i ? ", " : "") + std::to_string(lines[i]);
  }
  return platform::widen(text + (lines.size() > kNamed ? ", ..." : ""));
}

}  // namespace

ReportFindings FullPeriod::examine(std::u16string_view network) const {
  constexpr std::size_t kNamed = 5;
  ReportFindings found;
  found.full = true;
  found.hasRows = hasRows();
  if (!found.hasRows) return found;
  found.faults = faults();
  const auto count = [&](const void* values, const std::u16string& name) {
    ++found.elements;
    if (values) return;
    ++found.missing;
    if (found.firstMissing.size() < kNamed) found.firstMissing.push_back(name);
  };
  const NetworkLayers layers(network);
  const auto countBlocks = [&](resbuf* filter, auto values) {
    for (const AcDbObjectId id : SelectionSet(u"_X", filter)) {
      const Opened<AcDbBlockReference> block(id);
      if (!block) continue;
      const std::u16string name = countingName(*block);
      count(values(name), name);
    }
  };
  countBlocks(nodeBlockFilter(layers), [this](const auto& name) { return node(name); });
  for (const AcDbObjectId id : SelectionSet(u"_X", elementPolylineFilter(layers.pipe))) {
    const Opened<AcDb3dPolyline> pipe(id);
    if (!pipe) continue;
    const std::u16string name(Chain(pipe->xData(app::kImport)).text(1));
    count(link(name), name);
  }
  countBlocks(linkBlockFilter(layers), [this](const auto& name) { return link(name); });

  judge(found, network);
  return found;
}

// What the counts say of the rows.
void FullPeriod::judge(ReportFindings& found, std::u16string_view network) const {
  const bool cut = report_->results()->isCut();
  found.cut = values_.endsOpen && (cut || found.missing > 0);
  if (found.cut) found.faults.push_back({NoticeCode::reportCut});
  if (found.missing == found.elements) {
    found.faults.push_back({NoticeCode::reportForeign, std::u16string(network)});
  }
  if (cut && !values_.endsOpen) found.remarks.push_back({NoticeCode::resultsEndEarly});
  if (!values_.unreadableLines.empty()) {
    found.remarks.push_back({NoticeCode::reportRowsDoubtful, numbersOf(values_.unreadableLines)});
  }
}

// --- onto the drawing ----------------------------------------------------------------------------

namespace {

// The shortest text that reads back as the same number, of a float when it is one.
std::u16string shortest(const std::optional<double>& value) {
  if (!value) return {};
  if (*value == 0) return u"0";
  std::array<char, 32> text;
  const auto single = static_cast<float>(*value);
  const auto end = static_cast<double>(single) == *value
                       ? std::to_chars(text.data(), text.data() + text.size(), single)
                       : std::to_chars(text.data(), text.data() + text.size(), *value);
  return platform::widen(std::string_view(text.data(), end.ptr));
}

std::u16string_view textOf(const std::optional<epanet::LinkState>& state) {
  if (!state) return {};
  switch (*state) {
    case epanet::LinkState::closed:
      return u"Closed";
    case epanet::LinkState::active:
      return u"Active";
    default:
      return u"Open";
  }
}

Chain listOf(const epanet::NodeValues& v, double column) {
  const std::u16string quality = shortest(v.quality);
  return dataOf(EpaNodeResult{}, {{Field::demand, u"", *v.demand},
                                  {Field::head, u"", *v.head},
                                  {Field::pressure, u"", *v.pressure * column},
                                  {Field::quality, quality}});
}

Chain listOf(const epanet::LinkValues& v, double) {
  return dataOf(EpaLinkResult{}, {{Field::flow, u"", *v.flow},
                                  {Field::velocity, u"", *v.velocity},
                                  {Field::headloss, u"", *v.headloss},
                                  {Field::status, textOf(v.state)}});
}

}  // namespace

ResultCounts FullPeriod::write(std::u16string_view network) const {
  ResultCounts counts;
  if (!faults().empty()) return counts;
  const NetworkLayers layers(network);
  const Chain period = periodData(platform::decodeBytes(values_.period.name));
  const double column = columnOf(network);
  const auto put = [&](AcDbEntity& entity, const auto* values, const char16_t* application) {
    if (!values) {
      removeResults(entity, application);
      return false;
    }
    const bool written = entity.setXData(listOf(*values, column).get()) == Acad::eOk;
    entity.setXData(period.get());
    return written;
  };
  const auto nameOf = [](AcDbBlockReference& block, Notices& notices) {
    std::u16string name;
    ReadNameAttribute(&block, schema::kIdTag, name, notices);
    return name;
  };
  counts.nodes = forEachOf<AcDbBlockReference>(nodeBlockFilter(layers), [&](auto& block) {
    return put(block, node(nameOf(block, counts.nodeNotices)), app::kNodeResult);
  });
  counts.pipes = forEachOf<AcDb3dPolyline>(elementPolylineFilter(layers.pipe), [&](auto& pipe) {
    const Chain data(pipe.xData(app::kImport));
    return put(pipe, link(data.text(1)), app::kLinkResult);
  });
  counts.valvesAndPumps = forEachOf<AcDbBlockReference>(linkBlockFilter(layers), [&](auto& block) {
    return put(block, link(nameOf(block, counts.linkNotices)), app::kLinkResult);
  });
  return counts;
}

}  // namespace vessora
