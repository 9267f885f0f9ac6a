// The subcommands. Each returns the program's exit status: 0 done, 1 failed with one line on
// standard error.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/cli/host.h"
#include "cad/view/painter.h"

namespace cli {

struct ImportOptions {
  std::string inp, out, base;
  std::string scale;  // of symbols: a number or "auto"; empty: auto, in the classic way 1
  InpMode mode = InpMode::full;
};
int importNetwork(const ImportOptions& options);
// Whether a text says a scale of symbols.
bool isScale(const std::string& text);

struct ExportOptions {
  std::string drawing, out, network;
  bool csv = false;
  InpMode mode = InpMode::full;
  // In full alone.
  std::string units, solver;
  bool withoutText = false, rewrite = false;
};
int exportNetwork(const ExportOptions& options);
// The words of flow units, as INP files have them.
std::vector<std::string> flowUnitNames();

struct ResultsOptions {
  std::string drawing, report, out, network, period;
  bool listPeriods = false, clear = false;
  InpMode mode = InpMode::full;
};
// Without `out` the drawing is saved in place.
int importResults(const ResultsOptions& options);

struct SolveOptions {
  std::string drawing, out, network, period, solver, keep;
  InpMode mode = InpMode::full;
};
// Without `out` the drawing is saved in place.
int solveNetwork(const SolveOptions& options);

struct DiffOptions {
  std::string drawing, inp, network, out;
  bool json = false, mend = false;
};
// To mend is to give copies in the drawing the names that an export gives them; without `out` the
// drawing is saved in place.
int showDiff(const DiffOptions& options);

// Of a drawing, or of an input file by its extension.
int showInfo(const std::string& path, bool json);
// A text as JSON has it, quotes included.
std::string jsonText(const std::string& text);

struct RunOptions {
  std::string drawing, script, out;
  InpMode mode = InpMode::full;
};
int runScript(const RunOptions& options);

struct RenderOptions {
  std::string drawing, out, view = "plan", window;
  std::vector<std::string> layers, hidden;
  bool dark = false;
  int width = 1600;
  // On a sheet of paper, when one is named.
  std::string paper, scale = "auto", unit, title, network, date;
  bool landscape = false;
  int dpi = 150;
  double textHeight = 1.4;  // least, mm of paper
  std::string profile;      // a longitudinal profile in place of the plan, by its name
  double heights = 0;       // how many times larger than lengths; 0 chooses
};
int render(const RenderOptions& options);
// The same on a sheet; of form and window the caller has made sure.
int renderSheet(const RenderOptions& options, cad::view::Format format,
                const std::optional<cad::view::Window>& window);
// The layers that are asked for and those that are hidden; the exit status when one is not there.
int selectLayers(const RenderOptions& options, const cad::Drawing& drawing,
                 cad::view::Selection& selection);
// What a picture could not show, as warnings; the exit status of a failure when it is of no use.
int judgePicture(const cad::view::Picture& picture, const std::string& drawing);

int shell(const std::string& drawing, InpMode mode);

}  // namespace cli
