// The fields of the six kinds of element as a person edits them: which there are, what may stand in
// them, and their texts in a record.
#pragma once

#include <QString>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "module/jobs.h"
#include "schema/element.h"

namespace desktop {

enum class Entry {
  fixed,  // of the drawing: only shown
  name,
  number,
  optional,  // a number, or nothing
  setting,   // of a valve: a number, or a curve by its type
  status,
  valveType,
  pattern,
  volumeCurve,
  pumpCurve,
  efficiencyCurve,
  material,
};

struct FieldRule {
  schema::Field field;
  Entry entry;
  // The least number, which is refused itself where zero makes no sense.
  std::optional<double> least = {};
  bool above = false;
};

const schema::Kind& kindOf(const vessora::DrawnElement& element);
std::span<const FieldRule> rulesOf(const vessora::DrawnElement& element);
// The statuses, or the types, that an element of this kind may have.
std::span<const char16_t* const> statusesOf(const vessora::DrawnElement& element);
std::span<const char16_t* const> valveTypes();

// The text of a field, empty where the element has none.
std::u16string textOf(const vessora::DrawnElement& element, schema::Field field);
// False when the text is longer than the field holds.
bool setText(vessora::DrawnElement& element, schema::Field field, std::u16string_view text);

// A number as it was typed, with a comma or a point, in the spelling of records; nothing for what
// is no number or not finite.
std::optional<std::u16string> numberOf(const QString& typed);
// Why a number cannot stand in the field; empty when it can.
QString faultOf(const FieldRule& rule, std::u16string_view number);

}  // namespace desktop
