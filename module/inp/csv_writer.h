// Writing a network as a semicolon-separated listing for a spreadsheet.
#pragma once

#include <cstdint>
#include <string_view>

#include "module/network/records.h"

namespace vessora {

// Writes nodes, links and the settings' name; points, curves and patterns are not listed. A tank
// takes two lines and a pump five, which breaks their own column headers: readers of these files
// expect it. Cells are not quoted. Returns 1 when the whole file is on disk, else 0: the user has
// then been told on the command line, and an older file at the path is as it was.
std::int32_t WriteNetworkCsv(std::u16string_view path, const EpaNetwork& network,
                             const EpaSettings& settings);

}  // namespace vessora
