#include "apps/cli/inp_words.h"

#include "apps/cli/words.h"
#include "platform/text.h"

namespace cli {
namespace {

using epanet::Fault;

struct FaultWords {
  Fault fault;
  const char *italian, *english;
};
constexpr FaultWords kFaults[] = {
    {Fault::syntax, "parole mancanti o sconosciute", "missing or unknown words"},
    {Fault::number, "numero non valido", "no valid number"},
    {Fault::unknownNode, "nodo inesistente", "no such node"},
    {Fault::unknownLink, "ramo inesistente", "no such link"},
    {Fault::unknownPattern, "pattern inesistente", "no such pattern"},
    {Fault::unknownCurve, "curva inesistente", "no such curve"},
    {Fault::controlledValve, "una valvola di ritegno o a curva non si comanda così",
     "a check valve or a valve with a curve cannot be controlled so"},
    {Fault::pressureLimits, "la pressione richiesta deve superare la minima di 0.1",
     "the required pressure must exceed the minimum by 0.1"},
    {Fault::nodeValue, "valore non ammesso per il nodo", "unlawful value of the node"},
    {Fault::linkValue, "valore non ammesso per il ramo", "unlawful value of the link"},
    {Fault::traceNode, "nodo tracciante inesistente", "no such node to trace"},
    {Fault::option, "valore di opzione non valido", "invalid value of an option"},
    {Fault::duplicate, "nome già usato; vale il primo", "the name is taken; the first one counts"},
    {Fault::pumpData, "non è una pompa", "this is no pump"},
    {Fault::energy, "dati di energia non validi", "invalid energy data"},
    {Fault::tankAtValve, "valvola PRV, PSV o FCV attaccata a un serbatoio",
     "a PRV, PSV or FCV at a tank or reservoir"},
    {Fault::valveInSeries, "valvole di controllo in serie o sullo stesso nodo",
     "control valves in series or on one node"},
    {Fault::ruleClause, "clausola di regola non valida", "invalid clause of a rule"},
    {Fault::sameEnds, "il ramo comincia e finisce nello stesso nodo",
     "the link begins and ends on one node"},
    {Fault::fewNodes, "meno di due nodi", "fewer than two nodes"},
    {Fault::noTank, "né vasche né serbatoi", "neither tanks nor reservoirs"},
    {Fault::tankLevels, "livelli della vasca in disordine", "levels of the tank out of order"},
    {Fault::noHeadCurve, "pompa senza curva e senza potenza", "a pump without curve and power"},
    {Fault::headCurve, "curva della pompa non valida", "the pump's curve is not valid"},
    {Fault::curveOrder, "le ascisse della curva non crescono", "the curve's x values do not rise"},
    {Fault::emptyCurve, "curva senza punti", "a curve without points"},
    {Fault::emptyPattern, "pattern senza valori", "a pattern without values"},
    {Fault::unconnectedNode, "nodo non collegato", "an unconnected node"},
    {Fault::longId, "nome vuoto o più lungo di 31 byte", "a name that is empty or over 31 bytes"},
    {Fault::unknownSection, "sezione sconosciuta", "unknown section"},
    {Fault::shortHeading, "titolo abbreviato, che EPANET 2.3 rifiuta",
     "a shortened heading, which EPANET 2.3 refuses"},
    {Fault::shortLink, "riga troppo corta: EPANET non ne fa un ramo",
     "the row is too short: EPANET makes no link of it"},
    {Fault::rowsBefore, "righe prima della prima sezione: EPANET le ignora",
     "rows before the first section: EPANET passes over them"},
    {Fault::longRow, "riga oltre 1023 byte: EPANET ne legge il resto come un'altra riga",
     "a row over 1023 bytes: EPANET reads the rest as another row"},
    {Fault::manyTokens, "oltre 40 parole: EPANET ignora le altre",
     "over 40 words: EPANET passes over the others"},
    {Fault::carriageReturns, "le righe finiscono con CR: EPANET legge un file vuoto",
     "rows end in CR: EPANET reads an empty file"},
    {Fault::mark, "il file comincia con un segno BOM: EPANET perde la prima sezione",
     "the file begins with a byte order mark: EPANET loses the first section"},
    {Fault::quotes, "parola tra virgolette in mezzo alla riga: EPANET legge male il resto",
     "a quoted word amid the row: EPANET misreads the rest"},
    {Fault::noCoordinates, "nodo senza coordinate", "a node without coordinates"},
    {Fault::unknownCoordinate, "coordinate di nulla o non numeriche, che EPANET ignora",
     "coordinates of nothing or no numbers, which EPANET passes over"},
    {Fault::unusedCurve, "curva che nulla usa: le sue unità non si sanno",
     "a curve that nothing uses: its units are not known"},
    {Fault::oldPump, "pompa con numeri al posto della curva, che EPANET 2.3 non legge",
     "a pump with numbers in place of a curve, which EPANET 2.3 does not read"},
};
static_assert(std::size(kFaults) == static_cast<std::size_t>(Fault::oldPump) + 1);

struct RemarkWords {
  epanet::Remark::What what;
  const char *italian, *english;
};
using What = epanet::Remark::What;
constexpr RemarkWords kRemarks[] = {
    {What::rowWithError, "riga con errori, lasciata com'è", "a row with errors, left as it is"},
    {What::oldPump, "pompa con numeri al posto della curva, lasciata com'è",
     "a pump with numbers in place of a curve, left as it is"},
    {What::curveWithoutUse, "curva che nulla usa, lasciata com'è",
     "a curve that nothing uses, left as it is"},
    {What::curveOfTwoUses, "curva con due usi, convertita per il primo",
     "a curve of two uses, converted for the first"},
    {What::statusRange, "stato di un intervallo di rami diversi, scritto ramo per ramo",
     "a status for a range of different links, written link by link"},
    {What::pressureLimits, "pressione richiesta alzata a 0.1 sopra la minima",
     "the required pressure raised to 0.1 above the minimum"},
    {What::wallCorrelation,
     "la correlazione tra scabrezza e reazioni di parete dipende dalle unità",
     "the correlation of roughness and wall reactions depends on the units"},
    {What::flowUnitsUnknown, "unità di portata sconosciute a quella versione di EPANET",
     "flow units unknown to that release of EPANET"},
    {What::pressureUnknown, "unità di pressione sconosciute a quella versione: vale quella propria",
     "pressure units unknown to that release: the system's own hold"},
};

constexpr std::size_t kShown = 8;

}  // namespace

std::string describe(const epanet::Problem& problem, bool utf8) {
  std::string text;
  if (problem.line > 0) {
    text += words("riga ", "line ") + std::to_string(problem.line);
    if (problem.column > 0)
      text += words(", colonna ", ", column ") + std::to_string(problem.column);
    text += ": ";
  }
  if (const auto heading = headingOf(problem.section); !heading.empty() && problem.line > 0) {
    (text += heading) += ' ';
  }
  for (const FaultWords& own : kFaults) {
    if (own.fault == problem.fault) text += words(own.italian, own.english);
  }
  if (!problem.text.empty()) {
    text += ": " + (utf8 ? problem.text : platform::narrow(platform::decodeBytes(problem.text)));
  }
  const int code = epanet::solverCode(problem.fault);
  if (code != 0) text += words(" (errore ", " (error ") + std::to_string(code) + ")";
  return text;
}

void warn(const std::string& path, const std::vector<epanet::Problem>& problems, bool utf8) {
  std::size_t shown = 0;
  for (const epanet::Problem& problem : problems) {
    // Nodes without coordinates are told where they have been placed.
    if (problem.fault == Fault::noCoordinates) continue;
    if (shown++ < kShown) warn(path + ": " + describe(problem, utf8));
  }
  if (shown <= kShown) return;
  warn(path + ": " + words("altri problemi: ", "more problems: ") + std::to_string(shown - kShown) +
       words("; li elenca: vessora info ", "; listed by: vessora info ") + path);
}

std::string describe(const epanet::Remark& remark) {
  for (const RemarkWords& own : kRemarks) {
    if (own.what != remark.what) continue;
    return words(own.italian, own.english) + (remark.text.empty() ? "" : ": " + remark.text);
  }
  return remark.text;
}

}  // namespace cli
