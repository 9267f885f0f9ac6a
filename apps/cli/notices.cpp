// What the module's jobs have found, in the program's words: what is so, and how to mend it.
#include "apps/cli/words.h"
#include "platform/text.h"

namespace cli {
namespace {

// "{1}" stands for the notice's subject, "{2}" for the other thing that it names.
struct Words {
  vessora::NoticeCode code;
  const char *italian, *english;
};

using Code = vessora::NoticeCode;
constexpr Words kWords[] = {
    // --- files and drawing
    {Code::namesDiffer, "{1}: l'attributo dice \"{2}\"; vale il nome importato",
     "{1}: the attribute says \"{2}\"; the imported name counts"},
    {Code::inpUnreadable, "{1}: il file INP non si può leggere",
     "{1}: the INP file cannot be read"},
    {Code::inpTooLarge, "{1}: il file INP è troppo grande", "{1}: the INP file is too large"},
    {Code::blockUnreadable, "{1}: il simbolo non si può leggere; reinstallare",
     "{1}: the symbol cannot be read; install again"},
    {Code::blockNotInserted, "{1}: il simbolo non si può inserire nel disegno",
     "{1}: the symbol cannot be put into the drawing"},
    {Code::attributesNotInserted, "un simbolo è senza attributi", "a symbol is without attributes"},
    {Code::fileNotOpened,
     "{1}: il file non si può aprire per la scrittura; controllare la cartella",
     "{1}: the file cannot be opened for writing; check the folder"},
    {Code::fileNotWritten, "{1}: il file non si può scrivere fino alla fine",
     "{1}: the file cannot be written to its end"},
    {Code::coincidentNodes,
     "dei nodi coincidono con serbatoi; spostarli per l'esportazione su un altro layer",
     "nodes coincide with reservoirs; for the export put them on another layer"},
    {Code::reservoirWithoutName, "un serbatoio è senza nome", "a reservoir has no name"},
    {Code::pipeWithoutName, "uno o più rami sono senza nome", "one or more pipes have no name"},
    {Code::reportUnreadable, "{1}: report inesistente o illeggibile; controllare il percorso",
     "{1}: no such report, or it cannot be read; check the path"},
    {Code::reportWithoutRows, "il report non ha righe per nodi e rami in questo periodo",
     "the report has no rows of nodes and links for this period"},
    {Code::notResults, "non è né un report né un file dei risultati di EPANET",
     "this is neither a report nor a results file of EPANET"},
    {Code::reportWithoutTables,
     "il report non ha tabelle dei risultati; aggiungere in [REPORT] le righe NODES ALL e LINKS "
     "ALL, e ricalcolare",
     "the report has no tables of results; add the lines NODES ALL and LINKS ALL under [REPORT] "
     "and solve again"},
    {Code::runFailed, "il calcolo non è riuscito; errore {1}", "the run failed; error {1}"},
    {Code::reportColumnsMissing,
     "al report mancano delle colonne; aggiungere in [REPORT]: {1}, e ricalcolare",
     "the report lacks columns; add under [REPORT]: {1}, and solve again"},
    {Code::reportUnitUnknown, "unità sconosciuta nel report: {1}",
     "unknown unit in the report: {1}"},
    {Code::reportForeign, "è il report di un'altra rete: nessun elemento vi compare di {1}",
     "this is the report of another network: it has no element of {1}"},
    {Code::reportCut, "il report è troncato: la tabella del periodo finisce a metà",
     "the report is cut short: the period's table ends in the middle"},
    {Code::reportRowsDoubtful,
     "righe del report che si possono leggere in più modi, e non sono state prese: {1}; chiedere "
     "meno decimali in [REPORT]",
     "lines of the report that can be read in several ways, and were not taken: {1}; ask for fewer "
     "decimals under [REPORT]"},
    {Code::resultsEndEarly,
     "il file dei risultati è troncato: un periodo successivo manca o è incompleto",
     "the results file is cut short: a later period is missing or not complete"},
    {Code::outputTooShort, "il file dei risultati è troncato prima del primo periodo; ricalcolare",
     "the results file is cut short before its first period; solve again"},
    {Code::outputCountsWrong,
     "il file dei risultati è guasto: i numeri di elementi si contraddicono; ricalcolare",
     "the results file is damaged: its counts of elements contradict each other; solve again"},
    {Code::outputUnitsUnknown,
     "il file dei risultati è guasto, o di un'altra versione: unità o opzioni sconosciute; "
     "ricalcolare",
     "the results file is damaged, or of another version: unknown units or options; solve again"},
    {Code::outputLinksWrong,
     "il file dei risultati è guasto: dei rami finiscono in nodi che non ci sono; ricalcolare",
     "the results file is damaged: links end at nodes that are not there; solve again"},
    {Code::outputSizeWrong,
     "il file dei risultati è guasto: la lunghezza non è quella dei suoi periodi; ricalcolare",
     "the results file is damaged: its length is not that of its periods; solve again"},
    {Code::tableStyleMissing, "il disegno non può contenere tabelle",
     "the drawing cannot hold tables"},
    {Code::tableNotDrawn, "una tabella non è stata disegnata: {1}", "a table was not drawn: {1}"},

    // --- networks and elements
    {Code::networkNameTwice,
     "{1}: una rete con questi layer c'è già, \"{2}\"; gli elementi sono in comune: annullare e "
     "scegliere un altro nome",
     "{1}: a network with these layers is there, \"{2}\"; they share their elements: undo, and "
     "choose another name"},
    {Code::networkNameUnusable,
     "{1}: nessun layer può avere questo nome, per via di {2}; nella rete non si può disegnare: "
     "annullare e scegliere un altro nome",
     "{1}: no layer can have this name, because of {2}; nothing can be drawn in the network: undo, "
     "and choose another name"},
    {Code::elementNotDrawn,
     "{1}: l'elemento non è stato disegnato, perché nessun layer può avere il nome della sua rete; "
     "scegliere un'altra rete",
     "{1}: the element was not drawn, because no layer can have its network's name; choose another "
     "network"},
    {Code::nodeNameTwice, "{1}: ora due nodi hanno questo nome; rinominarne uno (HNMODEPA)",
     "{1}: two nodes have this name now; rename one (HNMODEPA)"},
    {Code::linkNameTwice, "{1}: ora due rami hanno questo nome; rinominarne uno (HNMODEPA)",
     "{1}: two links have this name now; rename one (HNMODEPA)"},
    {Code::nameEmpty, "{1}: un elemento è senza nome; dargliene uno (HNMODEPA)",
     "{1}: an element has no name; give it one (HNMODEPA)"},
    {Code::linkEndUnnamed,
     "{1}: un estremo del ramo è senza nodo; cancellarlo e disegnarlo da nodo a nodo",
     "{1}: one end of the link has no node; erase it and draw it from node to node"},
    {Code::linkWithoutNode,
     "{1}: la rete non ha il nodo che il ramo indica, {2}; cancellarlo e disegnarlo da nodo a nodo",
     "{1}: the network does not have the node that the link names, {2}; erase it and draw it from "
     "node to node"},
    {Code::courseOfOneVertex,
     "{1}: il ramo ha un solo vertice e non arriva al nodo finale; cancellarlo e ridisegnarlo",
     "{1}: the link has one vertex alone and does not reach its end node; erase it and draw it "
     "again"},
    {Code::lengthFollows, "{1}: lunghezza come disegnata: {2}", "{1}: length as drawn: {2}"},
    {Code::lengthKept, "{1}: resta la lunghezza immessa a mano: {2}",
     "{1}: the length that was typed stays: {2}"},
    {Code::linksLeftBehind,
     "{1}: i rami non lo hanno seguito, perché il simbolo non stava alla quota dell'attributo; "
     "annullare, premere OK in HNMODEPA finché non viene più detto, poi modificarlo",
     "{1}: the links did not follow it, because the symbol did not stand at the height of its "
     "attribute; undo, press OK in HNMODEPA until this is not said any more, then change the node"},
    {Code::nodeGone,
     "{1}: nessun nodo ha più questo nome, ma questi rami finiscono lì o lo riportano: {2}; dare "
     "il nome a un nodo, o eliminare i rami e ridisegnarli",
     "{1}: no node has this name any more, but these links end there or name it: {2}; give the "
     "name to a node, or delete the links and draw them anew"},
    {Code::traceNodeGone,
     "{1}: nessun nodo ha più questo nome, ma la qualità lo ha come nodo tracciante; dare il nome "
     "a "
     "un nodo, o scegliere un altro parametro di qualità (EPACALC)",
     "{1}: no node has this name any more, but quality traces it; give the name to a node, or "
     "choose another quality parameter (EPACALC)"},
    {Code::arrowDiffers,
     "{1}: la freccia al nodo non è quella della sua portata; cancellarla, se c'è",
     "{1}: the arrow at the node is not that of its demand; erase it, if there is one"},
    {Code::nodesCoincide, "{1}: sta nello stesso punto di un altro nodo; spostare uno dei due: {2}",
     "{1}: stands where another node stands; move one of them: {2}"},
    {Code::partMissing,
     "{1}: il simbolo o il tracciato che va con questo elemento non si è trovato; se c'è, "
     "eliminarlo a mano",
     "{1}: the symbol or the course that goes with this element was not found; if it is there, "
     "delete it by hand"},
    {Code::nameUnreadable,
     "{1}: nome che il solutore non legge nel file INP (spazi, ;, [ all'inizio, più di 18 "
     "caratteri); rinominare l'elemento (HNMODEPA)",
     "{1}: a name that the solver does not read in the INP file (blanks, ;, a leading [, more than "
     "18 characters); rename the element (HNMODEPA)"},
    {Code::pumpWithoutDrive,
     "{1}: pompa senza curva e senza potenza, che il solutore rifiuta; darle una curva (HNSETPAT, "
     "HNMODEPA) o una potenza",
     "{1}: a pump without curve and without power, which the solver refuses; give it a curve "
     "(HNSETPAT, HNMODEPA) or a power"},
    {Code::pipeStatusUnknown,
     "{1}: il solutore non conosce lo stato {2}; nel file INP esportato scrivere Closed",
     "{1}: the solver does not know the status {2}; write Closed in the exported INP file"},
    {Code::tankLevelsDisordered,
     "{1}: il livello iniziale non sta tra il minimo e il massimo e il solutore rifiuta la vasca; "
     "correggere i livelli (HNMODEPA)",
     "{1}: the initial level is not between the lowest and the highest, and the solver refuses the "
     "tank; correct the levels (HNMODEPA)"},

    // --- settings, materials, patterns and curves
    {Code::energyPatternMissing,
     "{1}: pattern dell'energia che la rete non ha; crearlo con HNSETPAT o cambiarlo con EPACALC",
     "{1}: energy pattern that the network does not have; make it with HNSETPAT or change it with "
     "EPACALC"},
    {Code::materialsUnreadable, "{1}: la tabella dei materiali non si può leggere; reinstallare",
     "{1}: the table of materials cannot be read; install again"},
    {Code::materialsUnwritable,
     "{1}: la tabella dei materiali non si può scrivere ed è rimasta com'era; controllare i "
     "permessi",
     "{1}: the table of materials cannot be written and stays as it was; check the permissions"},
    {Code::materialNotInTable,
     "il materiale \"{1}\" non è nella tabella, ma è di: {2}; assegnarne un altro (HNSETMAT) o "
     "rimetterlo nella tabella (HNMATEPA)",
     "material \"{1}\" is not in the table, but belongs to: {2}; assign another one (HNSETMAT) or "
     "put it back into the table (HNMATEPA)"},
    {Code::roughnessInMillimetres,
     "la scabrezza assegnata è in mm, ma la formula della rete \"{1}\" non è D-W; scegliere D-W "
     "(EPACALC) o correggere i rami (HNMODEPA)",
     "the roughness assigned is in mm, but the formula of network \"{1}\" is not D-W; choose D-W "
     "(EPACALC) or correct the pipes (HNMODEPA)"},
    {Code::patternMissing,
     "il pattern \"{1}\" non c'è più, ma lo nominano: {2}; dare loro un altro nome (HNMODEPA), "
     "oppure ricrearlo (HNSETPAT)",
     "pattern \"{1}\" is gone, but named by: {2}; name another one there (HNMODEPA), or make it "
     "anew (HNSETPAT)"},
    {Code::curveMissing,
     "la curva \"{1}\" non c'è più, ma la nominano: {2}; dare loro un altro nome (HNMODEPA), "
     "oppure ricrearla (HNSETPAT)",
     "curve \"{1}\" is gone, but named by: {2}; name another one there (HNMODEPA), or make it anew "
     "(HNSETPAT)"},
    {Code::patternTwice,
     "il pattern \"{1}\" c'è due volte nella rete; dare un altro nome a uno (HNSETPAT)",
     "pattern \"{1}\" is there twice in the network; rename one (HNSETPAT)"},
    {Code::curveTwice,
     "la curva \"{1}\" c'è due volte nella rete; dare un altro nome a una (HNSETPAT)",
     "curve \"{1}\" is there twice in the network; rename one (HNSETPAT)"},
    {Code::patternEmpty,
     "il pattern \"{1}\" è senza valori e non resta nel disegno; immettere dei valori",
     "pattern \"{1}\" has no values and is not kept in the drawing; enter some"},
    {Code::curveEmpty,
     "la curva \"{1}\" è senza valori e non resta nel disegno; immettere dei valori",
     "curve \"{1}\" has no values and is not kept in the drawing; enter some"},
    {Code::patternErasedElsewhere,
     "il pattern \"{1}\": eliminato anche quello della rete \"{2}\"; ricrearlo lì, se serve",
     "pattern \"{1}\": erased as well, that of network \"{2}\"; make it anew there"},
    {Code::curveErasedElsewhere,
     "la curva \"{1}\": eliminata anche quella della rete \"{2}\"; ricrearla lì, se serve",
     "curve \"{1}\": erased as well, that of network \"{2}\"; make it anew there"},
    {Code::curveStays,
     "la curva \"{1}\" resta nel disegno; per toglierla, modificarla svuotando tutte le celle "
     "(HNSETPAT)",
     "curve \"{1}\" stays in the drawing; to remove it, edit it and empty all its cells "
     "(HNSETPAT)"},

    // --- files in full
    {Code::textNotKept,
     "{1}: un disegno di questa versione (R12) non può conservare il testo del file INP; "
     "l'esportazione lo riscriverà: salvare in una versione più recente",
     "{1}: a drawing of this release (R12) cannot keep the text of the INP file; an export "
     "will "
     "write it anew: use a newer release"},
    {Code::networkTaken,
     "{1}: il disegno ha già una rete di questo nome; non è stato disegnato nulla: rinominare "
     "il "
     "file",
     "{1}: the drawing has a network of this name already; nothing was drawn: rename the file"},
    {Code::nodesPlaced,
     "{2} nodi senza coordinate sono stati posti accanto ai loro vicini (in arancio): {1}",
     "{2} nodes without coordinates were placed beside their neighbours (in orange): {1}"},
    {Code::keptTextLost,
     "{1}: il testo del file INP conservato nel disegno manca o non è il suo; con "
     "--without-text si "
     "scrive ciò che è disegnato",
     "{1}: the text of the INP file that the drawing keeps is missing or is another one's; "
     "--without-text writes what is drawn"},
    {Code::nothingLeft, "{1}: la rete non ha più alcun elemento con i suoi dati nel disegno",
     "{1}: the network has no element with its data in the drawing any more"},
    {Code::nameByHand,
     "{1}: l'attributo dice \"{2}\", scritto a mano; per rinominare usare HNMODEPA",
     "{1}: the attribute says \"{2}\", written by hand; to rename use HNMODEPA"},
    {Code::elementCopied, "{1}: la sua copia nel disegno ha il nome {2} nel file",
     "{1}: its copy in the drawing is called {2} in the file"},
    {Code::elementGone, "{1}: non è più nel disegno; righe tolte dal file: {2}",
     "{1}: is no longer in the drawing; rows taken out of the file: {2}"},
    {Code::actionGone, "{1}: non è più nel disegno; resta come commento: {2}",
     "{1}: is no longer in the drawing; kept as a comment: {2}"},
    {Code::endUnknown, "{1}: il ramo nomina un nodo che non c'è: {2}",
     "{1}: the link names a node that is not there: {2}"},
    {Code::demandScaled, "{1}: la domanda modificata è ripartita sulle sue {2} categorie",
     "{1}: the changed demand is shared by its {2} categories"},
    {Code::patternInUse, "{1}: il pattern non è più nel disegno; era nominato in: {2}",
     "{1}: the pattern is no longer in the drawing; it was named in: {2}"},
    {Code::curveInUse, "{1}: la curva non è più nel disegno; è ancora nominata in: {2}",
     "{1}: the curve is no longer in the drawing; it is still named in: {2}"},
    {Code::curveWithoutUse,
     "{1}: nessun elemento usa la curva; i suoi numeri restano nelle unità del file",
     "{1}: no element uses the curve; its numbers stay in the file's units"},
    {Code::seriesGone, "{1}: pattern o curva non più nel disegno; righe tolte dal file",
     "{1}: pattern or curve no longer in the drawing; its rows were taken out of the file"},
    {Code::courseGone, "{1}: manca il tracciato; i suoi vertici restano quelli del file",
     "{1}: its course is missing; its vertices stay those of the file"},
    {Code::notNumber, "{1}: \"{2}\" non è un numero; resta il valore del file",
     "{1}: \"{2}\" is no number; the file's value stays"},
    {Code::nameNotInEncoding,
     "{1}: il file INP è in Windows-1252, che non ha tutti i caratteri del nome; scritto {2}",
     "{1}: the INP file is in Windows-1252, which lacks characters of the name; written as {2}"},
    {Code::renamed, "{1}: nel disegno si chiama {2}", "{1}: is called {2} in the drawing"},
};

constexpr bool everyCodeHasWords() {
  for (int code = 0; code <= static_cast<int>(vessora::kLastNotice); ++code) {
    bool found = false;
    for (const Words& row : kWords) found = found || row.code == static_cast<Code>(code);
    if (!found) return false;
  }
  return true;
}
static_assert(everyCodeHasWords(), "a notice of the module is missing here");

}  // namespace

std::string describe(const vessora::Notice& notice) {
  for (const Words& row : kWords) {
    if (row.code != notice.code) continue;
    std::string out;
    const std::string text = words(row.italian, row.english);
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text.compare(i, 3, "{1}") != 0 && text.compare(i, 3, "{2}") != 0) {
        out += text[i];
        continue;
      }
      out += platform::narrow(text[i + 1] == '1' ? notice.subject : notice.other);
      i += 2;
    }
    return out;
  }
  return {};
}

}  // namespace cli
