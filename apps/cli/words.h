// What the program itself prints: one line a message.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "apps/program/inp_words.h"
#include "apps/program/words.h"

namespace cli {

using program::described;
using program::faultOf;
using program::lackOf;
using program::listed;
using program::summaryOf;
using program::words;

// Prints "vessora: message" on standard error and returns the exit status of a failed job. What the
// message quotes of files and drawings is made visible, whatever it holds.
int fail(std::string_view message);
// Prints "vessora: warning: message" on standard error.
void warn(std::string_view message);
void warn(const vessora::Notices& notices);
// Problems of the file of a path, at most a few of them, and how many more there are; where `info`
// shows all.
void warn(const std::string& path, const std::vector<epanet::Problem>& problems, bool utf8);
// A line on standard output, as safe as the others.
void say(std::string_view line);

using program::describe;
// Why no network could be picked, for the drawing of a path.
std::string describe(const vessora::PickedNetwork& picked, const std::string& drawing,
                     const std::string& wanted);

}  // namespace cli
