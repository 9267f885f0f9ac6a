// The chain of links that a profile runs along, and what its network says of them.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "module/network/schema.h"
#include "module/results/drawing_jobs.h"

namespace vessora {

enum class LinkKind { unknown = -1, pipe = 1, pump = 2, valve = 3 };
enum class NodeKind { unknown = -1, junction = 1, reservoir = 2, tank = 3 };

// An accepted pick.
struct ProfileLink {
  LinkKind kind = LinkKind::unknown;
  int index = -1;  // in the list of its kind
  std::u16string id;
  AcDbObjectId objectId;
  AcGePoint3d first, last;  // ends of a pipe's polyline
};

struct ProfileNode {
  NodeKind kind = NodeKind::unknown;
  int index = -1;
  AcGePoint3d point;  // of the block
  std::u16string id;

  bool same(const ProfileNode& other) const { return kind == other.kind && index == other.index; }
};

// Results as they stand on an element.
struct ProfileNodeResult {
  double demand = 0, head = 0;
};
struct ProfileLinkResult {
  double flow = 0, velocity = 0, headloss = 0;
};

// A chain and its network. Of `n` links it has `n` + 1 nodes, in the order in which it runs.
struct ProfileChain {
  EpaNetwork network;
  std::unordered_map<std::u16string, ProfileNodeResult> nodeResults;  // the first of each name
  std::unordered_map<std::u16string, ProfileLinkResult> linkResults;
  bool hasResults = false;
  std::u16string name;  // of the network
  std::vector<ProfileLink> links;
  std::vector<ProfileNode> nodes;

  // Places in the network's lists by name, the first of each.
  using Places = std::unordered_map<std::u16string_view, int>;
  Places pipes, pumps, valves, juncs, resvs, tanks;
};

// Reads the network and its results out of the drawing.
void collectProfileNetwork(std::u16string_view network, ProfileChain& chain, Notices& notices);
// The first pipe, or else pump, or else valve of the name; null when there is none.
AcDbObjectId findLink(const ProfileChain& chain, std::u16string_view id);

// Fills the link from its `objectId`; what it holds counts only when the answer is valid.
LinkVerdict ClassifyLink(const ProfileChain& chain, ProfileLink& link);
// The nodes in the order in which the link names them; false when one is missing.
bool FindLinkNodes(const ProfileChain& chain, const ProfileLink& link, ProfileNode& nodeA,
                   ProfileNode& nodeB);
// False when a pipe's ends do not lie on its nodes.
bool CheckLinkCoordinates(const ProfileLink& link, const ProfileNode& nodeA,
                          const ProfileNode& nodeB);

// Puts links together one by one. The second one decides in which direction the first runs.
class ChainBuilder {
 public:
  explicit ChainBuilder(ProfileChain& chain) : chain_(chain) {}
  // Takes a link in at the free end; refused, it changes nothing.
  LinkVerdict take(AcDbObjectId id);
  // With a single link, its nodes stand in the order in which they were found.
  void finish();

 private:
  bool add(const ProfileLink& link, const ProfileNode& nodeA, const ProfileNode& nodeB);
  bool addSecond(const ProfileNode& nodeA, const ProfileNode& nodeB);
  bool addLater(const ProfileNode& nodeA, const ProfileNode& nodeB);
  ProfileChain& chain_;
  ProfileNode firstA_, firstB_;
};

// Length of a link of the chain in m: a pipe's own, else the distance of its two nodes in space.
// False when the link or a node of it cannot be found.
bool LinkLength(const ProfileChain& chain, std::u16string_view id, LinkKind kind, double& length);
// Head of a node, m; false when the node has no results.
bool NodeHead(const ProfileChain& chain, std::u16string_view id, double& head);

}  // namespace vessora
