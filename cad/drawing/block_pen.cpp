#include "cad/drawing/block_pen.h"

#include <algorithm>
#include <cmath>

namespace cad {
namespace {

// Mean width of a character of the plain fonts, in text heights.
constexpr double kCharacterWidth = 0.9;
constexpr double kMostCondensed = 0.4;
constexpr double kDegree = 3.14159265358979323846 / 180;
constexpr std::size_t kPiece = 250;  // characters of a formatted text in one tag

double lengthOf(const PenText& text) {
  return kCharacterWidth * text.height * static_cast<double>(text.text.size());
}

double condensed(const PenText& text) {
  const double length = lengthOf(text);
  if (text.width <= 0 || length <= text.width) return 1;
  return std::max(kMostCondensed, text.width / length);
}

}  // namespace

BlockPen::BlockPen(Drawing& drawing, const BlockInfo& block)
    : drawing_(drawing), block_(block), tags_(borrowTags()) {}

TagList& BlockPen::begin(std::string_view type, std::string_view marker) {
  tags_->create(drawing_.format(), type);
  tags_->addAscii(100, "AcDbEntity");
  tags_->addAscii(8, "0");
  if (color_ != 256) tags_->addInteger(62, color_);
  tags_->addAscii(100, marker);
  return *tags_;
}

void BlockPen::add() {
  drawing_.writer().addComplete(*tags_, {.before = block_.end, .owner = block_.id, .entity = true});
}

void BlockPen::line(double x1, double y1, double x2, double y2) {
  TagList& t = begin("LINE", "AcDbLine");
  t.addPoint(10, {x1, y1, 0});
  t.addPoint(11, {x2, y2, 0});
  add();
}

void BlockPen::rectangle(double x1, double y1, double x2, double y2) {
  line(x1, y1, x2, y1);
  line(x2, y1, x2, y2);
  line(x2, y2, x1, y2);
  line(x1, y2, x1, y1);
}

void BlockPen::fill(double x1, double y1, double x2, double y2) {
  TagList& t = begin("SOLID", "AcDbTrace");
  t.addPoint(10, {x1, y1, 0});
  t.addPoint(11, {x2, y1, 0});
  t.addPoint(12, {x1, y2, 0});
  t.addPoint(13, {x2, y2, 0});
  add();
}

void BlockPen::addStyle(TagList& t, std::u16string_view style) {
  if (!style.empty() && drawing_.structure().tableEntry(Type::style, style)) t.addText(7, style);
}

void BlockPen::addTextBody(TagList& t, const PenText& text) {
  // Programs that do not know the anchor put the text at its insertion point.
  const double factor = condensed(text),
               back = static_cast<int>(text.across) * factor * lengthOf(text) / 2;
  const double lower = (2 - static_cast<int>(text.down)) * text.height / 2;
  const double c = std::cos(text.rotation * kDegree), s = std::sin(text.rotation * kDegree);
  t.addPoint(10, {text.at.x - c * back + s * lower, text.at.y - s * back - c * lower, text.at.z});
  t.addReal(40, text.height);
  t.addText(1, text.text);
  if (text.rotation != 0) t.addReal(50, text.rotation);
  if (factor != 1) t.addReal(41, factor);
  addStyle(t, text.style);
  if (text.across != 0) t.addInteger(72, text.across);
  t.addPoint(11, text.at);
}

void BlockPen::text(const PenText& text) {
  TagList& t = begin("TEXT", "AcDbText");
  addTextBody(t, text);
  t.addAscii(100, "AcDbText");
  t.addInteger(73, 3 - text.down);
  add();
}

void BlockPen::attribute(std::u16string_view tag, std::u16string_view prompt, const PenText& text,
                         bool invisible) {
  TagList& t = begin("ATTDEF", "AcDbText");
  addTextBody(t, text);
  t.addAscii(100, "AcDbAttributeDefinition");
  t.addText(3, prompt);
  t.addText(2, tag);
  t.addInteger(70, invisible ? 1 : 0);
  t.addInteger(74, 3 - text.down);
  add();
}

void BlockPen::paragraphs(const PenText& text) {
  TagList& t = begin("MTEXT", "AcDbMText");
  t.addPoint(10, text.at);
  t.addReal(40, text.height);
  t.addReal(41, text.width);
  t.addInteger(71, text.down * 3 + text.across + 1);
  t.addInteger(72, 1);
  std::u16string_view rest = text.text;
  for (; rest.size() > kPiece; rest.remove_prefix(kPiece)) t.addText(3, rest.substr(0, kPiece));
  t.addText(1, rest);
  addStyle(t, text.style);
  add();
}

void BlockPen::insert(const AcGePoint3d& at, std::u16string_view block, double scale) {
  if (!drawing_.structure().blockByName(drawing_.names().find(block))) return;
  TagList& t = begin("INSERT", "AcDbBlockReference");
  t.addText(2, block);
  t.addPoint(10, at);
  for (const int code : {41, 42, 43}) t.addReal(code, scale);
  add();
}

}  // namespace cad
