// An element as it stands in the drawing, with everything that two places may say of it.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "module/network/schema.h"
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
  };
  std::array<Value, 12> values;

  bool isNode() const {
    return kind == &schema::kJunc || kind == &schema::kResv || kind == &schema::kTank;
  }
  // What the attribute says, else the data; empty when nothing does.
  std::u16string_view text(schema::Field field) const;
  const Value* value(schema::Field field) const;
  // The name: of the data, else of the attribute.
  std::u16string_view name() const;
};

// Calls visit(entity) for the entities of a network in drawing order. The reference is valid during
// the call.
class DrawnEntities {
 public:
  explicit DrawnEntities(std::u16string_view network) : layers_(network) {}
  template <class Visit>
  void visit(Visit visit) {
    const SelectionSet set(u"_X", wholeNetworkFilter(layers_));
    for (const AcDbObjectId id : set) {
      if (read(id)) visit(static_cast<const DrawnEntity&>(entity_));
    }
  }
  // One entity; false when it is none of the network.
  bool read(AcDbObjectId id);
  const DrawnEntity& entity() const { return entity_; }

 private:
  bool readBlock(AcDbBlockReference* block);
  bool readPolyline(AcDb3dPolyline* polyline);
  void readData(AcDbEntity* entity);

  NetworkLayers layers_;
  DrawnEntity entity_;
};

}  // namespace vessora
