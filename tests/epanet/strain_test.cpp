// What the solver says of each file of strain/, as it was found by asking it (solver/problems.cjs
// asks again where it is installed). UPDATE_GOLDEN=1 writes the list anew.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "epanet/network.h"

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// However bad the file, what reads a network may follow its indexes.
void expectWhole(const epanet::Network& network) {
  using epanet::LinkKind;
  for (const epanet::Node& node : network.nodes) {
    EXPECT_EQ(node.tank < network.tanks.size(), node.kind == epanet::NodeKind::tank) << node.id;
  }
  for (const epanet::Link& link : network.links) {
    const std::size_t details = link.kind == LinkKind::pipe   ? network.pipes.size()
                                : link.kind == LinkKind::pump ? network.pumps.size()
                                                              : network.valves.size();
    EXPECT_LT(link.detail, details) << link.id;
    EXPECT_TRUE(link.node1 && link.node2) << link.id;
  }
}

std::string problemsOf(const fs::path& file) {
  const epanet::Document document(contentOf(file));
  const epanet::Network network(document);
  expectWhole(network);
  std::ostringstream out;
  out << file.filename().string() << ": " << network.nodes.size() << " nodes, "
      << network.links.size() << " links\n";
  for (const epanet::Problem& problem : network.problems) {
    const int code = epanet::solverCode(problem.fault);
    if (problem.fault == epanet::Fault::noCoordinates) continue;
    out << "  " << (problem.row == epanet::kNoRow ? 0 : document.lineOf(problem.row)) << ':'
        << problem.column << ' ';
    if (code == 0) {
      out << "note " << static_cast<int>(problem.fault);
    } else {
      out << code;
    }
    out << ' ' << problem.text << '\n';
  }
  return out.str();
}

TEST(Strain, ProblemsAreThoseOfTheSolver) {
  const fs::path folder = fs::path(VESSORA_TESTS_DIR) / "epanet" / "strain";
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".inp") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  std::string found;
  for (const fs::path& file : files) found += problemsOf(file);
  const fs::path golden = folder / "problems.txt";
  if (std::getenv("UPDATE_GOLDEN")) std::ofstream(golden, std::ios::binary) << found;
  EXPECT_EQ(found, contentOf(golden));
}

}  // namespace
