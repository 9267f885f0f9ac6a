#include "module/editing/drawn_links.h"
#include "module/editing/mend_jobs.h"
#include "module/editing/renames.h"
#include "module/inp/full_export.h"
#include "module/network/element_data.h"
#include "module/network/kept_text.h"

namespace vessora {

using schema::Field;

namespace {

void putText(const Chain& data, const schema::Kind& kind, Field field, std::u16string_view text) {
  if (resbuf* const item = data.item(schema::placeOf(kind.data, field))) setTextItem(item, text);
}

void writeNames(const NewElement& element) {
  const Opened<AcDbEntity> entity(element.entity, AcDb::kForWrite);
  if (!entity) return;
  if (auto* const block = entity.as<AcDbBlockReference>()) {
    WriteAttribute(block, schema::kIdTag, element.name);
  }
  const Chain data(entity->xData(app::kImport));
  putText(data, *element.kind, Field::id, element.name);
  if (!element.node1.empty()) putText(data, *element.kind, Field::node1, element.node1);
  if (!element.node2.empty()) putText(data, *element.kind, Field::node2, element.node2);
  entity->setXData(data.get());
}

void mend(const NewElement& element, MendResult& result) {
  // Found by the name and the place that both halves of a link still have.
  const AcDbObjectId other = companionOf(element.entity);
  if (!element.copyOf.empty()) {
    writeNames(element);
    if (const Opened<AcDbEntity> course(other, AcDb::kForWrite); course) {
      course->setXData(companionData(element.name).get());
    }
    result.copies.push_back({element.entity, element.copyOf, element.name});
  }
  cutTie(element.entity);
  if (!other.isNull()) cutTie(other);
}

}  // namespace

MendResult mendNames(std::u16string_view network) {
  MendResult result;
  if (!hasKeptText(network)) return result;
  const auto kept = keptFile(network, false, result.notices);
  if (!kept) return result;
  const Comparison comparison = compareNetwork(network, kept->network);
  for (const Rename& rename : comparison.renames) {
    noteRename(network, rename.kind, rename.kept, rename.now);
  }
  for (const NewElement& element : comparison.added) mend(element, result);
  for (const Notice& notice : comparison.notices) {
    if (notice.code == NoticeCode::nameByHand) result.notices.push_back(notice);
  }
  return result;
}

}  // namespace vessora
