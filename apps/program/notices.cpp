// What the module's jobs have found, in the programs' words: what is so, and how to mend it.
#include "apps/program/words.h"
#include "platform/text.h"

namespace program {
namespace {

// "{1}" stands for the notice's subject, "{2}" for the other thing that it names.
struct Words {
  vessora::NoticeCode code;
  const char* words;
};

using Code = vessora::NoticeCode;
constexpr Words kWords[] = {
    // --- files and drawing
    {Code::namesDiffer, "{1}: l'attributo dice \"{2}\"; vale il nome importato"},
    {Code::inpUnreadable, "{1}: il file INP non si può leggere"},
    {Code::inpTooLarge, "{1}: il file INP è troppo grande"},
    {Code::blockUnreadable, "{1}: il simbolo non si può leggere; reinstallare"},
    {Code::blockNotInserted, "{1}: il simbolo non si può inserire nel disegno"},
    {Code::attributesNotInserted, "un simbolo è senza attributi"},
    {Code::fileNotOpened,
     "{1}: il file non si può aprire per la scrittura; controllare la cartella"},
    {Code::fileNotWritten, "{1}: il file non si può scrivere fino alla fine"},
    {Code::coincidentNodes,
     "dei nodi coincidono con serbatoi; spostarli per l'esportazione su un altro layer"},
    {Code::reservoirWithoutName, "un serbatoio è senza nome"},
    {Code::pipeWithoutName, "uno o più rami sono senza nome"},
    {Code::reportUnreadable, "{1}: report inesistente o illeggibile; controllare il percorso"},
    {Code::reportWithoutRows, "il report non ha righe per nodi e rami in questo periodo"},
    {Code::notResults, "non è né un report né un file dei risultati di EPANET"},
    {Code::reportWithoutTables,
     "il report non ha tabelle dei risultati; aggiungere in [REPORT] le righe NODES ALL e LINKS "
     "ALL, e ricalcolare"},
    {Code::runFailed, "il calcolo non è riuscito; errore {1}"},
    {Code::reportColumnsMissing,
     "al report mancano delle colonne; aggiungere in [REPORT]: {1}, e ricalcolare"},
    {Code::reportUnitUnknown, "unità sconosciuta nel report: {1}"},
    {Code::reportForeign, "è il report di un'altra rete: nessun elemento vi compare di {1}"},
    {Code::reportCut, "il report è troncato: la tabella del periodo finisce a metà"},
    {Code::reportRowsDoubtful,
     "righe del report che si possono leggere in più modi, e non sono state prese: {1}; chiedere "
     "meno decimali in [REPORT]"},
    {Code::resultsEndEarly,
     "il file dei risultati è troncato: un periodo successivo manca o è incompleto"},
    {Code::outputTooShort, "il file dei risultati è troncato prima del primo periodo; ricalcolare"},
    {Code::outputCountsWrong,
     "il file dei risultati è guasto: i numeri di elementi si contraddicono; ricalcolare"},
    {Code::outputUnitsUnknown,
     "il file dei risultati è guasto, o di un'altra versione: unità o opzioni sconosciute; "
     "ricalcolare"},
    {Code::outputLinksWrong,
     "il file dei risultati è guasto: dei rami finiscono in nodi che non ci sono; ricalcolare"},
    {Code::outputSizeWrong,
     "il file dei risultati è guasto: la lunghezza non è quella dei suoi periodi; ricalcolare"},
    {Code::tableStyleMissing, "il disegno non può contenere tabelle"},
    {Code::tableNotDrawn, "una tabella non è stata disegnata: {1}"},

    // --- networks and elements
    {Code::networkNameTwice,
     "{1}: una rete con questi layer c'è già, \"{2}\"; gli elementi sono in comune: annullare e "
     "scegliere un altro nome"},
    {Code::networkNameUnusable,
     "{1}: nessun layer può avere questo nome, per via di {2}; nella rete non si può disegnare: "
     "annullare e scegliere un altro nome"},
    {Code::elementNotDrawn,
     "{1}: l'elemento non è stato disegnato, perché nessun layer può avere il nome della sua rete; "
     "scegliere un'altra rete"},
    {Code::nodeNameTwice, "{1}: ora due nodi hanno questo nome; rinominarne uno (HNMODEPA)"},
    {Code::linkNameTwice, "{1}: ora due rami hanno questo nome; rinominarne uno (HNMODEPA)"},
    {Code::nameEmpty, "{1}: un elemento è senza nome; dargliene uno (HNMODEPA)"},
    {Code::linkEndUnnamed,
     "{1}: un estremo del ramo è senza nodo; cancellarlo e disegnarlo da nodo a nodo"},
    {Code::linkWithoutNode,
     "{1}: la rete non ha il nodo che il ramo indica, {2}; cancellarlo e disegnarlo da nodo a "
     "nodo"},
    {Code::courseOfOneVertex,
     "{1}: il ramo ha un solo vertice e non arriva al nodo finale; cancellarlo e ridisegnarlo"},
    {Code::lengthFollows, "{1}: lunghezza come disegnata: {2}"},
    {Code::lengthKept, "{1}: resta la lunghezza immessa a mano: {2}"},
    {Code::linksLeftBehind,
     "{1}: i rami non lo hanno seguito, perché il simbolo non stava alla quota dell'attributo; "
     "annullare, premere OK in HNMODEPA finché non viene più detto, poi modificarlo"},
    {Code::nodeGone,
     "{1}: nessun nodo ha più questo nome, ma questi rami finiscono lì o lo riportano: {2}; dare "
     "il nome a un nodo, o eliminare i rami e ridisegnarli"},
    {Code::traceNodeGone,
     "{1}: nessun nodo ha più questo nome, ma la qualità lo ha come nodo tracciante; dare il nome "
     "a "
     "un nodo, o scegliere un altro parametro di qualità (EPACALC)"},
    {Code::arrowDiffers,
     "{1}: la freccia al nodo non è quella della sua portata; cancellarla, se c'è"},
    {Code::nodesCoincide,
     "{1}: sta nello stesso punto di un altro nodo; spostare uno dei due: {2}"},
    {Code::partMissing,
     "{1}: il simbolo o il tracciato che va con questo elemento non si è trovato; se c'è, "
     "eliminarlo a mano"},
    {Code::nameUnreadable,
     "{1}: nome che il solutore non legge nel file INP (spazi, ;, [ all'inizio, più di 18 "
     "caratteri); rinominare l'elemento (HNMODEPA)"},
    {Code::pumpWithoutDrive,
     "{1}: pompa senza curva e senza potenza, che il solutore rifiuta; darle una curva (HNSETPAT, "
     "HNMODEPA) o una potenza"},
    {Code::pipeStatusUnknown,
     "{1}: il solutore non conosce lo stato {2}; nel file INP esportato scrivere Closed"},
    {Code::tankLevelsDisordered,
     "{1}: il livello iniziale non sta tra il minimo e il massimo e il solutore rifiuta il tank; "
     "correggere i livelli (HNMODEPA)"},

    // --- settings, materials, patterns and curves
    {Code::energyPatternMissing,
     "{1}: pattern dell'energia che la rete non ha; crearlo con HNSETPAT o cambiarlo con EPACALC"},
    {Code::materialsUnreadable, "{1}: la tabella dei materiali non si può leggere; reinstallare"},
    {Code::materialsUnwritable,
     "{1}: la tabella dei materiali non si può scrivere ed è rimasta com'era; controllare i "
     "permessi"},
    {Code::materialNotInTable,
     "il materiale \"{1}\" non è nella tabella, ma è di: {2}; assegnarne un altro (HNSETMAT) o "
     "rimetterlo nella tabella (HNMATEPA)"},
    {Code::roughnessInMillimetres,
     "la scabrezza assegnata è in mm, ma la formula della rete \"{1}\" non è D-W; scegliere D-W "
     "(EPACALC) o correggere i rami (HNMODEPA)"},
    {Code::patternMissing,
     "il pattern \"{1}\" non c'è più, ma lo nominano: {2}; dare loro un altro nome (HNMODEPA), "
     "oppure ricrearlo (HNSETPAT)"},
    {Code::curveMissing,
     "la curva \"{1}\" non c'è più, ma la nominano: {2}; dare loro un altro nome (HNMODEPA), "
     "oppure ricrearla (HNSETPAT)"},
    {Code::patternTwice,
     "il pattern \"{1}\" c'è due volte nella rete; dare un altro nome a uno (HNSETPAT)"},
    {Code::curveTwice,
     "la curva \"{1}\" c'è due volte nella rete; dare un altro nome a una (HNSETPAT)"},
    {Code::patternEmpty,
     "il pattern \"{1}\" è senza valori e non resta nel disegno; immettere dei valori"},
    {Code::curveEmpty,
     "la curva \"{1}\" è senza valori e non resta nel disegno; immettere dei valori"},
    {Code::patternErasedElsewhere,
     "il pattern \"{1}\": eliminato anche quello della rete \"{2}\"; ricrearlo lì, se serve"},
    {Code::curveErasedElsewhere,
     "la curva \"{1}\": eliminata anche quella della rete \"{2}\"; ricrearla lì, se serve"},
    {Code::curveStays,
     "la curva \"{1}\" resta nel disegno; per toglierla, modificarla svuotando tutte le celle "
     "(HNSETPAT)"},

    // --- files in full
    {Code::textNotKept,
     "{1}: un disegno di questa versione (R12) non può conservare il testo del file INP; "
     "l'esportazione lo riscriverà: salvare in una versione più recente"},
    {Code::networkTaken,
     "{1}: il disegno ha già una rete di questo nome; non è stato disegnato nulla: rinominare "
     "il "
     "file"},
    {Code::nodesPlaced,
     "{2} nodi senza coordinate sono stati posti accanto ai loro vicini (in arancio): {1}"},
    {Code::keptTextLost,
     "{1}: il testo del file INP conservato nel disegno manca o non è il suo; con "
     "--without-text si "
     "scrive ciò che è disegnato"},
    {Code::nothingLeft, "{1}: la rete non ha più alcun elemento con i suoi dati nel disegno"},
    {Code::nameByHand,
     "{1}: l'attributo dice \"{2}\", scritto a mano; per rinominare usare HNMODEPA"},
    {Code::elementCopied, "{1}: la sua copia nel disegno ha il nome {2} nel file"},
    {Code::elementGone, "{1}: non è più nel disegno; righe tolte dal file: {2}"},
    {Code::actionGone, "{1}: non è più nel disegno; resta come commento: {2}"},
    {Code::endUnknown, "{1}: il ramo nomina un nodo che non c'è: {2}"},
    {Code::demandScaled, "{1}: la domanda modificata è ripartita sulle sue {2} categorie"},
    {Code::patternInUse, "{1}: il pattern non è più nel disegno; era nominato in: {2}"},
    {Code::curveInUse, "{1}: la curva non è più nel disegno; è ancora nominata in: {2}"},
    {Code::curveWithoutUse,
     "{1}: nessun elemento usa la curva; i suoi numeri restano nelle unità del file"},
    {Code::seriesGone, "{1}: pattern o curva non più nel disegno; righe tolte dal file"},
    {Code::courseGone, "{1}: manca il tracciato; i suoi vertici restano quelli del file"},
    {Code::notNumber, "{1}: \"{2}\" non è un numero; resta il valore del file"},
    {Code::nameNotInEncoding,
     "{1}: il file INP è in Windows-1252, che non ha tutti i caratteri del nome; scritto {2}"},
    {Code::renamed, "{1}: nel disegno si chiama {2}"},
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
    const std::string text = words(row.words);
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

}  // namespace program
