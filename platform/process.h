// Other programs, started without a shell.
#pragma once

#include <string>
#include <vector>

namespace platform {

// Starts a program with its arguments and does not wait for it; its end leaves no zombie. False
// when it could not be started.
bool startProcess(const std::string& program, const std::vector<std::string>& arguments);

}  // namespace platform
