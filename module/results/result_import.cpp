#include "module/results/result_import.h"

#include <string>

#include "module/dialogs/rpt_files.h"
#include "module/host/messages.h"
#include "module/host/module.h"
#include "module/host/translate.h"
#include "module/network/element_data.h"
#include "module/network/settings_store.h"
#include "module/results/route.h"
#include "platform/text.h"

namespace vessora {

namespace {

// --- rows onto elements --------------------------------------------------------------------------

// Rows by element name, and the period that goes with them.
template <class List>
class ResultSource {
 public:
  ResultSource(const List& rows, std::u16string_view time)
      : rows_(rows), period_(acutBuildList(1001, app::kPeriod, 1000, time, RTNONE)) {}

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

// An entity that has nothing to lose is not touched: it would count as changed.
void removeResults(AcDbEntity& entity, std::u16string_view results) {
  for (const std::u16string_view name : {results, std::u16string_view(app::kPeriod)}) {
    if (Chain(entity.xData(name.data()))) ClearXData(&entity, name);
  }
}

template <class List>
bool writeToBlock(AcDbBlockReference& block, const ResultSource<List>& source) {
  std::u16string name;
  ReadNameAttribute(&block, schema::kIdTag, name);
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

// Lets `act` have each entity of this class that passes the filter, open for write. True when one
// of them said so.
template <class Entity, class Act>
bool forEachOf(resbuf* filter, Act act) {
  bool any = false;
  for (const AcDbObjectId id : SelectionSet(u"_X", filter)) {
    const Opened<Entity> entity(id, AcDb::kForWrite);
    if (entity && act(*entity)) any = true;
  }
  return any;
}

template <class List>
bool writeBlocks(resbuf* filter, const char16_t* application, const List* rows,
                 std::u16string_view time) {
  if (!rows) {
    return forEachOf<AcDbBlockReference>(filter, [&](AcDbBlockReference& block) {
      removeResults(block, application);
      return false;
    });
  }
  const ResultSource<List> source(*rows, time);
  return forEachOf<AcDbBlockReference>(
      filter, [&](AcDbBlockReference& block) { return writeToBlock(block, source); });
}

void tell(bool any, const char16_t* written, const char16_t* absent) {
  acutPrintf(TraduciTesto(any ? written : absent));
}

}  // namespace

void WriteNodeResults(const NetworkLayers& layers, const NodeResultList* nodes,
                      std::u16string_view time) {
  tell(writeBlocks(nodeBlockFilter(layers), app::kNodeResult, nodes, time),
       u"Importazione risultati nodi terminata", u"Risultati nodi assenti");
}

void WritePipeResults(const NetworkLayers& layers, const LinkResultList* links,
                      std::u16string_view time) {
  resbuf* const filter = elementPolylineFilter(layers.pipe);
  bool any = false;
  if (links) {
    const ResultSource<LinkResultList> source(*links, time);
    any = forEachOf<AcDb3dPolyline>(
        filter, [&](AcDb3dPolyline& pipe) { return writeToPipe(pipe, source); });
  } else {
    forEachOf<AcDb3dPolyline>(filter, [](AcDb3dPolyline& pipe) {
      removeResults(pipe, app::kLinkResult);
      return false;
    });
  }
  tell(any, u"\nImportazione risultati rami terminata", u"\nRisultati rami assenti");
}

void WriteValvePumpResults(const NetworkLayers& layers, const LinkResultList* links,
                           std::u16string_view time) {
  tell(writeBlocks(linkBlockFilter(layers), app::kLinkResult, links, time),
       u"\nImportazione risultati valvole/pompe terminata", u"\nRisultati valvole/pompe assenti");
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

void refuse(const std::u16string& text) { showMessage(text, u"", MessageIcon::stop); }

struct Results {
  NodeResultList nodes;
  LinkResultList links;
  std::u16string time;  // empty for the only period
};

bool readChosenPeriod(const RptFile& report, Results& results) {
  std::vector<std::u16string> steps;
  ListRptTimeSteps(report, steps);
  DlgRptMult dialog(steps);
  if (!dialog.doModal()) {
    refuse(TraduciTesto(u"Importazione interrotta!"));
    return false;
  }
  results.time = dialog.period();
  ReadRptPeriod(report, results.nodes, results.links, results.time, rptRoute.lowerCaseHrs);
  return true;
}

// False when there is nothing to write; the user has been told.
bool readReport(const std::u16string& path, Results& results) {
  const RptFile report = RptText::load(path);
  const RptKind kind = ReadRpt(report, results.nodes, results.links);
  if (kind == kRptUnreadable) {
    refuse(TraduciTesto(u"Impossibile leggere il file ") + path);
    return false;
  }
  if (kind == kRptMultiPeriod && !readChosenPeriod(report, results)) return false;
  if (results.nodes.empty() || results.links.empty()) {
    refuse(TraduciTesto(u"Impossibile importare i risultati!"));
    return false;
  }
  return true;
}

void writeResults(std::u16string_view network, const Results* results) {
  const NetworkLayers layers(network);
  const std::u16string_view time = results ? results->time : std::u16string_view();
  WriteNodeResults(layers, results ? &results->nodes : nullptr, time);
  WritePipeResults(layers, results ? &results->links : nullptr, time);
  WriteValvePumpResults(layers, results ? &results->links : nullptr, time);
  ResetLinkColors(layers);
  ErasePiezometricLine(network);
}

}  // namespace

int EpaCommands::imprpt() {
  RouteSpan route;
  if (!readInstallPath(installPath)) return kAbandoned;
  route.begin();

  Request request{rptRoute.path.str(), std::u16string_view(rptRoute.network)};
  if (!rptRoute.exported && !askForReport(request)) return kAbandoned;
  for (const char16_t* name : {app::kNodeResult, app::kLinkResult, app::kPeriod}) acdbRegApp(name);

  if (request.path.empty()) {
    writeResults(request.network, nullptr);
    showMessage(TraduciTesto(u"Risultati cancellati!"));
    return kRan;
  }
  Results results;
  if (!readReport(request.path, results)) return kAbandoned;
  writeResults(request.network, &results);
  if (!rptRoute.exported) showMessage(TraduciTesto(u"Importazione terminata con successo!"));
  return kRan;
}

}  // namespace vessora
