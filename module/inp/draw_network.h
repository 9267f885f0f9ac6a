// Drawing the records of an INP file: nodes as symbols at their coordinates, links as 3D polylines
// between the places of their end nodes, pumps and valves with a symbol on top.
//
// Each function draws one kind on its layer, which must exist, and answers how much of it.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "module/inp/id_index.h"
#include "module/inp/inp_jobs.h"
#include "module/network/records.h"

namespace vessora {

// Rows of points by id: all rows of one id in list order, or the last one.
class CoordRows {
 public:
  // `rows` must outlive this and must not change.
  explicit CoordRows(const RecordList<EpaCoord>& rows);
  const EpaCoord* first(std::u16string_view id);
  const EpaCoord* last(std::u16string_view id);
  // How many rows an id has.
  std::size_t count(std::u16string_view id);
  // The next row of the same id, or null.
  const EpaCoord* next(const EpaCoord* row) const;

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  const RecordList<EpaCoord>& rows_;
  IdIndex<EpaCoord> index_;
  std::vector<std::uint32_t> next_;
  std::vector<std::uint32_t> counts_;  // by group
};

// The records of a file with what is needed to find them by id.
class NetworkDrawing {
 public:
  // `network` must outlive this and must not change.
  explicit NetworkDrawing(const EpaNetwork& network);

  DrawnKind DrawJunctions(std::u16string_view layer);
  DrawnKind DrawReservoirs(std::u16string_view layer);
  DrawnKind DrawTanks(std::u16string_view layer);
  DrawnKind DrawPipes(std::u16string_view layer);
  DrawnKind DrawPumps(std::u16string_view layer);
  DrawnKind DrawValves(std::u16string_view layer);

  // How many symbols, links and points of links there are to draw: rows of equal ids multiply.
  std::int64_t size();
  // The scale of symbols that fits the links (symbol_scale.h).
  double fittingScale();

 private:
  class LinkPath;
  template <class Node, class Insert>
  DrawnKind drawNodes(const RecordList<Node>& nodes, double (*height)(const Node&), Insert insert);
  template <class Link, class Draw>
  DrawnKind drawLinks(const RecordList<Link>& links, Draw draw);

  const EpaNetwork& network_;
  CoordRows coords_, vertices_;
  IdIndex<EpaJunc> juncs_;
  IdIndex<EpaResv> resvs_;
  IdIndex<EpaTank> tanks_;
};

}  // namespace vessora
