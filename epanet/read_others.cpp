// Quality, sources, mixing, leakage, tags, labels, and the lists of [REPORT].
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
  if (one && !range.first && what == RangeValue::What::quality) {
    return problem(Fault::unknownNode, first);
  }
  if (what == RangeValue::What::bulk || what == RangeValue::What::tank) {
    measure(Quantity::bulk, range.value);
  }
  if (what == RangeValue::What::wall) measure(Quantity::wall, range.value);
  net_.rangeValues.push_back(range);
}

void Reader::readQuality() {
  if (count() < 2) return;
  readRange(RangeValue::What::quality, 0, count() == 2 ? 1 : 2, false);
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
  if (strength >= count()) return problem(Fault::syntax);
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
  if (model < 0) return problem(Fault::syntax, 1);
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
  if (!number(1, leakage.area) || !number(2, leakage.expansion)) return;
  measure(Quantity::leakArea, leakage.area);
  measure(Quantity::leakExpansion, leakage.expansion);
  net_.leakages.push_back(leakage);
}

// NODE or LINK, id, one word.
void Reader::readTag() {
  if (count() < 3) return;
  Tag tag;
  tag.row = row_;
  tag.ofNode = is(0, "NODE");
  const std::uint32_t index = tag.ofNode ? net_.findNode(word(1)) : net_.findLink(word(1));
  if (index == kNone || (!tag.ofNode && !is(0, "LINK"))) return;
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
  const bool nodes = is(0, "NODE"), links = is(0, "LINK");
  if (nodes || links) {
    if (is(count() - 1, "ALL") || is(count() - 1, "NONE")) return;
    for (int i = 1; i < count(); ++i) {
      if (nodes) {
        node(i, Role::item);
      } else {
        link(i, Role::item);
      }
    }
    return;
  }
  if (count() < 3) return;
  // A limit of a field: "Pressure BELOW 20".
  struct Field {
    std::string_view name;
    Quantity quantity;
  };
  constexpr Field kFields[] = {{"ELEVATION", Quantity::elevation},    {"DEMAND", Quantity::flow},
                               {"HEADLOSS", Quantity::headlossLimit}, {"HEAD", Quantity::elevation},
                               {"PRESSURE", Quantity::pressure},      {"LENGTH", Quantity::length},
                               {"DIAMETER", Quantity::pipeDiameter},  {"FLOW", Quantity::flow},
                               {"VELOCITY", Quantity::velocity}};
  if (!is(1, "BELOW") && !is(1, "ABOVE")) return;
  for (const Field& field : kFields) {
    if (!is(0, field.name)) continue;
    Number limit;
    if (number(2, limit)) measure(field.quantity, limit);
    return;
  }
}

}  // namespace epanet
