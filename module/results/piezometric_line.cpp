// The hydraulic grade line over picked links, in space: the command draws it from the heads that
// stand on the nodes.
#include "module/dialogs/elenco_reti.h"
#include "module/network/element_data.h"
#include "module/network/point_grid.h"
#include "module/network/schema.h"
#include "module/results/drawing_jobs.h"
#include "platform/decimals.h"

namespace vessora {

namespace {

constexpr char16_t kDots[] = u"HNdots";
constexpr double kSamePlace = 0.001;

struct NodeHead {
  double head = 0;
  int order = 0;  // of the block in the selection
};

struct ListOfVertices {
  explicit ListOfVertices(AcDbObjectId id)
      : list(AllocaLISTADATIPOLI(id, 1, 0.0, 0, 0.0, 0.0, 0, nullptr, nullptr, 0)) {}
  ListOfVertices(const ListOfVertices&) = delete;
  ListOfVertices& operator=(const ListOfVertices&) = delete;
  ~ListOfVertices() { LiberaLISTADATIPOLI(list); }
  listadatipoli* list;
};

class GradeLine {
 public:
  GradeLine(std::u16string_view network, double textHeight)
      : textHeight_(textHeight),
        line_(schema::layerName(layer::kGradeLine, network)),
        construction_(schema::layerName(layer::kGradeConstruction, network)),
        heads_(schema::layerName(layer::kGradeHeads, network)),
        pressures_(schema::layerName(layer::kGradePressures, network)) {
    makeLayer(line_, 4);
    makeLayer(construction_, 7);
    makeLayer(heads_, 140);
    makeLayer(pressures_, 2);
  }

  void draw(const SelectionSet& picked) {
    findNodes(picked);
    for (const AcDbObjectId id : picked) {
      // Closed again before anything is drawn: drawing opens other objects.
      if (Opened<AcDb3dPolyline> polyline{id}; !polyline) continue;
      const ListOfVertices vertices(id);
      if (vertices.list) drawLink(*vertices.list);
    }
  }

 private:
  static void makeLayer(std::u16string_view name, int color) {
    HNGeometry::createNewLayer(name, nullptr, nullptr, 256);
    HNGeometry::setColorLtypeLayer(name, color, u"ByLayer");
  }

  // Any block of the selection with results can stand at a link's end.
  void findNodes(const SelectionSet& picked) {
    int order = 0;
    for (const AcDbObjectId id : picked) {
      const Opened<AcDbBlockReference> block(id);
      if (!block) continue;
      const Chain results(block->xData(app::kNodeResult));
      if (!results) continue;
      const double head = realAt(results, schema::kNodeResult, schema::Field::head);
      nodes_.add(block->position(), {head, ++order});
    }
  }

  // How many nodes stand at a point; the latest of them gives the head.
  int nodesAt(const AcGePoint3d& point, double& head) {
    int count = 0, latest = 0;
    nodes_.visit(point, [&](const NodeHead& node) {
      ++count;
      if (node.order > latest) {
        latest = node.order;
        head = node.head;
      }
      return false;
    });
    return count;
  }

  void drawLink(listadatipoli& link) {
    const AcGePoint3d start = link.primo, end = link.ultimo;
    double startHead = 0, endHead = 0;
    // Two nodes at one end, or none, leave it open which head is meant.
    if (nodesAt(start, startHead) + nodesAt(end, endHead) != 2) return;
    AcDbObjectId dots;
    if (!HNGeometry::iterateLinetypeTable(kDots, dots)) {
      HNGeometry::addLineType(kDots, u".......", {0, -0.25});
    }
    const AcGePoint3d above(start.x, start.y, startHead), aboveEnd(end.x, end.y, endHead);
    HNGeometry::createLine(start, above, construction_, kDots, 7);
    HNGeometry::createLine(end, aboveEnd, construction_, kDots, 7);
    text(pressures_, {start.x, start.y, (startHead + start.z) / 2}, startHead - start.z);
    text(pressures_, {end.x, end.y, (endHead + end.z) / 2}, endHead - end.z);
    text(heads_, above, startHead);
    text(heads_, aboveEnd, endHead);

    const double slope = link.lunghezza != 0 ? (endHead - startHead) / link.lunghezza : 0;
    for (datipoli3d* v = link.dati3d; v; v = v->next) v->point.z = startHead + slope * v->prog;
    HNGeometry::Create3Dpoly_da_DATIPOLI3D(link.numvertici, link.dati3d, nullptr, 4, line_);
  }

  void text(std::u16string_view layer, const AcGePoint3d& at, double value) const {
    HNGeometry::HNTextCommandTesto(layer, u"Standard", at, textHeight_, 0,
                                   platform::threeDecimals(value), u"Left", 256);
  }

  const double textHeight_;
  const std::u16string line_, construction_, heads_, pressures_;
  PointGrid<NodeHead> nodes_{kSamePlace};
};

resbuf* elementFilter(std::u16string_view network) {
  const NetworkLayers layers(network);
  return acutBuildList(-4, u"<or", 8, layers.junc, 8, layers.resv, 8, layers.tank, 8, layers.pipe,
                       8, layers.pump, 8, layers.valv, -4, u"or>", RTNONE);
}

}  // namespace

void drawGradeLine(std::u16string_view network, double textHeight) {
  GradeLine line(network, textHeight);
  line.draw(SelectionSet(u"_X", elementFilter(network)));
}

int EpaCommands::epapiezo() {
  if (!readInstallPath(installPath)) return kAbandoned;
  if (!chooseNetwork(AqueductNetworks::refused)) return kAbandoned;
  networkNames.clear();
  double textHeight = 0;
  if (acedGetReal(TraduciTesto(u"\nAltezza del testo [u.d.]: "), textHeight) != RTNORM) {
    return kAbandoned;
  }
  // The layers are there even when nothing is picked.
  GradeLine line(currentNetwork, textHeight);
  const SelectionSet picked(nullptr, elementFilter(currentNetwork));
  if (!picked.ok()) return kAbandoned;
  line.draw(picked);
  return kRan;
}

}  // namespace vessora
