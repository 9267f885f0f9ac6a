#include "cad/drawing/header.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/text.h"

namespace cad {
namespace {

// Variables that programs may set. One that a drawing's header leaves out has its default.
constexpr HeaderVariable kVariables[] = {
    {"$ANGBASE", 50, 1009},    {"$ANGDIR", 70, 1009},      {"$ATTMODE", 70, 1009},
    {"$AUNITS", 70, 1009},     {"$AUPREC", 70, 1009},      {"$CECOLOR", 62, 1009},
    {"$CELTSCALE", 40, 1012},  {"$CELTYPE", 6, 1009},      {"$CELWEIGHT", 370, 1015},
    {"$CHAMFERA", 40, 1009},   {"$CHAMFERB", 40, 1009},    {"$CLAYER", 8, 1009},
    {"$CMLSTYLE", 2, 1012},    {"$DIMSCALE", 40, 1009},    {"$DIMSTYLE", 2, 1009},
    {"$DIMTXT", 40, 1009},     {"$ELEVATION", 40, 1009},   {"$FILLETRAD", 40, 1009},
    {"$FILLMODE", 70, 1009},   {"$INSUNITS", 70, 1015},    {"$LIMCHECK", 70, 1009},
    {"$LTSCALE", 40, 1009},    {"$LUNITS", 70, 1009},      {"$LUPREC", 70, 1009},
    {"$LWDISPLAY", 290, 1015}, {"$MEASUREMENT", 70, 1014}, {"$MIRRTEXT", 70, 1009},
    {"$ORTHOMODE", 70, 1009},  {"$PDMODE", 70, 1009},      {"$PDSIZE", 40, 1009},
    {"$PLINEGEN", 70, 1009},   {"$PLINEWID", 40, 1009},    {"$PSLTSCALE", 70, 1009},
    {"$QTEXTMODE", 70, 1009},  {"$REGENMODE", 70, 1009},   {"$SKETCHINC", 40, 1009},
    {"$SPLFRAME", 70, 1009},   {"$SPLINESEGS", 70, 1009},  {"$SPLINETYPE", 70, 1009},
    {"$TEXTSIZE", 40, 1009},   {"$TEXTSTYLE", 7, 1009},    {"$THICKNESS", 40, 1009},
    {"$TILEMODE", 70, 1009},   {"$TRACEWID", 40, 1009},    {"$USERI1", 70, 1009},
    {"$USERI2", 70, 1009},     {"$USERI3", 70, 1009},      {"$USERI4", 70, 1009},
    {"$USERI5", 70, 1009},     {"$USERR1", 40, 1009},      {"$USERR2", 40, 1009},
    {"$USERR3", 40, 1009},     {"$USERR4", 40, 1009},      {"$USERR5", 40, 1009},
    {"$VISRETAIN", 70, 1009},
};

// Puts the text into the tag, as the kind of value that its code asks for. False for what is none.
bool setValue(TagList& tags, int i, std::u16string_view text) {
  switch (kindOf(tags[i].code)) {
    case ValueKind::text:
      tags.setText(i, text);
      return true;
    case ValueKind::real: {
      const auto value = platform::parseReal(text);
      if (!value || !std::isfinite(*value)) return false;
      tags.setReal(i, *value);
      return true;
    }
    case ValueKind::int16:
    case ValueKind::boolean: {
      const auto value = platform::parseReal(text);
      const bool small = kindOf(tags[i].code) == ValueKind::boolean;
      const double low = small ? 0 : std::numeric_limits<std::int16_t>::min();
      const double high = small ? 1 : std::numeric_limits<std::int16_t>::max();
      if (!value || std::trunc(*value) != *value || *value < low || *value > high) return false;
      tags.setInteger(i, static_cast<std::int64_t>(*value));
      return true;
    }
    default:
      return false;
  }
}

}  // namespace

const HeaderVariable* Header::known(std::string_view name) {
  const auto it = std::find_if(std::begin(kVariables), std::end(kVariables),
                               [&](const HeaderVariable& v) { return v.name == name; });
  return it == std::end(kVariables) ? nullptr : it;
}

bool Header::variable(std::string_view name, TagList& tags, TagRange& range) const {
  const std::uint32_t header = structure_.section(u"HEADER").begin;
  if (!header) return false;
  records_.parse(header, tags);
  for (int i = 1; i < tags.size(); ++i) {
    if (tags[i].code != 9 || tags[i].bytes() != name) continue;
    int end = i + 1;
    while (end < tags.size() && tags[end].code != 9) ++end;
    range = {i + 1, end};
    return true;
  }
  return false;
}

std::u16string Header::text(std::string_view name, std::u16string_view fallback) const {
  TagList tags;
  TagRange range;
  if (!variable(name, tags, range) || range.empty()) return std::u16string(fallback);
  std::u16string text = tags.text(range.begin);
  const std::size_t a = text.find_first_not_of(u" \t"), b = text.find_last_not_of(u" \t");
  return a == text.npos ? std::u16string() : text.substr(a, b - a + 1);
}

bool Header::setText(std::string_view name, std::u16string_view text) {
  const auto tags = borrowTags();
  TagRange range;
  const bool there = variable(name, *tags, range) && !range.empty();
  if (!there) {
    const HeaderVariable* const row = known(name);
    if (!row || row->since > records_.format().version) return false;
    structure_.sectionEnd(u"HEADER");
    records_.parse(structure_.section(u"HEADER").begin, *tags);
    if (range.empty() && !variable(name, *tags, range)) {
      tags->addAscii(9, name);
      range.begin = tags->size();
    }
    tags->insertAscii(range.begin, row->code, "");
  }
  if (!setValue(*tags, range.begin, text)) return false;
  writer_.rewrite(structure_.section(u"HEADER").begin, *tags);
  return true;
}

const Header::Values& Header::values() const {
  if (!record_) record_ = structure_.section(u"HEADER").begin;
  const TextKey key = record_ ? records_.textKey(record_) : TextKey{};
  if (values_.of == key) return values_;
  values_ = Values();
  values_.of = key;
  values_.layer = text("$CLAYER", u"0");
  if (values_.layer.empty()) values_.layer = u"0";
  TagList tags;
  TagRange range;
  const auto vector = [&](std::string_view name, AcGePoint3d& p) {
    if (!variable(name, tags, range) || range.empty()) return false;
    p = tags.point(range.begin);
    return true;
  };
  AcGePoint3d origin, x, y;
  if (!vector("$UCSXDIR", x) || !vector("$UCSYDIR", y)) return values_;
  vector("$UCSORG", origin);
  const AcGeVector3d xAxis = AcGeVector3d(x.x, x.y, x.z).normal();
  const AcGeVector3d zAxis = xAxis.crossProduct(AcGeVector3d(y.x, y.y, y.z)).normal();
  if (xAxis.length() == 0 || zAxis.length() == 0) return values_;
  const AcGeVector3d axes[] = {xAxis, zAxis.crossProduct(xAxis), zAxis};
  auto& entry = values_.user.entry;
  for (int c = 0; c < 3; ++c) {
    entry[0][c] = axes[c].x;
    entry[1][c] = axes[c].y;
    entry[2][c] = axes[c].z;
  }
  entry[0][3] = origin.x;
  entry[1][3] = origin.y;
  entry[2][3] = origin.z;
  return values_;
}

}  // namespace cad
