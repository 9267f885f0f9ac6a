// What both programs say of what the module's jobs have found, in the user's language
// (platform/words.h).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/jobs.h"
#include "platform/words.h"

namespace program {

using platform::words;

// A message in one line: what it quotes of files and drawings is made visible, whatever it holds.
std::string oneLine(std::string_view text);

// One notice in words, without its end.
std::string describe(const vessora::Notice& notice);
// Notices in words, one that is said again at once left out.
std::vector<std::string> described(const vessora::Notices& notices);
// "junctions 9, reservoirs 1, ..."
std::string describe(const vessora::ElementCounts& counts);
// One difference in a line: "pipe 12: diameter 100 -> 150".
std::string describe(const vessora::DiffItem& item);
// How a drawing differs from its kept text, in a line.
std::string summaryOf(const vessora::DiffResult& diff);
// Names separated by commas.
std::string listed(const std::vector<std::u16string>& names);

// Why an INP file should not be drawn, nothing having been drawn yet; empty when it may.
std::string faultOf(const vessora::InpFindings& found);
// The period that is asked for, as the report writes it: "7:00" is "7:00:00" too. Empty where there
// is none.
std::u16string periodOf(const vessora::ReportPeriods& periods, const std::string& wanted);
// Why the rows of a period should not go onto the network; empty when they may.
std::string faultOf(const vessora::ReportFindings& found, const std::u16string& network);
// What elements of a network without rows in a period come to; empty when there are none.
std::string lackOf(const vessora::ReportFindings& found);
// "name: results on nodes 38, links 46, period 7:00:00"
std::string describe(const vessora::ResultCounts& written, const std::u16string& network,
                     const std::u16string& period);

}  // namespace program
