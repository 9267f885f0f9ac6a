#include "cad/drawing/uses.h"

namespace cad {
namespace {

// In records of type `in` (other: in any entity), a tag of this code behind this marker names an
// entry of the kind. Empty marker: anywhere before the extended data.
struct UseRow {
  Type kind, in;
  int code;
  std::string_view marker;
};
constexpr UseRow kUses[] = {
    {Type::layer, Type::other, 8, "AcDbEntity"},
    {Type::ltype, Type::other, 6, "AcDbEntity"},
    {Type::ltype, Type::layer, 6, ""},
    {Type::style, Type::text, 7, "AcDbText"},
    {Type::style, Type::attrib, 7, "AcDbText"},
    {Type::style, Type::attdef, 7, "AcDbText"},
    {Type::style, Type::mtext, 7, "AcDbMText"},
    {Type::style, Type::tableStyle, 7, "AcDbTableStyle"},
    {Type::style, Type::acadTable, 7, "AcDbTable"},
    {Type::blockRecord, Type::insert, 2, ""},
    {Type::blockRecord, Type::acadTable, 2, "AcDbBlockReference"},
    {Type::blockRecord, Type::dimension, 2, "AcDbDimension"},
    {Type::blockRecord, Type::block, 2, "AcDbBlockBegin"},
    {Type::blockRecord, Type::block, 3, "AcDbBlockBegin"},
    {Type::dimstyle, Type::dimension, 3, "AcDbDimension"},
    {Type::dimstyle, Type::leader, 3, "AcDbLeader"},
};

struct HeaderRow {
  Type kind;
  std::string_view variable;
};
constexpr HeaderRow kHeaderUses[] = {
    {Type::layer, "$CLAYER"},          {Type::ltype, "$CELTYPE"},
    {Type::style, "$TEXTSTYLE"},       {Type::style, "$DIMTXSTY"},
    {Type::dimstyle, "$DIMSTYLE"},     {Type::blockRecord, "$DIMBLK"},
    {Type::blockRecord, "$DIMBLK1"},   {Type::blockRecord, "$DIMBLK2"},
    {Type::blockRecord, "$DIMLDRBLK"},
};

bool isEntity(const Record& r) {
  switch (r.type) {
    case Type::section:
    case Type::endsec:
    case Type::eof:
    case Type::table:
    case Type::endtab:
    case Type::classRecord:
    case Type::dictionary:
    case Type::xrecord:
      return false;
    default:
      return r.type < Type::blockRecord || r.type > Type::ucs;
  }
}

// Where a record can name an entry of the kind, by what is known without reading it.
bool mayName(const Record& r, Type kind, std::uint32_t name) {
  if (r.apps != 0 && (kind == Type::layer || kind == Type::appid)) {
    return true;  // extended data name layers and applications
  }
  if (kind == Type::layer) return isEntity(r) && r.layer == name;
  for (const UseRow& row : kUses) {
    if (row.kind != kind) continue;
    if (row.in == Type::other ? isEntity(r) : row.in == r.type) {
      return kind != Type::blockRecord || r.name == name || r.type == Type::dimension;
    }
  }
  return false;
}

class UseFinder {
 public:
  UseFinder(const Records& records, Type kind, std::uint32_t name)
      : records_(records), kind_(kind), name_(name) {}

  const std::vector<int>& in(std::uint32_t record, const TagList& tags) {
    places_.clear();
    const Record& r = records_[record];
    for (const UseRow& row : kUses) {
      if (row.kind != kind_ || (row.in == Type::other ? !isEntity(r) : row.in != r.type)) continue;
      const TagRange range = row.marker.empty() ? tags.body() : tags.subclass(row.marker);
      for (int i = range.begin; i < range.end; ++i) {
        if (tags[i].code == row.code && isName(tags, i)) places_.push_back(i);
      }
    }
    const int data = kind_ == Type::layer ? 1003 : kind_ == Type::appid ? 1001 : 0;
    for (int i = data ? tags.xdataBegin() : tags.size(); i < tags.size(); ++i) {
      if (tags[i].code == data && isName(tags, i)) places_.push_back(i);
    }
    return places_;
  }

 private:
  bool isName(const TagList& tags, int i) const {
    return records_.names().find(tags.text(i)) == name_;
  }
  const Records& records_;
  Type kind_;
  std::uint32_t name_;
  std::vector<int> places_;
};

}  // namespace

bool eachUse(const Records& records, Type kind, std::uint32_t name, const VisitUse& visit) {
  UseFinder finder(records, kind, name);
  const auto tags = borrowTags();
  for (std::uint32_t i = 1; i < records.count(); ++i) {
    const Record& r = records[i];
    if (r.is(Record::erased) || !mayName(r, kind, name)) continue;
    records.parse(i, *tags);
    const std::vector<int>& places = finder.in(i, *tags);
    if (!places.empty() && !visit(i, *tags, places)) return false;
  }
  return true;
}

bool isUsed(const Records& records, Type kind, std::uint32_t name) {
  return !eachUse(records, kind, name, [&](std::uint32_t i, TagList&, const std::vector<int>&) {
    return records[i].type == Type::block;
  });
}

std::vector<std::string_view> headerUses(Type kind) {
  std::vector<std::string_view> names;
  for (const HeaderRow& row : kHeaderUses) {
    if (row.kind == kind) names.push_back(row.variable);
  }
  return names;
}

}  // namespace cad
