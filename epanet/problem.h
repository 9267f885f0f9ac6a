// What is wrong with an input file, found while it is read.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "epanet/document.h"

namespace epanet {

// What the newest solver says of the file (its error numbers beside them), and what it does not say
// but its users should know. Words are those of the program that shows them.
enum class Fault : std::uint8_t {
  syntax,           // 201: missing or unknown words
  number,           // 202: no number, or one that is not allowed
  unknownNode,      // 203
  unknownLink,      // 204
  unknownPattern,   // 205
  unknownCurve,     // 206
  controlledValve,  // 207: a check valve, or a valve with a curve, under a status or a control
  pressureLimits,   // 208: of demands that depend on pressure
  nodeValue,        // 209: an unlawful value of a node
  linkValue,        // 211: of a link
  traceNode,        // 212
  option,           // 213
  duplicate,        // 215: an id that is taken; the first one counts
  pumpData,         // 216: of something that is no pump
  energy,           // 217
  tankAtValve,      // 219: a pressure or flow valve at a tank or reservoir
  valveInSeries,    // 220
  ruleClause,       // 221
  sameEnds,         // 222
  fewNodes,         // 223
  noTank,           // 224: neither tank nor reservoir
  tankLevels,       // 225
  noHeadCurve,      // 226: a pump without curve and power
  headCurve,        // 227: a pump's curve that is none
  curveOrder,       // 230: x does not rise
  emptyCurve,       // 231
  emptyPattern,     // 232
  unconnectedNode,  // 233
  longId,           // 252: more than 31 bytes, or none
  unknownSection,   // 299
  shortHeading,     // 299: taken for the section that its first letters mean
  // What the solver passes over in silence.
  shortLink,          // too few words: the solver makes no link of it
  rowsBefore,         // rows before the first heading
  longRow,            // read on as another row behind 1023 bytes
  manyTokens,         // words behind the 40th are dropped
  carriageReturns,    // the file has no line feed: the solver reads nothing
  mark,               // a byte order mark: the solver loses the first section
  quotes,             // a quoted word that is not the row's last: the solver misreads the row
  noCoordinates,      // a node
  unknownCoordinate,  // a row of coordinates or vertices that names nothing, or holds no number
  unusedCurve,        // of a curve without use nobody knows the units
  oldPump,            // numbers in place of a curve, which versions before 2.3 took
};

// The solver's number of an error; 0 of what it passes over.
int solverCode(Fault fault);
inline bool isError(Fault fault) { return solverCode(fault) != 0; }

struct Problem {
  Fault fault = Fault::syntax;
  RowId row = kNoRow;        // kNoRow: of the file as a whole
  std::uint32_t line = 0;    // of the text, from 1; 0: of the file as a whole
  std::uint32_t column = 0;  // in bytes, from 1; 0: the whole row
  Section section = Section::before;
  std::string text;  // the word or the id that it is about, in the file's encoding
};

}  // namespace epanet
