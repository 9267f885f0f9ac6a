// What a drawing or an input file holds.
#include <cstdio>

#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "apps/program/inp_words.h"
#include "epanet/network.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cli {
namespace {

using platform::narrow;

std::string resultsOf(const vessora::NetworkInfo& n) {
  if (!n.hasResults) return words("nessun risultato");
  return words("risultati") + (n.period.empty() ? "" : words(" del periodo ") + narrow(n.period));
}

// How the network and its kept text stand to each other; empty where there is no text.
std::string textOf(JobSpan& job, const std::u16string& network) {
  const vessora::DiffResult diff = job->diffNetwork(network, u"");
  if (diff.compared) return summaryOf(diff);
  return diff.notices.empty() ? std::string() : describe(diff.notices.back());
}

void showJson(JobSpan& job, const std::vector<vessora::NetworkInfo>& networks) {
  std::printf("{\"networks\": [");
  const char* separator = "";
  for (const vessora::NetworkInfo& n : networks) {
    const vessora::ElementCounts& c = n.counts;
    vessora::DiffResult diff;
    if (job->hasKeptText(n.name)) diff = job->diffNetwork(n.name, u"");
    std::printf(
        "%s\n  {\"name\": %s, \"default\": %s, \"junctions\": %d, \"reservoirs\": %d, "
        "\"tanks\": %d, \"pipes\": %d, \"pumps\": %d, \"valves\": %d, \"results\": %s, "
        "\"period\": %s, \"stale\": %s, \"text\": %s, \"differences\": %zu}",
        separator, jsonText(narrow(n.name)).c_str(), n.isDefault ? "true" : "false", c.junctions,
        c.reservoirs, c.tanks, c.pipes, c.pumps, c.valves, n.hasResults ? "true" : "false",
        n.hasResults ? jsonText(narrow(n.period)).c_str() : "null",
        n.hasResults && job->resultsAreStale(n.name) ? "true" : "false",
        !job->hasKeptText(n.name) ? "null"
        : !diff.compared          ? "\"unusable\""
        : diff.items.empty()      ? "\"same\""
                                  : "\"differs\"",
        diff.items.size());
    separator = ",";
  }
  std::printf("%s]}\n", networks.empty() ? "" : "\n");
}

int showDrawing(const std::string& drawing, bool json) {
  JobSpan job;
  if (auto opened = job.open(drawing); !opened) return fail(opened.error());
  const std::vector<vessora::NetworkInfo> networks = job->networks();
  if (json) {
    showJson(job, networks);
    return 0;
  }
  if (networks.empty()) say(words("nessuna rete"));
  for (const vessora::NetworkInfo& n : networks) {
    say(narrow(n.name) + (n.isDefault ? words(" (predefinita)") : "") + ": " + describe(n.counts) +
        "; " + resultsOf(n));
    const std::string text = textOf(job, n.name);
    if (!text.empty()) say("  " + text);
    if (n.hasResults && job->resultsAreStale(n.name)) {
      say("  " + words("la rete è cambiata da quando i risultati sono stati calcolati"));
    }
  }
  return 0;
}

// --- input files ---------------------------------------------------------------------------------

vessora::ElementCounts countsOf(const epanet::Network& n) {
  vessora::ElementCounts counts;
  for (const epanet::Node& node : n.nodes) {
    ++(node.kind == epanet::NodeKind::junction    ? counts.junctions
       : node.kind == epanet::NodeKind::reservoir ? counts.reservoirs
                                                  : counts.tanks);
  }
  for (const epanet::Link& link : n.links) {
    ++(link.kind == epanet::LinkKind::pipe   ? counts.pipes
       : link.kind == epanet::LinkKind::pump ? counts.pumps
                                             : counts.valves);
  }
  return counts;
}

// Rows with data of each section that has some, in the order of the solver's own files.
std::vector<std::pair<std::string, int>> sectionsOf(const epanet::Document& document) {
  std::array<int, epanet::kSections> rows{};
  for (const epanet::Row& row : document.rows()) {
    if (row.kind == epanet::RowKind::data) ++rows[static_cast<std::size_t>(row.section)];
  }
  std::vector<std::pair<std::string, int>> sections;
  for (int i = 0; i < epanet::kSections; ++i) {
    const auto heading = headingOf(static_cast<epanet::Section>(i));
    if (!heading.empty() && rows[static_cast<std::size_t>(i)] > 0) {
      sections.emplace_back(heading, rows[static_cast<std::size_t>(i)]);
    }
  }
  return sections;
}

void showFileJson(const epanet::Document& document, const epanet::Network& n) {
  const vessora::ElementCounts c = countsOf(n);
  std::printf(
      "{\"junctions\": %d, \"reservoirs\": %d, \"tanks\": %d, \"pipes\": %d, \"pumps\": %d, "
      "\"valves\": %d, \"patterns\": %zu, \"curves\": %zu, \"controls\": %zu, \"rules\": %zu,\n"
      " \"units\": \"%s\", \"pressure\": \"%s\", \"headloss\": \"%s\",\n \"sections\": {",
      c.junctions, c.reservoirs, c.tanks, c.pipes, c.pumps, c.valves, n.patterns.size(),
      n.curves.size(), n.controls.size(), n.rules.size(), std::string(wordOf(n.flowUnits)).c_str(),
      std::string(wordOf(n.pressureUnits)).c_str(), std::string(wordOf(n.formula)).c_str());
  const char* separator = "";
  for (const auto& [heading, rows] : sectionsOf(document)) {
    std::printf("%s%s: %d", separator, jsonText(heading).c_str(), rows);
    separator = ", ";
  }
  std::printf("},\n \"problems\": [");
  separator = "";
  for (const epanet::Problem& p : n.problems) {
    std::printf("%s\n  {\"line\": %u, \"column\": %u, \"code\": %d, \"text\": %s}", separator,
                p.line, p.column, epanet::solverCode(p.fault),
                jsonText(describe(p, document.isUtf8())).c_str());
    separator = ",";
  }
  std::printf("%s]}\n", n.problems.empty() ? "" : "\n ");
}

int showFile(const std::string& path, bool json) {
  auto bytes = platform::readFile(path);
  if (!bytes) return fail(bytes.error());
  const epanet::Document document(std::move(*bytes));
  const epanet::Network n(document);
  if (json) {
    showFileJson(document, n);
    return 0;
  }
  say(describe(countsOf(n)) + "; " + words("pattern ") + std::to_string(n.patterns.size()) +
      words(", curve ") + std::to_string(n.curves.size()) + words(", comandi ") +
      std::to_string(n.controls.size()) + words(", regole ") + std::to_string(n.rules.size()));
  say(words("unità ") + std::string(wordOf(n.flowUnits)) + words(", pressioni ") +
      std::string(wordOf(n.pressureUnits)) + words(", perdite ") + std::string(wordOf(n.formula)));
  std::string sections;
  for (const auto& [heading, rows] : sectionsOf(document)) {
    sections += (sections.empty() ? "" : " ") + heading + " " + std::to_string(rows);
  }
  if (!sections.empty()) say(words("righe: ") + sections);
  if (n.problems.empty()) say(words("nessun problema"));
  for (const epanet::Problem& problem : n.problems) say(describe(problem, document.isUtf8()));
  return 0;
}

}  // namespace

std::string jsonText(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
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

int showInfo(const std::string& path, bool json) {
  const std::size_t dot = path.rfind('.');
  const bool inp =
      dot != path.npos && platform::equalNoCase(platform::widen(path.substr(dot)), u".inp");
  return inp ? showFile(path, json) : showDrawing(path, json);
}

}  // namespace cli
