// The table of pipe materials: one text file beside the program's data, for all drawings of the
// installation. Pipes store a material's name and no reference to a row of it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/wide.h"

namespace vessora {

struct EpaMaterial {
  platform::wide256 name;
  double roughness = 0;          // absolute, m
  platform::Wide<52> thirdLine;  // carried through unread; "0,0,0" in new rows
};

// The rows of the command that runs; every user reads the file again.
extern std::vector<EpaMaterial> materials;

// Where the file is: acqmateriali.dat under hn-cpath, or under no folder when that is unknown.
std::u16string materialsPath();

// Replaces the rows of `table` by those of the file. False, with an empty table, after telling the
// user that the file cannot be opened.
bool ReadMaterials(std::vector<EpaMaterial>& table);

// The rows in the bytes of such a file, three lines each: name, roughness, third line. A row that
// is not complete is dropped.
std::vector<EpaMaterial> parseMaterials(std::string bytes);

}  // namespace vessora
