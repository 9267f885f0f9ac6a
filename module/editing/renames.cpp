#include "module/editing/renames.h"

#include <algorithm>

#include "module/editing/drawn_links.h"
#include "module/inp/full_export.h"
#include "module/network/element_data.h"
#include "module/network/kept_text.h"
#include "module/network/settings_store.h"

namespace vessora {

using schema::Field;

namespace {

constexpr int kChangedLink = 3;  // as links that follow by place

std::u16string tieOf(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id);
  const Chain tie(entity ? entity->xData(app::kKept) : nullptr);
  return std::u16string(tie.text(schema::kKeptPlace));
}

// Whether an entity is not the one that the kept text means.
bool isCopy(std::u16string_view network, AcDbObjectId id) {
  Notices notices;
  const auto kept = keptFile(network, false, notices);
  if (!kept) return false;
  const Comparison comparison = compareNetwork(network, kept->network);
  return std::any_of(comparison.added.begin(), comparison.added.end(),
                     [id](const NewElement& element) { return element.entity == id; });
}

// Puts a name into the end items of a link that have another one. False when there are none.
bool renameEnds(const Chain& data, const schema::Kind& kind, std::u16string_view from,
                std::u16string_view to) {
  bool found = false;
  for (const Field end : {Field::node1, Field::node2}) {
    if (textAt(data, kind.data, end) != from) continue;
    setTextItem(data.item(schema::placeOf(kind.data, end)), to);
    found = true;
  }
  return found;
}

}  // namespace

void cutTie(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
  if (entity) ClearXData(entity.get(), app::kKept);
}

void noteRename(std::u16string_view network, AcDbObjectId id, bool node, std::u16string_view from,
                std::u16string_view to, const NetworkNames& names) {
  const std::u16string tie = tieOf(id);
  if (tie.empty() || !hasKeptText(network)) return;
  const std::vector<std::u16string>& ofKind = node ? names.nodes : names.links;
  if (std::count(ofKind.begin(), ofKind.end(), from) > 1 && isCopy(network, id)) {
    const AcDbObjectId companion = node ? AcDbObjectId() : companionOf(id);
    cutTie(id);
    if (!companion.isNull()) cutTie(companion);
    return;
  }
  noteRename(network, node ? RenamedKind::node : RenamedKind::link, tie, to);
}

void nameFollows(std::u16string_view network, std::u16string_view from, std::u16string_view to,
                 const NetworkNames& names) {
  if (std::count(names.nodes.begin(), names.nodes.end(), from) > 1) return;
  for (const LinkEnds& link : names.ends) {
    if (link.node1 != from && link.node2 != from) continue;
    const Opened<AcDbEntity> entity(link.id, AcDb::kForWrite);
    if (!entity) continue;
    const Chain data(entity->xData(app::kImport));
    if (!renameEnds(data, *link.kind, from, to)) continue;
    entity->setXData(data.get());
    ClearXData(entity.get(), app::kLinkResult);
    if (link.kind == &schema::kPipe) entity->setColorIndex(kChangedLink);
  }
  EpaSettings settings;
  if (!LoadSettings(settings, network) || !(settings.traceNode == from)) return;
  settings.traceNode = to;
  SaveSettings(settings, false);
}

}  // namespace vessora
