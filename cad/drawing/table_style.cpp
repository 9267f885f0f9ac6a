// Table styles: a head and three stretches, one for each type of rows.
#include "cad/api/table.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"

using cad::Drawing;
using cad::get;
using cad::NumberField;
using cad::RealField;
using cad::set;
using cad::TagList;
using cad::TagRange;
using cad::Type;

ACRX_DEFINE(AcDbTableStyle, AcDbObject)

namespace {

constexpr RealField kHeight{"", 140, 0, RealField::positive};
constexpr NumberField kAlignment{"", 170, 5, AcDb::kTopLeft, AcDb::kBottomRight};
constexpr NumberField kColor{"", 62, 0, 0, 256};
constexpr RealField kAcrossMargin{"AcDbTableStyle", 40, 0, RealField::notNegative};
constexpr RealField kDownMargin{"AcDbTableStyle", 41, 0, RealField::notNegative};

// The stretches of a style that describe one type of rows come in this order.
constexpr int kRowTypes[] = {AcDb::kDataRow, AcDb::kTitleRow, AcDb::kHeaderRow};

TagRange rowRange(const TagList& t, int index) {
  const TagRange own = t.subclass("AcDbTableStyle");
  int from = t.find(7, own);
  for (; index > 0 && from >= 0; --index) from = t.find(7, from + 1, own.end);
  if (from < 0) return {own.end, own.end};
  const int next = t.find(7, from + 1, own.end);
  return {from, next < 0 ? own.end : next};
}

TagRange headRange(const TagList& t) {
  const TagRange own = t.subclass("AcDbTableStyle");
  const int rows = t.find(7, own);
  return {own.begin, rows < 0 ? own.end : rows};
}

int indexOf(AcDb::RowType row) {
  return row == AcDb::kTitleRow ? 1 : row == AcDb::kHeaderRow ? 2 : 0;
}

// Changes the stretches of these types of rows, unless the value may not be.
template <class Change>
Acad::ErrorStatus eachRow(AcDbObject& style, int rows, bool valid, Change&& change) {
  if (const auto s = cad::writable(style); s != Acad::eOk) return s;
  if (!valid) return Acad::eInvalidInput;
  TagList& t = cad::Inside::tagsForWrite(style);
  for (int i = 0; i < 3; ++i) {
    if (rows & kRowTypes[i]) change(t, rowRange(t, i));
  }
  return Acad::eOk;
}

void addRowLook(TagList& t, double height, int alignment) {
  t.addAscii(7, "Standard");
  t.addReal(140, height);
  t.addInteger(170, alignment);
  t.addInteger(62, 0);
  t.addInteger(63, 257);
  t.addInteger(283, 0);
  t.addInteger(90, 4);
  t.addInteger(91, 0);
  t.addAscii(1, "");
  for (int border = 0; border < 6; ++border) {
    t.addInteger(274 + border, -2);
    t.addInteger(284 + border, 1);
    t.addInteger(64 + border, 0);
  }
}

}  // namespace

AcDbTableStyle::AcDbTableStyle() {
  TagList& t = tagsForWrite();
  t.create(cad::neutralFormat(), "TABLESTYLE");
  t.addAscii(100, "AcDbTableStyle");
  t.addAscii(3, "Standard");
  t.addInteger(70, 0);
  t.addInteger(71, 0);
  t.addReal(40, 1.5);
  t.addReal(41, 1.5);
  t.addInteger(280, 0);
  t.addInteger(281, 0);
  addRowLook(t, 4.5, AcDb::kTopCenter);
  addRowLook(t, 6, AcDb::kMiddleCenter);
  addRowLook(t, 4.5, AcDb::kMiddleCenter);
}

void AcDbTableStyle::afterAppend() {
  Drawing& d = *view_->drawing;
  d.structure().ensureClass("TABLESTYLE", "AcDbTableStyle", "ObjectDBX Classes", 4095, false);
  TagList& t = tagsForWrite();
  const std::uint64_t dictionary = d.record(d.record(view_->record).owner).handle;
  const int at = t.find(5, 1) + 1;
  t.insertAscii(at, 102, "{ACAD_REACTORS");
  t.insertHandle(at + 1, 330, dictionary);
  t.insertAscii(at + 2, 102, "}");
  if (d.format().version >= 1021) return;
  // The data type of rows came later.
  for (int i = t.body().end - 1; i > at + 2; --i) {
    const int c = t[i].code;
    if (c == 90 || c == 91 || c == 1) t.erase(i, i + 1);
  }
}

std::u16string AcDbTableStyle::getName() const { return tags().textOr(3, u"", headRange(tags())); }
Acad::ErrorStatus AcDbTableStyle::setName(std::u16string_view name) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (!cad::usableName(name, cad::neutralFormat().version)) return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  t.putText(3, name, headRange(t));
  return Acad::eOk;
}

double AcDbTableStyle::textHeight(AcDb::RowType row) const {
  return tags().realOr(kHeight.code, kHeight.fallback, rowRange(tags(), indexOf(row)));
}
Acad::ErrorStatus AcDbTableStyle::setTextHeight(double height, int rows) {
  return eachRow(*this, rows, passes(kHeight, height),
                 [&](TagList& t, TagRange range) { t.putReal(kHeight.code, height, range); });
}

AcDb::CellAlignment AcDbTableStyle::alignment(AcDb::RowType row) const {
  return static_cast<AcDb::CellAlignment>(
      tags().integerOr(kAlignment.code, kAlignment.fallback, rowRange(tags(), indexOf(row))));
}
Acad::ErrorStatus AcDbTableStyle::setAlignment(AcDb::CellAlignment alignment, int rows) {
  return eachRow(*this, rows, passes(kAlignment, alignment), [&](TagList& t, TagRange range) {
    t.putInteger(kAlignment.code, alignment, range);
  });
}

AcCmColor AcDbTableStyle::color(AcDb::RowType row) const {
  AcCmColor color;
  color.setColorIndex(static_cast<int>(
      tags().integerOr(kColor.code, kColor.fallback, rowRange(tags(), indexOf(row)))));
  return color;
}
Acad::ErrorStatus AcDbTableStyle::setColor(const AcCmColor& color, int rows) {
  return eachRow(*this, rows, passes(kColor, color.colorIndex()), [&](TagList& t, TagRange range) {
    t.putInteger(kColor.code, color.colorIndex(), range);
  });
}

std::u16string AcDbTableStyle::textStyleName(AcDb::RowType row) const {
  return tags().textOr(7, u"Standard", rowRange(tags(), indexOf(row)));
}
Acad::ErrorStatus AcDbTableStyle::setTextStyle(AcDbObjectId style, int rows) {
  const Drawing* d = cad::drawingNumbered(style.databaseIndex());
  const bool valid = d && d->has(style) && d->record(style.index()).type == Type::style;
  return eachRow(*this, rows, valid, [&](TagList& t, TagRange range) {
    t.putText(7, d->names().text(d->record(style.index()).name), range);
  });
}

// Both stand before the rows, the first of their codes.
double AcDbTableStyle::horzCellMargin() const { return get(*this, kAcrossMargin); }
double AcDbTableStyle::vertCellMargin() const { return get(*this, kDownMargin); }
Acad::ErrorStatus AcDbTableStyle::setHorzCellMargin(double margin) {
  return set(*this, kAcrossMargin, margin);
}
Acad::ErrorStatus AcDbTableStyle::setVertCellMargin(double margin) {
  return set(*this, kDownMargin, margin);
}
bool AcDbTableStyle::isTitleSuppressed() const {
  return tags().integerOr(280, 0, headRange(tags())) != 0;
}
bool AcDbTableStyle::isHeaderSuppressed() const {
  return tags().integerOr(281, 0, headRange(tags())) != 0;
}
