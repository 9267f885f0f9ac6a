// The links and nodes of a profile, read from a network in the drawing.
#include <cmath>
#include <unordered_map>

#include "cad/family/profile.h"

namespace cad {
namespace {

constexpr char16_t kElement[] = u"HN-C_EPAHNIMPORT";
constexpr char16_t kNodeResult[] = u"HN-C_NODE_RESULT";

struct Link {
  ProfileReach reach;
  std::u16string node1, node2;
  bool pipe = false;
};

// The items of one application by position, from 1.
class Items {
 public:
  Items(const TagList& tags, std::u16string_view application)
      : tags_(tags), range_(tags.xdata(application)) {}
  explicit operator bool() const { return !range_.empty(); }
  std::u16string text(int i) const {
    return has(i) ? tags_.text(range_.begin + i) : std::u16string();
  }
  double real(int i) const { return has(i) ? tags_.real(range_.begin + i) : 0; }

 private:
  bool has(int i) const { return range_.begin + i < range_.end; }
  const TagList& tags_;
  TagRange range_;
};

class ChainReader {
 public:
  ChainReader(Drawing& drawing, std::u16string_view network) : d_(drawing), network_(network) {}

  ProfileChainData read(const std::vector<std::u16string>& names) {
    for (const std::u16string& name : names) links_.try_emplace(name);
    readLinks(u"PIPE-", 7, 3, 2);
    readLinks(u"PUMP-", 2, 0, 0);
    readLinks(u"VALV-", 7, 2, 0);
    if (!order(names)) return {};
    for (const char16_t* layer : {u"JUNC-", u"RESV-", u"TANK-"}) readNodes(layer);
    return measure();
  }

 private:
  // Visits the entities of one layer of the network.
  template <class Visit>
  void onLayer(std::u16string_view prefix, Visit&& visit) {
    const std::uint32_t layer = d_.names().find(std::u16string(prefix) += network_);
    if (!layer) return;
    const auto tags = borrowTags();
    for (const std::uint32_t e : d_.index().onLayer(layer)) {
      if (d_.record(e).is(Record::erased)) continue;
      d_.parse(e, *tags);
      visit(e, *tags);
    }
  }

  // Positions of the items: the first of the two nodes, the diameter, the length (0: it has none).
  void readLinks(std::u16string_view prefix, int node, int diameter, int length) {
    const bool pipe = length > 0;
    onLayer(prefix, [&](std::uint32_t e, const TagList& tags) {
      const Record& r = d_.record(e);
      if (pipe ? !r.is(Record::poly3d) : r.type != Type::insert) return;
      const Items items(tags, kElement);
      if (!items) return;
      const auto at = links_.find(items.text(1));
      if (at == links_.end() || !at->second.reach.name.empty()) return;
      Link& link = at->second;
      link.pipe = pipe;
      link.reach.name = at->first;
      link.node1 = items.text(node);
      link.node2 = items.text(node + 1);
      if (diameter) link.reach.diameter = items.real(diameter);
      if (length) link.reach.length = items.real(length);
    });
  }

  // The course: the second link decides in which sense the first runs.
  bool order(const std::vector<std::u16string>& names) {
    for (const std::u16string& name : names) {
      const Link& link = links_.at(name);
      if (link.reach.name.empty()) return false;
      chain_.push_back(&link);
    }
    if (chain_.empty()) return false;
    const Link& first = *chain_[0];
    course_ = {first.node1, first.node2};
    for (std::size_t i = 1; i < chain_.size(); ++i) {
      const Link& link = *chain_[i];
      if (i == 1 &&
          (link.node1 == first.node1 || (link.node1 != first.node2 && link.node2 == first.node1))) {
        std::swap(course_[0], course_[1]);
      }
      const std::u16string& end = course_.back();
      if (link.node1 == end) {
        course_.push_back(link.node2);
      } else if (link.node2 == end) {
        course_.push_back(link.node1);
      } else {
        return false;
      }
    }
    for (const std::u16string& node : course_) nodes_.try_emplace(node);
    return true;
  }

  void readNodes(std::u16string_view prefix) {
    onLayer(prefix, [&](std::uint32_t e, const TagList& tags) {
      if (d_.record(e).type != Type::insert) return;
      const Items items(tags, kElement);
      const auto at = nodes_.find(items ? items.text(1) : nameAttribute(e));
      if (at == nodes_.end() || !at->second.name.empty()) return;
      ProfileStation& station = at->second;
      station.name = at->first;
      if (const int i = tags.find(10, tags.body()); i >= 0) station.point = tags.point(i);
      const Items results(tags, kNodeResult);
      station.hasResults = static_cast<bool>(results);
      station.head = results.real(2);
      station.pressure = results.real(3);
    });
  }

  std::u16string nameAttribute(std::uint32_t block) const {
    std::u16string name;
    const auto tags = borrowTags();
    for (std::uint32_t a = d_.structure().firstPart(block); a;
         a = d_.structure().nextPart(block, a)) {
      d_.parse(a, *tags);
      if (tags->textOr(2, u"", tags->subclass("AcDbAttribute")) == u"ID") {
        name = tags->textOr(1, u"", tags->subclass("AcDbText"));
      }
    }
    return name;
  }

  ProfileChainData measure() const {
    ProfileChainData data;
    double chainage = 0;
    for (std::size_t i = 0; i < course_.size(); ++i) {
      ProfileStation station = nodes_.at(course_[i]);
      if (station.name.empty() && !course_[i].empty()) return {};
      if (i > 0) {
        ProfileReach reach = chain_[i - 1]->reach;
        if (!chain_[i - 1]->pipe)
          reach.length = data.stations.back().point.distanceTo(station.point);
        chainage += reach.length;
        data.reaches.push_back(std::move(reach));
      }
      station.chainage = chainage;
      data.stations.push_back(std::move(station));
    }
    return data;
  }

  Drawing& d_;
  std::u16string_view network_;
  std::unordered_map<std::u16string, Link> links_;
  std::unordered_map<std::u16string, ProfileStation> nodes_;
  std::vector<const Link*> chain_;
  std::vector<std::u16string> course_;  // the nodes in order
};

}  // namespace

ProfileChainData readProfileChain(Drawing& drawing, std::u16string_view network,
                                  const std::vector<std::u16string>& links) {
  return ChainReader(drawing, network).read(links);
}

}  // namespace cad
