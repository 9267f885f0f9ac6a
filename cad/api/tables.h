// Symbol tables, their records and iterators, and dictionaries.
#pragma once

#include <string>

#include "cad/api/entities.h"

class CAD_API AcDbSymbolTableRecord : public AcDbObject {
  ACRX_DECLARE(AcDbSymbolTableRecord)
 public:
  std::u16string getName() const;
  Acad::ErrorStatus getName(std::u16string& name) const;
  Acad::ErrorStatus setName(std::u16string_view name);

 protected:
  using AcDbObject::AcDbObject;
  friend class cad::Drawing;
};

class CAD_API AcDbLayerTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE(AcDbLayerTableRecord)
 public:
  AcDbLayerTableRecord();
  bool isFrozen() const;
  Acad::ErrorStatus setIsFrozen(bool frozen);
  bool isOff() const;
  Acad::ErrorStatus setIsOff(bool off);
  bool isLocked() const;
  Acad::ErrorStatus setIsLocked(bool locked);
  int colorIndex() const;
  Acad::ErrorStatus setColorIndex(int index);
  std::u16string linetype() const;
  Acad::ErrorStatus setLinetype(std::u16string_view name);

 protected:
  using AcDbSymbolTableRecord::AcDbSymbolTableRecord;
  friend class cad::Drawing;
};

class CAD_API AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE(AcDbTextStyleTableRecord)
 public:
  AcDbTextStyleTableRecord();
  std::u16string fileName() const;
  Acad::ErrorStatus setFileName(std::u16string_view file);

 protected:
  using AcDbSymbolTableRecord::AcDbSymbolTableRecord;
  friend class cad::Drawing;
};

class CAD_API AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE(AcDbLinetypeTableRecord)
 public:
  AcDbLinetypeTableRecord();
  std::u16string comments() const;
  // Description and dashes: positive a dash, negative a gap, 0 a dot; lengths in drawing units.
  Acad::ErrorStatus setPattern(std::u16string_view description, const std::vector<double>& dashes);

 protected:
  using AcDbSymbolTableRecord::AcDbSymbolTableRecord;
  friend class cad::Drawing;
};

class CAD_API AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE(AcDbRegAppTableRecord)
 public:
  AcDbRegAppTableRecord();

 protected:
  using AcDbSymbolTableRecord::AcDbSymbolTableRecord;
  friend class cad::Drawing;
};

// Walks the entities of a block in drawing order, erased ones left out. The caller deletes it.
class CAD_API AcDbBlockTableRecordIterator {
 public:
  bool done() const;
  void step();
  Acad::ErrorStatus getEntity(AcDbEntity*& entity, AcDb::OpenMode mode = AcDb::kForRead) const;
  AcDbObjectId getEntityId() const;

 private:
  friend class AcDbBlockTableRecord;
  const cad::Drawing* drawing_ = nullptr;
  std::uint32_t block_ = 0, at_ = 0;
};

class CAD_API AcDbBlockTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE(AcDbBlockTableRecord)
 public:
  // Takes the entity into the drawing, at the end of this block; it stays open for write. Needs
  // this record open for write.
  Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity);
  Acad::ErrorStatus appendAcDbEntity(AcDbEntity* entity);
  Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& iterator) const;
  AcGePoint3d origin() const;

 protected:
  using AcDbSymbolTableRecord::AcDbSymbolTableRecord;
  friend class cad::Drawing;
};

// Walks the records of a table in their order. The caller deletes it.
class CAD_API AcDbSymbolTableIterator {
 public:
  void start();
  bool done() const;
  void step();
  Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
  Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record,
                              AcDb::OpenMode mode = AcDb::kForRead) const;

 private:
  friend class AcDbSymbolTable;
  const cad::Drawing* drawing_ = nullptr;
  std::uint32_t table_ = 0, at_ = 0;
};

class CAD_API AcDbSymbolTable : public AcDbObject {
  ACRX_DECLARE(AcDbSymbolTable)
 public:
  // Names compare without case. eKeyNotFound when there is none.
  Acad::ErrorStatus getAt(std::u16string_view name, AcDbObjectId& id) const;
  bool has(std::u16string_view name) const;
  Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& iterator) const;
  // Takes a new record into the table; it stays open for write. Needs the table open for write.
  // eDuplicateRecordName, eInvalidInput for an unusable name.
  Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* record);

 protected:
  using AcDbObject::AcDbObject;
  friend class cad::Drawing;
};

class CAD_API AcDbBlockTable : public AcDbSymbolTable {
  ACRX_DECLARE(AcDbBlockTable)
 protected:
  using AcDbSymbolTable::AcDbSymbolTable;
  friend class cad::Drawing;
};
class CAD_API AcDbLayerTable : public AcDbSymbolTable {
  ACRX_DECLARE(AcDbLayerTable)
 protected:
  using AcDbSymbolTable::AcDbSymbolTable;
  friend class cad::Drawing;
};
class CAD_API AcDbTextStyleTable : public AcDbSymbolTable {
  ACRX_DECLARE(AcDbTextStyleTable)
 protected:
  using AcDbSymbolTable::AcDbSymbolTable;
  friend class cad::Drawing;
};
class CAD_API AcDbLinetypeTable : public AcDbSymbolTable {
  ACRX_DECLARE(AcDbLinetypeTable)
 protected:
  using AcDbSymbolTable::AcDbSymbolTable;
  friend class cad::Drawing;
};
class CAD_API AcDbRegAppTable : public AcDbSymbolTable {
  ACRX_DECLARE(AcDbRegAppTable)
 protected:
  using AcDbSymbolTable::AcDbSymbolTable;
  friend class cad::Drawing;
};

class CAD_API AcDbDictionary : public AcDbObject {
  ACRX_DECLARE(AcDbDictionary)
 public:
  AcDbDictionary();
  bool has(std::u16string_view name) const;
  Acad::ErrorStatus getAt(std::u16string_view name, AcDbObjectId& id) const;
  // Enters an object under a name (replacing the entry of that name); a new object becomes the
  // drawing's and stays open for write. Needs the dictionary open for write.
  Acad::ErrorStatus setAt(std::u16string_view name, AcDbObject* object, AcDbObjectId& id);

 protected:
  using AcDbObject::AcDbObject;
  friend class cad::Drawing;
};

// A record of free tags in a dictionary.
class CAD_API AcDbXrecord : public AcDbObject {
  ACRX_DECLARE(AcDbXrecord)
 public:
  AcDbXrecord();
  // The tags as a chain, owned by the caller; codes 1 to 369, handles are not offered.
  resbuf* rbChain() const;
  // The same without the tags of bytes, and the bytes of all tags of code 310, one after another:
  // as a chain, some megabytes would be a hundred thousand nodes with two wide characters for each
  // byte. Null when one of those tags holds no bytes, or there are no other tags.
  resbuf* rbChain(std::string& bytes) const;
  // Replaces all tags: by the chain's, and behind them bytes as tags of code 310. eInvalidInput for
  // a chain with what no tag can be; the record is as it was then.
  Acad::ErrorStatus setFromRbChain(const resbuf* chain, std::string_view bytes = {});

 protected:
  using AcDbObject::AcDbObject;
  friend class cad::Drawing;
};
