// Elements of a drawing that its kept text does not have.
#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "module/inp/drawn_element.h"
#include "module/inp/full_compare.h"
#include "module/network/point_grid.h"

namespace vessora {

// The points of a course between its ends.
AcGePoint3dArray interior(const AcGePoint3dArray& points);

// Gives new elements names and ends. Entities and result are the comparison's.
class NewElements {
 public:
  NewElements(DrawnEntities& entities, Comparison& result) : entities_(entities), result_(result) {}

  // Names that are taken, and where their nodes lie.
  void knowNode(const std::u16string& name, AcDbObjectId node);
  void knowLink(const std::u16string& name) { linkNames_.insert(name); }
  bool hasNode(const std::u16string& name) const { return nodeNames_.contains(name); }

  // The elements among the entities go to the result; isCopy(entity) tells copies of others, which
  // have to leave their names to what is not one.
  using IsCopy = std::function<bool(const DrawnEntity&)>;
  void take(const std::vector<AcDbObjectId>& ids, const IsCopy& isCopy);

 private:
  void takeOne(const DrawnEntity& entity, bool copy);
  std::u16string nameFor(const DrawnEntity& entity, NewElement& element);
  std::u16string freeName(const DrawnEntity& entity, const std::u16string& wanted);
  std::u16string endOf(const DrawnEntity& entity, schema::Field field, bool copy,
                       const AcGePoint3dArray& course, bool first);
  AcGePoint3dArray courseOf(const DrawnEntity& entity) const;
  std::unordered_set<std::u16string>& namesBeside(const DrawnEntity& entity) {
    return entity.isNode() ? nodeNames_ : linkNames_;
  }

  DrawnEntities& entities_;
  Comparison& result_;
  std::unordered_set<std::u16string> nodeNames_, linkNames_;       // of what will be in the file
  std::unordered_map<std::u16string, int> triedNode_, triedLink_;  // numbers behind a taken name
  PointGrid<std::u16string> nodePlaces_{kPlaceTolerance};          // in plan
  std::unordered_multimap<std::u16string, AcGePoint3dArray> courseOfName_;  // of new ones
};

}  // namespace vessora
