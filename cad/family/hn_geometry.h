// HNGeometry: layers, entities and line types made in one call, and the wrappers around host calls.
//
// Unless a database and a block record are given, entities go into the model space of the current
// drawing. Chains stay the caller's. Colours are host colour indices, 256 by layer. Results are the
// new object's id, null on failure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cad/api/database.h"
#include "cad/api/editor.h"

using AcGePoint3dArray = std::vector<AcGePoint3d>;
using ResbufArray = std::vector<resbuf*>;

// One vertex of a polyline in space: position, chainage from the start, next vertex.
struct datipoli3d {
  AcGePoint3d point;
  double prog = 0;
  datipoli3d* next = nullptr;
};

// A polyline's path in plan: its vertices with their chainage.
struct datipoli {
  AcGePoint3d point;
  double bulge = 0;
  double prog = 0;
  datipoli* next = nullptr;
};

namespace HNGeometry {

// The layer of the name, made with the colour when it is missing (256 leaves the default, 7).
// `isNew` may be null.
CAD_API AcDbObjectId createNewLayer(std::u16string_view name, bool* isNew = nullptr,
                                    AcDbDatabase* database = nullptr, int color = 256);
// Changes colour and line type of an existing layer; false when there is none. Colour 0 and 256
// leave the colour as it is, a line type that the drawing lacks leaves the line type.
CAD_API bool setColorLtypeLayer(std::u16string_view name, int color, std::u16string_view linetype);

// A 3D polyline. `vertexData` gives one chain for each vertex, null entries allowed; the chains are
// taken for the length of the call.
CAD_API AcDbObjectId Create3Dpoly(const AcGePoint3dArray& points, int color,
                                  std::u16string_view layer, short flag, const resbuf* xdata,
                                  AcDbDatabase* database = nullptr,
                                  AcDbBlockTableRecord* block = nullptr,
                                  const ResbufArray* vertexData = nullptr);
// A light polyline; `bulges` may be null. `kind` 1 closes it.
CAD_API AcDbObjectId Create2Dpoly(const AcGePoint3dArray& points, const std::vector<double>* bulges,
                                  const resbuf* xdata, int color, std::u16string_view layer,
                                  double startWidth = 0, double endWidth = 0, int kind = 0);
CAD_API AcDbObjectId Create3Dpoly_da_DATIPOLI3D(int count, const datipoli3d* list,
                                                const resbuf* xdata, int color,
                                                std::u16string_view layer, short flag = 0,
                                                AcDbDatabase* database = nullptr,
                                                AcDbBlockTableRecord* block = nullptr,
                                                std::u16string_view linetype = {});
CAD_API AcDbObjectId addPOINT(const AcGePoint3d& point, std::u16string_view layer, int color,
                              const resbuf* xdata, AcDbDatabase* database = nullptr,
                              std::u16string_view text = {}, AcDbBlockTableRecord* block = nullptr);
CAD_API AcDbObjectId createLine(const AcGePoint3d& from, const AcGePoint3d& to,
                                std::u16string_view layer, std::u16string_view linetype, int color,
                                const resbuf* xdata = nullptr, AcDbDatabase* database = nullptr,
                                AcDbBlockTableRecord* block = nullptr);
// A text. Alignment "Left", "Center", "Right", "Middle"; rotation in radians.
CAD_API AcDbObjectId HNTextCommandTesto(std::u16string_view layer, std::u16string_view style,
                                        const AcGePoint3d& position, double height, double rotation,
                                        std::u16string_view text,
                                        std::u16string_view alignment = u"Left", int color = 256);

// Makes a line type: dashes positive, gaps negative, dots 0, in drawing units.
CAD_API AcDbObjectId addLineType(std::u16string_view name, std::u16string_view description,
                                 const std::vector<double>& dashes);
CAD_API bool iterateLinetypeTable(std::u16string_view name, AcDbObjectId& id);
CAD_API bool RegApplicazione(std::u16string_view name, AcDbDatabase* database);

// The plan point at a chainage and the direction there (radians from the X axis). Chainages beyond
// an end give that end. 1, or 0 for an empty path.
CAD_API short XYdaProgsuDatiPoli(const datipoli* path, double chainage, AcGePoint2d& point,
                                 double& direction);
CAD_API void LiberaDATIPOLI(datipoli* path);

// The same selection call through the family's wrapper.
CAD_API int ksr_ssget(const char16_t* mode, const void* point1, const void* point2,
                      const resbuf* filter, ads_name& set);

}  // namespace HNGeometry

// The wrappers around host calls that the family shares.
class CAD_API KsrAcadMgr {
 public:
  // A host command at once: pairs of code (RTSTR, RTPOINT, RTREAL, RTSHORT) and value, ended by
  // RTNONE.
  template <class... Args>
  static int ksr_acedCommand(const Args&... args) {
    resbuf* chain = acutBuildList(args...);
    const int result = acedCmd(chain);
    acutRelRb(chain);
    return result;
  }
  static int ksr_acedGetKword(std::u16string_view prompt, std::u16string& keyword);
  static int ksr_acedGetString(bool blanks, std::u16string_view prompt, std::u16string& text);
};
