// The links and nodes of a profile, read from a network in the drawing.
#include <cmath>
#include <unordered_map>

#include "cad/family/profile.h"
#include "schema/element.h"
#include "schema/names.h"

namespace cad {
namespace {

using schema::Field;

struct Link {
  ProfileReach reach;
  std::u16string node1, node2;
  bool pipe = false;
};

// The items of one list by field.
class Items {
 public:
  Items(const TagList& tags, const schema::List& list)
      : tags_(tags), list_(list), range_(tags.xdata(list.application)) {}
  explicit operator bool() const { return !range_.empty(); }
  std::u16string text(Field field) const {
    const int i = at(field);
    return i ? tags_.text(i) : std::u16string();
  }
  double real(Field field) const {
    const int i = at(field);
    return i ? tags_.real(i) : 0;
  }

 private:
  // Where the item stands; 0 when there is none.
  int at(Field field) const {
    const int place = schema::placeOf(list_, field);
    return place && range_.begin + place < range_.end ? range_.begin + place : 0;
  }
  const TagList& tags_;
  const schema::List& list_;
  TagRange range_;
};

class ChainReader {
 public:
  ChainReader(Drawing& drawing, std::u16string_view network) : d_(drawing), network_(network) {}

  ProfileChainData read(const std::vector<std::u16string>& names) {
    for (const std::u16string& name : names) links_.try_emplace(name);
    for (const auto* kind : {&schema::kPipe, &schema::kPump, &schema::kValv}) readLinks(*kind);
    if (!order(names)) return {};
    for (const auto* kind : {&schema::kJunc, &schema::kResv, &schema::kTank}) readNodes(*kind);
    return measure();
  }

 private:
  // Visits the entities of one layer of the network.
  template <class Visit>
  void onLayer(std::u16string_view prefix, Visit&& visit) {
    const std::uint32_t layer = d_.names().find(schema::layerName(prefix, network_));
    if (!layer) return;
    const auto tags = borrowTags();
    for (const std::uint32_t e : d_.index().onLayer(layer)) {
      if (d_.record(e).is(Record::erased)) continue;
      d_.parse(e, *tags);
      visit(e, *tags);
    }
  }

  void readLinks(const schema::Kind& kind) {
    const bool pipe = *kind.block == 0;
    onLayer(kind.layer, [&](std::uint32_t e, const TagList& tags) {
      const Record& r = d_.record(e);
      if (pipe ? !r.is(Record::poly3d) : r.type != Type::insert) return;
      const Items items(tags, kind.data);
      if (!items) return;
      const auto at = links_.find(items.text(Field::id));
      if (at == links_.end() || !at->second.reach.name.empty()) return;
      Link& link = at->second;
      link.pipe = pipe;
      link.reach.name = at->first;
      link.node1 = items.text(Field::node1);
      link.node2 = items.text(Field::node2);
      link.reach.diameter = items.real(Field::diameter);
      link.reach.length = items.real(Field::length);
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

  void readNodes(const schema::Kind& kind) {
    onLayer(kind.layer, [&](std::uint32_t e, const TagList& tags) {
      if (d_.record(e).type != Type::insert) return;
      const Items items(tags, kind.data);
      const auto at = nodes_.find(items ? items.text(Field::id) : nameAttribute(e));
      if (at == nodes_.end() || !at->second.name.empty()) return;
      ProfileStation& station = at->second;
      station.name = at->first;
      if (const int i = tags.find(10, tags.body()); i >= 0) station.point = tags.point(i);
      const Items results(tags, schema::kNodeResult);
      station.hasResults = static_cast<bool>(results);
      station.head = results.real(Field::head);
      station.pressure = results.real(Field::pressure);
    });
  }

  std::u16string nameAttribute(std::uint32_t block) const {
    std::u16string name;
    const auto tags = borrowTags();
    for (std::uint32_t a = d_.structure().firstPart(block); a;
         a = d_.structure().nextPart(block, a)) {
      d_.parse(a, *tags);
      if (tags->textOr(2, u"", tags->subclass("AcDbAttribute")) == schema::kIdTag) {
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
