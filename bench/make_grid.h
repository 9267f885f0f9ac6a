// A network to measure on: a grid of streets as an EPANET input file, with every kind of element.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

// Writes the file. `nodes` counts junctions, reservoirs and tanks, from 12; the same number gives
// the same file. False when it cannot be written.
bool makeGrid(std::size_t nodes, const std::string& path);

}  // namespace bench
