// Quality, sources, mixing, leakage, tags, labels, and the lists of [REPORT].
#include <algorithm>

#include "epanet/lexis.h"
#include "epanet/reader.h"

namespace epanet {

// A value for one id, or for all between two: as numbers where both begin with one above 0.
void Reader::readRange(RangeValue::What what, int first, int value, bool links) {
  RangeValue range;
  range.row = row_;
  range.what = what;
  if (!number(value, range.value)) return;
  const auto end = [&](int token, Role role) {
    const std::uint32_t index = links ? net_.findLink(word(token)) : net_.findNode(word(token));
    if (index != kNone) mention(links ? Thing::link : Thing::node, index, role, token);
    return Ref{index, at(token)};
  };
  const bool one = value == first + 1;
  range.first = end(first, one ? Role::data : Role::item);
  range.last = one ? range.first : end(first + 1, Role::item);
  if (what == RangeValue::What::bulk || what == RangeValue::What::tank) {
    measure(Quantity::bulk, range.value);
  }
  if (what == RangeValue::What::wall) measure(Quantity::wall, range.value);
  net_.rangeValues.push_back(range);
}

void Reader::readQuality() {
  if (count() < 2) return;
  const int last = count() == 2 ? 1 : 2;
  if (last == 1 && net_.findNode(word(0)) == kNone) return problem(Fault::unknownNode, 0);
  if (const auto value = numberOf(word(last)); value && *value < 0) {
    return problem(Fault::nodeValue, last);
  }
  readRange(RangeValue::What::quality, 0, last, false);
}

void Reader::readSource() {
  if (count() < 2) return problem(Fault::syntax);
  constexpr std::string_view kKinds[] = {"CONCEN", "MASS", "SETPOINT", "FLOWPACED"};
  Source source;
  source.row = row_;
  source.node = node(0, Role::data);
  if (!source.node) return;
  const int kind = wordAt(word(1), kKinds);
  const int strength = kind < 0 ? 1 : 2;
  if (kind >= 0) source.kind = static_cast<Source::Kind>(kind);
  if (strength >= count()) return;
  if (kind < 0 && !numberOf(word(1))) return problem(Fault::option, 1);
  if (!number(strength, source.strength)) return;
  if (count() > strength + 1 && !word(strength + 1).empty() && word(strength + 1) != "*") {
    source.pattern = pattern(strength + 1, Role::value);
    if (!source.pattern) return;
  }
  net_.sources.push_back(source);
}

void Reader::readMixing() {
  constexpr std::string_view kModels[] = {"MIXED", "2COMP", "FIFO", "LIFO"};
  if (count() < 2) return;
  Mixing mixing;
  mixing.row = row_;
  mixing.tank = node(0, Role::data);
  if (!mixing.tank || net_.nodes[mixing.tank.index].kind == NodeKind::junction) return;
  const int model = wordAt(word(1), kModels);
  if (model < 0) return problem(Fault::option, 1);
  if (net_.nodes[mixing.tank.index].kind != NodeKind::tank) return;
  mixing.model = word(1);
  mixing.fraction.value = 1;
  if (model == 1 && !numberIfThere(2, mixing.fraction)) return;
  net_.mixing.push_back(mixing);
}

void Reader::readLeakage() {
  if (count() < 3) return problem(Fault::syntax);
  Leakage leakage;
  leakage.row = row_;
  leakage.pipe = link(0, Role::data);
  if (!leakage.pipe) return;
  if (!number(1, leakage.area)) return;
  if (leakage.area.value < 0) return problem(Fault::nodeValue, 1);
  if (!number(2, leakage.expansion)) return;
  if (leakage.expansion.value < 0) return problem(Fault::nodeValue, 1);
  measure(Quantity::leakArea, leakage.area);
  measure(Quantity::leakExpansion, leakage.expansion);
  net_.leakages.push_back(leakage);
}

// NODE or LINK, id, one word.
void Reader::readTag() {
  if (count() < 3) return problem(Fault::syntax);
  Tag tag;
  tag.row = row_;
  tag.ofNode = is(0, "NODE");
  const std::uint32_t index = tag.ofNode ? net_.findNode(word(1)) : net_.findLink(word(1));
  if (!tag.ofNode && !is(0, "LINK")) return;
  if (index == kNone) return problem(tag.ofNode ? Fault::unknownNode : Fault::unknownLink, 1);
  tag.element = {index, at(1)};
  tag.text = word(2);
  mention(tag.ofNode ? Thing::node : Thing::link, index, Role::data, 1);
  net_.tags.push_back(tag);
}

// x y "text" (anchor): the solver does not read them.
void Reader::readLabel() {
  if (count() < 3) return;
  const auto x = numberOf(word(0)), y = numberOf(word(1));
  if (!x || !y) return;
  Label label;
  label.row = row_;
  label.x = {*x, at(0)};
  label.y = {*y, at(1)};
  label.text = word(2);
  if (const std::uint32_t anchor = count() > 3 ? net_.findNode(word(3)) : kNone; anchor != kNone) {
    label.anchor = {anchor, at(3)};
    mention(Thing::node, anchor, Role::anchor, 3);
  }
  net_.labels.push_back(label);
}

void Reader::readReport() {
  if (count() < 2) return problem(Fault::syntax);
  const int last = count() - 1;
  if (is(0, "PAGE")) {
    Number size;
    if (number(last, size) && (size.value < 0 || size.value > 255)) problem(Fault::option, last);
    return;
  }
  if (is(0, "STATUS") || is(0, "SUMM") || is(0, "MESS") || is(0, "ENER") || is(0, "FILE")) return;
  const bool nodes = is(0, "NODE"), links = is(0, "LINK");
  if (!nodes && !links) return readReportField();
  if (is(last, "ALL") || is(last, "NONE")) return;
  for (int i = 1; i < count(); ++i) {
    if (!(nodes ? node(i, Role::item) : link(i, Role::item))) return;
  }
}

// A field and whether it is shown, or a limit to it: "Pressure BELOW 20".
void Reader::readReportField() {
  struct Field {
    std::string_view name;
    Quantity quantity;
  };
  constexpr Field kFields[] = {{"ELEVATION", Quantity::elevation},
                               {"DEMAND", Quantity::flow},
                               {"HEADLOSS", Quantity::headlossLimit},
                               {"HEAD", Quantity::elevation},
                               {"PRESSURE", Quantity::pressure},
                               {"QUALITY", Quantity::none},
                               {"LENGTH", Quantity::length},
                               {"DIAMETER", Quantity::pipeDiameter},
                               {"FLOW", Quantity::flow},
                               {"VELOCITY", Quantity::velocity},
                               {"STATE", Quantity::none},
                               {"SETTING", Quantity::none},
                               {"REACTION", Quantity::none},
                               {"F-FACTOR", Quantity::none}};
  const auto* field = std::find_if(std::begin(kFields), std::end(kFields),
                                   [this](const Field& own) { return is(0, own.name); });
  if (field == std::end(kFields)) return problem(Fault::syntax);
  if (is(1, "YES") || is(1, "NO")) return;
  if (count() < 3) return problem(Fault::syntax);
  const bool limit = is(1, "BELOW") || is(1, "ABOVE");
  if (!limit && !is(1, "PREC")) return problem(Fault::option, 1);
  Number value;
  if (number(2, value) && limit && field->quantity != Quantity::none) {
    measure(field->quantity, value);
  }
}

}  // namespace epanet
