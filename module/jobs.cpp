// The jobs that the module offers in the system registry.
#include "module/jobs.h"

#include "module/editing/followers.h"
#include "module/entry.h"
#include "module/host/command_span.h"
#include "module/host/host_drawing.h"
#include "module/host/translate.h"
#include "module/host/warnings.h"
#include "module/network/kept_text.h"
#include "module/network/network_list.h"
#include "module/network/pattern_curve_store.h"

namespace vessora {

namespace {

class ModuleJobs : public Jobs {
 public:
  const AcRxClass* isA() const override {
    static const AcRxClass description(kClass, AcRxObject::desc());
    return &description;
  }

  std::vector<CommandRow> commands() override {
    std::vector<CommandRow> rows;
#define VESSORA_COMMAND(name, needs, help) \
  rows.push_back({u"" #name, #name, TraduciTesto(help), CommandNeeds::needs});
#include "module/host/commands.def"
    return rows;
  }

  Notices takeWarnings() override { return vessora::takeWarnings(); }

  std::vector<NetworkInfo> networks() override { return networksOfDrawing(); }
  NetworkInfo network(std::u16string_view name) override { return networkInfo(name); }
  std::vector<ListedElement> elementsOf(std::u16string_view network) override {
    return vessora::elementsOf(network);
  }
  PickedNetwork pickNetwork(std::u16string_view wanted, std::u16string_view hint) override {
    return vessora::pickNetwork(wanted, hint);
  }

  InpFile openInp(std::u16string_view path) override { return vessora::openInp(path); }
  InpFindings examineInp(const InpFile& file) override { return vessora::examineInp(file); }
  ImportResult importInp(const InpFile& file, std::u16string_view name,
                         std::optional<double> scale) override {
    const CommandSpan span;
    return vessora::importInp(file, name, scale);
  }
  ExportResult exportNetwork(const ExportRequest& request) override {
    return vessora::exportNetwork(request);
  }

  DiffResult diffNetwork(std::u16string_view network, std::u16string_view path) override {
    return vessora::diffNetwork(network, path);
  }
  bool hasKeptText(std::u16string_view network) override { return vessora::hasKeptText(network); }
  bool resultsAreStale(std::u16string_view network) override {
    return vessora::resultsAreStale(network);
  }

  Report openReport(std::u16string_view path) override { return vessora::openReport(path); }
  ReportPeriods periodsOf(const Report& report) override { return vessora::periodsOf(report); }
  ReportRows rowsOf(const Report& report, std::u16string_view time, bool lowerCaseHrs) override {
    return vessora::rowsOf(report, time, lowerCaseHrs);
  }
  ReportFindings examineResults(const ReportRows& rows, std::u16string_view network) override {
    return vessora::examineResults(rows, network);
  }
  ResultCounts writeResults(const ReportRows& rows, std::u16string_view network) override {
    return vessora::writeResults(rows, network);
  }

  QueryResult queryNetwork(std::u16string_view network, const QueryRequest& request) override {
    return vessora::queryNetwork(network, request);
  }
  ColorResult colorNetwork(std::u16string_view network, const ColorRequest& request) override {
    const CommandSpan span;
    return vessora::colorNetwork(network, request);
  }
  ValueClasses classesOf(const std::vector<double>& values, int count) override {
    return vessora::classesOf(values, count);
  }
  std::vector<DrawnLegend> drawnLegends() override { return vessora::drawnLegends(); }
  Notices highlightElements(std::u16string_view network, const QueryRows& rows) override {
    return vessora::highlightElements(network, rows);
  }
  Notices resetColors(std::u16string_view network, const QueryRows& rows) override {
    return vessora::resetColors(network, rows);
  }

  bool hasManholesToTransfer(AcDbObjectId titleBlock) override {
    return vessora::hasManholesToTransfer(titleBlock);
  }
  ManholeResult transferManholes(AcDbObjectId titleBlock, std::u16string_view block,
                                 double scale) override {
    const CommandSpan span;
    return vessora::transferManholes(titleBlock, block, scale);
  }

  EpaSettings settingsOf(std::u16string_view network) override {
    return vessora::settingsOf(network);
  }
  Notices storeSettings(const EpaSettings& settings) override {
    return vessora::storeSettings(settings);
  }

  void scaleNetwork(std::u16string_view network, const ScaleRequest& request) override {
    vessora::scaleNetwork(network, request);
  }
  Notices drawTables(std::u16string_view network, const TableRequest& request) override {
    return vessora::drawTables(network, request);
  }
  void drawGradeLine(std::u16string_view network, double textHeight) override {
    vessora::drawGradeLine(network, textHeight);
  }
  ProfileResult drawProfile(std::u16string_view network, const ProfileRequest& request) override {
    return vessora::drawProfile(network, request);
  }

  // --- adding networks and elements
  using Course = std::vector<AcGePoint3d>;
  Notices createNetwork(std::u16string_view name) override { return vessora::createNetwork(name); }
  void confirmDefaultNetwork(std::u16string_view name) override {
    vessora::confirmDefaultNetwork(name);
  }
  ElementNames namesOfNetwork(std::u16string_view network) override {
    return vessora::namesOfNetwork(network);
  }
  AddedElement addJunction(std::u16string_view network, const AcGePoint3d& place,
                           const EpaJunc& junction, ElementNames& names) override {
    const CommandSpan span;
    return vessora::addJunction(network, place, junction, names);
  }
  AddedElement addReservoir(std::u16string_view network, const AcGePoint3d& place,
                            const EpaResv& reservoir, ElementNames& names) override {
    const CommandSpan span;
    return vessora::addReservoir(network, place, reservoir, names);
  }
  AddedElement addTank(std::u16string_view network, const AcGePoint3d& place, const EpaTank& tank,
                       ElementNames& names) override {
    const CommandSpan span;
    return vessora::addTank(network, place, tank, names);
  }
  AddedElement addPipe(std::u16string_view network, const Course& points, const EpaPipe& pipe,
                       std::u16string_view material, ElementNames& names) override {
    return vessora::addPipe(network, points, pipe, material, names);
  }
  AddedElement addPump(std::u16string_view network, const Course& points, const EpaPump& pump,
                       ElementNames& names) override {
    const CommandSpan span;
    return vessora::addPump(network, points, pump, names);
  }
  AddedElement addValve(std::u16string_view network, const Course& points, const EpaValv& valve,
                        ElementNames& names) override {
    const CommandSpan span;
    return vessora::addValve(network, points, valve, names);
  }

  // --- changing elements
  std::optional<DrawnElement> readElement(std::u16string_view network, AcDbObjectId id) override {
    return vessora::readElement(network, id);
  }
  ChangeResult modifyElement(std::u16string_view network, AcDbObjectId id,
                             const DrawnElement& element, FieldSet changed) override {
    return vessora::modifyElement(network, id, element, changed);
  }
  ChangeResult moveNode(std::u16string_view network, AcDbObjectId id, double x, double y) override {
    return vessora::moveNode(network, id, x, y);
  }
  ChangeResult deleteElement(std::u16string_view network, AcDbObjectId id,
                             bool evenIfLinked) override {
    return vessora::deleteElement(network, id, evenIfLinked);
  }

  // --- tables
  MendResult mendNames(std::u16string_view network) override { return vessora::mendNames(network); }

  MaterialTable readMaterialTable() override { return vessora::readMaterialTable(); }
  TableResult writeMaterialTable(const std::vector<EpaMaterial>& rows) override {
    return vessora::writeMaterialTable(rows);
  }
  PipeNames findPipesByRoughness(std::u16string_view network, double value) override {
    PipeNames found;
    FindPipesByRoughness(network, value, found);
    return found;
  }
  PipeNames findPipesByMaterial(std::u16string_view network,
                                std::u16string_view material) override {
    PipeNames found;
    FindPipesByMaterial(network, material, found);
    return found;
  }
  AssignResult assignMaterial(std::u16string_view network, double roughness,
                              std::u16string_view material, const PipeNames& pipes) override {
    return AssignMaterial(network, roughness, material, pipes);
  }
  std::vector<EpaPattern> patternsOf(std::u16string_view network) override {
    std::vector<EpaPattern> patterns;
    LoadPatterns(patterns, network);
    return patterns;
  }
  std::vector<EpaCurve> curvesOf(std::u16string_view network) override {
    std::vector<EpaCurve> curves;
    LoadCurves(curves, network);
    return curves;
  }
  TableResult addPattern(std::u16string_view network, const EpaPattern& pattern) override {
    return vessora::addPattern(network, pattern);
  }
  TableResult replacePattern(std::u16string_view network, const EpaPattern& pattern,
                             std::u16string_view oldName) override {
    return vessora::replacePattern(network, pattern, oldName);
  }
  TableResult deletePattern(std::u16string_view network, std::u16string_view name) override {
    return vessora::deletePattern(network, name);
  }
  TableResult addCurve(std::u16string_view network, const EpaCurve& curve) override {
    return vessora::addCurve(network, curve);
  }
  TableResult replaceCurve(std::u16string_view network, const EpaCurve& curve,
                           std::u16string_view oldName) override {
    return vessora::replaceCurve(network, curve, oldName);
  }
  TableResult deleteCurve(std::u16string_view network, std::u16string_view name) override {
    return vessora::deleteCurve(network, name);
  }
};

// What goes along when the host's own commands move elements.
class ModuleFollower : public AcEdFollower {
 public:
  std::u16string follow(const std::vector<AcDbObjectId>& entities,
                        const AcGeMatrix3d& matrix) override {
    return describe(followMoved(entities, matrix));
  }
};

ModuleJobs jobs;
ModuleFollower follower;

}  // namespace

void offerJobs() {
  AcRxDictionary* const registry = acrxSysRegistry();
  if (!registry) return;
  registry->atPut(Jobs::kService, &jobs);
  registry->atPut(AcEdFollower::kService, &follower);
}

void withdrawJobs() {
  AcRxDictionary* registry = acrxSysRegistry();
  if (!registry) return;
  if (registry->at(Jobs::kService) == &jobs) registry->remove(Jobs::kService);
  if (registry->at(AcEdFollower::kService) == &follower) registry->remove(AcEdFollower::kService);
}

}  // namespace vessora
