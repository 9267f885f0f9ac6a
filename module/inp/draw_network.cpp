#include "module/inp/draw_network.h"

#include <cmath>

#include "module/host/module.h"
#include "module/host/translate.h"
#include "module/inp/symbols.h"
#include "platform/text.h"

namespace vessora {

using platform::wtof;

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

void tell(bool any, const char16_t* done, const char16_t* absent) {
  acutPrintf(TraduciTesto(any ? done : absent));
}

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
void NetworkDrawing::drawNodes(const RecordList<Node>& nodes, double (*height)(const Node&),
                               Insert insert, const char16_t* done, const char16_t* absent) {
  bool any = false;
  for (const Node& node : nodes) {
    for (const EpaCoord* row = coords_.first(node.id); row; row = coords_.next(row)) {
      if (insert(node, AcGePoint3d(wtof(row->x), wtof(row->y), height(node)))) any = true;
    }
  }
  tell(any, done, absent);
}

void NetworkDrawing::DrawJunctions(std::u16string_view layer) {
  const auto insert = [layer](const EpaJunc& n, const AcGePoint3d& p) {
    return InsertJunc(p, layer, n.id, n.elev, n.demand, wtof(n.emitter), n.pattern);
  };
  drawNodes<EpaJunc>(network_.juncs, heightOf, insert, u"\nImportazione nodi terminata",
                     u"\nNodi assenti");
}

void NetworkDrawing::DrawReservoirs(std::u16string_view layer) {
  const auto insert = [layer](const EpaResv& n, const AcGePoint3d& p) {
    return InsertResv(p, layer, n.id, n.head, n.pattern);
  };
  drawNodes<EpaResv>(network_.resvs, heightOf, insert, u"\nImportazione serbatoi terminata",
                     u"\nSerbatoi assenti");
}

void NetworkDrawing::DrawTanks(std::u16string_view layer) {
  const auto insert = [layer](const EpaTank& n, const AcGePoint3d& p) {
    return InsertTank(p, layer, n.id, n.elev, n.initLevel, n.minLevel, n.maxLevel, n.diameter,
                      n.minVol, n.volCurve);
  };
  drawNodes<EpaTank>(network_.tanks, heightOf, insert, u"\nImportazione tanks terminata",
                     u"\nTanks assenti");
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
      points_.push_back(interpolated(wtof(row->x), wtof(row->y)));
    }
    points_.push_back(end_.point);
    return true;
  }

  const AcGePoint3dArray& points() const { return points_; }
  std::u16string_view node1() const { return start_.node; }
  std::u16string_view node2() const { return end_.node; }
  // Where the symbol of a pump or valve goes.
  AcGePoint3d symbolPoint() const {
    const bool bent = points_.size() > 2;
    const AcGePoint3d& a = bent ? points_[1] : points_.front();
    const AcGePoint3d& b = bent ? points_[2] : points_.back();
    return {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2};
  }

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

  // The height on the straight line between the ends, by the distance from the start in plan. Ends
  // that stand one above the other define no such line: the start's height is as good as any, and
  // no drawing may hold what the division would give.
  AcGePoint3d interpolated(double x, double y) const {
    const AcGePoint3d &a = start_.point, &b = end_.point;
    const double whole = std::hypot(b.x - a.x, b.y - a.y);
    const double z = a.z + (b.z - a.z) * std::hypot(x - a.x, y - a.y) / whole;
    return {x, y, std::isfinite(z) ? z : a.z};
  }

  NetworkDrawing& drawing_;
  End start_, end_;
  AcGePoint3dArray points_;
};

template <class Link, class Draw>
void NetworkDrawing::drawLinks(const RecordList<Link>& links, Draw draw, const char16_t* done,
                               const char16_t* absent) {
  LinkPath path(*this);
  bool any = false;
  for (const Link& link : links) {
    if (path.follow(link) && draw(link, path)) any = true;
  }
  tell(any, done, absent);
}

namespace {

constexpr int kPipeColor = 140, kPumpColor = 6, kValveColor = 2;

// The polyline that carries the shape of a pump or valve, and of its data the id alone.
bool drawCompanion(std::u16string_view layer, int color, std::u16string_view id,
                   const AcGePoint3dArray& points) {
  const Chain xdata(acutBuildList(1001, app::kImport, 1000, id, RTNONE));
  return HNGeometry::Create3Dpoly(points, color, layer, 0, xdata.get()).isValid();
}

}  // namespace

void NetworkDrawing::DrawPipes(std::u16string_view layer) {
  const auto draw = [layer](const EpaPipe& pipe, const LinkPath& path) {
    const Chain xdata(acutBuildList(1001, app::kImport, 1000, pipe.id, 1040, wtof(pipe.length),
                                    1040, wtof(pipe.diameter), 1040, wtof(pipe.roughness), 1040,
                                    wtof(pipe.minorLoss), 1000, pipe.status, 1000, path.node1(),
                                    1000, path.node2(), RTNONE));
    return HNGeometry::Create3Dpoly(path.points(), kPipeColor, layer, 0, xdata.get()).isValid();
  };
  drawLinks(network_.pipes, draw, u"\nImportazione rami terminata", u"\nRami assenti");
}

void NetworkDrawing::DrawPumps(std::u16string_view layer) {
  const auto draw = [layer](const EpaPump& pump, const LinkPath& path) {
    const bool drawn = drawCompanion(layer, kPumpColor, pump.id, path.points());
    Chain xdata(acutBuildList(1001, app::kImport, 1000, pump.id, 1000, path.node1(), 1000,
                              path.node2(), 1000, pump.headCurve, 1040, wtof(pump.power), 1040,
                              wtof(pump.speed), 1000, pump.speedPattern, 1000, pump.effCurve, 1040,
                              wtof(pump.price), 1000, pump.pricePattern, RTNONE));
    InsertPump(path.symbolPoint(), layer, pump.id, pump.status, std::move(xdata));
    return drawn;
  };
  drawLinks(network_.pumps, draw, u"\nImportazione pompe terminata", u"\nPompe assenti");
}

void NetworkDrawing::DrawValves(std::u16string_view layer) {
  const auto draw = [layer](const EpaValv& valve, const LinkPath& path) {
    const bool drawn = drawCompanion(layer, kValveColor, valve.id, path.points());
    const Chain xdata(acutBuildList(1001, app::kImport, 1000, valve.id, 1040, wtof(valve.diameter),
                                    1000, valve.type, 1000, valve.status, 1000, valve.setting, 1040,
                                    wtof(valve.minorLoss), 1000, path.node1(), 1000, path.node2(),
                                    RTNONE));
    InsertValv(path.symbolPoint(), layer, valve.id, valve.diameter, valve.type, valve.setting,
               valve.minorLoss, xdata);
    return drawn;
  };
  drawLinks(network_.valves, draw, u"\nImportazione valvole terminata", u"\nValvole assenti");
}

}  // namespace vessora
