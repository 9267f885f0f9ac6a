#include "apps/program/inp_words.h"

#include "platform/text.h"
#include "platform/words.h"

namespace program {
namespace {

using epanet::Fault;
using platform::words;

struct FaultWords {
  Fault fault;
  const char* words;
};
constexpr FaultWords kFaults[] = {
    {Fault::syntax, "parole mancanti o sconosciute"},
    {Fault::number, "numero non valido"},
    {Fault::unknownNode, "nodo inesistente"},
    {Fault::unknownLink, "ramo inesistente"},
    {Fault::unknownPattern, "pattern inesistente"},
    {Fault::unknownCurve, "curva inesistente"},
    {Fault::controlledValve, "una valvola di ritegno o a curva non si comanda così"},
    {Fault::pressureLimits, "la pressione richiesta deve superare la minima di 0.1"},
    {Fault::nodeValue, "valore non ammesso per il nodo"},
    {Fault::linkValue, "valore non ammesso per il ramo"},
    {Fault::traceNode, "nodo tracciante inesistente"},
    {Fault::option, "valore di opzione non valido"},
    {Fault::duplicate, "nome già usato; vale il primo"},
    {Fault::pumpData, "non è una pompa"},
    {Fault::energy, "dati di energia non validi"},
    {Fault::tankAtValve, "valvola PRV, PSV o FCV attaccata a un serbatoio o tank"},
    {Fault::valveInSeries, "valvole di controllo in serie o sullo stesso nodo"},
    {Fault::ruleClause, "clausola di regola non valida"},
    {Fault::sameEnds, "il ramo comincia e finisce nello stesso nodo"},
    {Fault::fewNodes, "meno di due nodi"},
    {Fault::noTank, "né tank né serbatoi"},
    {Fault::tankLevels, "livelli del tank in disordine"},
    {Fault::noHeadCurve, "pompa senza curva e senza potenza"},
    {Fault::headCurve, "curva della pompa non valida"},
    {Fault::curveOrder, "le ascisse della curva non crescono"},
    {Fault::emptyCurve, "curva senza punti"},
    {Fault::emptyPattern, "pattern senza valori"},
    {Fault::unconnectedNode, "nodo non collegato"},
    {Fault::longId, "nome vuoto o più lungo di 31 byte"},
    {Fault::unknownSection, "sezione sconosciuta"},
    {Fault::shortHeading, "titolo abbreviato, che EPANET 2.3 rifiuta"},
    {Fault::shortLink, "riga troppo corta: EPANET non ne fa un ramo"},
    {Fault::rowsBefore, "righe prima della prima sezione: EPANET le ignora"},
    {Fault::longRow, "riga oltre 1023 byte: EPANET ne legge il resto come un'altra riga"},
    {Fault::manyTokens, "oltre 40 parole: EPANET ignora le altre"},
    {Fault::carriageReturns, "le righe finiscono con CR: EPANET legge un file vuoto"},
    {Fault::mark, "il file comincia con un segno BOM: EPANET perde la prima sezione"},
    {Fault::quotes, "parola tra virgolette in mezzo alla riga: EPANET legge male il resto"},
    {Fault::noCoordinates, "nodo senza coordinate"},
    {Fault::unknownCoordinate, "coordinate di nulla o non numeriche, che EPANET ignora"},
    {Fault::unusedCurve, "curva che nulla usa: le sue unità non si sanno"},
    {Fault::oldPump, "pompa con numeri al posto della curva, che EPANET 2.3 non legge"},
};
static_assert(std::size(kFaults) == static_cast<std::size_t>(Fault::oldPump) + 1);

struct RemarkWords {
  epanet::Remark::What what;
  const char* words;
};
using What = epanet::Remark::What;
constexpr RemarkWords kRemarks[] = {
    {What::rowWithError, "riga con errori, lasciata com'è"},
    {What::oldPump, "pompa con numeri al posto della curva, lasciata com'è"},
    {What::curveWithoutUse, "curva che nulla usa, lasciata com'è"},
    {What::curveOfTwoUses, "curva con due usi, convertita per il primo"},
    {What::statusRange, "stato di un intervallo di rami diversi, scritto ramo per ramo"},
    {What::pressureLimits, "pressione richiesta alzata a 0.1 sopra la minima"},
    {What::wallCorrelation,
     "la correlazione tra scabrezza e reazioni di parete dipende dalle unità"},
    {What::flowUnitsUnknown, "unità di portata sconosciute a quella versione di EPANET"},
    {What::pressureUnknown,
     "unità di pressione sconosciute a quella versione: vale quella propria"},
};

}  // namespace

std::string describe(const epanet::Problem& problem, bool utf8) {
  std::string text;
  if (problem.line > 0) {
    text += words("riga ") + std::to_string(problem.line);
    if (problem.column > 0) text += words(", colonna ") + std::to_string(problem.column);
    text += ": ";
  }
  if (const auto heading = headingOf(problem.section); !heading.empty() && problem.line > 0) {
    (text += heading) += ' ';
  }
  for (const FaultWords& own : kFaults) {
    if (own.fault == problem.fault) text += words(own.words);
  }
  if (!problem.text.empty()) {
    text += ": " + (utf8 ? problem.text : platform::narrow(platform::decodeBytes(problem.text)));
  }
  const int code = epanet::solverCode(problem.fault);
  if (code != 0) text += words(" (errore ") + std::to_string(code) + ")";
  return text;
}

std::string describe(const epanet::Remark& remark) {
  for (const RemarkWords& own : kRemarks) {
    if (own.what != remark.what) continue;
    return words(own.words) + (remark.text.empty() ? "" : ": " + remark.text);
  }
  return remark.text;
}

}  // namespace program
