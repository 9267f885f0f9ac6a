// Is a drawing file one that CAD programs take? They refuse files over faults that lenient readers
// repair in silence, so everything that the project writes goes through this check. It reads the
// tags itself and shares nothing with the code it checks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace checking {

// The faults of a file (ASCII or binary, R12 to R2018), each with its place; empty when there are
// none.
std::vector<std::string> checkDrawing(std::string_view bytes);

}  // namespace checking
