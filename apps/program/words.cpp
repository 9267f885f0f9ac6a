#include "apps/program/words.h"

#include <algorithm>

#include "cad/drawing/drawing.h"
#include "cad/editor/session.h"
#include "epanet/results.h"
#include "platform/format.h"
#include "platform/text.h"

namespace program {

using platform::narrow;

// Names may hold line feeds; a message is one line.
std::string oneLine(std::string_view text) {
  std::string line = platform::printable(text);
  while (line.ends_with('\n')) line.pop_back();
  for (char& c : line) {
    if (c == '\n' || c == '\t') c = ' ';
  }
  return line;
}

std::vector<std::string> described(const vessora::Notices& notices) {
  std::vector<std::string> lines;
  const vessora::Notice* before = nullptr;
  for (const vessora::Notice& notice : notices) {
    // A missing symbol is missing for each element; once is enough.
    const bool again = before && before->code == notice.code && before->subject == notice.subject &&
                       before->other == notice.other;
    if (!again) lines.push_back(oneLine(describe(notice)));
    before = &notice;
  }
  return lines;
}

std::string describe(const vessora::ElementCounts& n) {
  return narrow(
      platform::format(words(u"nodi %d, serbatoi %d, tank %d, condotte %d, pompe %d, valvole %d"),
                       n.junctions, n.reservoirs, n.tanks, n.pipes, n.pumps, n.valves));
}

std::string listed(const std::vector<std::u16string>& names) {
  std::string all;
  for (const std::u16string& name : names) all += (all.empty() ? "" : ", ") + narrow(name);
  return all;
}

std::string summaryOf(const vessora::DiffResult& diff) {
  using What = vessora::DiffItem::What;
  if (diff.items.empty()) return words("uguale al testo conservato");
  int changed = 0, added = 0, gone = 0, renamed = 0;
  for (const vessora::DiffItem& item : diff.items) {
    ++(item.what == What::added || item.what == What::copied ? added
       : item.what == What::gone                             ? gone
       : item.what == What::renamed                          ? renamed
                                                             : changed);
  }
  std::string text = words("diverso dal testo conservato:");
  const auto part = [&](int count, const std::string& what) {
    if (count > 0) text += " " + what + " " + std::to_string(count) + ",";
  };
  part(changed, words("valori"));
  part(added, words("nuovi"));
  part(gone, words("tolti"));
  part(renamed, words("rinominati"));
  text.pop_back();
  return text;
}

// --- INP files ----------------------------------------------------------------------------------

namespace {

// Characters that a name may have in the open drawing, as the host rules it.
std::size_t longestName() {
  const cad::Drawing& drawing = cad::Session::instance().database()->drawing();
  return static_cast<std::size_t>(cad::faultOfName(u"", drawing.format().version).limit);
}

std::string shown(char16_t c) {
  return "\"" + platform::printable(platform::narrow(std::u16string_view(&c, 1))) + "\"";
}

// What is wrong with the file's name as that of a network; empty when nothing is.
std::string faultOfName(const vessora::InpFindings& found) {
  if (found.name.empty()) {
    return words("il nome del file deve dare il nome alla rete (NOME.inp)");
  }
  if (found.isAqueductName) {
    return words("i nomi che iniziano così sono del modulo acquedotti; rinominare il file");
  }
  if (found.unusable != 0) {
    return words("il nome della rete non può contenere ") + shown(found.unusable) +
           words(", che nessun layer può avere; rinominare il file");
  }
  if (found.longestLayer > longestName()) {
    return words("il nome della rete è troppo lungo: i suoi layer avrebbero ") +
           std::to_string(found.longestLayer) + words(" caratteri, il disegno ne ammette ") +
           std::to_string(longestName());
  }
  if (!found.taken.empty()) {
    return words("il disegno ha già una rete di questo nome: ") + platform::narrow(found.taken) +
           words("; rinominare il file");
  }
  return {};
}

// What the file lacks; empty when there is something to draw.
std::string faultOfContent(const vessora::InpFindings& found) {
  if (found.counts.nodes() + found.counts.links() == 0) {
    return words(
        "non è un file INP di EPANET: non ha righe in sezioni come [JUNCTIONS] o [PIPES] (sotto la "
        "riga dei titoli)");
  }
  if (found.full) return {};
  if (found.coordinates == 0) {
    return words("il file non ha coordinate ([COORDINATES]): non c'è nulla da disegnare");
  }
  if (found.drawn == 0) {
    return words("nessun elemento ha un posto in [COORDINATES]: non c'è nulla da disegnare");
  }
  if (found.outOfProportion) {
    return words("righe ripetute con lo stesso nome darebbero ") + std::to_string(found.drawn) +
           words(" oggetti e punti; correggere il file");
  }
  return {};
}

}  // namespace

std::string faultOf(const vessora::InpFindings& found) {
  const std::string no = faultOfName(found);
  return no.empty() ? faultOfContent(found) : no;
}

// --- results ------------------------------------------------------------------------------------

std::u16string periodOf(const vessora::ReportPeriods& periods, const std::string& wanted) {
  const std::u16string text = platform::widen(wanted);
  const auto& times = periods.times;
  if (std::find(times.begin(), times.end(), text) != times.end()) return text;
  const std::int64_t seconds = epanet::secondsOf(wanted);
  std::u16string found;
  for (const std::u16string& time : times) {
    if (seconds >= 0 && epanet::secondsOf(narrow(time)) == seconds) found = time;
  }
  return found;
}

std::string faultOf(const vessora::ReportFindings& found, const std::u16string& network) {
  if (!found.hasRows) return describe(vessora::Notice{vessora::NoticeCode::reportWithoutRows});
  if (found.full && found.elements > 0) {
    return found.faults.empty() ? std::string() : describe(found.faults.front());
  }
  if (found.elements == 0) {
    return words("la rete non ha elementi a cui dare risultati: ") + narrow(network);
  }
  if (found.missing == found.elements) {
    return words("è il report di un'altra rete: nessun elemento vi compare di ") + narrow(network);
  }
  if (found.cut) {
    return words("il report è troncato: la tabella del periodo finisce a metà") +
           (found.missing == 0 ? ""
                               : words("; elementi senza riga: ") + std::to_string(found.missing));
  }
  return {};
}

std::string lackOf(const vessora::ReportFindings& found) {
  if (found.missing == 0) return {};
  const bool more = found.missing > static_cast<int>(found.firstMissing.size());
  return std::to_string(found.missing) + " " +
         (found.full ? words("elementi non compaiono in questo periodo e restano senza risultati (")
                     : words("elementi non compaiono in questo periodo del report: i loro valori "
                             "vengono da altre righe (")) +
         listed(found.firstMissing) + (more ? ", ...)" : ")");
}

std::string describe(const vessora::ResultCounts& written, const std::u16string& network,
                     const std::u16string& period) {
  return narrow(network) + ": " + words("risultati su nodi") + " " + std::to_string(written.nodes) +
         ", " + words("rami") + " " + std::to_string(written.links()) + ", " +
         (period.empty() ? words("periodo unico") : words("periodo ") + narrow(period));
}

}  // namespace program
