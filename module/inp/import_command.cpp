// The import of an INP file: the job, and the command that asks for the file and tells what became
// of it.
#include <algorithm>

#include "module/dialogs/inp_files.h"
#include "module/host/messages.h"
#include "module/host/module.h"
#include "module/host/tell.h"
#include "module/host/warnings.h"
#include "module/inp/draw_network.h"
#include "module/inp/full_import.h"
#include "module/inp/inp_jobs.h"
#include "module/inp/inp_reader.h"
#include "module/inp/symbols.h"
#include "module/network/network_list.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/settings_store.h"
#include "platform/files.h"
#include "platform/text.h"

namespace vessora {

// --- the job -------------------------------------------------------------------------------------

struct InpContents {
  std::u16string path;
  std::unique_ptr<FullFile> full;  // what was read, if in full; else network and settings
  EpaNetwork network;
  EpaSettings settings;
  Notices notices;
  // What would be drawn, counted once: whoever examines a file goes on to draw it.
  std::int64_t size(NetworkDrawing& drawing) {
    if (size_ < 0) size_ = drawing.size();
    return size_;
  }

 private:
  std::int64_t size_ = -1;
};

namespace {

struct Pass {
  const schema::Kind& kind;
  DrawnKind (NetworkDrawing::*draw)(std::u16string_view layer);
};
constexpr Pass kPasses[] = {
    {schema::kJunc, &NetworkDrawing::DrawJunctions},
    {schema::kResv, &NetworkDrawing::DrawReservoirs},
    {schema::kTank, &NetworkDrawing::DrawTanks},
    {schema::kPipe, &NetworkDrawing::DrawPipes},
    {schema::kPump, &NetworkDrawing::DrawPumps},
    {schema::kValv, &NetworkDrawing::DrawValves},
};

// What is drawn once is no more than the rows of the file. Some rows of equal ids may multiply, as
// users of such files know it; thousands times thousands would fill memory and disk.
bool isOutOfProportion(std::int64_t drawn, const EpaNetwork& n) {
  const std::size_t rows = n.juncs.size() + n.resvs.size() + n.tanks.size() + n.pipes.size() +
                           n.pumps.size() + n.valves.size() + n.coords.size() + n.vertices.size();
  return drawn > 100000 + 10 * static_cast<std::int64_t>(rows);
}

void drawNetwork(NetworkDrawing& drawing, const EpaNetwork& network, ImportResult& result) {
  DrawnKind* kind = result.kinds;
  for (const Pass& pass : kPasses) {
    const std::u16string name = schema::layerName(pass.kind.layer, currentNetwork);
    HNGeometry::createNewLayer(name);
    HNGeometry::setColorLtypeLayer(name, pass.kind.color, u"ByLayer");
    *kind++ = (drawing.*pass.draw)(name);
  }
  for (const EpaPattern& pattern : network.patterns) AddPattern(pattern, currentNetwork);
  for (const EpaCurve& curve : network.curves) AddCurve(curve, currentNetwork);
}

}  // namespace

InpFile openInp(std::u16string_view path) {
  auto file = std::make_shared<InpContents>();
  file->path = path;
  if (inpIsFull()) {
    auto bytes = platform::readFile(platform::nativePath(path));
    if (bytes) {
      file->full = std::make_unique<FullFile>(std::move(*bytes));
    } else {
      file->notices.push_back({NoticeCode::inpUnreadable, file->path});
    }
    return file;
  }
  ReadInp(path, file->network, file->settings, file->notices);
  return file;
}

InpFindings examineInp(const InpFile& file) {
  InpFindings found;
  found.readable = file->notices.empty();
  found.name = schema::networkOfFile(file->path);
  found.unusable = schema::unusableCharacter(found.name);
  found.longestLayer = schema::longestLayerName(found.name);
  found.isAqueductName = schema::isAqueductName(found.name);
  found.taken = networkLike(found.name);
  if (file->full) {
    examineFullFile(*file->full, found);
    return found;
  }
  const EpaNetwork& n = file->network;
  const auto count = [](const auto& list) { return static_cast<int>(list.size()); };
  found.counts = {count(n.juncs), count(n.resvs), count(n.tanks),
                  count(n.pipes), count(n.pumps), count(n.valves)};
  found.coordinates = count(n.coords);
  NetworkDrawing drawing(n);
  found.drawn = file->size(drawing);
  found.outOfProportion = isOutOfProportion(found.drawn, n);
  return found;
}

ImportResult importInp(const InpFile& file, std::u16string_view name, std::optional<double> scale) {
  if (file->full) {
    if (networkLike(name).empty()) return drawFullFile(*file->full, name, scale);
    ImportResult taken;
    taken.reading.push_back({NoticeCode::networkTaken, std::u16string(name)});
    return taken;
  }
  ImportResult result;
  result.reading = std::move(file->notices);
  NetworkDrawing drawing(file->network);
  if (isOutOfProportion(file->size(drawing), file->network)) {
    result.reading.push_back({NoticeCode::inpTooLarge, file->path});
    return result;
  }
  for (const char16_t* application : {app::kImport, app::kSettings, app::kPattern, app::kCurve}) {
    acdbRegApp(application);
  }
  std::vector<std::u16string> names;
  wide256 defaultName;
  ListNetworks(names, defaultName);
  currentNetwork = name;
  file->settings.name = currentNetwork;
  // The first network of a drawing is its default one.
  if (names.empty()) file->settings.isDefault = 1;
  SaveSettings(file->settings, true);
  result.scale = scale ? *scale : drawing.fittingScale();
  useSymbolScale(currentNetwork, result.scale);
  drawNetwork(drawing, file->network, result);
  return result;
}

// --- the command ---------------------------------------------------------------------------------

namespace {

// Asks for the file and takes the network's name from it. Where the answer does not do, the user is
// told and asked once more, and the command goes on with whatever stands in the dialog then.
bool askForFile(std::u16string& path, wide256& name) {
  CDlgimpinp dialog;
  if (!dialog.doModal()) return false;
  if (dialog.path.value().empty()) {
    showMessage(TraduciTesto(u"Percorso assente!"));
    dialog.doModal();
  }
  path = dialog.path.value();
  name = schema::networkOfFile(path);
  // A name of the aqueduct module's networks; its sixth character alone is no name yet.
  if (name.size() > 6 && schema::isAqueductName(name)) {
    showMessage(TraduciTesto(u"Nome del file non valido!"));
    dialog.doModal();
  }
  return true;
}

void tellImport(const ImportResult& result) {
  constexpr const char16_t* kWords[][2] = {
      {u"\nImportazione nodi terminata", u"\nNodi assenti"},
      {u"\nImportazione serbatoi terminata", u"\nSerbatoi assenti"},
      {u"\nImportazione tanks terminata", u"\nTanks assenti"},
      {u"\nImportazione rami terminata", u"\nRami assenti"},
      {u"\nImportazione pompe terminata", u"\nPompe assenti"},
      {u"\nImportazione valvole terminata", u"\nValvole assenti"},
  };
  tell(result.reading);
  for (std::size_t i = 0; i < std::size(kWords); ++i) {
    tell(result.kinds[i].notices);
    acutPrintf(TraduciTesto(kWords[i][result.kinds[i].drawn > 0 ? 0 : 1]));
  }
  if (inpIsFull()) acutPrintf(TraduciTesto(u"\nScala dei simboli: %g"), result.scale);
  showMessage(TraduciTesto(u"Importazione terminata!"));
}

}  // namespace

int EpaCommands::impinp() {
  if (!readInstallPath(installPath)) return kAbandoned;
  std::u16string path;
  wide256 name;
  if (!askForFile(path, name)) return kAbandoned;
  // The classic way draws symbols as they are.
  const std::optional<double> scale = inpIsFull() ? std::nullopt : std::optional(1.0);
  const ImportResult result = importInp(openInp(path), name, scale);
  tellImport(result);
  if (inpIsFull()) warn(result.reading);
  return kRan;
}

}  // namespace vessora
