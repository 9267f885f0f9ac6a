#include "epanet/places.h"

#include <algorithm>
#include <cmath>

namespace epanet {
namespace {

constexpr int kSweeps = 60;
constexpr double kGoldenAngle = 2.399963229728653;

class Placing {
 public:
  explicit Placing(const Network& network) : net_(network) {}

  std::vector<MapPoint> places() {
    findNeighbours();
    takeOwn();
    findStep();
    spread();
    settle();
    part();
    layOutTheRest();
    return std::move(places_);
  }

 private:
  using Index = std::uint32_t;

  // Neighbours of node i: around_[begin_[i]] to around_[begin_[i + 1] - 1].
  void findNeighbours() {
    begin_.assign(net_.nodes.size() + 1, 0);
    for (const Link& link : net_.links) {
      ++begin_[link.node1.index + 1];
      ++begin_[link.node2.index + 1];
    }
    for (std::size_t i = 1; i < begin_.size(); ++i) begin_[i] += begin_[i - 1];
    around_.resize(begin_.back());
    std::vector<Index> next(begin_.begin(), begin_.end() - 1);
    for (const Link& link : net_.links) {
      around_[next[link.node1.index]++] = link.node2.index;
      around_[next[link.node2.index]++] = link.node1.index;
    }
  }

  void takeOwn() {
    places_.resize(net_.nodes.size());
    placed_.assign(net_.nodes.size(), false);
    parent_.assign(net_.nodes.size(), kNone);
    for (std::size_t i = 0; i < net_.nodes.size(); ++i) {
      const Node& node = net_.nodes[i];
      if (!node.x.at || !std::isfinite(node.x.value) || !std::isfinite(node.y.value)) continue;
      places_[i] = {node.x.value, node.y.value};
      placed_[i] = true;
      order_.push_back(static_cast<Index>(i));
    }
    own_ = order_.size();
  }

  // The median distance of neighbours that both have a place.
  void findStep() {
    std::vector<double> lengths;
    for (const Link& link : net_.links) {
      if (!placed_[link.node1.index] || !placed_[link.node2.index]) continue;
      const double length = distance(link.node1.index, link.node2.index);
      if (length > 0 && std::isfinite(length)) lengths.push_back(length);
    }
    if (lengths.empty()) return;
    const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
    std::nth_element(lengths.begin(), middle, lengths.end());
    step_ = *middle;
  }

  // From placed nodes outwards, each beside the one that it was reached from.
  void spread() {
    for (std::size_t at = 0; at < order_.size(); ++at) {
      const Index from = order_[at];
      for (Index i = begin_[from]; i < begin_[from + 1]; ++i) {
        const Index to = around_[i];
        if (placed_[to]) continue;
        placed_[to] = true;
        parent_[to] = from;
        places_[to] = beside(from, to);
        order_.push_back(to);
      }
    }
  }

  // What lies between placed nodes moves amid its neighbours.
  void settle() {
    for (int sweep = 0; sweep < kSweeps; ++sweep) {
      for (std::size_t at = own_; at < order_.size(); ++at) {
        const Index node = order_[at];
        MapPoint sum;
        for (Index i = begin_[node]; i < begin_[node + 1]; ++i) {
          sum.x += places_[around_[i]].x;
          sum.y += places_[around_[i]].y;
        }
        const double count = begin_[node + 1] - begin_[node];
        places_[node] = {sum.x / count, sum.y / count};
      }
    }
  }

  // Dead ends have been drawn onto the node that they hang on: they part from it again.
  void part() {
    for (std::size_t at = own_; at < order_.size(); ++at) {
      const Index node = order_[at];
      if (distance(node, parent_[node]) < step_ / 4) places_[node] = beside(parent_[node], node);
    }
  }

  void layOutTheRest() {
    double left = 0, low = 0;
    bool any = false;
    for (std::size_t at = 0; at < order_.size(); ++at) {
      const MapPoint& p = places_[order_[at]];
      left = any ? std::max(left, p.x) : p.x;
      low = any ? std::min(low, p.y) : p.y;
      any = true;
    }
    if (any) left += 4 * step_;
    // Sources first: water flows from them through the layers.
    for (const bool sources : {true, false}) {
      for (std::size_t i = 0; i < net_.nodes.size(); ++i) {
        if (placed_[i] || (sources && net_.nodes[i].kind == NodeKind::junction)) continue;
        left = layOut(static_cast<Index>(i), left, low);
      }
    }
  }

  // A part of the network, layer by layer to the right; answers where the next part may begin.
  double layOut(Index first, double left, double low) {
    std::vector<Index> layer{first}, next;
    placed_[first] = true;
    while (!layer.empty()) {
      // Each layer amid the others, lest long ones hang on one side.
      double up = low - step_ * static_cast<double>(layer.size() - 1) / 2;
      next.clear();
      for (const Index node : layer) {
        places_[node] = {left, up};
        up += step_;
        for (Index i = begin_[node]; i < begin_[node + 1]; ++i) {
          if (placed_[around_[i]]) continue;
          placed_[around_[i]] = true;
          next.push_back(around_[i]);
        }
      }
      left += step_;
      layer.swap(next);
    }
    return left + step_;
  }

  double distance(Index a, Index b) const {
    return std::hypot(places_[a].x - places_[b].x, places_[a].y - places_[b].y);
  }
  MapPoint beside(Index from, Index node) const {
    const double angle = kGoldenAngle * node;
    return {places_[from].x + step_ * std::cos(angle), places_[from].y + step_ * std::sin(angle)};
  }

  const Network& net_;
  std::vector<Index> begin_, around_, parent_, order_;
  std::vector<MapPoint> places_;
  std::vector<bool> placed_;
  std::size_t own_ = 0;  // of order_: nodes with a place of their own
  double step_ = 100;
};

}  // namespace

std::vector<MapPoint> placesOf(const Network& network) {
  const bool all = std::all_of(network.nodes.begin(), network.nodes.end(), [](const Node& node) {
    return node.x.at && std::isfinite(node.x.value) && std::isfinite(node.y.value);
  });
  return all ? std::vector<MapPoint>() : Placing(network).places();
}

}  // namespace epanet
