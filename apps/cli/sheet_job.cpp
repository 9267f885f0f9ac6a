// Sheets of paper: what stands in the title block, which files come of it.
#include <cstdlib>
#include <ctime>

#include "apps/cli/jobs.h"
#include "apps/cli/outputs.h"
#include "cad/drawing/drawing.h"
#include "cad/family/profile_sheet.h"
#include "cad/view/sheet.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cli {
namespace {

using cad::view::Sheet;
using cad::view::SheetFault;
using cad::view::SheetField;
using platform::widen;

std::u16string wide(const char* text) { return widen(words(text)); }

// "1:2000", "2000" or "2:1" as the number behind "1:"; nothing for what is no scale.
std::optional<double> parseScale(std::string_view text) {
  const std::size_t colon = text.find(':');
  const auto number = [](std::string_view part) { return platform::parseReal(widen(part)); };
  const auto paper = colon == text.npos ? std::optional(1.0) : number(text.substr(0, colon));
  const auto ground = number(colon == text.npos ? text : text.substr(colon + 1));
  if (!paper || !ground || !(*paper > 0) || !(*ground > 0)) return std::nullopt;
  const double scale = *ground / *paper;
  return scale >= 1e-6 && scale <= 1e9 ? std::optional(scale) : std::nullopt;
}

// The units that a drawing may say it is drawn in, by the number in its header.
struct Unit {
  int number;
  const char* name;
  double metres;
};
constexpr Unit kUnits[] = {{1, "in", 0.0254}, {2, "ft", 0.3048},  {3, "mi", 1609.344},
                           {4, "mm", 0.001},  {5, "cm", 0.01},    {6, "m", 1},
                           {7, "km", 1000},   {10, "yd", 0.9144}, {14, "dm", 0.1},
                           {15, "dam", 10},   {16, "hm", 100},    {21, "ft-us", 1200.0 / 3937}};

// The unit that is asked for, else that of the drawing, which is the metre where it says none. Null
// when nobody knows the one that is asked for.
const Unit* unitOf(const cad::Drawing& drawing, const std::string& asked) {
  const auto own = platform::parseReal(drawing.header().text("$INSUNITS", u"6"));
  const Unit* metre = nullptr;
  for (const Unit& unit : kUnits) {
    if (asked.empty() ? own == unit.number
                      : platform::equalNoCase(widen(asked), widen(unit.name))) {
      return &unit;
    }
    if (unit.metres == 1) metre = &unit;
  }
  return asked.empty() ? metre : nullptr;
}

std::string unitNames() {
  std::string names;
  for (const Unit& unit : kUnits) names += (names.empty() ? "" : ", ") + std::string(unit.name);
  return names;
}

// Today, or the day that whoever builds reproducibly asks for.
std::string today() {
  std::time_t now = std::time(nullptr);
  std::tm day{};
  const char* const fixed = std::getenv("SOURCE_DATE_EPOCH");
  if (fixed && *fixed) {
    now = static_cast<std::time_t>(std::strtoll(fixed, nullptr, 10));
    gmtime_r(&now, &day);
  } else {
    localtime_r(&now, &day);
  }
  char text[32];
  std::strftime(text, sizeof text, platform::isItalian() ? "%d/%m/%Y" : "%Y-%m-%d", &day);
  return text;
}

// The network whose results the sheet shows; its data only when it is clear which one it is.
void addNetwork(vessora::Jobs& jobs, const std::string& name, std::vector<SheetField>& fields) {
  const vessora::PickedNetwork picked = jobs.pickNetwork(widen(name), u"");
  const bool found = picked.why == vessora::PickedNetwork::Why::found;
  fields.push_back({wide("Rete"), found ? picked.name : widen(listed(picked.names))});
  if (!found) return;
  const vessora::NetworkInfo info = jobs.network(picked.name);
  std::u16string period = info.period;
  if (period.empty()) {
    period = info.hasResults ? wide("unico") : wide("nessun risultato");
  }
  fields.push_back({wide("Periodo dei risultati"), period, true});
  // In the drawing they are always metric.
  const std::u16string units = jobs.settingsOf(picked.name).flowUnits.str();
  fields.push_back({wide("Portate"), units == u"LPS" ? u"l/s" : units, true});
}

std::string refusal(SheetFault fault, const RenderOptions& o) {
  switch (fault) {
    case SheetFault::tooManyPages:
      return words("la scala chiede più di ") + std::to_string(cad::view::kMostPages) +
             words(
                 " fogli: scegliere una carta più grande, un'altra scala o una finestra "
                 "(--window)");
    case SheetFault::noRoom:
      return words("legende e cartiglio non lasciano posto su ") + o.paper +
             words(": scegliere una carta più grande");
    case SheetFault::tooManyPixels:
      return words("troppi punti per un PNG: abbassare --dpi, o scrivere un PDF");
    case SheetFault::none:
      break;
  }
  return {};
}

// The files of a sheet: of several, each has its number before the extension.
std::vector<std::string> pathsOf(const std::string& path, std::size_t count) {
  if (count == 1) return {path};
  const std::size_t dot = path.find_last_of('.');
  std::vector<std::string> paths;
  for (std::size_t i = 1; i <= count; ++i) {
    paths.push_back(path.substr(0, dot) + "-" + std::to_string(i) + path.substr(dot));
  }
  return paths;
}

int writePages(const cad::view::Picture& picture, const Sheet& sheet, const RenderOptions& o,
               const std::string& unit = "m") {
  const cad::view::SheetLayout layout = cad::view::layOutSheet(picture, sheet);
  if (layout.fault != SheetFault::none) return fail(o.out + ": " + refusal(layout.fault, o));
  const bool single = sheet.format == cad::view::Format::pdf;
  const auto paths = pathsOf(o.out, single ? 1 : layout.pages.pages.size());
  for (const std::string& path : paths) {
    if (const std::string no = refusalOf(path, {{o.drawing}}); !no.empty()) return fail(no);
  }
  const auto files = cad::view::paintSheet(sheet, layout);
  if (!files) return fail(o.out + ": " + files.error());
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const auto written = platform::writeFile(paths[i], files->bytes[i]);
    if (!written) return fail(written.error());
  }
  say(words("scala ") + platform::narrow(cad::view::scaleText(layout.pages.scale)) +
      words(", fogli ") + std::to_string(layout.pages.pages.size()) +
      (unit == "m" ? "" : words(", unità del disegno ") + unit) +
      (files->leftOut > 0 ? words(", testi senza posto ") + std::to_string(files->leftOut) : ""));
  return 0;
}

cad::Drawing& drawing() { return cad::Session::instance().database()->drawing(); }

int renderPlan(vessora::Jobs& jobs, Sheet& sheet, const RenderOptions& o) {
  const Unit* const unit = unitOf(drawing(), o.unit);
  if (!unit) {
    return fail(o.unit + ": " + words("l'unità del disegno è una di ") + unitNames());
  }
  sheet.metres = unit->metres;
  cad::view::Selection selection;
  if (const int failed = selectLayers(o, drawing(), selection)) return failed;
  // Legends stand beside the plan, in a size for the paper.
  for (vessora::DrawnLegend& legend : jobs.drawnLegends()) {
    selection.without.insert(legend.id.index());
    auto& shown = sheet.legends.emplace_back();
    shown.title = std::move(legend.title);
    for (auto& c : legend.classes) shown.classes.push_back({c.color, std::move(c.range)});
  }
  const cad::view::Picture picture = cad::view::takePicture(drawing(), selection);
  if (const int failed = judgePicture(picture, o.drawing)) return failed;
  return writePages(picture, sheet, o, unit->name);
}

// Scales that are asked for, or the largest ones that fit on one page.
void chooseScales(const cad::ProfileTitle& title, Sheet& sheet, double& heights) {
  const cad::view::Window room = cad::view::drawingRoom(sheet);
  const double wide = room.x2 - room.x1, high = room.y2 - room.y1;
  const auto fits = [&](double scale, double times) {
    const cad::ProfileSize size = cad::profileSize(title, scale, times);
    return size.width <= wide && size.height <= high;
  };
  const double least = heights > 0 ? heights : 1;
  for (double power = 1; !sheet.scale; power *= 10) {
    for (const double step : {1.0, 2.0, 2.5, 5.0}) {
      if (!sheet.scale && (fits(power * step, least) || power > 1e9)) sheet.scale = power * step;
    }
  }
  if (heights > 0) return;
  for (const double times : {10.0, 5.0, 2.0, 1.0}) {
    heights = times;
    if (fits(*sheet.scale, times)) return;
  }
}

// A profile is drawn in metres whatever the plan is drawn in.
int renderProfile(Sheet& sheet, const RenderOptions& o) {
  const cad::DrawnProfile* chosen = nullptr;
  const auto profiles = cad::drawnProfiles(drawing());
  std::vector<std::u16string> names;
  for (const cad::DrawnProfile& profile : profiles) {
    names.push_back(profile.title.name);
    if (platform::equalNoCase(profile.title.name, widen(o.profile))) chosen = &profile;
  }
  if (!chosen) {
    return fail(o.drawing + ": " + words("il profilo non c'è: ") + o.profile +
                (names.empty() ? words(" (il disegno non ha profili)")
                               : words("; ci sono: ") + listed(names)));
  }
  sheet.north = false;
  sheet.words.scale = wide("Scala lunghezze");
  sheet.fields.insert(sheet.fields.begin(), {wide("Profilo"), chosen->title.name});
  sheet.fields.push_back({wide("Scala altezze"), u"1:1"});  // takes room
  double heights = o.heights;
  chooseScales(chosen->title, sheet, heights);
  sheet.fields.back().value = cad::view::scaleText(*sheet.scale / heights);
  if (heights != 1) {
    sheet.fields.back().value += platform::format(u" (%s %g)", wide("altezze x"), heights);
  }
  const auto at = cad::layOutProfile(drawing(), *chosen, *sheet.scale, heights);
  if (!at) {
    return fail(o.drawing + ": " + words("il profilo non si può disegnare: ") + o.profile);
  }
  cad::view::Selection selection;
  selection.only = at->entities;
  cad::view::Picture picture = cad::view::takePicture(drawing(), selection);
  if (const int failed = judgePicture(picture, o.drawing)) return failed;
  cad::view::exaggerate(
      picture,
      {at->left, at->datum, at->areaLeft, at->areaRight, at->areaTop, at->referenceLevel, at->unit},
      heights);
  return writePages(picture, sheet, o);
}

}  // namespace

int renderSheet(const RenderOptions& o, cad::view::Format format,
                const std::optional<cad::view::Window>& window) {
  Sheet sheet;
  const auto paper = cad::view::paperNamed(o.paper, o.landscape);
  if (!paper) {
    return fail(o.paper + ": " + words("la carta è A4, A3, A2, A1 o A0"));
  }
  if (o.view != "plan") {
    return fail(words("una tavola in scala mostra la pianta: togliere --view iso"));
  }
  sheet.paper = *paper;
  if (!platform::equalNoCase(widen(o.scale), u"auto")) {
    sheet.scale = parseScale(o.scale);
    if (!sheet.scale) {
      return fail(o.scale + ": " + words("la scala si scrive 1:2000, o auto"));
    }
  }
  sheet.format = format;
  sheet.window = window;
  sheet.dpi = o.dpi;
  sheet.leastText = o.textHeight;
  const std::string file = o.drawing.substr(0, o.drawing.find_last_of('.'));
  sheet.title =
      o.title.empty() ? std::u16string(platform::fileNameOf(widen(file))) : widen(o.title);
  sheet.words = {wide("Titolo"), wide("Scala"), wide("Foglio"), wide("Quadro d'unione")};
  JobSpan jobs;
  if (auto opened = jobs.open(o.drawing); !opened) return fail(opened.error());
  if (!o.network.empty()) {
    const vessora::PickedNetwork picked = jobs->pickNetwork(widen(o.network), u"");
    if (picked.why != vessora::PickedNetwork::Why::found) {
      return fail(describe(picked, o.drawing, o.network));
    }
  }
  addNetwork(*jobs.operator->(), o.network, sheet.fields);
  sheet.fields.push_back({wide("Data"), widen(o.date.empty() ? today() : o.date)});
  return o.profile.empty() ? renderPlan(*jobs.operator->(), sheet, o) : renderProfile(sheet, o);
}

}  // namespace cli
