#include "cad/view/looks.h"

#include <cmath>

#include "platform/text.h"

namespace cad::view {
namespace {

Color exactColor(std::int64_t v) {
  return {static_cast<std::uint8_t>(v >> 16), static_cast<std::uint8_t>(v >> 8),
          static_cast<std::uint8_t>(v)};
}

}  // namespace

const LayerLook& Looks::of(std::uint32_t name) {
  if (name >= looks_.size()) looks_.resize(name + 64);
  LayerLook& l = looks_[name];
  if (l.known) return l;
  l.known = true;
  l.shown = !hidden_.count(name);
  const std::u16string& text = d_.names().text(name);
  l.isZero = text == u"0" || text.empty();
  const std::uint32_t i = d_.structure().tableEntry(Type::layer, text);
  if (!i) return l;
  TagList t;
  d_.parse(i, t);
  const TagRange body = t.body();
  const auto color = static_cast<int>(t.integerOr(62, 7, body));
  l.shown = l.shown && !(t.integerOr(70, 0, body) & 1) && color >= 0;
  l.color = std::abs(color);
  if (const int exact = t.find(420, body); exact >= 0) {
    l.hasExact = true;
    l.exact = exactColor(t.integer(exact));
  }
  l.weight = static_cast<int>(t.integerOr(370, 0, body));
  l.linetype = linetype(t.textOr(6, u"Continuous", body));
  return l;
}

int Looks::linetype(const std::u16string& name) {
  const auto known = numbers_.find(name);
  if (known != numbers_.end()) return known->second;
  int number = -1;
  if (const std::uint32_t i = d_.structure().tableEntry(Type::ltype, name)) {
    TagList t;
    d_.parse(i, t);
    std::vector<double> dashes;
    for (int k = 1; k < t.xdataBegin(); ++k) {
      if (t[k].code == 49) dashes.push_back(t.real(k));
    }
    if (dashes.size() > 1) {
      number = static_cast<int>(linetypes_.size());
      linetypes_.push_back(std::move(dashes));
    }
  }
  numbers_[name] = number;
  return number;
}

Style Looks::styleOf(std::uint32_t entity, const TagList& t) const {
  Style s;
  s.layer = d_.record(entity).layer;
  const TagRange common = d_.format().hasHandlesAndMarkers() ? t.subclass("AcDbEntity") : t.body();
  for (int i = common.begin; i < common.end; ++i) {
    switch (t[i].code) {
      case 62:
        s.color = static_cast<int>(t.integer(i));
        break;
      case 420:
        s.color = -1;
        s.exact = exactColor(t.integer(i));
        break;
      case 370:
        s.weight = static_cast<int>(t.integer(i));
        break;
      case 6:
        s.linetype = t.text(i);
        break;
      case 48:
        s.scale = t.real(i);
        break;
      default:
        break;
    }
  }
  return s;
}

void Looks::inherit(Style& s, const Style& block) {
  const bool zero = of(s.layer).isZero;
  if (s.color == Style::kByBlock) {
    s.color = block.color;
    s.exact = block.exact;
    if (block.color == Style::kByLayer && !zero) {
      const LayerLook& l = of(block.layer);
      s.color = l.hasExact ? -1 : l.color;
      s.exact = l.exact;
    }
  }
  if (s.weight == -2) s.weight = block.weight;
  if (platform::equalNoCase(s.linetype, u"ByBlock")) s.linetype = block.linetype;
  if (zero) s.layer = block.layer;
}

Pen Looks::penOf(const Style& s) {
  const LayerLook l = of(s.layer);
  Pen pen;
  pen.index = s.color;
  pen.exact = s.exact;
  if (s.color == Style::kByLayer) {
    pen.index = l.hasExact ? -1 : l.color;
    pen.exact = l.exact;
  }
  if (pen.index == Style::kByBlock) pen.index = 7;  // not in a block: the default
  const int weight = s.weight < 0 ? l.weight : s.weight;
  pen.weight = weight > 0 ? weight / 100.0 : 0;
  const bool own = !s.linetype.empty() && !platform::equalNoCase(s.linetype, u"ByLayer") &&
                   !platform::equalNoCase(s.linetype, u"ByBlock");
  pen.linetype = own ? linetype(s.linetype) : l.linetype;
  pen.linetypeScale = s.scale;
  return pen;
}

}  // namespace cad::view
