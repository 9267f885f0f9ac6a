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

// The same without a word to anybody.
bool loadMaterials(std::vector<EpaMaterial>& table);
// Writes the file anew, as a whole or not at all.
bool saveMaterials(const std::vector<EpaMaterial>& table);

// The rows in the bytes of such a file, three lines each: name, roughness, third line. A row that
// is not complete is dropped. Bytes that are no UTF-8 as a whole are Windows-1252.
std::vector<EpaMaterial> parseMaterials(std::string bytes);
// The bytes of a file with these rows, so that reading gives the same back: roughness with ten
// decimals, UTF-8, or Windows-1252 where the file `before` was in it and has a place for every
// character. A line end within a text, which would shift all rows behind it, becomes a blank.
std::string formatMaterials(const std::vector<EpaMaterial>& table, std::string_view before);

}  // namespace vessora
