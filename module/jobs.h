// What programs may have done by this module without asking anybody: jobs, and the table of
// commands.
//
// The module offers one object of this interface in the system registry while it is loaded.
// Programs find it there and link nothing of the module:
//
//   if (vessora::Jobs* jobs = vessora::Jobs::find()) ...
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cad/api/services.h"
#include "module/editing/add_jobs.h"
#include "module/editing/change_jobs.h"
#include "module/editing/manhole_jobs.h"
#include "module/editing/mend_jobs.h"
#include "module/editing/settings_jobs.h"
#include "module/editing/table_jobs.h"
#include "module/inp/full_diff.h"
#include "module/inp/inp_jobs.h"
#include "module/network/element_list.h"
#include "module/network/network_info.h"
#include "module/results/drawing_jobs.h"
#include "module/results/result_jobs.h"

namespace vessora {

// What a command needs to be of any use: an open drawing, a network in it, results on the network.
enum class CommandNeeds { drawing, network, results };

// A command of the module. It is an export without arguments, which a host registers by its name.
struct CommandRow {
  std::u16string name;
  std::string symbol;   // of the export
  std::u16string help;  // one line, in the user's language
  CommandNeeds needs = CommandNeeds::drawing;
};

class Jobs : public AcRxObject {
 public:
  static constexpr char16_t kService[] = u"VESSORA_JOBS";
  // Goes up with every change of this interface, so that a program never calls a module that was
  // built for another one.
  static constexpr char16_t kClass[] = u"VessoraJobs8";

  // The jobs of the loaded module, which stay the module's; null when there are none of this
  // interface. Libraries do not share addresses of classes, so the class is known by its name.
  static Jobs* find() {
    const AcRxDictionary* registry = acrxSysRegistry();
    AcRxObject* object = registry ? registry->at(kService) : nullptr;
    const bool known = object && std::u16string_view(object->isA()->name()) == kClass;
    return known ? static_cast<Jobs*>(object) : nullptr;
  }

  // All commands, in the order in which they are shown.
  virtual std::vector<CommandRow> commands() = 0;
  // What the commands that have run since the last call left inconsistent, which their own texts do
  // not tell: for the program to print after each.
  virtual Notices takeWarnings() = 0;

  // --- on the open drawing. Jobs show, ask and print nothing, and are told apart from commands by
  // nothing else: what they draw is what the commands draw. They throw std::bad_alloc alone.

  virtual std::vector<NetworkInfo> networks() = 0;
  virtual NetworkInfo network(std::u16string_view name) = 0;
  virtual std::vector<ListedElement> elementsOf(std::u16string_view network) = 0;
  virtual PickedNetwork pickNetwork(std::u16string_view wanted, std::u16string_view hint) = 0;

  virtual InpFile openInp(std::u16string_view path) = 0;
  virtual InpFindings examineInp(const InpFile& file) = 0;
  virtual ImportResult importInp(const InpFile& file, std::u16string_view name,
                                 std::optional<double> scale) = 0;
  virtual ExportResult exportNetwork(const ExportRequest& request) = 0;

  virtual DiffResult diffNetwork(std::u16string_view network, std::u16string_view path) = 0;
  virtual bool hasKeptText(std::u16string_view network) = 0;
  virtual bool resultsAreStale(std::u16string_view network) = 0;

  virtual Report openReport(std::u16string_view path) = 0;
  virtual ReportPeriods periodsOf(const Report& report) = 0;
  virtual ReportRows rowsOf(const Report& report, std::u16string_view time, bool lowerCaseHrs) = 0;
  virtual ReportFindings examineResults(const ReportRows& rows, std::u16string_view network) = 0;
  virtual ResultCounts writeResults(const ReportRows& rows, std::u16string_view network) = 0;

  virtual QueryResult queryNetwork(std::u16string_view network, const QueryRequest& request) = 0;
  virtual ColorResult colorNetwork(std::u16string_view network, const ColorRequest& request) = 0;
  virtual ValueClasses classesOf(const std::vector<double>& values, int count) = 0;
  virtual std::vector<DrawnLegend> drawnLegends() = 0;
  virtual Notices highlightElements(std::u16string_view network, const QueryRows& rows) = 0;
  virtual Notices resetColors(std::u16string_view network, const QueryRows& rows) = 0;

  // --- manholes
  virtual bool hasManholesToTransfer(AcDbObjectId titleBlock) = 0;
  virtual ManholeResult transferManholes(AcDbObjectId titleBlock, std::u16string_view block,
                                         double scale) = 0;

  // --- settings
  virtual EpaSettings settingsOf(std::u16string_view network) = 0;
  virtual Notices storeSettings(const EpaSettings& settings) = 0;

  virtual void scaleNetwork(std::u16string_view network, const ScaleRequest& request) = 0;
  virtual Notices drawTables(std::u16string_view network, const TableRequest& request) = 0;
  virtual void drawGradeLine(std::u16string_view network, double textHeight) = 0;
  virtual ProfileResult drawProfile(std::u16string_view network, const ProfileRequest& request) = 0;

  // --- adding networks and elements
  virtual Notices createNetwork(std::u16string_view name) = 0;
  virtual void confirmDefaultNetwork(std::u16string_view name) = 0;
  virtual ElementNames namesOfNetwork(std::u16string_view network) = 0;
  virtual AddedElement addJunction(std::u16string_view network, const AcGePoint3d& place,
                                   const EpaJunc& junction, ElementNames& names) = 0;
  virtual AddedElement addReservoir(std::u16string_view network, const AcGePoint3d& place,
                                    const EpaResv& reservoir, ElementNames& names) = 0;
  virtual AddedElement addTank(std::u16string_view network, const AcGePoint3d& place,
                               const EpaTank& tank, ElementNames& names) = 0;
  virtual AddedElement addPipe(std::u16string_view network, const std::vector<AcGePoint3d>& points,
                               const EpaPipe& pipe, std::u16string_view material,
                               ElementNames& names) = 0;
  virtual AddedElement addPump(std::u16string_view network, const std::vector<AcGePoint3d>& points,
                               const EpaPump& pump, ElementNames& names) = 0;
  virtual AddedElement addValve(std::u16string_view network, const std::vector<AcGePoint3d>& points,
                                const EpaValv& valve, ElementNames& names) = 0;

  // --- changing elements
  virtual std::optional<DrawnElement> readElement(std::u16string_view network, AcDbObjectId id) = 0;
  virtual ChangeResult modifyElement(std::u16string_view network, AcDbObjectId id,
                                     const DrawnElement& element, FieldSet changed) = 0;
  virtual ChangeResult moveNode(std::u16string_view network, AcDbObjectId id, double x,
                                double y) = 0;
  virtual ChangeResult deleteElement(std::u16string_view network, AcDbObjectId id,
                                     bool evenIfLinked) = 0;

  virtual MendResult mendNames(std::u16string_view network) = 0;

  // --- tables: materials, patterns and curves
  virtual MaterialTable readMaterialTable() = 0;
  virtual TableResult writeMaterialTable(const std::vector<EpaMaterial>& rows) = 0;
  virtual PipeNames findPipesByRoughness(std::u16string_view network, double value) = 0;
  virtual PipeNames findPipesByMaterial(std::u16string_view network,
                                        std::u16string_view material) = 0;
  virtual AssignResult assignMaterial(std::u16string_view network, double roughness,
                                      std::u16string_view material, const PipeNames& pipes) = 0;
  virtual std::vector<EpaPattern> patternsOf(std::u16string_view network) = 0;
  virtual std::vector<EpaCurve> curvesOf(std::u16string_view network) = 0;
  virtual TableResult addPattern(std::u16string_view network, const EpaPattern& pattern) = 0;
  virtual TableResult replacePattern(std::u16string_view network, const EpaPattern& pattern,
                                     std::u16string_view oldName) = 0;
  virtual TableResult deletePattern(std::u16string_view network, std::u16string_view name) = 0;
  virtual TableResult addCurve(std::u16string_view network, const EpaCurve& curve) = 0;
  virtual TableResult replaceCurve(std::u16string_view network, const EpaCurve& curve,
                                   std::u16string_view oldName) = 0;
  virtual TableResult deleteCurve(std::u16string_view network, std::u16string_view name) = 0;
};

}  // namespace vessora
