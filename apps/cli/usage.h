// What the parser of arguments says, in the user's language.
#pragma once

#include <CLI/CLI.hpp>

namespace cli {

// Titles and labels of the helps. To be called before options and commands are added; they then
// stand under these titles.
void nameHelps(CLI::App& app);

// A subcommand of the program, with its line in the help.
CLI::App* addCommand(CLI::App& app, const char* name, const std::string& help);

// Ends a parse that did not lead to a job: prints the help or the version that was asked for, or
// what is wrong and where to look. Returns the exit status: 0 for what was asked for, else 2.
int endOf(const CLI::App& app, const CLI::ParseError& end);

}  // namespace cli
