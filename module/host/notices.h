// What a job has to say, in order: things found and things that failed, without words. Commands
// tell them in the words of their texts (tell.h), programs in their own.
#pragma once

#include <string>
#include <vector>

namespace vessora {

enum class NoticeCode {
  namesDiffer,       // an element's name as imported (subject), which counts, and its attribute
  inpUnreadable,     // the INP file cannot be read
  inpTooLarge,       // it does not fit in memory, or would draw out of all proportion
  blockUnreadable,   // the file of a symbol (subject: path)
  blockNotInserted,  // the same: it cannot become a block of the drawing
  attributesNotInserted,  // a symbol stands without (all of) its attributes
  fileNotOpened,          // a file to write (subject: path)
  fileNotWritten,
  coincidentNodes,  // schematic networks: a node where a reservoir stands
  reservoirWithoutName,
  pipeWithoutName,
  reportUnreadable,   // the report (subject: path)
  reportWithoutRows,  // it has no rows of nodes or none of links for the period

  // What keeps results in full from being taken, or should be known of them.
  notResults,            // the file is neither a report nor a binary results file
  reportWithoutTables,   // nobody asked the solver for tables
  runFailed,             // there are none because of an error (subject)
  reportColumnsMissing,  // lines (subject) that would ask for them
  reportUnitUnknown,     // a unit (subject) that cannot be converted
  reportForeign,         // it knows no element of the network (subject)
  reportCut,             // it ends in the middle of a table
  reportRowsDoubtful,    // lines (subject) that can be read in several ways
  resultsEndEarly,       // a later period is missing, or not complete
  outputTooShort,        // a binary file that ends before its first period does
  outputCountsWrong,     // its counts contradict each other
  outputUnitsUnknown,    // it has units of no version
  outputLinksWrong,      // its links end nowhere
  outputSizeWrong,       // its periods do not fill it

  tableStyleMissing,  // no table can be made
  tableNotDrawn,      // one could not (subject: the reason of the host)

  // What editing leaves behind that commands do not tell (warnings.h).
  networkNameTwice,     // a new network shares its layers with another one (other)
  networkNameUnusable,  // no layer can bear a new network's name, for a character (other)
  elementNotDrawn,      // its layer cannot be made
  nodeNameTwice,        // a node has the name of another one
  linkNameTwice,
  nameEmpty,               // a new element has no name (subject: its layer)
  linkEndUnnamed,          // a link has no name for one of its ends
  linkWithoutNode,         // it names a node (other) that its network does not have
  courseOfOneVertex,       // a link ends where it begins; a pump or valve has no symbol then
  energyPatternMissing,    // the settings name a pattern (subject) that the network does not have
  lengthFollows,           // a pipe (subject) has the length that is drawn now (other)
  lengthKept,              // it keeps the one that was typed (other)
  linksLeftBehind,         // links did not follow a node: it does not stand at its stored height
  nodeGone,                // links (other) still name a node (subject) that is gone, or renamed
  traceNodeGone,           // the settings trace a node (subject) that is gone, or renamed
  arrowDiffers,            // the flow arrow of a node is not the one of its demand any more
  nodesCoincide,           // a node stands where another one (other) stands
  partMissing,             // a valve or pump had no block or no course to go with it
  nameUnreadable,          // the solver cannot read a name in its column
  pumpWithoutDrive,        // neither a head curve nor a power
  pipeStatusUnknown,       // to the solver (other: the status)
  tankLevelsDisordered,    // the initial one is not between the others
  materialsUnreadable,     // the table of materials (subject: path)
  materialsUnwritable,     // the same; it is as it was
  materialNotInTable,      // a material (subject) that pipes (other) name
  roughnessInMillimetres,  // stored in a network (subject) whose formula reads another quantity
  patternMissing,          // a name (subject) that elements (other) have, and the network no longer
  curveMissing,
  patternTwice,  // a name that the network has twice now
  curveTwice,
  patternEmpty,  // a record without values, which no drawing keeps
  curveEmpty,
  patternErasedElsewhere,  // of that name, also in another network (other)
  curveErasedElsewhere,
  curveStays,  // though it has been deleted from a list

  // The text of the file in the drawing (network/kept_text.h).
  textNotKept,  // of a network (subject): the drawing's release has no place for it

  // Files read and written in full.
  networkTaken,   // a network of the name (subject) is there already; nothing was drawn
  nodesPlaced,    // nodes without coordinates (subject: some, other: how many)
  keptTextLost,   // the network (subject) had a text, which is not there or not the one
  nothingLeft,    // no element of the network (subject) is drawn any more
  nameByHand,     // an attribute (other) says another name than the element's (subject)
  elementCopied,  // of an element (subject); the copy is called otherwise (other)
  elementGone,    // an element (subject) is drawn no more; its rows (other: how many) go
  actionGone,     // a control or rule (other: the row) named what is gone (subject)
  endUnknown,     // a link (subject) names a node (other) that is not there
  demandScaled,   // a junction's (subject) categories (other: how many) follow its demand
  patternInUse,   // a pattern (subject) is gone, and something (other: rows) named it
  curveInUse,
  curveWithoutUse,    // nobody uses the curve (subject): its numbers stay as the file has them
  seriesGone,         // a pattern or curve (subject) is drawn no more
  courseGone,         // a pump or valve (subject) has no course: its vertices stay as kept
  renamed,            // what the kept text calls otherwise (subject), now (other)
  nameNotInEncoding,  // the file's encoding lacks characters of a name; written as (other)
  notNumber,          // what the drawing has for a number of an element (subject; other: the text)
};
constexpr NoticeCode kLastNotice = NoticeCode::notNumber;  // for tables that must have all

struct Notice {
  NoticeCode code;
  std::u16string subject = {}, other = {};
};
using Notices = std::vector<Notice>;

}  // namespace vessora
