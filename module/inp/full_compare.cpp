#include "module/inp/full_compare.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

#include "module/inp/full_series.h"
#include "module/inp/full_values.h"
#include "module/network/element_data.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/point_grid.h"
#include "module/network/settings_store.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {
namespace {

using epanet::kNone;
using epanet::LinkKind;
using epanet::NodeKind;
using schema::Field;

constexpr double kSamePlace = 1e-6;  // per axis

bool sameSpot(const AcGePoint3d& a, const AcGePoint3d& b) {
  return std::fabs(a.x - b.x) <= kSamePlace && std::fabs(a.y - b.y) <= kSamePlace;
}

const schema::Kind& kindOfNode(NodeKind kind) {
  return kind == NodeKind::junction    ? schema::kJunc
         : kind == NodeKind::reservoir ? schema::kResv
                                       : schema::kTank;
}
const schema::Kind& kindOfLink(LinkKind kind) {
  return kind == LinkKind::pipe   ? schema::kPipe
         : kind == LinkKind::pump ? schema::kPump
                                  : schema::kValv;
}

AcGePoint3dArray interior(const AcGePoint3dArray& points) {
  return points.size() < 3 ? AcGePoint3dArray()
                           : AcGePoint3dArray(points.begin() + 1, points.end() - 1);
}

// --- the texts that an element of the file would have --------------------------------------------

// The records of the element at hand, one of each kind: they are large, and one is filled for each
// element.
class Wanted {
 public:
  explicit Wanted(const FullForm& form) : form_(form) {}
  const schema::Kind& kind() const { return *kind_; }
  std::uint32_t index() const { return index_; }
  void take(const schema::Kind& kind, std::uint32_t index) {
    kind_ = &kind;
    index_ = index;
    if (kind_ == &schema::kJunc) form_.fill(index, junc_);
    if (kind_ == &schema::kResv) form_.fill(index, resv_);
    if (kind_ == &schema::kTank) form_.fill(index, tank_);
    if (kind_ == &schema::kPipe) form_.fill(index, pipe_);
    if (kind_ == &schema::kPump) form_.fill(index, pump_);
    if (kind_ == &schema::kValv) form_.fill(index, valv_);
  }
  std::u16string_view text(Field field) const {
    if (kind_ == &schema::kJunc) return textOf(junc_, field);
    if (kind_ == &schema::kResv) return textOf(resv_, field);
    if (kind_ == &schema::kTank) return textOf(tank_, field);
    if (kind_ == &schema::kPipe) return textOf(pipe_, field);
    if (kind_ == &schema::kPump) return textOf(pump_, field);
    return textOf(valv_, field);
  }

 private:
  const FullForm& form_;
  const schema::Kind* kind_ = nullptr;
  std::uint32_t index_ = kNone;
  EpaJunc junc_;
  EpaResv resv_;
  EpaTank tank_;
  EpaPipe pipe_;
  EpaPump pump_;
  EpaValv valv_;
};

// --- the comparison ------------------------------------------------------------------------------

class Comparing {
 public:
  Comparing(std::u16string_view name, const epanet::Network& network,
            const std::vector<Rename>& renames, Match match, const std::vector<Field>& counted)
      : name_(name),
        network_(network),
        form_(network, renames),
        everything_(match == Match::everything),
        byName_(match == Match::byName),
        counted_(counted),
        wanted_(form_),
        entities_(name),
        nodes_(network.nodes.size()),
        links_(network.links.size()),
        courses_(network.links.size()) {
    result_.renames = renames;
    LoadPatterns(patterns_, name);
    LoadCurves(curves_, name);
    if (!renames.empty()) unrenamed_.emplace(network);
  }

  // Renames that were made in both places of an element, but not noted: by the classic way.
  const std::vector<Rename>& unnoted() const { return unnoted_; }

  Comparison run() {
    entities_.visitBeside([this](const DrawnEntity& entity) { meet(entity); });
    sortOutCopies();
    adoptByName();
    findGone();
    takeNew();
    checkEnds();
    compareSeries(form_, everything_, patterns_, curves_, result_);
    EpaSettings settings;
    if (LoadSettings(settings, name_)) result_.settings = changedSettings(form_, settings);
    keepLiveRenames();
    return std::move(result_);
  }

 private:
  // Asks nothing of the drawing: it goes on beside the reading.
  void meet(const DrawnEntity& entity) {
    if (entity.hasData && !entity.isCourse) ++result_.drawn;
    const std::uint32_t index = tied(entity);
    if (index == kNone) {
      if (entity.hasData) others_.push_back(entity.id);
      return;
    }
    AcDbObjectId& place = placeOf(entity, index);
    if (!place.isNull()) {
      twice_.push_back({entity.id, index});
      return;
    }
    place = entity.id;
    compare(entity, index);
  }

  // The element of the text that an entity belongs to.
  std::uint32_t tied(const DrawnEntity& entity) const {
    if (!entity.tie && !byName_) return kNone;
    return ofKind(entity, byName_ ? entity.name() : std::u16string_view(*entity.tie));
  }

  // The element that the text calls so; none when it is of another kind.
  std::uint32_t ofKind(const DrawnEntity& entity, std::u16string_view id) const {
    if (entity.isNode()) {
      const std::uint32_t node = form_.nodeKeptAs(id);
      return node != kNone && &kindOfNode(network_.nodes[node].kind) == entity.kind ? node : kNone;
    }
    const std::uint32_t link = form_.linkKeptAs(id);
    return link != kNone && &kindOfLink(network_.links[link].kind) == entity.kind ? link : kNone;
  }

  AcDbObjectId& placeOf(const DrawnEntity& entity, std::uint32_t index) {
    return entity.isNode() ? nodes_[index] : entity.isCourse ? courses_[index] : links_[index];
  }

  void compare(const DrawnEntity& entity, std::uint32_t index) {
    if (entity.isCourse) {
      ChangedElement change{entity.kind, index, {}, {}, {}};
      compareVertices(entity, index, change);
      keep(std::move(change));
      return;
    }
    wanted_.take(*entity.kind, index);
    ChangedElement change{entity.kind, index, {}, {}, {}};
    std::size_t at = 0;
    for (const schema::Row& row : entity.kind->data.rows) {
      const DrawnEntity::Value& value = entity.values[at++];
      if (row.field == Field::none) continue;
      if (row.field == Field::id) {
        compareName(entity, value);
        continue;
      }
      if (!isFormerEnd(row.field, value, index)) compareField(row.field, value, change);
    }
    if (entity.isNode()) comparePlace(entity, index, change);
    if (entity.kind == &schema::kPipe) compareVertices(entity, index, change);
    keep(std::move(change));
  }

  // Whether the field is an end of a link that still has the name from before the node's rename.
  bool isFormerEnd(Field field, const DrawnEntity::Value& value, std::uint32_t index) const {
    if (field != Field::node1 && field != Field::node2) return false;
    const epanet::Link& link = network_.links[index];
    const std::uint32_t end = field == Field::node1 ? link.node1.index : link.node2.index;
    return value.data == form_.words().text(network_.nodes[end].id) &&
           form_.nodeNamed(value.data) == kNone;
  }

  void compareName(const DrawnEntity& entity, const DrawnEntity::Value& value) {
    const std::u16string_view want = wanted_.text(Field::id);
    const bool attribute = value.onAttribute && value.attribute != want;
    const bool data = value.onData && value.data != want;
    if (!attribute && !data) return;
    if (data && (!value.onAttribute || value.attribute == value.data)) {
      unnoted_.push_back({entity.isNode() ? RenamedKind::node : RenamedKind::link,
                          entity.tie.value_or(value.data), value.data});
      return;
    }
    result_.notices.push_back(
        {NoticeCode::nameByHand, std::u16string(want), attribute ? value.attribute : value.data});
  }

  void compareField(Field field, const DrawnEntity::Value& value, ChangedElement& change) {
    const std::u16string_view want = wanted_.text(field);
    const bool attribute = value.onAttribute && !sameText(field, value.attribute, want);
    // Without kept rows nothing tells which of two copies was edited: what is read on the plan.
    const bool second = value.onData && !(byName_ && value.onAttribute);
    const bool data = second && !sameText(field, value.data, want);
    if (!attribute && !data && !everything_ && std::ranges::count(counted_, field) == 0) return;
    if (!value.onAttribute && !value.onData) return;
    const std::u16string& now = attribute || !value.onData ? value.attribute : value.data;
    if (!everything_ && namesRenamed(field, now)) return;
    const bool byCurve = field == Field::setting && wanted_.text(Field::type) == u"GPV";
    if (!isName(field) && field != Field::none && !byCurve && !isNumber(now) && !retyped(change)) {
      result_.notices.push_back(
          {NoticeCode::notNumber, std::u16string(wanted_.text(Field::id)), now});
      return;
    }
    change.fields.push_back({field, std::u16string(want), now});
  }

  // Whether an element names a thing as the text does, which is called otherwise by now: its rename
  // has not reached the element, but the row all the same. A new thing may have the name, though.
  bool namesRenamed(Field field, std::u16string_view now) {
    if (!unrenamed_ || !isName(field) || field == Field::status || field == Field::type) {
      return false;
    }
    const auto isDrawn = [now](const auto& records) {
      return std::any_of(records.begin(), records.end(),
                         [now](const auto& record) { return record.id == now; });
    };
    if (field != Field::node1 && field != Field::node2 &&
        (isDrawn(patterns_) || isDrawn(curves_))) {
      return false;
    }
    Wanted kept(*unrenamed_);
    kept.take(wanted_.kind(), wanted_.index());
    return kept.text(field) == now;
  }

  static bool isNumber(std::u16string_view text) {
    text = trimmed(text);
    return text.empty() || platform::parseReal(text).has_value();
  }
  // A valve of another type may have a curve for a setting.
  static bool retyped(const ChangedElement& change) {
    return std::ranges::any_of(change.fields,
                               [](const ChangedField& own) { return own.field == Field::type; });
  }

  // Heights of symbols are the attribute's second copy.
  void comparePlace(const DrawnEntity& entity, std::uint32_t index, ChangedElement& change) {
    // A file without a place for a node says nothing of it.
    if (byName_ && form_.isPlacedByUs(index)) return;
    const AcGePoint3d kept = form_.placeOf(index);
    if (!sameSpot(entity.position, kept) || (everything_ && !form_.isPlacedByUs(index))) {
      change.place = entity.position;
    }
    if (byName_) return;
    const Field height = entity.kind == &schema::kResv ? Field::head : Field::elevation;
    const bool told = std::any_of(change.fields.begin(), change.fields.end(),
                                  [&](const ChangedField& f) { return f.field == height; });
    if (told || std::fabs(entity.position.z - kept.z) <= kSamePlace) return;
    char digits[40];
    const char* const end = platform::writeReal(digits, entity.position.z);
    change.fields.push_back(
        {height, std::u16string(wanted_.text(height)), platform::widen({digits, end})});
  }

  void compareVertices(const DrawnEntity& entity, std::uint32_t index, ChangedElement& change) {
    std::uint32_t kept = network_.links[index].firstVertex;
    bool same = !everything_;
    for (std::size_t i = 1; i + 1 < entity.points.size() && same; ++i) {
      if (kept == kNone) {
        same = false;
        break;
      }
      const epanet::Vertex& vertex = network_.vertices[kept];
      same = sameSpot(entity.points[i], {vertex.x.value, vertex.y.value, 0});
      kept = vertex.next;
    }
    if (same && kept == kNone) return;
    change.vertices = interior(entity.points);
    if (change.vertices->empty() && network_.links[index].firstVertex == kNone) {
      change.vertices.reset();
    }
  }

  // What is known of one element stands together, courses with their blocks.
  void keep(ChangedElement change) {
    if (change.empty()) return;
    result_.changed.push_back(std::move(change));
  }

  // --- copies

  // Of entities with one tie the one at its kept place is the original, else the first.
  void sortOutCopies() {
    for (const auto& [id, index] : twice_) {
      if (!entities_.read(id)) continue;
      const DrawnEntity second = entities_.entity();
      AcDbObjectId& first = placeOf(second, index);
      if (atKeptPlace(second, index) && entities_.read(first) &&
          !atKeptPlace(entities_.entity(), index)) {
        forget(second, index);
        others_.push_back(first);
        first = id;
        compare(second, index);
      } else {
        others_.push_back(id);
      }
    }
  }

  bool atKeptPlace(const DrawnEntity& entity, std::uint32_t index) const {
    if (entity.isNode()) return sameSpot(entity.position, form_.placeOf(index));
    AcGePoint3dArray course;
    form_.course(index, course);
    if (entity.points.empty()) {
      AcGePoint3d place;
      return linkBlockPlace(course, place) && sameSpot(entity.position, place);
    }
    return sameSpot(entity.points.front(), course.front()) &&
           sameSpot(entity.points.back(), course.back());
  }

  void forget(const DrawnEntity& entity, std::uint32_t index) {
    std::erase_if(result_.changed, [&](const ChangedElement& change) {
      const bool course = change.fields.empty() && change.vertices && entity.kind != &schema::kPipe;
      return change.kind == entity.kind && change.index == index &&
             (entity.isNode() || course == entity.isCourse);
    });
  }

  // What has no tie, because a program has dropped it or somebody has drawn the element again, is
  // the element of its name and kind, if that is not drawn otherwise.
  void adoptByName() {
    std::erase_if(others_, [this](AcDbObjectId id) {
      if (!entities_.read(id) || entities_.entity().tie || byName_) return false;
      const DrawnEntity entity = entities_.entity();
      const std::uint32_t index = ofKind(entity, entity.name());
      if (index == kNone) return false;
      AcDbObjectId& place = placeOf(entity, index);
      const std::u16string now = entity.isNode() ? form_.nodeName(index) : form_.linkName(index);
      if (!place.isNull() || now != entity.name()) return false;
      place = id;
      compare(entity, index);
      return true;
    });
  }

  // --- what is gone

  void findGone() {
    for (std::uint32_t i = 0; i < nodes_.size(); ++i) {
      if (nodes_[i].isNull()) result_.goneNodes.push_back(i);
    }
    for (std::uint32_t i = 0; i < links_.size(); ++i) {
      if (links_[i].isNull()) {
        result_.goneLinks.push_back(i);
      } else if (courses_[i].isNull() && network_.links[i].kind != LinkKind::pipe) {
        result_.notices.push_back({NoticeCode::courseGone, form_.linkName(i)});
      }
    }
    const std::unordered_set<std::uint32_t> gone(result_.goneNodes.begin(),
                                                 result_.goneNodes.end());
    if (gone.empty()) return;
    for (std::uint32_t i = 0; i < links_.size(); ++i) {
      if (links_[i].isNull()) continue;
      for (const std::uint32_t end :
           {network_.links[i].node1.index, network_.links[i].node2.index}) {
        if (gone.contains(end)) {
          result_.notices.push_back(
              {NoticeCode::endUnknown, form_.linkName(i), form_.nodeName(end)});
        }
      }
    }
  }

  // --- what is new

  void takeNew() {
    if (others_.empty()) return;
    for (std::uint32_t i = 0; i < nodes_.size(); ++i) {
      if (nodes_[i].isNull()) continue;
      nodeNames_.insert(form_.nodeName(i));
      if (entities_.read(nodes_[i])) addPlace(entities_.entity().position, form_.nodeName(i));
    }
    for (std::uint32_t i = 0; i < links_.size(); ++i) {
      if (!links_[i].isNull()) linkNames_.insert(form_.linkName(i));
    }
    for (const AcDbObjectId id : others_) {
      if (!entities_.read(id) || !entities_.entity().isCourse) continue;
      courseOfName_.emplace(courseKey(entities_.entity()), entities_.entity().points);
    }
    // Links end on nodes; copies have to leave their names to what is not one.
    for (const bool nodes : {true, false}) {
      for (const bool copies : {false, true}) takeNew(nodes, copies);
    }
  }

  void takeNew(bool nodes, bool copies) {
    for (const AcDbObjectId id : others_) {
      if (!entities_.read(id)) continue;
      const DrawnEntity entity = entities_.entity();
      if (entity.isCourse || entity.isNode() != nodes) continue;
      if ((tied(entity) != kNone) == copies) takeNew(entity);
    }
  }

  void addPlace(const AcGePoint3d& place, const std::u16string& name) {
    nodePlaces_.add({place.x, place.y, 0}, name);
  }

  void takeNew(const DrawnEntity& entity) {
    NewElement element;
    element.kind = entity.kind;
    element.entity = entity.id;
    const bool copy = tied(entity) != kNone;
    auto& names = entity.isNode() ? nodeNames_ : linkNames_;
    std::u16string wanted(entity.text(Field::id));
    if (wanted.empty()) wanted = entity.name();
    if (wanted.empty()) wanted = entity.kind->layer[0] == u'P' ? u"P1" : u"N1";
    element.name = names.contains(wanted) ? freeName(wanted, names) : wanted;
    names.insert(element.name);
    if (element.name != wanted) {
      element.copyOf = wanted;
      result_.notices.push_back({NoticeCode::elementCopied, wanted, element.name});
    }
    if (entity.isNode()) {
      element.place = entity.position;
      addPlace(entity.position, element.name);
    } else {
      const AcGePoint3dArray course =
          entity.kind == &schema::kPipe ? entity.points : courseOf(entity);
      element.vertices = interior(course);
      element.node1 = endOf(entity, Field::node1, copy, course, true);
      element.node2 = endOf(entity, Field::node2, copy, course, false);
      for (const std::u16string& end : {element.node1, element.node2}) {
        if (!nodeNames_.contains(end)) {
          result_.notices.push_back({NoticeCode::endUnknown, element.name, end});
        }
      }
    }
    result_.added.push_back(std::move(element));
  }

  // Ends that have been changed to what nobody is called.
  void checkEnds() {
    for (const ChangedElement& element : result_.changed) {
      for (const ChangedField& field : element.fields) {
        if (field.field != Field::node1 && field.field != Field::node2) continue;
        const std::uint32_t node = form_.nodeNamed(field.now);
        if ((node != kNone && !nodes_[node].isNull()) || nodeNames_.contains(field.now)) continue;
        result_.notices.push_back(
            {NoticeCode::endUnknown, form_.linkName(element.index), field.now});
      }
    }
  }

  static std::u16string courseKey(const DrawnEntity& entity) {
    return entity.kind->layer + std::u16string(entity.name());
  }

  static std::u16string freeName(std::u16string_view wanted,
                                 const std::unordered_set<std::u16string>& names) {
    for (int n = 2;; ++n) {
      const std::u16string tail = platform::format(u"-%d", n);
      std::u16string name(wanted.substr(0, 31 - tail.size()));
      name += tail;
      if (!names.contains(name)) return name;
    }
  }

  // A copy ends on the nodes that it lies on, a new link on those that it names.
  std::u16string endOf(const DrawnEntity& entity, Field field, bool copy,
                       const AcGePoint3dArray& course, bool first) {
    const std::u16string named(entity.text(field));
    if (!copy && nodeNames_.contains(named)) return named;
    if (!course.empty()) {
      const AcGePoint3d& at = first ? course.front() : course.back();
      std::u16string found;
      nodePlaces_.visit({at.x, at.y, 0}, [&](const std::u16string& name) {
        found = name;
        return false;
      });
      if (!found.empty()) return found;
    }
    return named;
  }

  // The course that belongs to a new pump or valve: of its name, and of several the nearest.
  AcGePoint3dArray courseOf(const DrawnEntity& entity) const {
    AcGePoint3dArray best;
    double nearest = HUGE_VAL;
    const auto [from, to] = courseOfName_.equal_range(courseKey(entity));
    for (auto at = from; at != to; ++at) {
      AcGePoint3d place;
      if (!linkBlockPlace(at->second, place)) continue;
      const double distance = std::hypot(place.x - entity.position.x, place.y - entity.position.y);
      if (distance >= nearest) continue;
      nearest = distance;
      best = at->second;
    }
    return best;
  }

  // A rename of what is gone needs no row.
  void keepLiveRenames() {
    std::erase_if(result_.renames, [this](const Rename& rename) {
      const std::string id = form_.words().bytes(rename.kept);
      switch (rename.kind) {
        case RenamedKind::node: {
          const std::uint32_t node = network_.findNode(id);
          return node == kNone || nodes_[node].isNull();
        }
        case RenamedKind::link: {
          const std::uint32_t link = network_.findLink(id);
          return link == kNone || links_[link].isNull();
        }
        case RenamedKind::pattern:
          return network_.findPattern(id) == kNone;
        default:
          return network_.findCurve(id) == kNone;
      }
    });
  }

  std::u16string_view name_;
  const epanet::Network& network_;
  FullForm form_;
  std::optional<FullForm> unrenamed_;  // where there are renames: with the names of the text
  bool everything_, byName_;
  const std::vector<Field>& counted_;
  Wanted wanted_;
  DrawnEntities entities_;
  std::vector<AcDbObjectId> nodes_, links_, courses_;  // of the network's elements
  std::vector<AcDbObjectId> others_;                   // that the text does not have
  std::vector<std::pair<AcDbObjectId, std::uint32_t>> twice_;
  std::unordered_set<std::u16string> nodeNames_, linkNames_;  // of what will be in the file
  PointGrid<std::u16string> nodePlaces_{kPlaceTolerance};     // in plan
  std::unordered_multimap<std::u16string, AcGePoint3dArray> courseOfName_;  // of new ones
  std::vector<EpaPattern> patterns_;
  std::vector<EpaCurve> curves_;
  std::vector<Rename> unnoted_;
  Comparison result_;
};

}  // namespace

Comparison compareNetwork(std::u16string_view name, const epanet::Network& network, Match match,
                          std::vector<schema::Field> counted) {
  std::vector<Rename> renames;
  if (match != Match::byName) renames = loadRenames(name);
  for (bool again = false;; again = true) {
    Comparing comparing(name, network, renames, match, counted);
    Comparison result = comparing.run();
    if (again || comparing.unnoted().empty()) return result;
    renames.insert(renames.end(), comparing.unnoted().begin(), comparing.unnoted().end());
  }
}

}  // namespace vessora
