#include "module/results/result_import.h"

#include <optional>
#include <string>
#include <utility>

#include "module/dialogs/rpt_files.h"
#include "module/host/messages.h"
#include "module/host/module.h"
#include "module/host/tell.h"
#include "module/host/translate.h"
#include "module/host/warnings.h"
#include "module/inp/full_diff.h"
#include "module/network/element_data.h"
#include "module/network/kept_text.h"
#include "module/network/settings_store.h"
#include "module/results/full_results.h"
#include "module/results/route.h"
#include "platform/text.h"

namespace vessora {

// --- rows onto elements --------------------------------------------------------------------------

Chain periodData(std::u16string_view time) {
  XDataBuilder data(schema::kPeriod.application);
  data.text(time);
  return data.take();
}

bool removeResults(AcDbEntity& entity, const char16_t* results) {
  const bool had = static_cast<bool>(Chain(entity.xData(results)));
  if (had) ClearXData(&entity, results);
  if (Chain(entity.xData(app::kPeriod))) ClearXData(&entity, app::kPeriod);
  return had;
}

namespace {

// Rows by element name, and the period that goes with them.
template <class List>
class ResultSource {
 public:
  ResultSource(const List& rows, std::u16string_view time)
      : rows_(rows), period_(periodData(time)) {}

  auto rowOf(std::u16string_view name) const {
    const std::size_t row = rows_.find(name);
    return rows_[row == RptRowList::kNone ? rows_.size() - 1 : row];
  }
  // Whether the entity, open for write, took the results.
  template <class Record>
  bool write(AcDbEntity& entity, const Record& row) const {
    const bool written = entity.setXData(dataOf(row).get()) == Acad::eOk;
    entity.setXData(period_.get());
    return written;
  }

 private:
  const List& rows_;
  Chain period_;
};

template <class List>
bool writeToBlock(AcDbBlockReference& block, const ResultSource<List>& source, Notices& notices) {
  std::u16string name;
  ReadNameAttribute(&block, schema::kIdTag, name, notices);
  return source.write(block, source.rowOf(name));
}

bool writeToPipe(AcDb3dPolyline& pipe, const ResultSource<LinkResultList>& source) {
  EpaLinkResult row;
  {
    const Chain data(pipe.xData(app::kImport));
    row = source.rowOf(data.text(1));
    if (row.status.empty()) row.status = textAt(data, schema::kPipe.data, schema::Field::status);
  }
  return source.write(pipe, row);
}

template <class List>
int writeBlocks(resbuf* filter, const char16_t* application, const List* rows,
                std::u16string_view time, Notices& notices) {
  if (!rows) {
    return forEachOf<AcDbBlockReference>(
        filter, [&](AcDbBlockReference& block) { return removeResults(block, application); });
  }
  const ResultSource<List> source(*rows, time);
  return forEachOf<AcDbBlockReference>(
      filter, [&](AcDbBlockReference& block) { return writeToBlock(block, source, notices); });
}

}  // namespace

int WriteNodeResults(const NetworkLayers& layers, const NodeResultList* nodes,
                     std::u16string_view time, Notices& notices) {
  return writeBlocks(nodeBlockFilter(layers), app::kNodeResult, nodes, time, notices);
}

int WritePipeResults(const NetworkLayers& layers, const LinkResultList* links,
                     std::u16string_view time) {
  resbuf* const filter = elementPolylineFilter(layers.pipe);
  if (!links) {
    return forEachOf<AcDb3dPolyline>(
        filter, [](AcDb3dPolyline& pipe) { return removeResults(pipe, app::kLinkResult); });
  }
  const ResultSource<LinkResultList> source(*links, time);
  return forEachOf<AcDb3dPolyline>(filter,
                                   [&](AcDb3dPolyline& pipe) { return writeToPipe(pipe, source); });
}

int WriteValvePumpResults(const NetworkLayers& layers, const LinkResultList* links,
                          std::u16string_view time, Notices& notices) {
  return writeBlocks(linkBlockFilter(layers), app::kLinkResult, links, time, notices);
}

void ResetLinkColors(const NetworkLayers& layers) {
  for (const AcDbObjectId id : SelectionSet(u"_X", linkPolylineFilter(layers))) {
    const Opened<AcDb3dPolyline> polyline(id);
    if (!polyline || polyline->colorIndex() == 256) continue;
    polyline->upgradeOpen();
    polyline->setColorIndex(256);
  }
}

void ErasePiezometricLine(std::u16string_view network) {
  const auto name = [network](const char16_t* prefix) {
    return schema::layerName(prefix, network);
  };
  const SelectionSet set(u"_X", acutBuildList(-4, u"<or", 8, name(layer::kGradeLine), 8,
                                              name(layer::kGradeConstruction), 8,
                                              name(layer::kGradeValues), -4, u"or>", RTNONE));
  for (const AcDbObjectId id : set) {
    if (const Opened<AcDbEntity> entity(id, AcDb::kForWrite); entity) entity->erase(true);
  }
}

// --- the jobs ------------------------------------------------------------------------------------

struct PeriodRows {
  NodeResultList nodes;
  LinkResultList links;
  std::u16string time;             // empty for the only period
  bool endsInFull = true;          // the report's last line has an end
  std::optional<FullPeriod> full;  // in place of all that

  bool isWhole() const { return full ? full->hasRows() : !nodes.empty() && !links.empty(); }
};

Report openReport(std::u16string_view path) {
  return inpIsFull() ? Report(FullReport::load(path)) : Report(RptText::load(path));
}

ReportPeriods periodsOf(const Report& report) {
  if (report.full()) return report.full()->periods();
  ReportPeriods periods;
  periods.readable = static_cast<bool>(report);
  periods.several = isMultiPeriod(report.text(), periods.lowerCaseHrs);
  if (periods.several) ListRptTimeSteps(report.text(), periods.times);
  return periods;
}

ReportRows rowsOf(const Report& report, std::u16string_view time, bool lowerCaseHrs) {
  auto rows = std::make_shared<PeriodRows>();
  if (report.full()) {
    rows->full.emplace(report.full(), time);
    return rows;
  }
  const RptFile& text = report.text();
  rows->time = time;
  if (text) rows->endsInFull = text->endsInFull();
  if (ReadRpt(text, rows->nodes, rows->links) == kRptMultiPeriod) {
    ReadRptPeriod(text, rows->nodes, rows->links, time, lowerCaseHrs);
  }
  return rows;
}

namespace {

// Counts elements against the rows that their names have in the period's own tables.
class RowCheck {
 public:
  explicit RowCheck(ReportFindings& findings) : found_(findings) {}
  void check(const RptRowList& rows, std::u16string_view name) {
    constexpr std::size_t kNamed = 5;
    ++found_.elements;
    const std::size_t row = rows.find(name);
    if (row != RptRowList::kNone && rows.inTable(row)) return;
    ++found_.missing;
    if (found_.firstMissing.size() < kNamed) found_.firstMissing.emplace_back(name);
  }
  void checkBlocks(resbuf* filter, const RptRowList& rows) {
    for (const AcDbObjectId id : SelectionSet(u"_X", filter)) {
      const Opened<AcDbBlockReference> block(id);
      if (block) check(rows, countingName(*block));
    }
  }

 private:
  ReportFindings& found_;
};

}  // namespace

ReportFindings examineResults(const ReportRows& rows, std::u16string_view network) {
  if (rows->full) return rows->full->examine(network);
  ReportFindings found;
  found.hasRows = rows->isWhole();
  if (!found.hasRows) return found;
  const NetworkLayers layers(network);
  RowCheck check(found);
  check.checkBlocks(nodeBlockFilter(layers), rows->nodes);
  for (const AcDbObjectId id : SelectionSet(u"_X", elementPolylineFilter(layers.pipe))) {
    const Opened<AcDb3dPolyline> pipe(id);
    if (pipe) check.check(rows->links, Chain(pipe->xData(app::kImport)).text(1));
  }
  check.checkBlocks(linkBlockFilter(layers), rows->links);
  const bool open = rows->nodes.tableIsOpen() || rows->links.tableIsOpen();
  found.cut = open && (found.missing > 0 || !rows->endsInFull);
  return found;
}

ResultCounts writeResults(const ReportRows& rows, std::u16string_view network) {
  for (const char16_t* name : {app::kNodeResult, app::kLinkResult, app::kPeriod}) acdbRegApp(name);
  const NetworkLayers layers(network);
  ResultCounts counts;
  if (rows && rows->full) {
    counts = rows->full->write(network);
  } else {
    const std::u16string_view time = rows ? rows->time : std::u16string_view();
    const LinkResultList* const links = rows ? &rows->links : nullptr;
    counts.nodes =
        WriteNodeResults(layers, rows ? &rows->nodes : nullptr, time, counts.nodeNotices);
    counts.pipes = WritePipeResults(layers, links, time);
    counts.valvesAndPumps = WriteValvePumpResults(layers, links, time, counts.linkNotices);
  }
  // Results remember which hydraulics they are of, where the drawing can tell.
  if (rows && rows->full && counts.nodes + counts.links() > 0) {
    saveResultMark(network, {hydraulicsOf(network), rows->time});
  } else {
    clearResultMark(network);
  }
  ResetLinkColors(layers);
  ErasePiezometricLine(network);
  return counts;
}

// --- the command ---------------------------------------------------------------------------------

namespace {

// A report that another module handed over holds for one command, however that ends.
class RouteSpan {
 public:
  RouteSpan() = default;
  RouteSpan(const RouteSpan&) = delete;
  RouteSpan& operator=(const RouteSpan&) = delete;
  ~RouteSpan() {
    if (!rptRoute.exported) return;
    if (external_) KsrFactory::GetGeneralUtils()->SetExternalMode(false);
    rptRoute = {};
  }
  void begin() {
    external_ = rptRoute.exported;
    if (external_) KsrFactory::GetGeneralUtils()->SetExternalMode(true);
  }

 private:
  bool external_ = false;
};

struct Request {
  std::u16string path;  // empty: remove results
  wide256 network;
};

bool askForReport(Request& request) {
  Dlgimprpt dialog;
  if (!dialog.doModal()) return false;
  request.path = dialog.path.value();
  if (!request.path.empty()) {
    request.network = schema::networkOfFile(request.path);
    return true;
  }
  networkNames.clear();
  ListNetworks(networkNames, defaultNetwork);
  request.network = defaultNetwork;
  networkNames.clear();
  return true;
}

// Results that cannot be taken: the command's own words, and the reasons for who asks for them.
ReportRows refuse(Notices reasons) {
  warn(std::move(reasons));
  tell({{NoticeCode::reportWithoutRows}});
  return nullptr;
}

// The rows that are to be written; null when there are none, which the user has been told.
ReportRows askForRows(const std::u16string& path, std::u16string_view network) {
  const Report report = openReport(path);
  if (!report) {
    tell({{NoticeCode::reportUnreadable, path}});
    return nullptr;
  }
  const ReportPeriods periods = periodsOf(report);
  if (!periods.faults.empty()) return refuse(periods.faults);
  std::u16string time;
  if (periods.several) {
    DlgRptMult dialog(periods.times);
    if (!dialog.doModal()) {
      showMessage(TraduciTesto(u"Importazione interrotta!"), u"", AcEdIcon::stop);
      return nullptr;
    }
    time = dialog.period();
  }
  ReportRows rows = rowsOf(report, time, rptRoute.lowerCaseHrs);
  if (!rows->isWhole()) return refuse({});
  if (!rows->full) return rows;
  ReportFindings found = rows->full->examine(network);
  if (!found.faults.empty()) return refuse(std::move(found.faults));
  warn(std::move(found.remarks));
  return rows;
}

// A clear counts as nothing written.
void tellResults(const ResultCounts& counts, bool cleared) {
  const auto line = [cleared](int count, const char16_t* written, const char16_t* absent) {
    acutPrintf(TraduciTesto(count > 0 && !cleared ? written : absent));
  };
  tell(counts.nodeNotices);
  line(counts.nodes, u"Importazione risultati nodi terminata", u"Risultati nodi assenti");
  line(counts.pipes, u"\nImportazione risultati rami terminata", u"\nRisultati rami assenti");
  tell(counts.linkNotices);
  line(counts.valvesAndPumps, u"\nImportazione risultati valvole/pompe terminata",
       u"\nRisultati valvole/pompe assenti");
}

}  // namespace

int EpaCommands::imprpt() {
  RouteSpan route;
  if (!readInstallPath(installPath)) return kAbandoned;
  route.begin();

  Request request{rptRoute.path.str(), std::u16string_view(rptRoute.network)};
  if (!rptRoute.exported && !askForReport(request)) return kAbandoned;
  const bool clears = request.path.empty();
  const ReportRows rows = clears ? nullptr : askForRows(request.path, request.network);
  if (!clears && !rows) return kAbandoned;
  tellResults(writeResults(rows, request.network), clears);
  if (clears) {
    showMessage(TraduciTesto(u"Risultati cancellati!"));
  } else if (!rptRoute.exported) {
    showMessage(TraduciTesto(u"Importazione terminata con successo!"));
  }
  return kRan;
}

}  // namespace vessora
