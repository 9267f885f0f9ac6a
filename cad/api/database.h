// One drawing in memory.
#pragma once

#include <memory>
#include <string>

#include "cad/api/tables.h"

class CAD_API AcDbDatabase {
 public:
  // With contents: a new empty drawing with the standard tables. Without: nothing, to read a file
  // into.
  explicit AcDbDatabase(bool buildDefaultDrawing = true);
  ~AcDbDatabase();
  AcDbDatabase(const AcDbDatabase&) = delete;
  AcDbDatabase& operator=(const AcDbDatabase&) = delete;

  // The tables; each is closed by the caller.
  Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getTextStyleTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getLinetypeTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getRegAppTable(AcDbRegAppTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode);
  // The dictionary of table styles, made when the drawing has none yet.
  Acad::ErrorStatus getTableStyleDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode);

  // Reads a drawing file into this database, which must have been made without contents. A name
  // that ends in ".dwg" is looked for as it stands and then with ".dxf" in place of it; a file in
  // DWG form is refused. On failure lastError() says why.
  Acad::ErrorStatus readDwgFile(std::u16string_view path);
  // Makes a block of the name out of the model space of another drawing, with the layers, line
  // types, text styles and blocks that it uses, and gives the block's id. eDuplicateRecordName when
  // there is one of the name already.
  Acad::ErrorStatus insert(AcDbObjectId& id, std::u16string_view name, AcDbDatabase* source);

  // The object of a handle; eKeyNotFound.
  Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, std::uint64_t handle) const;

  const std::string& lastError() const { return lastError_; }
  cad::Drawing& drawing() const { return *drawing_; }

 private:
  std::unique_ptr<cad::Drawing> drawing_;
  std::string lastError_;
};

// The session's services: which drawing is the current one.
class CAD_API AcDbHostApplicationServices {
 public:
  AcDbDatabase* workingDatabase() const { return working_; }
  void setWorkingDatabase(AcDbDatabase* database) { working_ = database; }

 private:
  AcDbDatabase* working_ = nullptr;
};
CAD_API AcDbHostApplicationServices* acdbHostApplicationServices();

// Registers an application name in the current drawing; harmless when it exists. RTNORM or RTERROR.
CAD_API int acdbRegApp(std::u16string_view name);
