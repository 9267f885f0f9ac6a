#include "cad/api/database.h"

#include "cad/api/owners.h"
#include "cad/api/table.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/insert_block.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/words.h"

using cad::Type;

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing)
    : drawing_(std::make_unique<cad::Drawing>(this)) {
  if (buildDefaultDrawing) drawing_->makeDefault();
}
AcDbDatabase::~AcDbDatabase() = default;

namespace {
template <class Table>
Acad::ErrorStatus openTable(AcDbDatabase& db, Type type, Table*& table, AcDb::OpenMode mode) {
  table = nullptr;
  return acdbOpenObject(table, db.drawing().idOf(db.drawing().structure().tableRecord(type)), mode);
}
}  // namespace

Acad::ErrorStatus AcDbDatabase::getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode) {
  return openTable(*this, Type::layer, table, mode);
}
Acad::ErrorStatus AcDbDatabase::getTextStyleTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode) {
  return openTable(*this, Type::style, table, mode);
}
Acad::ErrorStatus AcDbDatabase::getLinetypeTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) {
  return openTable(*this, Type::ltype, table, mode);
}
Acad::ErrorStatus AcDbDatabase::getRegAppTable(AcDbRegAppTable*& table, AcDb::OpenMode mode) {
  return openTable(*this, Type::appid, table, mode);
}
Acad::ErrorStatus AcDbDatabase::getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode) {
  return openTable(*this, Type::blockRecord, table, mode);
}

Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& dictionary,
                                                          AcDb::OpenMode mode) {
  dictionary = nullptr;
  return acdbOpenObject(dictionary, drawing_->idOf(drawing_->structure().rootDictionary()), mode);
}

Acad::ErrorStatus AcDbDatabase::getTableStyleDictionary(AcDbDictionary*& dictionary,
                                                        AcDb::OpenMode mode) {
  dictionary = nullptr;
  AcDbDictionary* opened = nullptr;
  if (const auto s = getNamedObjectsDictionary(opened, AcDb::kForRead); s != Acad::eOk) return s;
  cad::Opened<AcDbDictionary> root(opened);
  AcDbObjectId id;
  if (root->getAt(u"ACAD_TABLESTYLE", id) != Acad::eOk) {
    if (drawing_->format().version < 1018) return Acad::eInvalidDwgVersion;
    root->upgradeOpen();
    cad::Fresh<AcDbDictionary> styles;
    const auto s = root->setAt(u"ACAD_TABLESTYLE", styles.get(), id);
    if (!styles.taken(s)) return s;
    // Programs count on the style that every table falls back to.
    cad::Fresh<AcDbTableStyle> standard;
    AcDbObjectId standardId;
    standard.taken(styles->setAt(u"Standard", standard.get(), standardId));
  }
  root.close();
  return acdbOpenObject(dictionary, id, mode);
}

Acad::ErrorStatus AcDbDatabase::readDwgFile(std::u16string_view path) {
  std::string file = platform::nativePath(path);
  if (!platform::fileExists(file) && file.size() > 4 &&
      platform::equalNoCase(platform::widen(file.substr(file.size() - 4)), u".dwg")) {
    file.replace(file.size() - 4, 4, ".dxf");
  }
  if (!platform::fileExists(file)) {
    lastError_ =
        platform::nativePath(path) + platform::words(": il file non c'è, né come DWG né come DXF");
    return Acad::eFileNotFound;
  }
  std::vector<std::string> warnings;
  const auto loaded = drawing_->load(file, warnings);
  if (loaded) return Acad::eOk;
  lastError_ = loaded.error();
  return Acad::eFileAccessErr;
}

Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& id, std::u16string_view name,
                                       AcDbDatabase* source) {
  if (!source) return Acad::eNullObjectPointer;
  if (source == this) return Acad::eSelfReference;
  if (name.empty()) return Acad::eInvalidInput;
  if (drawing_->structure().blockByName(drawing_->names().of(name)))
    return Acad::eDuplicateRecordName;
  id = drawing_->idOf(cad::insertBlock(*drawing_, name, source->drawing()));
  return id.isNull() ? Acad::eInvalidInput : Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, std::uint64_t handle) const {
  const std::uint32_t i = drawing_->byHandle(handle);
  if (!i) return Acad::eKeyNotFound;
  id = drawing_->idOf(i);
  return Acad::eOk;
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
  static AcDbHostApplicationServices services;
  return &services;
}

int acdbRegApp(std::u16string_view name) {
  AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
  if (!db || name.empty() || name.size() > 255) return RTERROR;
  db->drawing().structure().registerApplication(name);
  return RTNORM;
}
