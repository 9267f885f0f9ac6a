// Lines of a report that are no rows: the beginnings of tables, and messages. A part of report.cpp.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "epanet/report.h"

namespace epanet {

// "Node Results at 7:00:00 hrs: (continued)".
struct Banner {
  bool ofLinks = false;
  std::string_view period;
};
std::optional<Banner> bannerOf(std::string_view line);

// The four lines below a banner; empty when they are no head of a table of that kind.
using HeadLines = std::array<std::string_view, 4>;
std::optional<ReportHead> headOf(const HeadLines& lines, bool ofLinks);

// A warning or an error; an error's row is not in the line.
std::optional<ReportMessage> messageOf(std::string_view line);

}  // namespace epanet
