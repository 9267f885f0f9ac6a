#include "module/inp/full_compare.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "module/inp/full_added.h"
#include "module/inp/full_series.h"
#include "module/inp/full_values.h"
#include "module/inp/full_wanted.h"
#include "module/network/element_data.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/settings_store.h"
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

// --- the comparison ------------------------------------------------------------------------------

// What a comparison is about, read from the drawing beforehand.
struct Asked {
  std::u16string_view name;
  Match match;
  const std::vector<Field>& counted;
  std::vector<Rename> renames;
  std::vector<EpaPattern> patterns;
  std::vector<EpaCurve> curves;
};

class Comparing {
 public:
  // Asks nothing of the drawing, and neither does meet().
  Comparing(const Asked& asked, const epanet::Network& network)
      : name_(asked.name),
        network_(network),
        form_(network, asked.renames),
        everything_(asked.match == Match::everything),
        byName_(asked.match == Match::byName),
        counted_(asked.counted),
        wanted_(form_),
        entities_(asked.name),
        nodes_(network.nodes.size()),
        links_(network.links.size()),
        courses_(network.links.size()),
        patterns_(asked.patterns),
        curves_(asked.curves) {
    result_.renames = asked.renames;
    if (!asked.renames.empty()) unrenamed_.emplace(network);
  }

  // Renames that were made in both places of an element, but not noted: by the classic way.
  const std::vector<Rename>& unnoted() const { return unnoted_; }

  // Every entity that the network has in the drawing, in drawing order.
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

  // When all have been met.
  Comparison finish() {
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
    std::map<Part, std::size_t> copiesUpTo;  // among the changes
    for (const auto& [id, index] : twice_) {
      if (!entities_.read(id)) continue;
      const DrawnEntity second = entities_.entity();
      AcDbObjectId& first = placeOf(second, index);
      if (atKeptPlace(second, index) && entities_.read(first) &&
          !atKeptPlace(entities_.entity(), index)) {
        copiesUpTo[{second.kind, index, second.isCourse}] = result_.changed.size();
        others_.push_back(first);
        first = id;
        compare(second, index);
      } else {
        others_.push_back(id);
      }
    }
    if (copiesUpTo.empty()) return;
    std::size_t at = 0;
    std::erase_if(result_.changed, [&](const ChangedElement& change) {
      const bool course = change.fields.empty() && change.vertices && change.kind != &schema::kPipe;
      const auto known = copiesUpTo.find({change.kind, change.index, course});
      return at++ < (known == copiesUpTo.end() ? 0 : known->second);
    });
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
      if (!nodes_[i].isNull()) new_.knowNode(form_.nodeName(i), nodes_[i]);
    }
    for (std::uint32_t i = 0; i < links_.size(); ++i) {
      if (!links_[i].isNull()) new_.knowLink(form_.linkName(i));
    }
    new_.take(others_, [this](const DrawnEntity& entity) { return tied(entity) != kNone; });
  }

  // Ends that have been changed to what nobody is called.
  void checkEnds() {
    for (const ChangedElement& element : result_.changed) {
      for (const ChangedField& field : element.fields) {
        if (field.field != Field::node1 && field.field != Field::node2) continue;
        const std::uint32_t node = form_.nodeNamed(field.now);
        if ((node != kNone && !nodes_[node].isNull()) || new_.hasNode(field.now)) continue;
        result_.notices.push_back(
            {NoticeCode::endUnknown, form_.linkName(element.index), field.now});
      }
    }
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
  // The entity of an element, or the course of a pump or valve.
  using Part = std::tuple<const schema::Kind*, std::uint32_t, bool>;
  std::vector<std::pair<AcDbObjectId, std::uint32_t>> twice_;
  const std::vector<EpaPattern>& patterns_;
  const std::vector<EpaCurve>& curves_;
  std::vector<Rename> unnoted_;
  Comparison result_;
  NewElements new_{entities_, result_};
};

}  // namespace

namespace {

using NetworkSource = std::function<const epanet::Network*()>;

// The drawing is read while the network may still be on its way.
void meetAll(const Asked& asked, const NetworkSource& network,
             std::optional<Comparing>& comparing) {
  bool asking = true;
  const auto begin = [&] {
    if (!std::exchange(asking, false)) return;
    if (const epanet::Network* const known = network()) comparing.emplace(asked, *known);
  };
  DrawnEntities(asked.name).visitBeside([&](const DrawnEntity& entity) {
    begin();
    if (comparing) comparing->meet(entity);
  });
  begin();
}

Comparison compare(std::u16string_view name, const NetworkSource& network, Match match,
                   const std::vector<Field>& counted) {
  Asked asked{name, match, counted, {}, {}, {}};
  if (match != Match::byName) asked.renames = loadRenames(name);
  LoadPatterns(asked.patterns, name);
  LoadCurves(asked.curves, name);
  for (bool again = false;; again = true) {
    std::optional<Comparing> comparing;
    meetAll(asked, network, comparing);
    if (!comparing) return {};
    Comparison result = comparing->finish();
    if (again || comparing->unnoted().empty()) return result;
    asked.renames.insert(asked.renames.end(), comparing->unnoted().begin(),
                         comparing->unnoted().end());
  }
}

}  // namespace

Comparison compareNetwork(std::u16string_view name, const epanet::Network& network, Match match,
                          const std::vector<Field>& counted) {
  return compare(
      name, [&network] { return &network; }, match, counted);
}

Comparison compareNetwork(std::u16string_view name, const NetworkSource& network, Match match) {
  return compare(name, network, match, {});
}

}  // namespace vessora
