#include "apps/program/solver_words.h"

#include "platform/words.h"

namespace program {

using epanet::SolverRun;
using epanet::SolverSearch;
using platform::words;

std::string lackOf(const SolverSearch& search) {
  using Lack = SolverSearch::Lack;
  const std::string get = words("installare Node.js e poi: npm install --prefix ");
  const std::string package = get + epanet::userPackageFolder() + " epanet-js@0.9.0";
  const std::string own =
      words("; oppure indicare un solutore EPANET con --solver o VESSORA_SOLVER");
  switch (search.lack) {
    case Lack::chosenIsMissing:
      return search.name + ": " +
             words(
                 "non è un programma né il pacchetto epanet-js; controllare "
                 "--solver o VESSORA_SOLVER");
    case Lack::package:
      return words("manca il solutore EPANET; ") + package + own;
    case Lack::node:
      return words("c'è il pacchetto epanet-js ma non Node.js; installarlo (apt install nodejs)");
    case Lack::script:
      return search.name + ": " + words("manca; reinstallare");
    default:
      return words("manca il solutore EPANET (runepanet); ") + package + own;
  }
}

namespace {

// The row that an error is about: the solver shows it, or it is that of the element in the file
// that was solved.
std::string rowOf(const epanet::SolverMessage& message, const epanet::Document& input) {
  if (!message.row.empty() || !message.isError) return message.row;
  for (epanet::RowId row = 0; message.inputLine > 0 && row < input.rows().size(); ++row) {
    if (input.lineOf(row) != message.inputLine) continue;
    epanet::Tokens tokens;
    input.tokens(row, tokens);
    std::string text;
    for (int i = 0; i < tokens.count; ++i) {
      (text += i > 0 ? " " : "") += tokens.text(i);
    }
    return text;
  }
  return {};
}

}  // namespace

std::string describe(const epanet::SolverMessage& message, const epanet::Document& input) {
  std::string text;
  if (message.isError) text += words("errore ") + std::to_string(message.code) + ": ";
  if (!message.time.empty()) text += message.time + " ";
  text += message.words;
  if (!message.element.empty() && message.words.find(message.element) == std::string::npos) {
    text += " (" + message.elementKind + " " + message.element + ")";
  }
  // The solver's words of an error end where the row follows.
  if (text.ends_with(':')) text.pop_back();
  if (const std::string row = rowOf(message, input); !row.empty()) {
    text += words(", riga: ") + row;
  }
  return text;
}

std::string faultOf(const SolverRun& run, const std::string& firstError) {
  switch (run.end) {
    case SolverRun::End::solved:
      return {};
    case SolverRun::End::failed:
      return "EPANET: " + firstError;
    case SolverRun::End::signalled:
      return words("il solutore è stato interrotto dal segnale ") + std::to_string(run.status);
    case SolverRun::End::cancelled:
    case SolverRun::End::timedOut:
      return words("il solutore è stato fermato");
    case SolverRun::End::notStarted:
      return words("il solutore non si può avviare; controllare --solver o VESSORA_SOLVER");
    case SolverRun::End::noResults:
      break;
  }
  return words("il solutore è finito senza risultati") +
         (run.words.empty() ? "" : ": " + run.words.substr(0, run.words.find('\n')));
}

}  // namespace program
