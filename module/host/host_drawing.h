// The seam to the host: the whole list of what the logic of this module needs of a CAD host, under
// the host interface's own names, and what the module adds to it: shared operations, and the
// reading and building of extended data by position.
//
// No other header of the host is included anywhere in the module, so that this list is what another
// host has to offer.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cad/api/codes.h"
#include "cad/api/database.h"
#include "cad/api/editor.h"
#include "cad/api/owners.h"
#include "cad/api/services.h"
#include "cad/api/table.h"
#include "cad/family/hn_engineering.h"
#include "cad/family/hn_geometry.h"
#include "cad/family/ksr.h"
#include "module/host/notices.h"

namespace vessora {

using cad::Chain;
using cad::Fresh;
using cad::Opened;
using cad::SelectionSet;

// Walks a list of extended data item by item, without looking at group codes: each call takes the
// next item as what the layout says it is. A missing item, or one of another kind, reads as empty
// or zero.
class XDataReader {
 public:
  explicit XDataReader(const Chain& chain) : at_(chain.item(1)) {}
  bool done() const { return at_ == nullptr; }
  // Group code of the item to come, 0 at the end.
  int code() const { return at_ ? at_->restype : 0; }
  std::u16string_view text() {
    const resbuf* node = take();
    return node && acutKindOf(node->restype) == RbKind::text
               ? std::u16string_view(node->resval.rstring)
               : std::u16string_view();
  }
  double real() {
    const resbuf* node = take();
    if (!node) return 0;
    switch (acutKindOf(node->restype)) {
      case RbKind::real:
        return node->resval.rreal;
      case RbKind::int16:
        return node->resval.rint;
      case RbKind::int32:
        return node->resval.rlong;
      default:
        return 0;
    }
  }
  int integer() { return static_cast<int>(real()); }
  void skip() { take(); }

 private:
  const resbuf* take() { return at_ ? std::exchange(at_, at_->rbnext) : nullptr; }
  const resbuf* at_;
};

// Builds a list of extended data item by item, where its length is not known beforehand.
class XDataBuilder {
 public:
  explicit XDataBuilder(std::u16string_view application)
      : chain_(acutBuildList(1001, application, RTNONE)), last_(chain_.get()) {}
  void text(std::u16string_view value) { add(acutBuildList(1000, value, RTNONE)); }
  void real(double value) { add(acutBuildList(1040, value, RTNONE)); }
  void integer(int value) { add(acutBuildList(1070, value, RTNONE)); }
  Chain take() {
    last_ = nullptr;
    return std::move(chain_);
  }

 private:
  void add(resbuf* node) { last_ = last_->rbnext = node; }
  Chain chain_;
  resbuf* last_;
};

// --- shared operations ---------------------------------------------------------------------------

// The text of the last attribute with exactly this tag, empty when there is none; true if
// non-empty.
bool ReadAttribute(AcDbBlockReference* block, std::u16string_view tag, std::u16string& text);
// Sets the text of every attribute with exactly this tag; the block must be open.
void WriteAttribute(AcDbBlockReference* block, std::u16string_view tag, std::u16string_view text);
// ReadAttribute with a check: where the text differs from the id in the block's extended data, this
// becomes a notice and the extended data win.
bool ReadNameAttribute(AcDbBlockReference* block, std::u16string_view tag, std::u16string& text,
                       Notices& notices);
// Several attributes in one walk: texts[i] gets the text of the last attribute with tags[i]. Bit i
// of the result tells that there is one.
unsigned readAttributes(AcDbBlockReference* block, const std::u16string_view* tags,
                        std::u16string* texts, int count);
// The check of ReadNameAttribute by itself: `text` is what the attribute says, `data` the block's
// extended data of the network.
void checkName(const Chain& data, std::u16string& text, Notices& notices);
// Removes one application's extended data; 1 if the list could be built. The entity is open for
// write.
int ClearXData(AcDbObject* entity, std::u16string_view application);
// Makes a node of a list the text item 1000 with this text, whatever it held.
void setTextItem(resbuf* node, std::u16string_view text);
int CountVertices(AcDb3dPolyline* polyline);
// The mean of all vertices; false without vertices.
bool PolylineCentroid(AcDb3dPolyline* polyline, AcGePoint3d& centroid);
// Appends each vertex' position.
void ReadVertices(AcDb3dPolyline* polyline, AcGePoint3dArray& points);
// Moves the vertices of a polyline (open for write) to `points` and erases those beyond them; puts
// extended data (null: as it is; released here in any case), layer (empty: as it is) and colour
// (256: as it is). 0 for a null polyline, else 1.
int RewritePolyline(const AcGePoint3dArray& points, AcDb3dPolyline* polyline, int color,
                    std::u16string_view layer, resbuf* xdata);
// The text style of a name, compared in upper case.
bool FindTextStyle(std::u16string_view name, AcDbObjectId& id);
// A host variable that holds a text. False when there is none of the name or it holds none.
bool readTextVariable(std::u16string_view name, std::u16string& text);
// Whether INP files and results go in full: the host's variable VSINPMODE says FULL now. Where the
// host has none, or it says anything else, they go the classic way.
bool inpIsFull();

// Points that coincide within `tolerance` per axis, strictly.
inline bool samePoint(const AcGePoint3d& a, const AcGePoint3d& b, double tolerance = 0.001) {
  return std::fabs(a.x - b.x) < tolerance && std::fabs(a.y - b.y) < tolerance &&
         std::fabs(a.z - b.z) < tolerance;
}
inline bool samePlanPoint(const AcGePoint3d& a, const AcGePoint3d& b, double tolerance) {
  return std::fabs(a.x - b.x) < tolerance && std::fabs(a.y - b.y) < tolerance;
}

}  // namespace vessora
