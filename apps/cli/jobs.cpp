#include "apps/cli/jobs.h"

#include <cstdio>

#include "apps/cli/host.h"
#include "apps/cli/outputs.h"
#include "cad/ui/script_frontend.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cli {
namespace {

using platform::narrow;

std::string jsonText(const std::u16string& text) {
  std::string out = "\"";
  for (const char c : narrow(text)) {
    if (c == '"' || c == '\\') {
      (out += '\\') += c;
    } else if (static_cast<unsigned char>(c) < 32 || c == 127) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", c);
      out += escape;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

std::string resultsOf(const vessora::NetworkInfo& n) {
  if (!n.hasResults) return words("nessun risultato", "no results");
  return words("risultati", "results") +
         (n.period.empty() ? "" : words(" del periodo ", " of period ") + narrow(n.period));
}

void showJson(const std::vector<vessora::NetworkInfo>& networks) {
  std::printf("{\"networks\": [");
  const char* separator = "";
  for (const vessora::NetworkInfo& n : networks) {
    const vessora::ElementCounts& c = n.counts;
    std::printf(
        "%s\n  {\"name\": %s, \"default\": %s, \"junctions\": %d, \"reservoirs\": %d, "
        "\"tanks\": %d, \"pipes\": %d, \"pumps\": %d, \"valves\": %d, \"results\": %s, "
        "\"period\": %s}",
        separator, jsonText(n.name).c_str(), n.isDefault ? "true" : "false", c.junctions,
        c.reservoirs, c.tanks, c.pipes, c.pumps, c.valves, n.hasResults ? "true" : "false",
        n.hasResults ? jsonText(n.period).c_str() : "null");
    separator = ",";
  }
  std::printf("%s]}\n", networks.empty() ? "" : "\n");
}

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
                                 "al file INP un altro nome",
                                 "the INP file and its CSV listing would be one file; give the INP "
                                 "file another name")};
  }
  return csv;
}

}  // namespace

int exportNetwork(const ExportOptions& o) {
  const auto csv = listingOf(o);
  if (!csv) return fail(csv.error());
  JobSpan job(o.mode);
  {
    Progress progress(words("Lettura", "Reading"));
    if (auto opened = job.open(o.drawing); !opened) return fail(opened.error());
  }
  const vessora::PickedNetwork picked = job->pickNetwork(platform::widen(o.network), u"");
  if (picked.why != vessora::PickedNetwork::Why::found)
    return fail(describe(picked, o.drawing, o.network));
  const std::u16string path = platform::widen(platform::absolutePath(o.out));
  const std::u16string csvPath = csv->empty() ? u"" : platform::widen(platform::absolutePath(*csv));
  vessora::ExportResult result;
  {
    const Progress progress(words("Esportazione", "Exporting"));
    result = job->exportNetwork({picked.name, path, csvPath, 0});
  }
  if (!result.written || (o.csv && !result.listed && !result.notices.empty())) {
    const bool known = !result.notices.empty();
    return fail((result.stopped ? o.drawing : o.out) + ": " +
                (known ? describe(result.notices.back()) : words("non scritto", "not written")));
  }
  warn(result.notices);
  if (o.csv && !result.listed) {
    warn(words("una rete schematica non ha file CSV", "a schematic network has no CSV file"));
  }
  return 0;
}

int showInfo(const std::string& drawing, bool json) {
  JobSpan job;
  if (auto opened = job.open(drawing); !opened) return fail(opened.error());
  const std::vector<vessora::NetworkInfo> networks = job->networks();
  if (json) {
    showJson(networks);
    return 0;
  }
  if (networks.empty()) say(words("nessuna rete", "no network"));
  for (const vessora::NetworkInfo& n : networks) {
    say(narrow(n.name) + (n.isDefault ? words(" (predefinita)", " (default)") : "") + ": " +
        describe(n.counts) + "; " + resultsOf(n));
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
