// Reading an EPANET input file into records.
//
// A line scanner for files laid out as EPANET's own program saves them: section headers stand alone
// on their line, each element section has one column line, a blank line ends a section, keywords
// match by case. A bad line is never reported: what is not recognised is skipped or taken as data.
// The file's flow unit is not looked at; values are l/s, m and mm as they stand. Reading is not the
// inverse of writing (inp_writer.h): tanks, reservoir patterns and reactions of a written file do
// not come back.
#pragma once

#include <string>
#include <string_view>

#include "module/host/notices.h"
#include "module/network/records.h"

namespace vessora {

// Reads a file. The lists of `network` must be empty; `settings` keeps what it holds for every
// keyword that the file lacks. A file that cannot be opened, or does not fit in memory, gives a
// notice and empty lists.
void ReadInp(std::u16string_view path, EpaNetwork& network, EpaSettings& settings,
             Notices& notices);

// The same on the bytes of a file: UTF-8, or Windows-1252 when they are no valid UTF-8. Throws
// std::bad_alloc when the records do not fit in memory, and nothing else.
void parseInp(std::string bytes, EpaNetwork& network, EpaSettings& settings);

// A time value of an input file in the form hours:minutes:seconds, by its length alone: "6" gives
// "06:00:00", "1:30" "01:30:00", "100" "100:00:00". Texts of 7 or 8 characters ("12:00:00") or of
// more than 9 give an empty text.
std::u16string NormalizeTime(std::u16string_view text);

}  // namespace vessora
