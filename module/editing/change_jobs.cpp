// Changing one element and moving a node: the jobs.
#include "module/editing/change_jobs.h"

#include <algorithm>
#include <cmath>

#include "module/editing/drawn_links.h"
#include "module/editing/renames.h"
#include "module/editing/solver_faults.h"
#include "module/host/module.h"
#include "module/network/element_loaders.h"
#include "platform/text.h"

namespace vessora {

using schema::Field;

namespace {

template <class Record>
constexpr bool isNode = std::is_same_v<Record, EpaJunc> || std::is_same_v<Record, EpaResv> ||
                        std::is_same_v<Record, EpaTank>;

std::u16string idOf(const DrawnElement& element) {
  return std::visit([](const auto& record) { return record.id.str(); }, element.record);
}
bool isNodeElement(const DrawnElement& element) {
  return std::visit(
      [](const auto& record) { return isNode<std::remove_cvref_t<decltype(record)>>; },
      element.record);
}

}  // namespace

// --- reading -------------------------------------------------------------------------------------

std::optional<DrawnElement> readElement(std::u16string_view network, AcDbObjectId id) {
  const NetworkLayers layers(network);
  const Opened<AcDbEntity> entity(id);
  if (!entity) return {};
  const std::u16string layer = entity->layer();
  DrawnElement element;
  if (auto* polyline = entity.as<AcDb3dPolyline>()) {
    if (layer != layers.pipe) return {};
    ReadPipe(element.record.emplace<EpaPipe>(), element.material, polyline);
    return element;
  }
  auto* const block = entity.as<AcDbBlockReference>();
  if (!block) return {};
  if (layer == layers.junc) {
    ReadJunc(element.record.emplace<EpaJunc>(), block);
  } else if (layer == layers.resv) {
    ReadResv(element.record.emplace<EpaResv>(), block);
  } else if (layer == layers.tank) {
    ReadTank(element.record.emplace<EpaTank>(), block);
  } else if (layer == layers.valv) {
    ReadValv(element.record.emplace<EpaValv>(), block);
  } else if (layer == layers.pump) {
    ReadPump(element.record.emplace<EpaPump>(), block);
  } else {
    return {};
  }
  return element;
}

// --- modifying -----------------------------------------------------------------------------------

namespace {

// Writes one record onto its entity and takes the results off. Empty when the entity cannot be
// opened.
class ElementWriter {
 public:
  ElementWriter(const NetworkLayers& layers, AcDbObjectId id, FieldSet changed,
                std::u16string_view material)
      : layers_(layers), id_(id), changed_(changed), material_(material) {}

  using Written = std::optional<FollowedLinks>;
  Written operator()(const EpaJunc& junc) const {
    return onBlock(app::kNodeResult, [&](auto block) {
      return UpdateJunc(std::move(block), junc, platform::wtof(junc.emitter), changed_);
    });
  }
  Written operator()(const EpaResv& resv) const {
    return onBlock(app::kNodeResult,
                   [&](auto block) { return UpdateResv(std::move(block), resv, changed_); });
  }
  Written operator()(const EpaTank& tank) const {
    return onBlock(app::kNodeResult,
                   [&](auto block) { return UpdateTank(std::move(block), tank, changed_); });
  }
  Written operator()(const EpaValv& valv) const {
    return onBlock(app::kLinkResult, [&](auto block) {
      UpdateValv(std::move(block), valv, layers_.valv, changed_);
      return FollowedLinks();
    });
  }
  Written operator()(const EpaPump& pump) const {
    return onBlock(app::kLinkResult, [&](auto block) {
      UpdatePump(std::move(block), pump, layers_.pump, changed_);
      return FollowedLinks();
    });
  }
  Written operator()(const EpaPipe& pipe) const {
    const Opened<AcDb3dPolyline> polyline(id_, AcDb::kForWrite);
    if (!polyline) return {};
    UpdatePipe(polyline.get(), pipe, material_, changed_);
    ClearXData(polyline.get(), app::kLinkResult);
    return FollowedLinks();
  }

 private:
  template <class Update>
  Written onBlock(const char16_t* results, Update update) const {
    Opened<AcDbBlockReference> block(id_, AcDb::kForWrite);
    if (!block) return {};
    ClearXData(block.get(), results);
    return update(std::move(block));
  }

  const NetworkLayers& layers_;
  AcDbObjectId id_;
  FieldSet changed_;
  std::u16string_view material_;
};

// Links that named the node before the change and name it still: they do not lie on it.
std::vector<std::u16string> stillNaming(const std::u16string& node, const NetworkNames& before) {
  std::vector<std::u16string> links;
  for (std::size_t i = 0; i < before.ends.size(); ++i) {
    const LinkEnds& link = before.ends[i];
    if (link.node1 != node && link.node2 != node) continue;
    const Opened<AcDbEntity> entity(link.id);
    const Chain data(entity ? entity->xData(app::kImport) : nullptr);
    if (textAt(data, link.kind->data, Field::node1) == node ||
        textAt(data, link.kind->data, Field::node2) == node) {
      links.push_back(before.links[i]);
    }
  }
  return links;
}

// What a new name leaves behind; `names` are those before the change.
void warnOfName(std::u16string_view network, const NetworkNames& names, bool node,
                const std::u16string& before, const std::u16string& now, Notices& warnings) {
  const std::vector<std::u16string>& ofKind = node ? names.nodes : names.links;
  if (std::find(ofKind.begin(), ofKind.end(), now) != ofKind.end()) {
    warnings.push_back({node ? NoticeCode::nodeNameTwice : NoticeCode::linkNameTwice, now});
  }
  if (!node || std::count(ofKind.begin(), ofKind.end(), before) > 1) return;
  const std::vector<std::u16string> links = stillNaming(before, names);
  if (!links.empty()) warnings.push_back({NoticeCode::nodeGone, before, joined(links)});
  warnOfTracing(network, before, warnings);
}

// The arrow at a junction stays what it is when the demand changes its direction, or becomes none.
void warnOfArrow(std::u16string_view network, AcDbObjectId id, const EpaJunc& before,
                 const EpaJunc& now, Notices& warnings) {
  const auto direction = [](const EpaJunc& junc) {
    const double demand = platform::wtof(junc.demand);
    return (demand > 0) - (demand < 0);
  };
  if (direction(before) == direction(now)) return;
  const Opened<AcDbBlockReference> block(id);
  if (!block || (direction(now) == 0 && arrowsAt(network, block->position()).empty())) return;
  warnings.push_back({NoticeCode::arrowDiffers, now.id.str()});
}

// The fields whose texts differ.
template <class Record>
FieldSet differing(const Record& a, const Record& b) {
  FieldSet fields;
  for (const schema::Row& row : kindOf<Record>().data.rows) {
    if (row.field != Field::none && textOf(a, row.field) != textOf(b, row.field)) {
      fields.add(row.field);
    }
  }
  return fields;
}

FieldSet differing(const DrawnElement& a, const DrawnElement& b) {
  FieldSet fields = std::visit(
      [&](const auto& record) {
        return differing(record, std::get<std::remove_cvref_t<decltype(record)>>(b.record));
      },
      a.record);
  if (a.material != b.material) fields.add(Field::type);
  return fields;
}

DrawnElement inSolversWords(const DrawnElement& element) {
  DrawnElement now = element;
  if (auto* const pipe = std::get_if<EpaPipe>(&now.record))
    pipe->status = solversStatus(pipe->status);
  return now;
}

}  // namespace

std::u16string_view solversStatus(std::u16string_view status) {
  return inpIsFull() && platform::equalNoCase(status, u"Close") ? u"Closed" : status;
}

ChangeResult modifyElement(std::u16string_view network, AcDbObjectId id, const DrawnElement& wanted,
                           FieldSet changed, const NetworkNames* names) {
  ChangeResult result;
  const DrawnElement element = inSolversWords(wanted);
  const std::optional<DrawnElement> before = readElement(network, id);
  if (!before || before->record.index() != element.record.index()) return result;
  // What counts is the name in the data; the attribute may have been edited by hand.
  const std::u16string oldName = nameOf(*Opened<AcDbEntity>(id).get()), newName = idOf(element);
  if (changed.has(Field::id) && newName.empty()) {
    result.verdict = ChangeVerdict::nameMissing;
    return result;
  }
  if (inpIsFull() && changed.isAll()) {
    changed = differing(*before, element);
    if (changed.isEmpty()) {
      result.verdict = ChangeVerdict::done;
      return result;
    }
  }
  const bool node = isNodeElement(element), renamed = changed.has(Field::id) && newName != oldName;
  NetworkNames own;
  if (renamed && !names) {
    Notices differing;  // told by those who collect a network, not by who changes one name
    CollectNetworkNames(network, own, differing);
    names = &own;
  }
  currentNetwork = network;
  // Before anything is written: it compares the drawing with the kept text.
  if (renamed && inpIsFull()) noteRename(network, id, node, oldName, newName, *names);
  if (std::holds_alternative<EpaPipe>(element.record)) acdbRegApp(app::kMaterial);
  const NetworkLayers layers(network);
  const auto written =
      std::visit(ElementWriter(layers, id, changed, element.material), element.record);
  if (!written) return result;
  if (renamed && node && inpIsFull()) nameFollows(network, oldName, newName, *names);
  result.verdict = ChangeVerdict::done;
  if (written->leftBehind) {
    result.warnings.push_back({NoticeCode::linksLeftBehind, renamed ? newName : oldName});
  }
  if (const auto* junc = std::get_if<EpaJunc>(&element.record);
      junc && changed.has(Field::demand)) {
    warnOfArrow(network, id, std::get<EpaJunc>(before->record), *junc, result.warnings);
  }
  if (renamed) warnOfName(network, *names, node, oldName, newName, result.warnings);
  if (const std::optional<DrawnElement> after = readElement(network, id)) {
    std::visit([&](const auto& record) { warnOfSolver(record, changed, result.warnings); },
               after->record);
  }
  return result;
}

// --- moving --------------------------------------------------------------------------------------

namespace {

// A length is kept with three decimals by everything that passes through a record.
constexpr double kLengthRounding = 0.0005 + 1e-6;

void takeLength(const NetworkLayers& layers, const FollowedLink& link, Notices& notices) {
  const Opened<AcDb3dPolyline> polyline(link.id, AcDb::kForWrite);
  if (!polyline || polyline->layer() != layers.pipe) return;
  const Chain data(polyline->xData(app::kImport));
  const double stored = realAt(data, schema::kPipe.data, Field::length);
  const bool follows = std::fabs(stored - link.lengthBefore) <= kLengthRounding;
  EpaPipe pipe;
  storeReal(pipe.length, follows ? link.lengthAfter : stored);
  notices.push_back({follows ? NoticeCode::lengthFollows : NoticeCode::lengthKept,
                     std::u16string(data.text(1)), pipe.length.str()});
  if (!follows) return;
  storeExactly(pipe.length, link.lengthAfter);
  UpdatePipe(polyline.get(), pipe, {}, {Field::length});
}

void moveArrows(std::u16string_view network, const AcGePoint3d& from, const AcGePoint3d& to) {
  for (const AcDbObjectId id : arrowsAt(network, from)) {
    const Opened<AcDbBlockReference> arrow(id, AcDb::kForWrite);
    if (arrow) arrow->setPosition({to.x, to.y, arrow->position().z});
  }
}

double storedHeight(const DrawnElement& node) {
  const Field height =
      std::holds_alternative<EpaResv>(node.record) ? Field::head : Field::elevation;
  return std::visit([height](const auto& record) { return platform::wtof(textOf(record, height)); },
                    node.record);
}

}  // namespace

ChangeResult moveNode(std::u16string_view network, AcDbObjectId id, double x, double y) {
  ChangeResult result;
  const std::optional<DrawnElement> node = readElement(network, id);
  if (!node || !isNodeElement(*node)) return result;
  if (!std::isfinite(x) || !std::isfinite(y)) {
    result.verdict = ChangeVerdict::placeUnusable;
    return result;
  }
  Opened<AcDbBlockReference> block(id, AcDb::kForWrite);
  if (!block) return result;
  currentNetwork = network;
  const NetworkLayers layers(network);
  const AcGePoint3d from = block->position();
  ClearXData(block.get(), app::kNodeResult);
  NodeChange change;
  change.oldHeight = storedHeight(*node);
  change.place = AcGePoint3d(x, y, 0);
  if (inpIsFull()) change.oldName = nameOf(*block.get());
  const FollowedLinks followed = dragLinks(std::move(block), change);
  moveArrows(network, from, *change.place);
  for (const FollowedLink& link : followed.links) takeLength(layers, link, result.notices);
  if (followed.leftBehind) result.warnings.push_back({NoticeCode::linksLeftBehind, idOf(*node)});
  for (const AcDbObjectId other : nodesAt(layers, *change.place)) {
    if (other == id) continue;
    const Opened<AcDbEntity> entity(other);
    result.warnings.push_back({NoticeCode::nodesCoincide, idOf(*node), nameOf(*entity.get())});
  }
  result.verdict = ChangeVerdict::done;
  return result;
}

}  // namespace vessora
