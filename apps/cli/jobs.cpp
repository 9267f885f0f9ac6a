#include "apps/cli/jobs.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "apps/cli/answers.h"
#include "apps/cli/host.h"
#include "apps/cli/networks.h"
#include "cad/drawing/drawing.h"
#include "cad/ui/script_frontend.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cli {
namespace {

using cad::Session;

// Starts the host and opens a drawing; stops the host at the end of the scope.
class Job {
 public:
  // A job whose dialogs the program answers: it knows the module by its own words, so these are not
  // translated.
  explicit Job(AnswerFrontend& ui) : started_((unsetenv("VESSORA_LANG"), startHost(ui))) {
    // What the module said of its failure explains it better than the failure itself.
    if (!started_ && !ui.messages.empty()) {
      started_ = platform::Error{started_.error() + ": " + platform::narrow(ui.messages.back())};
    }
  }
  // A job that somebody else answers.
  explicit Job(cad::ui::ScriptFrontend& ui) : started_(startHost(ui)) {}
  ~Job() { stopHost(); }
  platform::Result<void> open(const std::string& path) {
    return started_ ? openDrawing(path) : started_;
  }

 private:
  platform::Result<void> started_;
};

// What commands wrote on the command line, one trimmed line each.
std::vector<std::string> printedLines(const std::u16string& printed) {
  std::vector<std::string> lines;
  platform::Tokens tokens(printed, u"\n\r");
  while (const auto line = tokens.next()) lines.push_back(platform::narrow(*line));
  return lines;
}

// The first line by which a command says that something did not work.
std::string complaintIn(const std::u16string& printed) {
  for (const std::string& line : printedLines(printed)) {
    if (line.rfind("Impossibile", 0) == 0 || line.rfind("Errore", 0) == 0) return line;
  }
  return {};
}

std::string leaks() {
  std::string left = Session::instance().takeLeaks();
  if (!left.empty()) left.pop_back();
  return left;
}

// A name that the module would cut out of the path: what stands before the last four characters.
std::u16string networkNameOf(const std::string& inp) {
  const std::u16string path = platform::widen(inp);
  const std::u16string_view file = platform::fileNameOf(path);
  return std::u16string(file.substr(0, file.size() > 4 ? file.size() - 4 : 0));
}

// The network to work on: the one named, or else the default, or else the only one.
platform::Result<std::u16string> pickNetwork(const std::string& drawing,
                                             const std::string& wanted) {
  const std::vector<NetworkInfo> networks = listNetworks();
  std::string names;
  for (const NetworkInfo& n : networks)
    names += (names.empty() ? "" : ", ") + platform::narrow(n.name);
  if (!wanted.empty()) {
    const std::u16string name = platform::widen(wanted);
    if (chooseNetwork(name)) return name;
    return platform::Error{
        drawing + ": " + words("la rete non c'è: ", "no such network: ") + wanted +
        (names.empty() ? words(" (il disegno non ha reti)", " (it has no network)")
                       : words("; ci sono: ", "; it has: ") + names)};
  }
  const NetworkInfo* found = nullptr;
  for (const NetworkInfo& n : networks) {
    if (n.isDefault || networks.size() == 1) found = &n;
  }
  if (found) {
    const std::u16string name = found->name;
    chooseNetwork(name);
    return name;
  }
  return platform::Error{
      drawing + ": " +
      (networks.empty()
           ? words("il disegno non ha reti", "the drawing has no network")
           : words("indicare la rete con -n; ci sono: ", "name the network with -n; it has: ") +
                 names)};
}

std::string jsonText(const std::u16string& text) {
  std::string out = "\"";
  for (const char c : platform::narrow(text)) {
    if (c == '"' || c == '\\') {
      (out += '\\') += c;
    } else if (static_cast<unsigned char>(c) < 32) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", c);
      out += escape;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

}  // namespace

int importNetwork(const ImportOptions& o) {
  // Asked here already: the command itself would go on with an empty network.
  if (platform::folderExists(o.inp) || !platform::fileExists(o.inp)) {
    return fail(
        o.inp + ": " +
        words("file INP inesistente; controllare il percorso", "no such INP file; check the path"));
  }
  if (networkNameOf(o.inp).empty()) {
    return fail(o.inp + ": " +
                words("il nome del file deve dare il nome alla rete (NOME.inp)",
                      "the file's name must give the network its name (NAME.inp)"));
  }
  AnswerFrontend ui;
  Job job(ui);
  if (auto opened = job.open(o.base); !opened) return fail(opened.error());
  const std::u16string path = platform::widen(platform::absolutePath(o.inp));
  ui.dialogs[u"Importa file INP di Epanet"] = [&](cad::ui::Dialog& d) {
    if (enter(ui, d, u"Percorso", path)) press(ui, d, u"OK");
  };
  {
    Progress progress(words("Disegno della rete:", "Drawing the network:"));
    Session::instance().database()->drawing().writer().setObserver(
        [&](std::uint32_t n) { progress.show(std::to_string(n) + words(" oggetti", " objects")); });
    Session::instance().run(u"impinp");
    Session::instance().database()->drawing().writer().setObserver({});
  }
  if (!ui.problem.empty()) return fail(o.inp + ": " + ui.problem);
  for (const std::u16string& message : ui.messages) {
    // The second one asks for another name than those of the sibling module; the network is drawn
    // all the same.
    if (message != u"Importazione terminata!" && message != u"Nome del file non valido!") {
      return fail(o.inp + ": " + platform::narrow(message));
    }
  }
  if (const std::string c = complaintIn(ui.printed); !c.empty()) return fail(o.inp + ": " + c);
  if (const std::string l = leaks(); !l.empty()) return fail(l);
  const NetworkInfo n = countNetwork(networkNameOf(o.inp));
  {
    Progress progress(words("Salvataggio", "Saving"));
    if (auto saved = saveDrawing(o.out); !saved) return fail(saved.error());
  }
  std::printf("%s: %s\n", platform::narrow(n.name).c_str(), countsLine(n).c_str());
  return 0;
}

int exportNetwork(const ExportOptions& o) {
  AnswerFrontend ui;
  Job job(ui);
  {
    Progress progress(words("Lettura", "Reading"));
    if (auto opened = job.open(o.drawing); !opened) return fail(opened.error());
  }
  auto network = pickNetwork(o.drawing, o.network);
  if (!network) return fail(network.error());
  const std::u16string path = platform::widen(platform::absolutePath(o.out));
  const bool schematic = network->rfind(u"HN-AQ", 0) == 0;
  Progress progress(words("Esportazione", "Exporting"));
  bool written = false;
  if (!o.csv && !schematic) {
    auto* write =
        Session::instance().moduleFunction<std::int64_t(const char16_t*, char16_t*)>("ScriviInp");
    std::u16string name = *network;
    written = write && write(path.c_str(), name.data()) == 1;
  } else {
    ui.filePath = path;
    ui.dialogs[u"Esporta file INP di Epanet"] = [&](cad::ui::Dialog& d) {
      bool ok = press(ui, d, u"Sfoglia...");
      if (ok && o.csv) ok = enter(ui, d, u"Esporta anche file csv", u"sì");
      if (ok) press(ui, d, u"OK");
    };
    Session::instance().run(u"expinp");
    written = !ui.messages.empty() && ui.messages.back() == u"Esportazione completata!";
    if (!written && !ui.messages.empty() && ui.problem.empty()) {
      ui.problem = platform::narrow(ui.messages.back());
      ui.messages.pop_back();
    }
  }
  if (!ui.problem.empty()) return fail(o.drawing + ": " + ui.problem);
  if (const std::string c = complaintIn(ui.printed); !c.empty()) return fail(c);
  if (!written) return fail(o.out + ": " + words("non scritto", "not written"));
  for (const std::u16string& message : ui.messages) {
    if (message == u"Esportazione completata!") continue;
    std::string text = platform::narrow(message);
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::fprintf(stderr, "vessora: %s%s\n", words("attenzione: ", "warning: ").c_str(),
                 text.c_str());
  }
  if (schematic && o.csv) {
    std::fprintf(stderr, "vessora: %s\n",
                 words("attenzione: una rete schematica non ha file CSV",
                       "warning: a schematic network has no CSV file")
                     .c_str());
  }
  if (const std::string l = leaks(); !l.empty()) return fail(l);
  return 0;
}

int showInfo(const std::string& drawing, bool json) {
  AnswerFrontend ui;
  Job job(ui);
  if (auto opened = job.open(drawing); !opened) return fail(opened.error());
  const std::vector<NetworkInfo> networks = listNetworks();
  if (json) {
    std::printf("{\"networks\": [");
    const char* separator = "";
    for (const NetworkInfo& n : networks) {
      std::printf(
          "%s\n  {\"name\": %s, \"default\": %s, \"junctions\": %d, \"reservoirs\": %d, "
          "\"tanks\": %d, \"pipes\": %d, \"pumps\": %d, \"valves\": %d, \"results\": %s, "
          "\"period\": %s}",
          separator, jsonText(n.name).c_str(), n.isDefault ? "true" : "false", n.junctions,
          n.reservoirs, n.tanks, n.pipes, n.pumps, n.valves, n.hasResults ? "true" : "false",
          n.hasResults ? jsonText(n.period).c_str() : "null");
      separator = ",";
    }
    std::printf("%s]}\n", networks.empty() ? "" : "\n");
    return 0;
  }
  if (networks.empty()) std::printf("%s\n", words("nessuna rete", "no network").c_str());
  for (const NetworkInfo& n : networks) {
    std::string results = words("nessun risultato", "no results");
    if (n.hasResults) {
      results =
          words("risultati", "results") +
          (n.period.empty() ? ""
                            : words(" del periodo ", " of period ") + platform::narrow(n.period));
    }
    std::printf("%s%s: %s; %s\n", platform::narrow(n.name).c_str(),
                n.isDefault ? words(" (predefinita)", " (default)").c_str() : "",
                countsLine(n).c_str(), results.c_str());
  }
  return 0;
}

int runScript(const RunOptions& o) {
  auto script = platform::readFile(o.script);
  if (!script) return fail(script.error());
  cad::ui::ScriptFrontend ui(*script, o.script, [](std::u16string_view text) {
    std::fputs(platform::narrow(text).c_str(), stdout);
  });
  Job job(ui);
  if (auto opened = job.open(o.drawing); !opened) return fail(opened.error());
  Session& session = Session::instance();
  session.commandLoop([&] { return ui.hasAnswer() && !ui.failed(); });
  std::fputs("\n", stdout);
  if (auto finished = ui.finish(); !finished) return fail(finished.error());
  if (const std::string l = leaks(); !l.empty()) return fail(l);
  if (!o.out.empty()) {
    if (auto saved = saveDrawing(o.out); !saved) return fail(saved.error());
  }
  return 0;
}

}  // namespace cli
