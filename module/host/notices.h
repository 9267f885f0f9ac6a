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
  tableStyleMissing,  // no table can be made
  tableNotDrawn,      // one could not (subject: the reason of the host)

  // What editing leaves behind that commands do not tell (warnings.h).
  networkNameTwice,     // a new network shares its layers with another one (other)
  networkNameUnusable,  // no layer can bear a new network's name, for a character (other)
  elementNotDrawn,      // its layer cannot be made
  nodeNameTwice,        // a new node has the name of another one
  linkNameTwice,
  nameEmpty,             // a new element has no name (subject: its layer)
  linkWithoutNode,       // a link has no name for one of its ends
  courseOfOneVertex,     // a link ends where it begins; a pump or valve has no symbol then
  energyPatternMissing,  // the settings name a pattern (subject) that the network does not have
};

struct Notice {
  NoticeCode code;
  std::u16string subject = {}, other = {};
};
using Notices = std::vector<Notice>;

}  // namespace vessora
