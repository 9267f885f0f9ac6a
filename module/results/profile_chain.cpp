#include "module/results/profile_chain.h"

#include "module/inp/collection.h"
#include "module/network/element_data.h"
#include "platform/text.h"

namespace vessora {

using schema::Field;

namespace {

template <class Record>
void enterPlaces(const RecordList<Record>& list, ProfileChain::Places& places) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    places.try_emplace(list[i].id.view(), static_cast<int>(i));
  }
}

int placeOf(const ProfileChain::Places& places, std::u16string_view id) {
  const auto at = places.find(id);
  return at == places.end() ? -1 : at->second;
}

// The name under which an element's results are found.
std::u16string nameOf(AcDbEntity* entity) {
  const Chain data(entity->xData(app::kImport));
  return std::u16string(data.text(1));
}

void collectResults(ProfileChain& chain) {
  const NetworkLayers layers(chain.name);
  const SelectionSet nodes(u"_X", nodeBlockFilter(layers));
  for (const AcDbObjectId id : nodes) {
    const Opened<AcDbBlockReference> block(id);
    if (!block) continue;
    const Chain results(block->xData(app::kNodeResult));
    if (!results) continue;
    ProfileNodeResult row;
    row.demand = realAt(results, schema::kNodeResult, Field::demand);
    row.head = realAt(results, schema::kNodeResult, Field::head);
    std::u16string name = nameOf(block.get());
    if (name.empty()) ReadAttribute(block.get(), schema::kIdTag, name);
    chain.nodeResults.try_emplace(std::move(name), row);
  }
  const auto addLinks = [&](resbuf* filter) {
    const SelectionSet links(u"_X", filter);
    for (const AcDbObjectId id : links) {
      const Opened<AcDbEntity> entity(id);
      if (!entity) continue;
      const Chain results(entity->xData(app::kLinkResult));
      if (!results) continue;
      ProfileLinkResult row;
      row.flow = realAt(results, schema::kLinkResult, Field::flow);
      row.velocity = realAt(results, schema::kLinkResult, Field::velocity);
      row.headloss = realAt(results, schema::kLinkResult, Field::headloss);
      chain.linkResults.try_emplace(nameOf(entity.get()), row);
    }
  };
  addLinks(elementPolylineFilter(layers.pipe));
  addLinks(linkBlockFilter(layers));
  chain.hasResults = !chain.nodeResults.empty() || !chain.linkResults.empty();
}

bool findNode(const ProfileChain& chain, std::u16string_view id, ProfileNode& node) {
  const auto isOne = [&](NodeKind kind, const ProfileChain::Places& places, const auto& list) {
    const int index = placeOf(places, id);
    if (index < 0) return false;
    node = {kind, index, {}, std::u16string(id)};
    const Opened<AcDbBlockReference> block(list[static_cast<std::size_t>(index)].objectId);
    if (block) node.point = block->position();
    return static_cast<bool>(block);
  };
  return isOne(NodeKind::junction, chain.juncs, chain.network.juncs) ||
         isOne(NodeKind::reservoir, chain.resvs, chain.network.resvs) ||
         isOne(NodeKind::tank, chain.tanks, chain.network.tanks);
}

// Kind, network layer and place in the lists; the entity is open.
bool recognise(const ProfileChain& chain, const Opened<AcDbEntity>& entity, ProfileLink& link) {
  const NetworkLayers layers(chain.name);
  const std::u16string on = entity->layer();
  if (entity.as<AcDb3dPolyline>() && on == layers.pipe) {
    link.kind = LinkKind::pipe;
  } else if (entity.as<AcDbBlockReference>() && on == layers.pump) {
    link.kind = LinkKind::pump;
  } else if (entity.as<AcDbBlockReference>() && on == layers.valv) {
    link.kind = LinkKind::valve;
  }
  return link.kind != LinkKind::unknown;
}

const ProfileChain::Places& placesOf(const ProfileChain& chain, LinkKind kind) {
  return kind == LinkKind::pipe ? chain.pipes : kind == LinkKind::pump ? chain.pumps : chain.valves;
}

}  // namespace

void collectProfileNetwork(std::u16string_view network, ProfileChain& chain, Notices& notices) {
  chain.name = network;
  CollectNetwork(network, chain.network, notices);
  enterPlaces(chain.network.pipes, chain.pipes);
  enterPlaces(chain.network.pumps, chain.pumps);
  enterPlaces(chain.network.valves, chain.valves);
  enterPlaces(chain.network.juncs, chain.juncs);
  enterPlaces(chain.network.resvs, chain.resvs);
  enterPlaces(chain.network.tanks, chain.tanks);
  collectResults(chain);
}

AcDbObjectId findLink(const ProfileChain& chain, std::u16string_view id) {
  const auto in = [id](const ProfileChain::Places& places, const auto& list) {
    const int index = placeOf(places, id);
    return index < 0 ? AcDbObjectId() : list[static_cast<std::size_t>(index)].objectId;
  };
  if (const auto pipe = in(chain.pipes, chain.network.pipes); pipe.isValid()) return pipe;
  if (const auto pump = in(chain.pumps, chain.network.pumps); pump.isValid()) return pump;
  return in(chain.valves, chain.network.valves);
}

LinkVerdict ClassifyLink(const ProfileChain& chain, ProfileLink& link) {
  const Opened<AcDbEntity> entity(link.objectId);
  if (!entity || !recognise(chain, entity, link)) return LinkVerdict::notOfNetwork;
  const Chain data(entity->xData(app::kImport));
  if (!data) return LinkVerdict::notImported;
  link.id = data.text(1);
  if (!Chain(entity->xData(app::kLinkResult))) return LinkVerdict::noResults;
  if (auto* polyline = entity.as<AcDb3dPolyline>()) {
    if (polyline->getStartPoint(link.first) != Acad::eOk ||
        polyline->getEndPoint(link.last) != Acad::eOk) {
      return LinkVerdict::notOfNetwork;
    }
  }
  link.index = placeOf(placesOf(chain, link.kind), link.id);
  return link.index < 0 ? LinkVerdict::notOfNetwork : LinkVerdict::valid;
}

bool FindLinkNodes(const ProfileChain& chain, const ProfileLink& link, ProfileNode& nodeA,
                   ProfileNode& nodeB) {
  if (link.index < 0) return false;
  const auto at = static_cast<std::size_t>(link.index);
  const auto both = [&](const auto& record) {
    return findNode(chain, record.node1, nodeA) && findNode(chain, record.node2, nodeB);
  };
  switch (link.kind) {
    case LinkKind::pipe:
      return both(chain.network.pipes[at]);
    case LinkKind::pump:
      return both(chain.network.pumps[at]);
    case LinkKind::valve:
      return both(chain.network.valves[at]);
    case LinkKind::unknown:
      break;
  }
  return false;
}

bool CheckLinkCoordinates(const ProfileLink& link, const ProfileNode& nodeA,
                          const ProfileNode& nodeB) {
  if (link.kind != LinkKind::pipe) return true;
  return (samePoint(link.first, nodeA.point) && samePoint(link.last, nodeB.point)) ||
         (samePoint(link.first, nodeB.point) && samePoint(link.last, nodeA.point));
}

LinkVerdict ChainBuilder::take(AcDbObjectId id) {
  ProfileLink link;
  link.objectId = id;
  const LinkVerdict verdict = ClassifyLink(chain_, link);
  if (verdict != LinkVerdict::valid) return verdict;
  ProfileNode nodeA, nodeB;
  if (!FindLinkNodes(chain_, link, nodeA, nodeB)) return LinkVerdict::nodesNotFound;
  if (!CheckLinkCoordinates(link, nodeA, nodeB)) return LinkVerdict::misplaced;
  return add(link, nodeA, nodeB) ? verdict : LinkVerdict::notConsecutive;
}

bool ChainBuilder::add(const ProfileLink& link, const ProfileNode& nodeA,
                       const ProfileNode& nodeB) {
  if (chain_.links.empty()) {
    firstA_ = nodeA;
    firstB_ = nodeB;
  } else if (chain_.links.size() == 1 ? !addSecond(nodeA, nodeB) : !addLater(nodeA, nodeB)) {
    return false;
  }
  chain_.links.push_back(link);
  return true;
}

bool ChainBuilder::addSecond(const ProfileNode& nodeA, const ProfileNode& nodeB) {
  for (const auto& [joint, other] : {std::pair(&nodeA, &nodeB), std::pair(&nodeB, &nodeA)}) {
    if (joint->same(firstA_)) {
      chain_.nodes = {firstB_, firstA_, *other};
      return true;
    }
    if (joint->same(firstB_)) {
      chain_.nodes = {firstA_, firstB_, *other};
      return true;
    }
  }
  return false;
}

bool ChainBuilder::addLater(const ProfileNode& nodeA, const ProfileNode& nodeB) {
  const ProfileNode end = chain_.nodes.back();
  if (nodeA.same(end)) {
    chain_.nodes.push_back(nodeB);
  } else if (nodeB.same(end)) {
    chain_.nodes.push_back(nodeA);
  } else {
    return false;
  }
  return true;
}

void ChainBuilder::finish() {
  if (chain_.links.size() == 1) chain_.nodes = {firstA_, firstB_};
}

bool LinkLength(const ProfileChain& chain, std::u16string_view id, LinkKind kind, double& length) {
  ProfileLink link;
  link.kind = kind;
  link.index = kind == LinkKind::unknown ? -1 : placeOf(placesOf(chain, kind), id);
  if (link.index < 0) return false;
  if (kind == LinkKind::pipe) {
    length =
        platform::wtof(chain.network.pipes[static_cast<std::size_t>(link.index)].length.view());
    return true;
  }
  ProfileNode nodeA, nodeB;
  if (!FindLinkNodes(chain, link, nodeA, nodeB)) return false;
  length = nodeA.point.distanceTo(nodeB.point);
  return true;
}

bool NodeHead(const ProfileChain& chain, std::u16string_view id, double& head) {
  const auto at = chain.nodeResults.find(std::u16string(id));
  if (at == chain.nodeResults.end()) return false;
  head = at->second.head;
  return true;
}

}  // namespace vessora
