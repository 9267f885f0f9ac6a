// Work on the tables of networks without anybody being asked: pipe materials, patterns and curves.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/host/notices.h"
#include "module/network/materials.h"
#include "module/network/records.h"

namespace vessora {

// Notices say why nothing has been changed; warnings, what the change leaves inconsistent.
struct TableResult {
  Notices notices, warnings;
};

// --- the table of materials, one for all drawings ------------------------------------------------

struct MaterialTable {
  std::vector<EpaMaterial> rows;
  Notices notices;
};
MaterialTable readMaterialTable();
// Writes the table's file anew, as a whole or not at all. Warns of materials that pipes of the
// drawing name and that the table does not have.
TableResult writeMaterialTable(const std::vector<EpaMaterial>& rows);

// --- the material of pipes -----------------------------------------------------------------------

using PipeNames = std::vector<std::u16string>;

// Append the names of a network's pipes: of those whose stored roughness is `value` but for
// 0.00001, and of those that store exactly this material, where a pipe without one stores the empty
// name.
void FindPipesByRoughness(std::u16string_view network, double value, PipeNames& found);
void FindPipesByMaterial(std::u16string_view network, std::u16string_view material,
                         PipeNames& found);

// Gives a material and its roughness, stored as it is, to all pipes of these names, those that
// share a name included. They lose their results and get a colour that shows them. Warns when the
// network's headloss formula does not read a roughness as the material table has it, in mm.
struct AssignResult {
  int pipes = 0;
  Notices warnings;
};
AssignResult AssignMaterial(std::u16string_view network, double roughness,
                            std::u16string_view material, const PipeNames& found);

// --- patterns and curves -------------------------------------------------------------------------

// As the store of patterns and curves does it, oddities included: a record without values is not
// kept; the classic way replacing erases the old name in every network of the drawing, and a
// deleted curve stays as a rule. Warns of that, of names that are there twice, and of elements that
// name what is gone. In full a record that is replaced by itself stays, and a new name reaches the
// elements and settings that have the old one, and the rows of the kept text.
TableResult addPattern(std::u16string_view network, const EpaPattern& pattern);
TableResult replacePattern(std::u16string_view network, const EpaPattern& pattern,
                           std::u16string_view oldName);
TableResult deletePattern(std::u16string_view network, std::u16string_view name);
TableResult addCurve(std::u16string_view network, const EpaCurve& curve);
TableResult replaceCurve(std::u16string_view network, const EpaCurve& curve,
                         std::u16string_view oldName);
TableResult deleteCurve(std::u16string_view network, std::u16string_view name);

}  // namespace vessora
