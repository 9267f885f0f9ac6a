#include "module/inp/full_added.h"

#include <cmath>

#include "platform/format.h"

namespace vessora {

using schema::Field;

namespace {

std::u16string courseKey(const DrawnEntity& entity) {
  return entity.kind->layer + std::u16string(entity.name());
}

}  // namespace

AcGePoint3dArray interior(const AcGePoint3dArray& points) {
  return points.size() < 3 ? AcGePoint3dArray()
                           : AcGePoint3dArray(points.begin() + 1, points.end() - 1);
}

void NewElements::knowNode(const std::u16string& name, AcDbObjectId node) {
  nodeNames_.insert(name);
  if (!entities_.read(node)) return;
  const AcGePoint3d& place = entities_.entity().position;
  nodePlaces_.add({place.x, place.y, 0}, name);
}

void NewElements::take(const std::vector<AcDbObjectId>& ids, const IsCopy& isCopy) {
  for (const AcDbObjectId id : ids) {
    if (!entities_.read(id) || !entities_.entity().isCourse) continue;
    courseOfName_.emplace(courseKey(entities_.entity()), entities_.entity().points);
  }
  // Links end on nodes, which come first.
  for (const bool nodes : {true, false}) {
    for (const bool copies : {false, true}) {
      for (const AcDbObjectId id : ids) {
        if (!entities_.read(id)) continue;
        const DrawnEntity entity = entities_.entity();
        if (entity.isCourse || entity.isNode() != nodes) continue;
        if (isCopy(entity) == copies) takeOne(entity, copies);
      }
    }
  }
}

void NewElements::takeOne(const DrawnEntity& entity, bool copy) {
  NewElement element;
  element.kind = entity.kind;
  element.entity = entity.id;
  element.name = nameFor(entity, element);
  if (entity.isNode()) {
    element.place = entity.position;
    nodePlaces_.add({entity.position.x, entity.position.y, 0}, element.name);
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

std::u16string NewElements::nameFor(const DrawnEntity& entity, NewElement& element) {
  std::u16string wanted(entity.text(Field::id));
  if (wanted.empty()) wanted = entity.name();
  if (wanted.empty()) wanted = entity.kind->layer[0] == u'P' ? u"P1" : u"N1";
  auto& names = namesBeside(entity);
  if (names.insert(wanted).second) return wanted;
  const std::u16string name = freeName(entity, wanted);
  names.insert(name);
  element.copyOf = wanted;
  result_.notices.push_back({NoticeCode::elementCopied, wanted, name});
  return name;
}

// A thousand copies of one element do not try all numbers from the start.
std::u16string NewElements::freeName(const DrawnEntity& entity, const std::u16string& wanted) {
  auto& tried = entity.isNode() ? triedNode_ : triedLink_;
  const auto& names = namesBeside(entity);
  for (int& n = tried.try_emplace(wanted, 1).first->second;;) {
    const std::u16string tail = platform::format(u"-%d", ++n);
    std::u16string name = wanted.substr(0, 31 - tail.size()) + tail;
    if (!names.contains(name)) return name;
  }
}

// A copy ends on the nodes that it lies on, a new link on those that it names.
std::u16string NewElements::endOf(const DrawnEntity& entity, Field field, bool copy,
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
AcGePoint3dArray NewElements::courseOf(const DrawnEntity& entity) const {
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

}  // namespace vessora
