// What the program says by itself, in the user's language (platform/words.h), and the wording of
// what the module's jobs have found.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/jobs.h"
#include "platform/words.h"

namespace cli {

using platform::words;

// Prints "vessora: message" on standard error and returns the exit status of a failed job. What the
// message quotes of files and drawings is made visible, whatever it holds.
int fail(std::string_view message);
// Prints "vessora: warning: message" on standard error.
void warn(std::string_view message);
// A line on standard output, as safe as the others.
void say(std::string_view line);

// One notice in words, without its end.
std::string describe(const vessora::Notice& notice);
// Notices in words, one that is said again at once left out.
std::vector<std::string> described(const vessora::Notices& notices);
void warn(const vessora::Notices& notices);
// "junctions 9, reservoirs 1, ..."
std::string describe(const vessora::ElementCounts& counts);
// How a drawing differs from its kept text, in a line.
std::string summaryOf(const vessora::DiffResult& diff);
// Names separated by commas.
std::string listed(const std::vector<std::u16string>& names);
// Why no network could be picked, for the drawing of a path.
std::string describe(const vessora::PickedNetwork& picked, const std::string& drawing,
                     const std::string& wanted);

}  // namespace cli
