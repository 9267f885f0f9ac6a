// INP files into the drawing and out of it, as plain values: what the jobs are given and answer.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "epanet/convert.h"
#include "epanet/problem.h"
#include "module/host/notices.h"
#include "module/network/network_info.h"

namespace vessora {

// An INP file that has been read. Only this module looks inside; it must go before the module.
struct InpContents;
using InpFile = std::shared_ptr<InpContents>;

// What a file would draw, found before anything is drawn.
struct InpFindings {
  bool readable = false;
  std::u16string name;   // of the network, from the file's name
  ElementCounts counts;  // rows of elements in the file
  int coordinates = 0;   // rows of [COORDINATES]
  // Symbols and links with a place, and points of links: what the drawing would get. Rows of equal
  // ids multiply, and the job draws nothing of a file that exceeds all proportion.
  std::int64_t drawn = 0;
  bool outOfProportion = false;
  // Read in full: what the solver would say of the file, and what it would pass over.
  bool full = false;
  bool utf8 = true;  // the encoding of the file's words
  std::vector<epanet::Problem> problems;
  // The name as that of layers.
  char16_t unusable = 0;         // a character that no layer can bear; 0: there is none
  std::size_t longestLayer = 0;  // characters of the longest layer name that comes of it
  bool isAqueductName = false;   // such names belong to the sibling module's networks
  std::u16string taken;          // the network of this name, in any letters, that is there already
};

// What became of one kind of element.
struct DrawnKind {
  int drawn = 0;
  Notices notices;
};
struct ImportResult {
  Notices reading;
  // In the order of drawing: junctions, reservoirs, tanks, pipes, pumps, valves.
  DrawnKind kinds[6];
  double scale = 1;  // of the symbols
  int drawn() const {
    int all = 0;
    for (const DrawnKind& kind : kinds) all += kind.drawn;
    return all;
  }
};

struct ExportRequest {
  std::u16string_view network;
  std::u16string_view path;     // of the INP file
  std::u16string_view csvPath;  // of the listing; empty: none. A schematic network has none.
  int formula = 0;              // of a schematic network: 0 "D-W", 1 "H-W", 2 "M-C"
  // In full alone: from what is drawn, without the kept text; all that is drawn written anew into
  // the kept text; in other flow units, for a release of the solver.
  bool withoutText = false;
  bool rewrite = false;
  std::optional<epanet::FlowUnits> units = {};
  epanet::SolverVersion solver = epanet::SolverVersion::v23;
};
struct ExportResult {
  bool written = false;
  bool listed = false;                  // the listing has been written
  bool stopped = false;                 // the drawing has a fault that the user has to mend first
  std::vector<epanet::Remark> remarks;  // on values in other units
  Notices notices;
};

InpFile openInp(std::u16string_view path);
InpFindings examineInp(const InpFile& file);
// Draws the file's network under a name, with settings, patterns and curves. A network of the name
// that is there already is not looked for. The file's records are of no use afterwards. Without a
// scale of its symbols, above 0, it has the one that fits its links.
ImportResult importInp(const InpFile& file, std::u16string_view name, std::optional<double> scale);
// Writes the files of a drawn network, real or schematic.
ExportResult exportNetwork(const ExportRequest& request);

}  // namespace vessora
