// Time patterns and curves, which have no place on the plan but live in the drawing.
//
// What is said of other networks than the one at hand, and of kinds, is the classic way: in full
// each call touches what has the id and the network, and nothing else.
//
// Each is a 3D polyline on the frozen reserved layer: its extended data name it and its network,
// and each of its vertices, all at one place, carries one value. A record without values has no
// existence in a drawing. Names compare exactly.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "module/network/records.h"

namespace vessora {

// Append what belongs to the network, in drawing order.
void LoadPatterns(std::vector<EpaPattern>& patterns, std::u16string_view network);
void LoadCurves(std::vector<EpaCurve>& curves, std::u16string_view network);

void AddPattern(const EpaPattern& pattern, std::u16string_view network);
void AddCurve(const EpaCurve& curve, std::u16string_view network);

// Erases what has the old id, in every network of the drawing, and writes the record anew.
void ReplacePattern(const EpaPattern& pattern, std::u16string_view oldId,
                    std::u16string_view network);
void ReplaceCurve(const EpaCurve& curve, std::u16string_view oldId, std::u16string_view network);

// Erases the network's pattern of the id, and any pattern that names no network.
void DeletePattern(std::u16string_view id, std::u16string_view network);
// Erases the curves of the id whose *kind* is called like the network: as a rule none, and the
// curve is there again when curves are loaded.
void DeleteCurve(std::u16string_view id, std::u16string_view network);

// Whether no pattern or curve of the list has the name. With an old name it is free when it is that
// name, or when the list has exactly one record, whatever its name.
template <class Record>
bool NameIsFree(std::u16string_view name, const std::vector<Record>& records,
                std::optional<std::u16string_view> oldName = std::nullopt) {
  if (oldName && (name == *oldName || records.size() == 1)) return true;
  return std::none_of(records.begin(), records.end(),
                      [name](const Record& record) { return record.id == name; });
}

// What the axes of a kind of curve mean, in the user's language.
std::u16string CurveXLabel(std::u16string_view kind);
std::u16string CurveYLabel(std::u16string_view kind);

}  // namespace vessora
