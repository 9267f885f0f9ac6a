// An element as it stands in the drawing, with everything that two places may say of it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "module/network/schema.h"
#include "platform/beside.h"
#include "schema/element.h"

namespace vessora {

// The entity of one element: a node's block, a pipe's polyline, the block of a pump or valve; or
// the course of a pump or valve.
struct DrawnEntity {
  AcDbObjectId id;
  const schema::Kind* kind = nullptr;
  bool isCourse = false;              // of a pump or valve, which has the id alone
  bool hasData = false;               // of the network's application
  std::optional<std::u16string> tie;  // the id as the kept text has it
  AcGePoint3d position;               // of a block
  AcGePoint3dArray points;            // of a polyline

  // By the rows of the kind.
  struct Value {
    bool onAttribute = false, onData = false;
    std::u16string attribute, data;
    double real = 0;      // of the data, where they are a number
    bool isReal = false;  // whose text has not been made yet
  };
  std::vector<Value> values;

  // Makes the texts of numbers, which needs no drawing.
  void makeTexts();

  bool isNode() const {
    return kind == &schema::kJunc || kind == &schema::kResv || kind == &schema::kTank;
  }
  // What the attribute says, else the data; empty when nothing does.
  std::u16string_view text(schema::Field field) const;
  const Value* value(schema::Field field) const;
  // The name: of the data, else of the attribute.
  std::u16string_view name() const;
};

class DrawnEntities {
 public:
  explicit DrawnEntities(std::u16string_view network) : layers_(network) {}
  // Calls visit(entity) for the entities of a network in drawing order, in another thread while the
  // next entities are read: it must not ask the drawing. The reference is valid during the call.
  // The first call may wait for something that others make meanwhile.
  template <class Visit>
  void visitBeside(Visit visit);
  // One entity; false when it is none of the network.
  bool read(AcDbObjectId id) {
    if (!read(id, entity_)) return false;
    entity_.makeTexts();
    return true;
  }
  const DrawnEntity& entity() const { return entity_; }

 private:
  // Batches of entities that may wait for the first one to be visited: what is read while the kept
  // text of a large network is unpacked and read, within some 70 MB.
  static constexpr std::size_t kWaiting = 256;

  bool read(AcDbObjectId id, DrawnEntity& entity);
  bool readBlock(AcDbBlockReference* block, DrawnEntity& entity);
  bool readPolyline(AcDb3dPolyline* polyline, DrawnEntity& entity);
  static void readData(AcDbEntity* drawn, DrawnEntity& entity);

  NetworkLayers layers_;
  DrawnEntity entity_;
};

template <class Visit>
void DrawnEntities::visitBeside(Visit visit) {
  const SelectionSet set(u"_X", wholeNetworkFilter(layers_));
  auto next = set.begin();
  const auto readNext = [&](DrawnEntity& entity) {
    while (next != set.end()) {
      const AcDbObjectId id = *next;
      ++next;
      if (read(id, entity)) return true;
    }
    return false;
  };
  const auto take = [&](DrawnEntity& entity) {
    entity.makeTexts();
    visit(entity);
  };
  platform::Stages<DrawnEntity>::takeBeside(readNext, take, kWaiting);
}

}  // namespace vessora
