#include "apps/cli/words.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/text.h"

namespace cli {

using platform::narrow;

bool italian() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value && *value) return std::strncmp(value, "it", 2) == 0;
  }
  return false;
}

namespace {

// Names may hold line feeds; a message is one line.
std::string oneLine(std::string_view text) {
  std::string line = platform::printable(text);
  while (line.ends_with('\n')) line.pop_back();
  for (char& c : line) {
    if (c == '\n' || c == '\t') c = ' ';
  }
  return line;
}

}  // namespace

int fail(std::string_view message) {
  std::fprintf(stderr, "vessora: %s\n", oneLine(message).c_str());
  return 1;
}

void warn(std::string_view message) {
  std::fprintf(stderr, "vessora: %s%s\n", words("attenzione: ", "warning: ").c_str(),
               oneLine(message).c_str());
}

void say(std::string_view line) { std::printf("%s\n", oneLine(line).c_str()); }

std::string describe(const vessora::Notice& notice) {
  using Code = vessora::NoticeCode;
  const std::string subject = narrow(notice.subject);
  switch (notice.code) {
    case Code::namesDiffer:
      return subject + ": " + words("l'attributo dice ", "the attribute says ") + "\"" +
             narrow(notice.other) + "\"; " +
             words("vale il nome importato", "the imported name counts");
    case Code::inpUnreadable:
      return subject + ": " +
             words("il file INP non si può leggere", "the INP file cannot be read");
    case Code::inpTooLarge:
      return subject + ": " + words("il file INP è troppo grande", "the INP file is too large");
    case Code::blockUnreadable:
      return subject + ": " +
             words("il simbolo non si può leggere; reinstallare",
                   "the symbol cannot be read; install again");
    case Code::blockNotInserted:
      return subject + ": " +
             words("il simbolo non si può inserire nel disegno",
                   "the symbol cannot be put into the drawing");
    case Code::attributesNotInserted:
      return words("un simbolo è senza attributi", "a symbol is without attributes");
    case Code::fileNotOpened:
      return subject + ": " +
             words("il file non si può aprire per la scrittura; controllare la cartella",
                   "the file cannot be opened for writing; check the folder");
    case Code::fileNotWritten:
      return subject + ": " +
             words("il file non si può scrivere fino alla fine",
                   "the file cannot be written to its end");
    case Code::coincidentNodes:
      return words(
          "dei nodi coincidono con serbatoi; spostarli per l'esportazione su un altro layer",
          "nodes coincide with reservoirs; for the export put them on another layer");
    case Code::reservoirWithoutName:
      return words("un serbatoio è senza nome", "a reservoir has no name");
    case Code::pipeWithoutName:
      return words("uno o più rami sono senza nome", "one or more pipes have no name");
    case Code::reportUnreadable:
      return subject + ": " +
             words("report inesistente o illeggibile; controllare il percorso",
                   "no such report, or it cannot be read; check the path");
    case Code::reportWithoutRows:
      return words("il report non ha righe per nodi e rami in questo periodo",
                   "the report has no rows of nodes and links for this period");
    case Code::tableStyleMissing:
      return words("il disegno non può contenere tabelle", "the drawing cannot hold tables");
    case Code::tableNotDrawn:
      return words("una tabella non è stata disegnata: ", "a table was not drawn: ") + subject;
    case Code::energyPatternMissing:
      return subject + ": " +
             words(
                 "pattern dell'energia che la rete non ha; crearlo con HNSETPAT o cambiarlo con "
                 "EPACALC",
                 "energy pattern that the network does not have; make it with HNSETPAT or change "
                 "it with EPACALC");
    case Code::networkNameTwice:
      return subject + ": " +
             words("una rete con questi layer c'è già, ",
                   "a network with these layers is there, ") +
             "\"" + narrow(notice.other) + "\"; " +
             words("gli elementi sono in comune: annullare e scegliere un altro nome",
                   "they share their elements: undo, and choose another name");
    case Code::networkNameUnusable:
      return subject + ": " +
             words("nessun layer può avere questo nome, per via di ",
                   "no layer can have this name, because of ") +
             narrow(notice.other) +
             words("; nella rete non si può disegnare: annullare e scegliere un altro nome",
                   "; nothing can be drawn in the network: undo, and choose another name");
    case Code::elementNotDrawn:
      return subject + ": " +
             words(
                 "l'elemento non è stato disegnato, perché nessun layer può avere il nome della "
                 "sua rete; scegliere un'altra rete",
                 "the element was not drawn, because no layer can have its network's name; choose "
                 "another network");
    case Code::nodeNameTwice:
      return subject + ": " +
             words("ora due nodi hanno questo nome; rinominarne uno (HNMODEPA)",
                   "two nodes have this name now; rename one (HNMODEPA)");
    case Code::linkNameTwice:
      return subject + ": " +
             words("ora due rami hanno questo nome; rinominarne uno (HNMODEPA)",
                   "two links have this name now; rename one (HNMODEPA)");
    case Code::nameEmpty:
      return subject + ": " +
             words("un elemento è senza nome; dargliene uno (HNMODEPA)",
                   "an element has no name; give it one (HNMODEPA)");
    case Code::linkWithoutNode:
      return subject + ": " +
             words("il ramo non ha il nome di un suo nodo; cancellarlo e disegnarlo da nodo a nodo",
                   "the link lacks the name of one of its nodes; erase it and draw it from node to "
                   "node");
    case Code::courseOfOneVertex:
      return subject + ": " +
             words(
                 "il ramo ha un solo vertice e non arriva al nodo finale; cancellarlo e "
                 "ridisegnarlo",
                 "the link has one vertex alone and does not reach its end node; erase it and draw "
                 "it again");
    case Code::lengthFollows:
      return subject + ": " + words("lunghezza come disegnata: ", "length as drawn: ") +
             narrow(notice.other);
    case Code::lengthKept:
      return subject + ": " +
             words("resta la lunghezza immessa a mano: ", "the length that was typed stays: ") +
             narrow(notice.other);
    case Code::linksLeftBehind:
      return subject + ": " +
             words(
                 "il simbolo non sta alla quota dell'attributo, e i rami non lo seguono; rimettere "
                 "il simbolo alla sua quota e spostare i rami sul nodo",
                 "the symbol does not stand at the height of its attribute, and the links do not "
                 "follow it; put the symbol at its height and the links onto the node");
    case Code::nodeGone:
      return subject + ": " +
             words("nessun nodo ha più questo nome, ma questi rami finiscono lì o lo riportano: ",
                   "no node has this name any more, but these links end there or name it: ") +
             narrow(notice.other) +
             words("; dare il nome a un nodo, o eliminare i rami e ridisegnarli",
                   "; give the name to a node, or delete the links and draw them anew");
    case Code::nodesCoincide:
      return subject + ": " +
             words("sta nello stesso punto di un altro nodo; spostare uno dei due: ",
                   "stands where another node stands; move one of them: ") +
             narrow(notice.other);
    case Code::partMissing:
      return subject + ": " +
             words(
                 "il simbolo o il tracciato che va con questo elemento non si è trovato; se c'è, "
                 "eliminarlo a mano",
                 "the symbol or the course that goes with this element was not found; if it is "
                 "there, delete it by hand");
  }
  return {};
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

void warn(const vessora::Notices& notices) {
  for (const std::string& line : described(notices)) warn(line);
}

std::string describe(const vessora::ElementCounts& n) {
  const auto part = [](const char* it, const char* en, int count) {
    return words(it, en) + " " + std::to_string(count);
  };
  return part("nodi", "junctions", n.junctions) + ", " +
         part("serbatoi", "reservoirs", n.reservoirs) + ", " + part("vasche", "tanks", n.tanks) +
         ", " + part("condotte", "pipes", n.pipes) + ", " + part("pompe", "pumps", n.pumps) + ", " +
         part("valvole", "valves", n.valves);
}

std::string listed(const std::vector<std::u16string>& names) {
  std::string all;
  for (const std::u16string& name : names) all += (all.empty() ? "" : ", ") + narrow(name);
  return all;
}

std::string describe(const vessora::PickedNetwork& picked, const std::string& drawing,
                     const std::string& wanted) {
  using Why = vessora::PickedNetwork::Why;
  const std::string names = listed(picked.names);
  if (picked.why == Why::unknown) {
    return drawing + ": " + words("la rete non c'è: ", "no such network: ") + wanted +
           (names.empty() ? words(" (il disegno non ha reti)", " (it has no network)")
                          : words("; ci sono: ", "; it has: ") + names);
  }
  return drawing + ": " +
         (picked.why == Why::none
              ? words("il disegno non ha reti", "the drawing has no network")
              : words("indicare la rete con -n; ci sono: ", "name the network with -n; it has: ") +
                    names);
}

}  // namespace cli
