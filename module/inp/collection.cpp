#include "module/inp/collection.h"

#include "module/network/element_data.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/schema.h"
#include "platform/format.h"

namespace vessora {
namespace {

class Collector {
 public:
  // A record is one to two kilobytes: growing lists of them would cost more than reading the
  // drawing.
  Collector(const NetworkLayers& layers, EpaNetwork& network, Notices& notices)
      : layers_(layers), network_(network), notices_(notices) {
    network.juncs.reserve(countOf(blocksOnLayerFilter(layers.junc)));
    network.resvs.reserve(countOf(blocksOnLayerFilter(layers.resv)));
    network.tanks.reserve(countOf(blocksOnLayerFilter(layers.tank)));
    network.pumps.reserve(countOf(blocksOnLayerFilter(layers.pump)));
    network.valves.reserve(countOf(blocksOnLayerFilter(layers.valv)));
    network.pipes.reserve(countOf(elementPolylineFilter(layers.pipe)));
    network.coords.reserve(network.juncs.capacity() + network.resvs.capacity() +
                           network.tanks.capacity());
  }

  // Puts the vertices that were met into their list, in one go.
  void finish() {
    network_.vertices.reserve(points_.size());
    const AcGePoint3d* at = points_.data();
    for (const Course& course : courses_) {
      for (std::size_t i = 0; i < course.vertices; ++i) {
        addPoint(network_.vertices, course.id, *at++);
      }
    }
  }

  void take(AcDb3dPolyline* polyline) {
    const std::u16string layer = polyline->layer();
    const Chain data(polyline->xData(app::kImport));
    if (!data) return;
    if (layer == layers_.pipe) {
      EpaPipe& pipe = network_.pipes.emplace_back();
      pipe.objectId = polyline->objectId();
      takeData(data, pipe);
      addVertices(polyline, pipe.id);
    } else if (layer == layers_.valv || layer == layers_.pump) {
      addVertices(polyline, data.text(1));
    }
  }

  void take(AcDbBlockReference* block) {
    const std::u16string layer = block->layer();
    if (layer == layers_.junc) {
      takeJunc(block);
    } else if (layer == layers_.resv) {
      takeResv(block);
    } else if (layer == layers_.tank) {
      takeTank(block);
    } else if (layer == layers_.pump) {
      takePump(block);
    } else if (layer == layers_.valv) {
      takeValv(block);
    }
  }

 private:
  // A junction without extended data keeps emitter and pattern of the junction before it; files
  // made so far have it so. Reservoirs and tanks alike.
  void takeJunc(AcDbBlockReference* block) {
    EpaJunc& junc = network_.juncs.emplace_back();
    if (const std::size_t n = network_.juncs.size(); n > 1) {
      junc.emitter = network_.juncs[n - 2].emitter;
      junc.pattern = network_.juncs[n - 2].pattern;
    }
    takeNode(block, junc, true);
  }
  void takeResv(AcDbBlockReference* block) {
    EpaResv& resv = network_.resvs.emplace_back();
    if (const std::size_t n = network_.resvs.size(); n > 1) {
      resv.pattern = network_.resvs[n - 2].pattern;
    }
    takeNode(block, resv, false);
  }
  void takeTank(AcDbBlockReference* block) {
    EpaTank& tank = network_.tanks.emplace_back();
    if (const std::size_t n = network_.tanks.size(); n > 1) {
      tank.volCurve = network_.tanks[n - 2].volCurve;
    }
    takeNode(block, tank, true);
  }

  template <class Node>
  void takeNode(AcDbBlockReference* block, Node& node, bool checked) {
    node.objectId = block->objectId();
    const bool named = takeAttributes(block, node);
    const Chain data(block->xData(app::kImport));
    if (checked && named && data && data.text(1) != node.id) {
      std::u16string id = node.id.str();
      checkName(data, id, notices_);
      node.id = id;
    }
    if (data) takeData(data, node, false);
    const AcGePoint3d at = block->position();
    addPoint(network_.coords, node.id, at);
  }

  void takePump(AcDbBlockReference* block) {
    const Chain data(block->xData(app::kImport));
    if (!data) return;
    EpaPump& pump = network_.pumps.emplace_back();
    pump.objectId = block->objectId();
    takeAttributes(block, pump);
    takeData(data, pump);
    pump.id = data.text(1);
    // The second node's name is printed as a template, so that a '%' in it is not kept.
    pump.node2 = platform::format(pump.node2);
  }

  // The attributes, which an edit by hand may have changed, are not looked at.
  void takeValv(AcDbBlockReference* block) {
    const Chain data(block->xData(app::kImport));
    if (!data) return;
    EpaValv& valv = network_.valves.emplace_back();
    valv.objectId = block->objectId();
    valv.status = u"None";
    takeData(data, valv);
    // Stored as text and taken as a real: a text gives 0, and files have "0.000" for every valve.
    const int setting = schema::placeOf(schema::kValv.data, schema::Field::setting);
    if (data.item(setting)) {
      storeReal(valv.setting, realAt(data, schema::kValv.data, schema::Field::setting));
    }
  }

  void addVertices(AcDb3dPolyline* polyline, std::u16string_view id) {
    const std::size_t before = points_.size();
    ReadVertices(polyline, points_);
    courses_.push_back({std::u16string(id), points_.size() - before});
  }

  static void addPoint(RecordList<EpaCoord>& list, std::u16string_view id,
                       const AcGePoint3d& point) {
    EpaCoord& row = list.emplace_back();
    row.id = id;
    storeReal(row.x, point.x);
    storeReal(row.y, point.y);
  }

  static std::size_t countOf(resbuf* filter) {
    return static_cast<std::size_t>(SelectionSet(u"_X", filter).size());
  }

  struct Course {
    std::u16string id;
    std::size_t vertices;
  };

  const NetworkLayers& layers_;
  EpaNetwork& network_;
  Notices& notices_;
  AcGePoint3dArray points_;  // of all link polylines
  std::vector<Course> courses_;
};

// Calls visit with each 3D polyline and each block of a selection.
template <class Visit>
void forEachEntity(const SelectionSet& set, Visit visit) {
  for (const AcDbObjectId id : set) {
    const Opened<AcDbEntity> entity(id);
    if (auto* polyline = entity.as<AcDb3dPolyline>()) {
      visit(polyline);
    } else if (auto* block = entity.as<AcDbBlockReference>()) {
      visit(block);
    }
  }
}

}  // namespace

void CollectNetwork(std::u16string_view name, EpaNetwork& network, Notices& notices) {
  const NetworkLayers layers(name);
  LoadPatterns(network.patterns, name);
  LoadCurves(network.curves, name);
  const SelectionSet set(u"_X", wholeNetworkFilter(layers));
  Collector collector(layers, network, notices);
  forEachEntity(set, [&](auto* entity) { collector.take(entity); });
  collector.finish();
}

namespace {

void collectNames(std::u16string_view name, std::vector<std::u16string>& nodeNames,
                  std::vector<std::u16string>& linkNames, std::vector<LinkEnds>* ends,
                  Notices& notices) {
  const NetworkLayers layers(name);
  const SelectionSet set(u"_X", wholeNetworkFilter(layers, false));
  const auto takeEnds = [&](const Chain& data, const schema::Kind& kind, AcDbObjectId id) {
    if (!ends) return;
    ends->push_back({id, &kind, std::u16string(textAt(data, kind.data, schema::Field::node1)),
                     std::u16string(textAt(data, kind.data, schema::Field::node2))});
  };
  const auto takeBlock = [&](AcDbBlockReference* block) {
    const std::u16string layer = block->layer();
    const bool node = layer == layers.junc || layer == layers.resv || layer == layers.tank;
    if (!node && layer != layers.pump && layer != layers.valv) return;
    ReadNameAttribute(block, schema::kIdTag, (node ? nodeNames : linkNames).emplace_back(),
                      notices);
    if (node || !ends) return;
    takeEnds(Chain(block->xData(app::kImport)),
             layer == layers.pump ? schema::kPump : schema::kValv, block->objectId());
  };
  const auto takePolyline = [&](AcDb3dPolyline* polyline) {
    const Chain data(polyline->xData(app::kImport));
    if (!data.item(1)) return;
    linkNames.emplace_back(data.text(1));
    takeEnds(data, schema::kPipe, polyline->objectId());
  };
  forEachEntity(set, [&](auto* entity) {
    if constexpr (std::is_same_v<decltype(entity), AcDb3dPolyline*>) {
      takePolyline(entity);
    } else {
      takeBlock(entity);
    }
  });
}

}  // namespace

void CollectNetworkNames(std::u16string_view name, std::vector<std::u16string>& nodeNames,
                         std::vector<std::u16string>& linkNames, Notices& notices) {
  collectNames(name, nodeNames, linkNames, nullptr, notices);
}

void CollectNetworkNames(std::u16string_view name, NetworkNames& names, Notices& notices) {
  collectNames(name, names.nodes, names.links, &names.ends, notices);
}

}  // namespace vessora
