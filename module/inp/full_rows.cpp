#include "module/inp/full_rows.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "epanet/lexis.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

using epanet::kNone;
using epanet::Node;
using epanet::NodeKind;
using epanet::Quantity;
using epanet::RowId;
using epanet::Section;
using epanet::Thing;
using epanet::ValveKind;
using schema::Field;

FullRows::FullRows(std::u16string_view name, const epanet::Network& network,
                   const epanet::Record& record, const epanet::Units& units, epanet::Editor& editor,
                   Notices& notices)
    : network_(network),
      record_(record),
      words_(network.document().isUtf8()),
      back_(epanet::drawingUnits(units), units),
      forth_(units, epanet::drawingUnits(units)),
      editor_(editor),
      notices_(notices),
      entities_(name) {}

void FullRows::write(const Comparison& comparison) {
  // What has been changed is told by the names of the drawing, and is set over what was renamed.
  rename(comparison.renames);
  for (const ChangedElement& element : comparison.changed) change(element);
  remove(Thing::node, comparison.goneNodes);
  remove(Thing::link, comparison.goneLinks);
  for (const auto& pattern : comparison.patterns) changePattern(pattern);
  for (const auto& curve : comparison.curves) changeCurve(curve);
  for (const NewElement& element : comparison.added) add(element);
  writeSettings(network_, comparison.settings, editor_);
}

// --- numbers and words ---------------------------------------------------------------------------

namespace {

double rounded(double number, int digits) {
  char text[48];
  const auto written =
      std::to_chars(text, text + sizeof text, number, std::chars_format::scientific, digits - 1);
  double result = number;
  std::from_chars(text, written.ptr, result);
  return result;
}

// Drawn values have nine digits; as many in the file would often be read back as another value.
template <class Forth>
std::string shortestText(double value, double factor, Forth forth) {
  if (factor == 1 || value == 0 || !std::isfinite(value)) return epanet::textOf(value);
  const double drawn = epanet::roundedTo9(value);
  for (int digits = 6; digits <= 12; ++digits) {
    const double number = rounded(value * factor, digits);
    if (forth(number) == drawn) return epanet::textOf(number);
  }
  return epanet::textOf(epanet::roundedTo9(value * factor));
}

double valueOf(std::u16string_view text) {
  return platform::parseReal(text).value_or(platform::wtof(text));
}

}  // namespace

std::string FullRows::number(Quantity quantity, double value) const {
  return shortestText(value, back_.factor(quantity),
                      [&](double number) { return forth_(quantity, number); });
}
std::string FullRows::number(Quantity quantity, std::u16string_view text) const {
  return number(quantity, valueOf(text));
}
std::string FullRows::setting(ValveKind kind, std::u16string_view text) const {
  if (kind == ValveKind::gpv) return bytes(text);
  return shortestText(valueOf(text), back_.settingFactor(kind),
                      [&](double number) { return forth_.setting(kind, number); });
}
std::string FullRows::curveX(epanet::CurveUse use, double value) const {
  return shortestText(value, back_.curveXFactor(use),
                      [&](double number) { return forth_.curveX(use, number); });
}
std::string FullRows::curveY(epanet::CurveUse use, double value) const {
  return shortestText(value, back_.curveYFactor(use),
                      [&](double number) { return forth_.curveY(use, number); });
}

std::string FullRows::newName(std::u16string_view name) {
  std::string id = bytes(name);
  if (words_.text(id) != name) {
    notices_.push_back({NoticeCode::nameNotInEncoding, std::u16string(name), words_.text(id)});
  }
  return id;
}

// A row as a reader wants to see it: its words, one blank between.
std::u16string FullRows::rowText(RowId row) const {
  epanet::Tokens tokens;
  network_.document().tokens(row, tokens);
  std::string text;
  for (int i = 0; i < tokens.count; ++i) {
    if (i > 0) text += ' ';
    text += tokens.text(i);
  }
  return words_.text(text);
}

// --- kept elements -------------------------------------------------------------------------------

void FullRows::setColumn(RowId row, int column, const std::string& text) {
  for (int i = editor_.countTokens(row); i < column; ++i) editor_.setToken(row, i, "0");
  editor_.setToken(row, column, text);
}

// Takes the last word of a row away, or leaves what stands for none where others follow.
void FullRows::clearColumn(RowId row, int column, const char* stand) {
  epanet::Tokens tokens;
  network_.document().tokens(row, tokens);
  if (column + 1 == tokens.count) {
    editor_.removeToken(row, column);
  } else if (column < tokens.count) {
    editor_.setToken(row, column, stand);
  }
}

void FullRows::change(const ChangedElement& element) {
  const bool node = element.kind == &schema::kJunc || element.kind == &schema::kResv ||
                    element.kind == &schema::kTank;
  if (node) {
    const Node& own = network_.nodes[element.index];
    for (const ChangedField& field : element.fields) {
      if (own.kind == NodeKind::tank) {
        changeTank(own, field);
      } else {
        changeJunction(own, field);
      }
    }
    if (!element.place) return;
    const std::string x = epanet::textOf(element.place->x), y = epanet::textOf(element.place->y);
    if (own.x.at) {
      editor_.setToken(own.x.at.row, own.x.at.token, x);
      editor_.setToken(own.y.at.row, own.y.at.token, y);
    } else {
      editor_.addRow(Section::coordinates, {idOf(own), x, y});
    }
    return;
  }
  changeLink(network_.links[element.index], element);
}

// Of reservoirs too: their one value and pattern stand in the same places, less the demand.
void FullRows::changeJunction(const Node& node, const ChangedField& field) {
  const int patternColumn = node.kind == NodeKind::junction ? 3 : 2;
  switch (field.field) {
    case Field::elevation:
    case Field::head:
      return setColumn(node.row, 1, number(Quantity::elevation, field.now));
    case Field::demand:
      return changeDemand(node, field.now);
    case Field::emitter: {
      const std::string now = number(Quantity::emitter, field.now);
      if (node.emitter.at) return editor_.setToken(node.emitter.at.row, node.emitter.at.token, now);
      if (now != "0") editor_.addRow(Section::emitters, {idOf(node), now});
      return;
    }
    case Field::pattern:
      if (node.firstDemand != kNone) {
        const RowId row = network_.demands[node.firstDemand].base.at.row;
        if (field.now.empty()) return clearColumn(row, 2, "");
        return setColumn(row, 2, bytes(field.now));
      }
      if (field.now.empty()) return clearColumn(node.row, patternColumn, "");
      return setColumn(node.row, patternColumn, bytes(field.now));
    default:
      return;
  }
}

// The drawn demand stands for all categories: they keep their shares. Where they sum up to nothing
// the first one makes the difference.
void FullRows::changeDemand(const Node& node, std::u16string_view text) {
  const std::string sum = number(Quantity::flow, text);
  if (node.firstDemand == kNone) return setColumn(node.row, 2, sum);
  const double now = epanet::numberOf(sum).value_or(0);
  const double was = network_.demandOf(node);
  const epanet::Demand& first = network_.demands[node.firstDemand];
  const bool single = first.next == kNone;
  if (was == 0 || single) {
    const double base = rounded(first.base.value - was + now, 12);
    return editor_.setToken(first.base.at.row, first.base.at.token, epanet::textOf(base));
  }
  if (now == was) return;
  // As many digits as it takes for the sum to be drawn as it is.
  int digits = 9, categories = 0;
  for (; digits < 12; ++digits) {
    double all = 0;
    for (std::uint32_t i = node.firstDemand; i != kNone; i = network_.demands[i].next) {
      all += rounded(network_.demands[i].base.value * (now / was), digits);
    }
    if (forth_(Quantity::flow, all) == forth_(Quantity::flow, now)) break;
  }
  for (std::uint32_t i = node.firstDemand; i != kNone; i = network_.demands[i].next) {
    const epanet::Number& base = network_.demands[i].base;
    const double scaled = rounded(base.value * (now / was), digits);
    editor_.setToken(base.at.row, base.at.token, epanet::textOf(scaled));
    ++categories;
  }
  if (categories > 1) {
    notices_.push_back(
        {NoticeCode::demandScaled, words_.text(node.id), platform::format(u"%d", categories)});
  }
}

void FullRows::changeTank(const Node& node, const ChangedField& field) {
  const auto set = [&](int column, Quantity quantity) {
    setColumn(node.row, column, number(quantity, field.now));
  };
  switch (field.field) {
    case Field::elevation:
      return set(1, Quantity::elevation);
    case Field::initLevel:
      return set(2, Quantity::elevation);
    case Field::minLevel:
      return set(3, Quantity::elevation);
    case Field::maxLevel:
      return set(4, Quantity::elevation);
    case Field::diameter:
      return set(5, Quantity::tankDiameter);
    case Field::minVolume:
      return set(6, Quantity::volume);
    case Field::volumeCurve:
      if (field.now.empty()) return clearColumn(node.row, 7, "*");
      return setColumn(node.row, 7, bytes(field.now));
    default:
      return;
  }
}

}  // namespace vessora
