// Results of a report onto a drawing, and off it: through the command imprpt, which takes a report
// from its dialog or from the export ImportaRpt.
#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unordered_set>

#include "apps/cli/answers.h"
#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "apps/cli/networks.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using cad::Session;
using Failure = platform::Error;

struct HostSpan {
  ~HostSpan() { stopHost(); }
};

// Answers the period dialog, and keeps apart what the command refuses.
class ResultsFrontend : public AnswerFrontend {
 public:
  std::vector<std::u16string> refusals, periods;
  bool periodUnknown = false;

  // Takes this period when it is offered; without one, none.
  void answerPeriods(const std::u16string& wanted) {
    dialogs[u"Importazione Risultati (Time Steps)"] = [this, wanted](cad::ui::Dialog& dialog) {
      const auto found = dialog.find(u"Periodi");
      const auto* list = found ? dynamic_cast<cad::ui::ReportList*>(*found) : nullptr;
      for (int i = 0; list && i < list->count(); ++i) periods.push_back(list->cell(i, 1));
      const auto at = std::find(periods.begin(), periods.end(), wanted);
      periodUnknown = at == periods.end();
      if (periodUnknown) {
        press(*this, dialog, u"Annulla");
      } else if ((*found)->choose(static_cast<int>(at - periods.begin()))) {
        press(*this, dialog, u"Importa");
      }
    };
  }

 protected:
  cad::ui::Pressed showMessage(const cad::ui::Message& message) override {
    if (message.icon == cad::ui::Icon::stop) {
      refusals.push_back(message.text);
      return cad::ui::defaultAnswer(message.buttons);
    }
    return AnswerFrontend::showMessage(message);
  }
};

// --- the report ----------------------------------------------------------------------------------

// How a report heads its periods. The dialog's route reads "Hrs:", the export's "hrs:", and both
// read a report that has one period without a time.
enum class Heads { single, capital, small };

// Stops at the first head with a time, which stands near the beginning of even the largest report.
platform::Result<Heads> headsOf(const std::string& report) {
  std::ifstream file(report);
  if (!file || platform::folderExists(report)) {
    return Failure{report + ": " +
                   words("report inesistente o illeggibile; controllare il percorso",
                         "no such report, or it cannot be read; check the path")};
  }
  const std::string prefix = "  Node Results at";
  for (std::string line; std::getline(file, line);) {
    if (line.compare(0, prefix.size(), prefix) != 0) continue;
    return line.find(" Hrs:") == line.npos ? Heads::small : Heads::capital;
  }
  return Heads::single;
}

std::u16string stemOf(const std::string& report) {
  const std::u16string path = platform::widen(report);
  const std::u16string_view file = platform::fileNameOf(path);
  return std::u16string(file.substr(0, file.size() < 4 ? 0 : file.size() - 4));
}

// A report under another name, in a folder of its own that goes away with it.
class NamedReport {
 public:
  NamedReport() = default;
  NamedReport(const NamedReport&) = delete;
  NamedReport& operator=(const NamedReport&) = delete;
  ~NamedReport() {
    std::error_code ignored;
    if (!folder_.empty()) fs::remove_all(folder_, ignored);
  }
  // The path of the report under that name, or empty when it cannot be made.
  std::string make(const std::string& report, const std::u16string& name) {
    std::error_code error;
    std::string pattern = (fs::temp_directory_path(error) / "vessora-XXXXXX").string();
    if (error || !mkdtemp(pattern.data())) return {};
    folder_ = pattern;
    const fs::path path = folder_ / (platform::narrow(name) + ".rpt");
    fs::create_symlink(report, path, error);
    if (error) fs::copy_file(report, path, error);
    return error ? std::string() : path.string();
  }

 private:
  fs::path folder_;
};

// --- the network ---------------------------------------------------------------------------------

std::string namesOf(const std::vector<NetworkInfo>& networks) {
  std::string names;
  for (const NetworkInfo& n : networks) {
    names += (names.empty() ? "" : ", ") + platform::narrow(n.name);
  }
  return names;
}

// The network named by option, or of the preferred name, or the default one where that counts, or
// the only one.
platform::Result<std::u16string> pickNetwork(const ResultsOptions& o,
                                             const std::u16string& preferred) {
  const std::vector<NetworkInfo> networks = listNetworks();
  const auto has = [&](const std::u16string& name) {
    return std::any_of(networks.begin(), networks.end(),
                       [&](const NetworkInfo& n) { return n.name == name; });
  };
  if (networks.empty()) {
    return Failure{o.drawing + ": " +
                   words("il disegno non ha reti", "the drawing has no network")};
  }
  if (!o.network.empty()) {
    const std::u16string name = platform::widen(o.network);
    if (has(name)) return name;
    return Failure{o.drawing + ": " + words("la rete non c'è: ", "no such network: ") + o.network +
                   words("; ci sono: ", "; it has: ") + namesOf(networks)};
  }
  if (!preferred.empty() && has(preferred)) return preferred;
  if (networks.size() == 1) return networks.front().name;
  if (o.clear) {
    for (const NetworkInfo& n : networks) {
      if (n.isDefault) return n.name;
    }
  }
  return Failure{o.drawing + ": " +
                 words("indicare la rete con -n; ci sono: ", "name the network with -n; it has: ") +
                 namesOf(networks)};
}

int countWith(const char16_t* application, const std::u16string& layer) {
  resbuf* filter = acutBuildList(1001, application, 8, layer, RTNONE);
  ads_name set;
  std::int32_t count = 0;
  if (acedSSGet(u"_X", nullptr, nullptr, filter, set) == RTNORM) {
    acedSSLength(set, &count);
    acedSSFree(set);
  }
  acutRelRb(filter);
  return count;
}

int nodesWithResults(const std::u16string& network) {
  int count = 0;
  for (const char16_t* prefix : {u"JUNC-", u"RESV-", u"TANK-"}) {
    count += countWith(u"HN-C_NODE_RESULT", prefix + network);
  }
  return count;
}

int linksWithResults(const std::u16string& network) {
  int count = 0;
  for (const char16_t* prefix : {u"PIPE-", u"PUMP-", u"VALV-"}) {
    count += countWith(u"HN-C_LINK_RESULT", prefix + network);
  }
  return count;
}

// --- elements that the report does not name ------------------------------------------------------

using Names = std::unordered_set<std::string>;
struct ReportNames {
  Names nodes, links;
};

// The names in the tables of one period, and around them some words that are none.
ReportNames namesInPeriod(const std::string& report, const std::string& period) {
  const std::string head = period.empty() ? " Results:" : " Results at " + period + " ";
  ReportNames names;
  Names* table = nullptr;
  std::ifstream file(report);
  for (std::string line; std::getline(file, line);) {
    const bool node = line.compare(0, 14, "  Node Results") == 0;
    if (node || line.compare(0, 14, "  Link Results") == 0) {
      // Behind the links of the period nothing of it comes any more.
      const bool own = line.compare(6, head.size(), head) == 0;
      if (!own && table == &names.links) break;
      table = !own ? nullptr : node ? &names.nodes : &names.links;
      continue;
    }
    const std::size_t from = table ? line.find_first_not_of(" \t\r") : line.npos;
    if (from == line.npos) continue;
    table->insert(line.substr(from, line.find_first_of(" \t\r", from) - from));
  }
  return names;
}

int countUnnamed(const Names& names, const char16_t* application, const std::u16string& layer) {
  int count = 0;
  resbuf* filter = acutBuildList(1001, application, 8, layer, RTNONE);
  ads_name set;
  if (acedSSGet(u"_X", nullptr, nullptr, filter, set) == RTNORM) {
    std::int32_t length = 0;
    acedSSLength(set, &length);
    for (std::int32_t i = 0; i < length; ++i) {
      ads_name entity;
      AcDbObjectId id;
      acedSSName(set, i, entity);
      acdbGetObjectId(id, entity);
      AcDbObject* object = nullptr;
      if (acdbOpenObject(object, id) != Acad::eOk) continue;
      resbuf* data = object->xData(u"HN-C_EPAHNIMPORT");
      object->close();
      const resbuf* item = data ? data->rbnext : nullptr;
      if (item && acutKindOf(item->restype) == RbKind::text &&
          !names.count(platform::narrow(item->resval.rstring))) {
        ++count;
      }
      acutRelRb(data);
    }
    acedSSFree(set);
  }
  acutRelRb(filter);
  return count;
}

// The command gives such elements the values of some other row and says nothing.
void warnOfUnnamed(const ResultsOptions& o, const std::u16string& network) {
  const ReportNames names = namesInPeriod(o.report, o.period);
  int count = 0;
  for (const char16_t* prefix : {u"JUNC-", u"RESV-", u"TANK-"}) {
    count += countUnnamed(names.nodes, u"HN-C_NODE_RESULT", prefix + network);
  }
  for (const char16_t* prefix : {u"PIPE-", u"PUMP-", u"VALV-"}) {
    count += countUnnamed(names.links, u"HN-C_LINK_RESULT", prefix + network);
  }
  if (count == 0) return;
  std::fprintf(
      stderr, "vessora: %s%d %s\n", words("attenzione: ", "warning: ").c_str(), count,
      words("elementi non compaiono in questo periodo del report: i loro valori vengono da "
            "altre righe",
            "elements are not in this period of the report: their values are those of "
            "other rows")
          .c_str());
}

// --- the work ------------------------------------------------------------------------------------

bool importByExport(const std::string& report, std::u16string network) {
  auto* import =
      Session::instance().moduleFunction<int(const char16_t*, const char16_t*)>("ImportaRpt");
  const std::u16string path = platform::widen(report);
  if (!import || import(path.c_str(), network.data()) != RTNORM) return false;
  // What the export has posted runs behind the next command.
  Session::instance().run(u"REGENALL");
  return true;
}

void importByDialog(ResultsFrontend& ui, const std::string& report) {
  ui.dialogs[u"Importa file RPT di Epanet"] = [&ui, report](cad::ui::Dialog& dialog) {
    if (enter(ui, dialog, u"Percorso", platform::widen(report))) press(ui, dialog, u"OK");
  };
  Session::instance().run(u"imprpt");
}

std::string listed(const std::vector<std::u16string>& texts) {
  std::string all;
  for (const std::u16string& text : texts) {
    all += (all.empty() ? "" : ", ") + platform::narrow(text);
  }
  return all;
}

// Runs the import up to where the drawing has the results; the error says why it has not.
platform::Result<void> bring(ResultsFrontend& ui, const ResultsOptions& o, Heads heads,
                             const std::u16string& network) {
  // The export has no room for a longer path.
  constexpr std::size_t kLongestPath = 255;
  std::string path = platform::absolutePath(o.report);
  NamedReport renamed;
  const bool otherName = heads == Heads::capital && stemOf(o.report) != network;
  if (otherName || platform::widen(path).size() > kLongestPath) {
    path = renamed.make(path, network);
    if (path.empty()) {
      return Failure{o.report + ": " +
                     words("non si può dare al file il nome della rete; rinominarlo ",
                           "the file cannot be given the network's name; rename it ") +
                     platform::narrow(network) + ".rpt"};
    }
  }
  ui.answerPeriods(platform::widen(o.period));
  if (heads == Heads::capital) {
    importByDialog(ui, path);
  } else if (!importByExport(path, network)) {
    return Failure{words("il modulo non ha accettato il report", "the module refused the report")};
  }
  if (ui.periodUnknown) {
    return Failure{o.report + ": " +
                   (o.period.empty()
                        ? words("indicare un periodo con --period; ci sono: ",
                                "name a period with --period; it has: ")
                        : words("il periodo non c'è; ci sono: ", "no such period; it has: ")) +
                   listed(ui.periods)};
  }
  if (!ui.refusals.empty()) {
    return Failure{o.report + ": " + platform::narrow(ui.refusals.front())};
  }
  if (!ui.problem.empty()) return Failure{o.report + ": " + ui.problem};
  // The dialog's route ends with a box that says so.
  if (heads == Heads::capital && !ui.messages.empty()) ui.messages.pop_back();
  return {};
}

void warn(const std::vector<std::u16string>& messages) {
  for (const std::u16string& message : messages) {
    std::string text = platform::narrow(message);
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::fprintf(stderr, "vessora: %s%s\n", words("attenzione: ", "warning: ").c_str(),
                 text.c_str());
  }
}

int save(const ResultsOptions& o) {
  if (const std::string left = Session::instance().takeLeaks(); !left.empty()) return fail(left);
  const Progress progress(words("Salvataggio", "Saving"));
  const auto saved = saveDrawing(o.out.empty() ? o.drawing : o.out);
  return saved ? 0 : fail(saved.error());
}

int clearResults(const ResultsOptions& o, ResultsFrontend& ui) {
  const auto network = pickNetwork(o, u"");
  if (!network) return fail(network.error());
  const int before = nodesWithResults(*network) + linksWithResults(*network);
  if (!importByExport("", *network) || !ui.problem.empty()) {
    return fail(o.drawing + ": " + ui.problem);
  }
  if (const int status = save(o)) return status;
  std::printf("%s: %s %d\n", platform::narrow(*network).c_str(),
              words("risultati tolti, elementi", "results removed, elements").c_str(), before);
  return 0;
}

int listPeriods(const ResultsOptions& o, ResultsFrontend& ui, Heads heads,
                const std::u16string& network) {
  if (heads == Heads::single) {
    std::puts(words("un solo periodo", "a single period").c_str());
    return 0;
  }
  ResultsOptions none = o;
  none.period.clear();
  const auto refused = bring(ui, none, heads, network);
  if (ui.periods.empty()) return fail(refused ? o.report : refused.error());
  for (const std::u16string& period : ui.periods) std::puts(platform::narrow(period).c_str());
  return 0;
}

int importReport(const ResultsOptions& o, ResultsFrontend& ui, Heads heads,
                 const std::u16string& network) {
  if (heads == Heads::single && !o.period.empty()) {
    return fail(o.report + ": " +
                words("il report non elenca periodi; togliere --period",
                      "the report lists no periods; leave --period out"));
  }
  {
    const Progress progress(words("Risultati", "Results"));
    if (const auto done = bring(ui, o, heads, network); !done) return fail(done.error());
  }
  const int nodes = nodesWithResults(network), links = linksWithResults(network);
  if (nodes + links == 0) {
    return fail(o.drawing + ": " +
                words("la rete non ha elementi a cui dare risultati: ",
                      "the network has no element to give results to: ") +
                platform::narrow(network));
  }
  if (const int status = save(o)) return status;
  warnOfUnnamed(o, network);
  const std::string period = o.period.empty() ? words("periodo unico", "single period")
                                              : words("periodo ", "period ") + o.period;
  std::printf("%s: %s %d, %s %d, %s\n", platform::narrow(network).c_str(),
              words("risultati su nodi", "results on nodes").c_str(), nodes,
              words("rami", "links").c_str(), links, period.c_str());
  return 0;
}

}  // namespace

int importResults(const ResultsOptions& o) {
  auto heads = platform::Result<Heads>(Heads::single);
  if (!o.clear) heads = headsOf(o.report);
  if (!heads) return fail(heads.error());
  ResultsFrontend ui;
  const HostSpan host;
  if (const auto started = startHost(ui); !started) return fail(started.error());
  if (const auto opened = openDrawing(o.drawing); !opened) return fail(opened.error());
  if (o.clear) return clearResults(o, ui);
  const auto network = pickNetwork(o, stemOf(o.report));
  if (!network) return fail(network.error());
  const int status =
      o.listPeriods ? listPeriods(o, ui, *heads, *network) : importReport(o, ui, *heads, *network);
  warn(ui.messages);
  return status;
}

}  // namespace cli
