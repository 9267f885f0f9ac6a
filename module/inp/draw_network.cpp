#include "module/inp/draw_network.h"

#include "module/host/module.h"
#include "module/inp/symbol_scale.h"
#include "module/inp/symbols.h"
#include "module/network/element_data.h"
#include "module/network/schema.h"
#include "platform/text.h"

namespace vessora {

using platform::wtof;
using schema::Field;

// --- rows by id ----------------------------------------------------------------------------------

CoordRows::CoordRows(const RecordList<EpaCoord>& rows) : rows_(rows), index_(rows) {}

const EpaCoord* CoordRows::first(std::u16string_view id) {
  const std::uint32_t group = index_.find(id);
  if (group == kNone) return nullptr;
  if (next_.empty()) {
    next_.assign(rows_.size(), kNone);
    std::vector<std::uint32_t> latest(rows_.size(), kNone);  // row of each group
    for (std::uint32_t row = 0; row < rows_.size(); ++row) {
      std::uint32_t& before = latest[index_.groupOf(row)];
      if (before != kNone) next_[before] = row;
      before = row;
    }
  }
  return &rows_[index_.first(group)];
}

std::size_t CoordRows::count(std::u16string_view id) {
  const std::uint32_t group = index_.find(id);
  if (group == kNone) return 0;
  if (counts_.empty()) {
    counts_.assign(rows_.size(), 0);
    for (std::size_t row = 0; row < rows_.size(); ++row) ++counts_[index_.groupOf(row)];
  }
  return counts_[group];
}

const EpaCoord* CoordRows::last(std::u16string_view id) {
  const std::uint32_t group = index_.find(id);
  return group == kNone ? nullptr : &rows_[index_.last(group)];
}

const EpaCoord* CoordRows::next(const EpaCoord* row) const {
  const std::uint32_t number = next_[static_cast<std::size_t>(row - rows_.data())];
  return number == kNone ? nullptr : &rows_[number];
}

// --- nodes ---------------------------------------------------------------------------------------

namespace {

double heightOf(const EpaJunc& junc) { return wtof(junc.elev); }
double heightOf(const EpaResv& resv) { return wtof(resv.head); }
double heightOf(const EpaTank& tank) { return wtof(tank.elev); }

}  // namespace

NetworkDrawing::NetworkDrawing(const EpaNetwork& network)
    : network_(network),
      coords_(network.coords),
      vertices_(network.vertices),
      juncs_(network.juncs),
      resvs_(network.resvs),
      tanks_(network.tanks) {}

// A node is drawn once for each of its rows of coordinates: without one not at all.
template <class Node, class Insert>
DrawnKind NetworkDrawing::drawNodes(const RecordList<Node>& nodes, double (*height)(const Node&),
                                    Insert insert) {
  DrawnKind kind;
  for (const Node& node : nodes) {
    for (const EpaCoord* row = coords_.first(node.id); row; row = coords_.next(row)) {
      const AcGePoint3d point(wtof(row->x), wtof(row->y), height(node));
      kind.drawn += insert(node, point, kind.notices);
    }
  }
  return kind;
}

DrawnKind NetworkDrawing::DrawJunctions(std::u16string_view layer) {
  return drawNodes<EpaJunc>(network_.juncs, heightOf,
                            [layer](const EpaJunc& n, const AcGePoint3d& p, Notices& notices) {
                              return InsertJunc(p, layer, n, wtof(n.emitter), notices);
                            });
}

DrawnKind NetworkDrawing::DrawReservoirs(std::u16string_view layer) {
  return drawNodes<EpaResv>(network_.resvs, heightOf,
                            [layer](const EpaResv& n, const AcGePoint3d& p, Notices& notices) {
                              return InsertResv(p, layer, n, notices);
                            });
}

DrawnKind NetworkDrawing::DrawTanks(std::u16string_view layer) {
  return drawNodes<EpaTank>(network_.tanks, heightOf,
                            [layer](const EpaTank& n, const AcGePoint3d& p, Notices& notices) {
                              return InsertTank(p, layer, n, notices);
                            });
}

// --- links ---------------------------------------------------------------------------------------

// The path of one link after another. An end that names no known node keeps what the link before
// had there, in plan and in height separately.
class NetworkDrawing::LinkPath {
 public:
  explicit LinkPath(NetworkDrawing& drawing) : drawing_(drawing) {}

  // False when an end has no place and no link before it had one either.
  template <class Link>
  bool follow(const Link& link) {
    const bool starts = find(link.node1, start_), ends = find(link.node2, end_);
    if (!starts || !ends) return false;
    points_.clear();
    points_.push_back(start_.point);
    for (const EpaCoord* row = drawing_.vertices_.first(link.id); row;
         row = drawing_.vertices_.next(row)) {
      points_.push_back({wtof(row->x), wtof(row->y), 0});
    }
    points_.push_back(end_.point);
    interpolateInterior(points_);
    return true;
  }

  const AcGePoint3dArray& points() const { return points_; }
  std::u16string_view node1() const { return start_.node; }
  std::u16string_view node2() const { return end_.node; }

 private:
  struct End {
    AcGePoint3d point;
    wide256 node;
    bool placed = false, named = false;
  };

  bool find(std::u16string_view id, End& end) {
    if (const EpaCoord* row = drawing_.coords_.last(id)) {
      end.point.x = wtof(row->x);
      end.point.y = wtof(row->y);
      end.placed = true;
    }
    // Of the nodes of one name the last counts, and tanks come after reservoirs after junctions.
    if (height(drawing_.tanks_, drawing_.network_.tanks, id, end.point.z) ||
        height(drawing_.resvs_, drawing_.network_.resvs, id, end.point.z) ||
        height(drawing_.juncs_, drawing_.network_.juncs, id, end.point.z)) {
      end.node = id;
      end.named = true;
    }
    return end.placed && end.named;
  }

  template <class Node>
  static bool height(IdIndex<Node>& index, const RecordList<Node>& nodes, std::u16string_view id,
                     double& z) {
    const std::uint32_t group = index.find(id);
    if (group == IdIndex<Node>::kNone) return false;
    z = heightOf(nodes[index.last(group)]);
    return true;
  }

  NetworkDrawing& drawing_;
  End start_, end_;
  AcGePoint3dArray points_;
};

template <class Link, class Draw>
DrawnKind NetworkDrawing::drawLinks(const RecordList<Link>& links, Draw draw) {
  LinkPath path(*this);
  DrawnKind kind;
  for (const Link& link : links) {
    if (path.follow(link) && draw(link, path, kind.notices)) ++kind.drawn;
  }
  return kind;
}

DrawnKind NetworkDrawing::DrawPipes(std::u16string_view layer) {
  return drawLinks(network_.pipes, [layer](const EpaPipe& pipe, const LinkPath& path, Notices&) {
    const Chain data = dataOf(pipe, {{Field::node1, path.node1()}, {Field::node2, path.node2()}});
    return HNGeometry::Create3Dpoly(path.points(), schema::kPipe.color, layer, 0, data.get())
        .isValid();
  });
}

namespace {

// A pump or a valve: the polyline that carries its shape and of its data the id alone, and its
// symbol with all of them.
template <class Link, class Path>
bool drawWithSymbol(std::u16string_view layer, const Link& link, const Path& path,
                    int (*insert)(const AcGePoint3d&, std::u16string_view, const Link&,
                                  const Chain&, Notices&, AcDbObjectId*),
                    Notices& notices) {
  const Chain id = companionData(link.id);
  const bool drawn =
      HNGeometry::Create3Dpoly(path.points(), kindOf<Link>().color, layer, 0, id.get()).isValid();
  AcGePoint3d place;
  if (linkBlockPlace(path.points(), place)) {
    insert(place, layer, link,
           dataOf(link, {{Field::node1, path.node1()}, {Field::node2, path.node2()}}), notices,
           nullptr);
  }
  return drawn;
}

}  // namespace

DrawnKind NetworkDrawing::DrawPumps(std::u16string_view layer) {
  return drawLinks(network_.pumps,
                   [layer](const EpaPump& pump, const LinkPath& path, Notices& notices) {
                     return drawWithSymbol(layer, pump, path, InsertPump, notices);
                   });
}

DrawnKind NetworkDrawing::DrawValves(std::u16string_view layer) {
  return drawLinks(network_.valves,
                   [layer](const EpaValv& valve, const LinkPath& path, Notices& notices) {
                     return drawWithSymbol(layer, valve, path, InsertValv, notices);
                   });
}

std::int64_t NetworkDrawing::size() {
  std::int64_t size = 0;
  const auto addNodes = [&](const auto& nodes) {
    for (const auto& node : nodes) size += static_cast<std::int64_t>(coords_.count(node.id));
  };
  const auto addLinks = [&](const auto& links) {
    for (const auto& link : links) {
      const bool placed = coords_.last(link.node1) && coords_.last(link.node2);
      if (placed) size += 1 + static_cast<std::int64_t>(vertices_.count(link.id));
    }
  };
  addNodes(network_.juncs);
  addNodes(network_.resvs);
  addNodes(network_.tanks);
  addLinks(network_.pipes);
  addLinks(network_.pumps);
  addLinks(network_.valves);
  return size;
}

double NetworkDrawing::fittingScale() {
  std::vector<double> lengths;
  const auto measure = [&](const auto& links) {
    drawLinks(links, [&](const auto&, const LinkPath& path, Notices&) {
      lengths.push_back(planLength(path.points()));
      return true;
    });
  };
  measure(network_.pipes);
  measure(network_.pumps);
  measure(network_.valves);
  return vessora::fittingScale(std::move(lengths));
}

}  // namespace vessora
