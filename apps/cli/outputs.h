// Where a job may write: never over what it reads.
#pragma once

#include <string>
#include <vector>

namespace cli {

// What a job reads, and whether it may be written in its own place when the user names it so.
struct Input {
  std::string path;
  bool mayBeOutput = false;
};

// Empty when the job may write to the path; else why not. A file counts as the same by whatever
// name, link or letters it is reached; a drawing that may be written back must be named as it was.
std::string refusalOf(const std::string& output, const std::vector<Input>& inputs);

// The listing beside an INP file: its name with the extension csv in place of its own.
std::string listingBeside(const std::string& path);

}  // namespace cli
