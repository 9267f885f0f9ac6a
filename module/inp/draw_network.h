// Drawing the records of an INP file: nodes as symbols at their coordinates, links as 3D polylines
// between the places of their end nodes, pumps and valves with a symbol on top.
//
// Each function draws one kind on its layer, which must exist, and prints one line: that it is
// done, or that there was nothing to draw.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "module/inp/id_index.h"
#include "module/network/records.h"

namespace vessora {

// Rows of points by id: all rows of one id in list order, or the last one.
class CoordRows {
 public:
  // `rows` must outlive this and must not change.
  explicit CoordRows(const RecordList<EpaCoord>& rows);
  const EpaCoord* first(std::u16string_view id);
  const EpaCoord* last(std::u16string_view id);
  // The next row of the same id, or null.
  const EpaCoord* next(const EpaCoord* row) const;

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  const RecordList<EpaCoord>& rows_;
  IdIndex<EpaCoord> index_;
  std::vector<std::uint32_t> next_;
};

// The records of a file with what is needed to find them by id.
class NetworkDrawing {
 public:
  // `network` must outlive this and must not change.
  explicit NetworkDrawing(const EpaNetwork& network);

  void DrawJunctions(std::u16string_view layer);
  void DrawReservoirs(std::u16string_view layer);
  void DrawTanks(std::u16string_view layer);
  void DrawPipes(std::u16string_view layer);
  void DrawPumps(std::u16string_view layer);
  void DrawValves(std::u16string_view layer);

 private:
  class LinkPath;
  template <class Node, class Insert>
  void drawNodes(const RecordList<Node>& nodes, double (*height)(const Node&), Insert insert,
                 const char16_t* done, const char16_t* absent);
  template <class Link, class Draw>
  void drawLinks(const RecordList<Link>& links, Draw draw, const char16_t* done,
                 const char16_t* absent);

  const EpaNetwork& network_;
  CoordRows coords_, vertices_;
  IdIndex<EpaJunc> juncs_;
  IdIndex<EpaResv> resvs_;
  IdIndex<EpaTank> tanks_;
};

}  // namespace vessora
