#include "module/network/element_list.h"

#include <map>
#include <optional>
#include <utility>

#include "module/network/element_data.h"
#include "module/network/schema.h"

namespace vessora {

namespace {

using schema::Field;

class Lister {
 public:
  explicit Lister(std::u16string_view network) : layers_(network) {}

  std::vector<ListedElement> list() {
    for (const AcDbObjectId id : SelectionSet(u"_X", wholeNetworkFilter(layers_))) {
      const Opened<AcDbEntity> entity(id);
      if (auto* block = entity.as<AcDbBlockReference>()) {
        take(block);
      } else if (auto* polyline = entity.as<AcDb3dPolyline>()) {
        take(polyline);
      }
    }
    giveCourses();
    return std::move(elements_);
  }

 private:
  using Key = std::pair<ElementKind, std::u16string>;

  std::optional<ElementKind> kindOfLayer(const std::u16string& layer) const {
    if (layer == layers_.junc) return ElementKind::junction;
    if (layer == layers_.resv) return ElementKind::reservoir;
    if (layer == layers_.tank) return ElementKind::tank;
    if (layer == layers_.pipe) return ElementKind::pipe;
    if (layer == layers_.pump) return ElementKind::pump;
    if (layer == layers_.valv) return ElementKind::valve;
    return {};
  }

  void take(AcDbBlockReference* block) {
    const auto kind = kindOfLayer(block->layer());
    if (!kind || *kind == ElementKind::pipe) return;
    ListedElement& element = elements_.emplace_back();
    element.id = block->objectId();
    element.kind = *kind;
    ReadNameAttribute(block, schema::kIdTag, element.name, notices_);
    if (isNode(*kind)) return;
    const schema::Kind& link = *kind == ElementKind::pump ? schema::kPump : schema::kValv;
    takeEnds(Chain(block->xData(app::kImport)), link.data, element);
  }

  void take(AcDb3dPolyline* polyline) {
    const auto kind = kindOfLayer(polyline->layer());
    const Chain data(polyline->xData(app::kImport));
    if (!kind || isNode(*kind) || !data.item(1)) return;
    if (*kind != ElementKind::pipe) {
      courses_.emplace(Key(*kind, data.text(1)), polyline->objectId());
      return;
    }
    ListedElement& element = elements_.emplace_back();
    element.id = polyline->objectId();
    element.kind = *kind;
    element.name = data.text(1);
    takeEnds(data, schema::kPipe.data, element);
  }

  static void takeEnds(const Chain& data, const schema::List& list, ListedElement& element) {
    element.node1 = textAt(data, list, Field::node1);
    element.node2 = textAt(data, list, Field::node2);
  }

  // Of namesakes each gets one, in drawing order.
  void giveCourses() {
    if (courses_.empty()) return;
    for (ListedElement& element : elements_) {
      if (element.kind != ElementKind::pump && element.kind != ElementKind::valve) continue;
      const auto found = courses_.find(Key(element.kind, element.name));
      if (found == courses_.end()) continue;
      element.course = found->second;
      courses_.erase(found);
    }
  }

  NetworkLayers layers_;
  std::vector<ListedElement> elements_;
  std::multimap<Key, AcDbObjectId> courses_;
  Notices notices_;  // told by those who collect a network
};

}  // namespace

std::vector<ListedElement> elementsOf(std::u16string_view network) {
  return Lister(network).list();
}

}  // namespace vessora
