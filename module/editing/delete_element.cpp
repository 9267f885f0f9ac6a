// Deleting one element with all that belongs to it: the job.
#include <algorithm>

#include "module/editing/change_jobs.h"
#include "module/editing/drawn_links.h"
#include "module/host/module.h"
#include "module/network/links_at.h"

namespace vessora {

namespace {

// --- what a part belongs to ----------------------------------------------------------------------

enum class Kind { none, node, pipe, halfOfLink, arrow };

struct Found {
  Kind kind = Kind::none;
  AcDbObjectId id;
  std::u16string name;
  AcGePoint3d place;  // of a block
};

Found entityOf(const NetworkLayers& layers, std::u16string_view network, AcDbObjectId id) {
  Found found;
  const Opened<AcDbEntity> entity(id);
  if (!entity) return found;
  found.id = id;
  found.name = nameOf(*entity.get());
  const std::u16string layer = entity->layer();
  const bool linkLayer = layer == layers.valv || layer == layers.pump;
  if (entity.as<AcDb3dPolyline>()) {
    found.kind = layer == layers.pipe ? Kind::pipe : linkLayer ? Kind::halfOfLink : Kind::none;
  } else if (const auto* block = entity.as<AcDbBlockReference>()) {
    found.place = block->position();
    if (layer == layers.junc || layer == layers.resv || layer == layers.tank) {
      found.kind = Kind::node;
    } else if (linkLayer) {
      found.kind = Kind::halfOfLink;
    } else if (layer == schema::layerName(layer::kFlowIn, network) ||
               layer == schema::layerName(layer::kFlowOut, network)) {
      found.kind = Kind::arrow;
    }
  }
  return found;
}

// An arrow belongs to the node at which it stands.
Found elementOf(const NetworkLayers& layers, std::u16string_view network, AcDbObjectId id) {
  Found found = entityOf(layers, network, id);
  if (found.kind != Kind::arrow) return found;
  const std::vector<AcDbObjectId> nodes = nodesAt(layers, found.place);
  return nodes.empty() ? Found() : entityOf(layers, network, nodes.front());
}

// --- the links of a node -------------------------------------------------------------------------

// Links that name the node or end at it, each once.
std::vector<std::u16string> linksOf(const NetworkLayers& layers, std::u16string_view network,
                                    const Found& node) {
  std::vector<std::u16string> links;
  NetworkNames names;
  Notices differing;  // told by those who collect a network
  CollectNetworkNames(network, names, differing);
  for (std::size_t i = 0; i < names.ends.size(); ++i) {
    const LinkEnds& link = names.ends[i];
    if (link.node1 == node.name || link.node2 == node.name) links.push_back(names.links[i]);
  }
  for (const LinkAt& link : linksAt(layers, node.place)) {
    const Opened<AcDbEntity> polyline(link.id);
    const std::u16string name = nameOf(*polyline.get());
    if (std::find(links.begin(), links.end(), name) == links.end()) links.push_back(name);
  }
  return links;
}

}  // namespace

ChangeResult deleteElement(std::u16string_view network, AcDbObjectId id, bool evenIfLinked) {
  ChangeResult result;
  const NetworkLayers layers(network);
  const Found element = elementOf(layers, network, id);
  std::vector<AcDbObjectId> parts;
  if (element.kind == Kind::none) return result;
  if (element.kind == Kind::node) {
    result.links = linksOf(layers, network, element);
    if (!result.links.empty() && !evenIfLinked) {
      result.verdict = ChangeVerdict::linked;
      return result;
    }
    parts = arrowsAt(network, element.place);
    warnOfTracing(network, element.name, result.warnings);
    if (!result.links.empty()) {
      result.warnings.push_back({NoticeCode::nodeGone, element.name, joined(result.links)});
    }
  } else if (element.kind == Kind::halfOfLink) {
    const AcDbObjectId other = companionOf(element.id);
    if (other.isNull()) {
      result.warnings.push_back({NoticeCode::partMissing, element.name});
    } else {
      parts.push_back(other);
    }
  }
  parts.push_back(element.id);
  for (const AcDbObjectId part : parts) {
    const Opened<AcDbEntity> entity(part, AcDb::kForWrite);
    if (!entity || entity->erase() != Acad::eOk) return result;
  }
  result.verdict = ChangeVerdict::done;
  return result;
}

}  // namespace vessora
