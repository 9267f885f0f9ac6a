#include "apps/cli/jobs.h"

#include <algorithm>
#include <cstdio>

#include "apps/cli/host.h"
#include "apps/cli/outputs.h"
#include "apps/program/inp_words.h"
#include "cad/ui/script_frontend.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cli {
namespace {

using platform::narrow;

// Where the listing goes, if one is wanted, or why nothing can be written.
platform::Result<std::string> listingOf(const ExportOptions& o) {
  const std::string csv = o.csv ? listingBeside(o.out) : "";
  if (const std::string no = refusalOf(o.out, {{o.drawing}}); !no.empty()) {
    return platform::Error{no};
  }
  if (!o.csv) return csv;
  if (const std::string no = refusalOf(csv, {{o.drawing}}); !no.empty()) return platform::Error{no};
  if (!refusalOf(csv, {{o.out}}).empty()) {
    return platform::Error{o.out + ": " +
                           words("il file INP e il suo elenco CSV sarebbero lo stesso file; dare "
                                 "al file INP un altro nome")};
  }
  return csv;
}

// The release of the solver by its number.
epanet::SolverVersion solverVersion(const std::string& name) {
  return name.starts_with("2.0")   ? epanet::SolverVersion::v20
         : name.starts_with("2.2") ? epanet::SolverVersion::v22
                                   : epanet::SolverVersion::v23;
}

vessora::ExportRequest requestOf(const ExportOptions& o, const std::u16string& network,
                                 const std::u16string& path, const std::u16string& csvPath) {
  vessora::ExportRequest request{.network = network, .path = path, .csvPath = csvPath};
  request.withoutText = o.withoutText;
  request.rewrite = o.rewrite;
  request.solver = solverVersion(o.solver);
  const std::vector<std::string> names = flowUnitNames();
  const auto unit = std::find(names.begin(), names.end(), o.units);
  if (unit != names.end()) request.units = static_cast<epanet::FlowUnits>(unit - names.begin());
  return request;
}

}  // namespace

std::vector<std::string> flowUnitNames() {
  std::vector<std::string> names;
  for (int i = 0; i <= static_cast<int>(epanet::FlowUnits::cms); ++i) {
    names.emplace_back(epanet::wordOf(static_cast<epanet::FlowUnits>(i)));
  }
  return names;
}

int exportNetwork(const ExportOptions& o) {
  const auto csv = listingOf(o);
  if (!csv) return fail(csv.error());
  JobSpan job(o.mode);
  {
    Progress progress(words("Lettura"));
    if (auto opened = job.open(o.drawing); !opened) return fail(opened.error());
  }
  const vessora::PickedNetwork picked = job->pickNetwork(platform::widen(o.network), u"");
  if (picked.why != vessora::PickedNetwork::Why::found)
    return fail(describe(picked, o.drawing, o.network));
  const std::u16string path = platform::widen(platform::absolutePath(o.out));
  const std::u16string csvPath = csv->empty() ? u"" : platform::widen(platform::absolutePath(*csv));
  vessora::ExportResult result;
  {
    const Progress progress(words("Esportazione"));
    result = job->exportNetwork(requestOf(o, picked.name, path, csvPath));
  }
  if (!result.written || (o.csv && !result.listed && !result.notices.empty())) {
    if (result.notices.empty()) return fail(o.out + ": " + words("non scritto"));
    // What cannot be written is named by its notice.
    const std::string why = describe(result.notices.back());
    return fail(result.stopped ? o.drawing + ": " + why : why);
  }
  warn(result.notices);
  for (const epanet::Remark& remark : result.remarks) warn(describe(remark));
  if (o.csv && !result.listed) {
    warn(words("una rete schematica non ha file CSV"));
  }
  return 0;
}

int runScript(const RunOptions& o) {
  auto script = platform::readFile(o.script);
  if (!script) return fail(script.error());
  if (!o.out.empty()) {
    const std::string no = refusalOf(o.out, {{o.drawing, true}, {o.script}});
    if (!no.empty()) return fail(no);
  }
  if (const std::string language = cad::ui::languageOfScript(*script); !language.empty()) {
    platform::chooseLanguage(language);
  }
  cad::ui::ScriptFrontend ui(*script, o.script, [](std::u16string_view text) {
    std::fputs(platform::printable(narrow(text)).c_str(), stdout);
  });
  struct Stop {
    ~Stop() { stopHost(); }
  } const stop;
  if (auto started = startHost(ui, o.mode); !started) return fail(started.error());
  if (auto opened = openDrawing(o.drawing); !opened) return fail(opened.error());
  cad::Session& session = cad::Session::instance();
  session.commandLoop([&] { return ui.hasAnswer() && !ui.failed(); });
  std::fputs("\n", stdout);
  if (auto finished = ui.finish(); !finished) return fail(finished.error());
  if (const std::string left = session.takeLeaks(); !left.empty()) return fail(left);
  if (!o.out.empty()) {
    if (auto saved = saveDrawing(o.out); !saved) return fail(saved.error());
  }
  return 0;
}

}  // namespace cli
