#include "cad/family/profile_sheet.h"

#include <algorithm>
#include <cmath>

#include "cad/api/owners.h"
#include "cad/editor/transform.h"
#include "cad/family/hn_engineering.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cad {
namespace {

// What a title block carries, as GestioneOggetto writes it.
constexpr char16_t kTitleData[] = u"HN-TERVANE-HN-RR", kLinkNames[] = u"HN-RR_PROFILO_EPA";
constexpr int kProfileKind = 3;
constexpr double kTitleTop = 24;  // of the title's column above the band, in text heights

std::u16string scaleNumber(double scale) { return platform::format(u"%.6g", scale); }

// False for what is no title block.
bool readTitle(const AcDbBlockReference& block, ProfileTitle& title, std::uint64_t& frame) {
  const Chain data(block.xData(kTitleData));
  std::u16string* const texts[] = {&title.network, &title.name,   &title.start,
                                   &title.datum,   &title.scaleX, &title.scaleY};
  double* const sizes[] = {&title.height, &title.width};
  int text = 0, size = 0;
  for (const resbuf* n = data.get(); n; n = n->rbnext) {
    if (n->restype == 1005) {
      frame = std::strtoull(platform::narrow(n->resval.rstring).c_str(), nullptr, 16);
    }
    if (n->restype == 1000 && text < 6) *texts[text++] = n->resval.rstring;
    if (n->restype == 1040 && size < 2) *sizes[size++] = n->resval.rreal;
  }
  return text == 6 && size == 2;
}

// What stands in the drawing area of a profile: its lines, manholes and what users have added.
std::vector<std::uint32_t> inArea(const Drawing& d, const AcGePoint3d& corner,
                                  const ProfileLayout& layout) {
  const double air = 0.05 * (layout.top - layout.datum) + layout.unit;
  const double left = corner.x + layout.left - air, right = corner.x + layout.right + air;
  const double low = corner.y + layout.datum - air, high = corner.y + layout.top + air;
  std::vector<std::uint32_t> found;
  const std::uint32_t space = d.structure().modelSpace();
  for (std::uint32_t e = d.structure().firstEntity(space); e;
       e = d.structure().nextEntity(space, e)) {
    const Opened<AcDbEntity> entity(d.idOf(e));
    AcDbExtents box;
    if (!entity || entity->getGeomExtents(box) != Acad::eOk) continue;
    const AcGePoint3d a = box.minPoint(), b = box.maxPoint();
    if (a.x >= left && b.x <= right && a.y >= low && b.y <= high) found.push_back(e);
  }
  return found;
}

// The title block says the scale of heights, which the profile itself does not draw.
void sayHeights(AcDbObjectId titleBlock, double scale) {
  const Opened<AcDbBlockReference> block(titleBlock);
  if (!block) return;
  const std::unique_ptr<AcDbObjectIterator> it(block->attributeIterator());
  for (; !it->done(); it->step()) {
    const Opened<AcDbAttribute> attribute(it->objectId(), AcDb::kForWrite);
    if (attribute && attribute->tag() == profile_tag::kScaleY) {
      attribute->setTextString(scaleNumber(scale));
    }
  }
}

}  // namespace

std::vector<DrawnProfile> drawnProfiles(Drawing& drawing) {
  std::vector<DrawnProfile> profiles;
  for (const std::uint32_t e : drawing.index().withApplication(drawing.names().find(kTitleData))) {
    if (drawing.record(e).is(Record::erased)) continue;
    const Opened<AcDbBlockReference> block(drawing.idOf(e));
    DrawnProfile profile;
    std::uint64_t frame = 0;
    if (!block || !readTitle(*block, profile.title, frame)) continue;
    profile.titleBlock = drawing.idOf(e);
    profiles.push_back(std::move(profile));
  }
  return profiles;
}

ProfileSize profileSize(const ProfileTitle& title, double scale, double heights) {
  ProfileTitle there = title;
  there.scaleX = scaleNumber(scale);
  const ProfileLayout layout(there);
  const double mm = 1000 / scale, area = (layout.top - layout.datum) * heights;
  const double high = std::max(layout.datum + area, layout.bandTop + kTitleTop * layout.unit);
  return {(layout.right + 2 * layout.unit) * mm, (high + 10 * layout.unit) * mm};
}

std::optional<ProfileSheet> layOutProfile(Drawing& d, const DrawnProfile& profile, double scale,
                                          double heights) {
  ProfileTitle title;
  std::uint64_t frame = 0;
  AcGePoint3d corner;
  Chain names;
  {
    const Opened<AcDbBlockReference> block(profile.titleBlock);
    if (!block || !readTitle(*block, title, frame)) return std::nullopt;
    corner = block->position();
    names = Chain(block->xData(kLinkNames));
  }
  const AcGePoint3d before = GestioneOggetto(profile.titleBlock).GetOrigin();
  const ProfileLayout old(title);
  d.erase(profile.titleBlock.index(), true);
  if (const std::uint32_t record = d.byHandle(frame)) d.erase(record, true);
  const std::vector<std::uint32_t> lines = inArea(d, corner, old);

  GestioneOggetto sheet(kProfileKind);
  sheet.SetOBJ1Nome1(title.network);
  sheet.SetOBJ2Nome2(title.name);
  sheet.SetOBJ3Prog(title.start);
  sheet.SetOBJ4QRif(title.datum);
  sheet.SetOBJ5ScX(scaleNumber(scale));
  sheet.SetOBJ6ScY(scaleNumber(scale));
  sheet.SetPInsCART(corner);
  sheet.SetAltezzaLarghezzaUtile(title.height, title.width);
  if (!sheet.Disegna_HNPX_HNRR(d.database())) return std::nullopt;
  const Similarity way = Similarity::move(sheet.GetOrigin() - before);
  ProfileSheet result;
  for (const std::uint32_t line : lines) {
    if (transformEntity(d, line, way)) result.entities.insert(line);
  }
  sheet.SetXdataProfSewer(names.get());
  sheet.UpdateXdata();
  sayHeights(sheet.titleBlock(), scale / heights);

  title.scaleX = scaleNumber(scale);
  const ProfileLayout layout(title);
  result.entities.insert(sheet.titleBlock().index());
  {
    const Opened<AcDbBlockReference> block(sheet.titleBlock());
    if (!block || !readTitle(*block, title, frame)) return std::nullopt;
  }
  result.entities.insert(d.byHandle(frame));
  result.left = corner.x + layout.titleWidth;
  result.datum = corner.y + layout.datum;
  result.areaLeft = corner.x + layout.left;
  result.areaRight = corner.x + layout.right;
  result.areaTop = corner.y + layout.top;
  result.referenceLevel = layout.referenceLevel;
  result.unit = layout.unit;
  return result;
}

}  // namespace cad
