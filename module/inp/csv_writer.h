// Writing a network as a semicolon-separated listing for a spreadsheet.
#pragma once

#include <cstdint>
#include <string_view>

#include "module/host/notices.h"
#include "module/network/records.h"

namespace vessora {

// Writes nodes, links and the settings' name; points, curves and patterns are not listed. A tank
// takes two lines and a pump five, which breaks their own column headers: readers of these files
// expect it. Cells are not quoted. Returns 1 when the whole file is on disk, else 0: a
// notice says why, and an older file at the path is as it was.
std::int32_t WriteNetworkCsv(std::u16string_view path, const EpaNetwork& network,
                             const EpaSettings& settings, Notices& notices);

}  // namespace vessora
