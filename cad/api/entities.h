// The entities that modules read, make and change. Points are in world coordinates, angles in
// radians, colours are host colour indices: 0 by block, 1 to 255, 256 by layer.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cad/api/db_object.h"

class AcDbAttribute;
class AcDbAttributeDefinition;

namespace AcDb {
enum SubentType { kNullSubentType = 0 };
}
struct AcDbFullSubentPath {};
extern CAD_API const AcDbFullSubentPath kNullSubent;

class AcCmColor {
 public:
  void setColorIndex(int index) { index_ = index; }
  int colorIndex() const { return index_; }

 private:
  int index_ = 256;
};

class CAD_API AcDbEntity : public AcDbObject {
  ACRX_DECLARE(AcDbEntity)
 public:
  std::u16string layer() const;
  // Puts the entity on a layer, which is made (colour 7) when the drawing does not have it.
  Acad::ErrorStatus setLayer(std::u16string_view name);
  Acad::ErrorStatus setLayer(AcDbObjectId id);
  AcCmColor color() const;
  int colorIndex() const;
  Acad::ErrorStatus setColor(const AcCmColor& color) { return setColorIndex(color.colorIndex()); }
  Acad::ErrorStatus setColorIndex(int index);
  std::u16string linetype() const;
  Acad::ErrorStatus setLinetype(std::u16string_view name);
  // DXF name of the entity's type ("INSERT", "POLYLINE"...).
  std::u16string dxfName() const;
  // The box of what is drawn; eInvalidExtents for an entity that draws nothing known.
  Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const;
  // A mark on the screen, kept by the session and not by the drawing.
  Acad::ErrorStatus highlight(const AcDbFullSubentPath& = kNullSubent) const;
  Acad::ErrorStatus unhighlight(const AcDbFullSubentPath& = kNullSubent) const;
  // Tells views that the entity must be drawn again, also when nothing of it changed.
  void recordGraphicsModified(bool modified = true);

 protected:
  using AcDbObject::AcDbObject;
  friend class cad::Drawing;
};

class CAD_API AcDbPoint : public AcDbEntity {
  ACRX_DECLARE(AcDbPoint)
 public:
  explicit AcDbPoint(const AcGePoint3d& position);
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);

 protected:
  using AcDbEntity::AcDbEntity;
  friend class cad::Drawing;
};

class CAD_API AcDbLine : public AcDbEntity {
  ACRX_DECLARE(AcDbLine)
 public:
  AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end);
  AcGePoint3d startPoint() const;
  AcGePoint3d endPoint() const;

 protected:
  using AcDbEntity::AcDbEntity;
  friend class cad::Drawing;
};

class CAD_API AcDbText : public AcDbEntity {
  ACRX_DECLARE(AcDbText)
 public:
  AcDbText(const AcGePoint3d& position, std::u16string_view text, double height,
           double rotation = 0);
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
  std::u16string textString() const;
  Acad::ErrorStatus setTextString(std::u16string_view text);
  double height() const;
  Acad::ErrorStatus setHeight(double height);
  double rotation() const;
  std::u16string textStyleName() const;
  Acad::ErrorStatus setTextStyleName(std::u16string_view name);
  // Horizontal 0 left, 1 centre, 2 right, 4 middle; vertical 0 baseline, 1 bottom, 2 middle, 3 top.
  // With anything but left and baseline the anchor is `alignment`.
  Acad::ErrorStatus setJustification(int horizontal, int vertical, const AcGePoint3d& alignment);

 protected:
  using AcDbEntity::AcDbEntity;
  friend class cad::Drawing;
};

class CAD_API AcDbAttributeDefinition : public AcDbText {
  ACRX_DECLARE(AcDbAttributeDefinition)
 public:
  std::u16string tag() const;
  bool isInvisible() const;
  bool isConstant() const;

 protected:
  using AcDbText::AcDbText;
  friend class cad::Drawing;
};

class CAD_API AcDbAttribute : public AcDbText {
  ACRX_DECLARE(AcDbAttribute)
 public:
  AcDbAttribute();
  std::u16string tag() const;
  bool isInvisible() const;
  // Takes appearance, tag, default text and place from the definition, moved by the transformation
  // of the block reference (translation, rotation, uniform scale; the text plane stays parallel to
  // the reference's own).
  Acad::ErrorStatus setAttributeFromBlock(const AcDbAttributeDefinition* definition,
                                          const AcGeMatrix3d& blockTransform);

 protected:
  using AcDbText::AcDbText;
  friend class cad::Drawing;
};

// Walks the parts of an entity (vertices, attributes). The caller deletes it.
class CAD_API AcDbObjectIterator {
 public:
  virtual ~AcDbObjectIterator();
  void start();
  bool done() const;
  void step();
  AcDbObjectId objectId() const;

 private:
  friend class AcDb3dPolyline;
  friend class AcDbBlockReference;
  AcDbObjectIterator(const cad::Drawing* drawing, std::uint32_t owner);
  const cad::Drawing* drawing_;
  std::uint32_t owner_, at_ = 0;
};

class CAD_API AcDb3dPolylineVertex : public AcDbEntity {
  ACRX_DECLARE(AcDb3dPolylineVertex)
 public:
  explicit AcDb3dPolylineVertex(const AcGePoint3d& position);
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);

 protected:
  using AcDbEntity::AcDbEntity;
  friend class cad::Drawing;
};

class CAD_API AcDb3dPolyline : public AcDbEntity {
  ACRX_DECLARE(AcDb3dPolyline)
 public:
  // An open polyline without vertices; they are appended once it is in a database.
  AcDb3dPolyline();
  AcDbObjectIterator* vertexIterator() const;
  // Adds a vertex at the end; the polyline must be in a database and open for write. The vertex
  // stays open for write; the caller closes it.
  Acad::ErrorStatus appendVertex(AcDbObjectId& id, AcDb3dPolylineVertex* vertex);
  // The first and last vertex; eInvalidIndex without vertices. A closed polyline ends at its start.
  Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const;
  Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const;
  bool isClosed() const;

 protected:
  using AcDbEntity::AcDbEntity;
  friend class cad::Drawing;
};

// A light polyline: plane, with bulges.
class CAD_API AcDbPolyline : public AcDbEntity {
  ACRX_DECLARE(AcDbPolyline)
 public:
  struct Vertex {
    AcGePoint2d point;
    double bulge = 0;
  };
  explicit AcDbPolyline(const std::vector<Vertex>& vertices, bool closed = false,
                        double elevation = 0, double width = 0);
  std::vector<Vertex> vertices() const;
  bool isClosed() const;
  double elevation() const;

 protected:
  using AcDbEntity::AcDbEntity;
  friend class cad::Drawing;
};

class CAD_API AcDbBlockReference : public AcDbEntity {
  ACRX_DECLARE(AcDbBlockReference)
 public:
  AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId block);
  AcGePoint3d position() const;
  // Moves the reference and its attributes.
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
  double rotation() const;
  Acad::ErrorStatus setRotation(double angle);
  AcGeScale3d scaleFactors() const;
  // Scales about the insertion point, attributes included; eInvalidInput for a factor of zero.
  Acad::ErrorStatus setScaleFactors(const AcGeScale3d& scale);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
  // From block coordinates to the world.
  AcGeMatrix3d blockTransform() const;
  AcDbObjectId blockTableRecord() const;
  std::u16string blockName() const;

  AcDbObjectIterator* attributeIterator() const;
  Acad::ErrorStatus openAttribute(AcDbAttribute*& attribute, AcDbObjectId id,
                                  AcDb::OpenMode mode = AcDb::kForRead) const;
  // Adds an attribute; the reference must be in a database and open for write. The attribute stays
  // open for write; the caller closes it.
  Acad::ErrorStatus appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute);

 protected:
  using AcDbEntity::AcDbEntity;
  friend class cad::Drawing;

 private:
  template <class Change>
  Acad::ErrorStatus transform(Change&& change);
};
