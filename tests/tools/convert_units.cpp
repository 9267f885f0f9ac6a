// Converts a whole input file:  convert_units IN.inp UNITS OUT.inp [2.0|2.2]
// Remarks go to standard error as number, line and text.
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "epanet/convert.h"
#include "epanet/lexis.h"

int main(int argc, char** argv) {
  using namespace epanet;
  if (argc != 4 && argc != 5) {
    std::cerr << "convert_units IN.inp UNITS OUT.inp [2.0|2.2]\n";
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  if (!in) {
    std::cerr << argv[1] << " cannot be read\n";
    return 1;
  }
  FlowUnits target = FlowUnits::cfs;
  while (!equalNoCase(wordOf(target), argv[2])) {
    if (target == FlowUnits::cms) {
      std::cerr << "no flow units: " << argv[2] << "\n";
      return 2;
    }
    target = static_cast<FlowUnits>(static_cast<int>(target) + 1);
  }
  const std::string_view release = argc == 5 ? argv[4] : "2.3";
  const SolverVersion runBy = release == "2.0"   ? SolverVersion::v20
                              : release == "2.2" ? SolverVersion::v22
                                                 : SolverVersion::v23;
  const Document document{std::string(std::istreambuf_iterator<char>(in), {})};
  Record record;
  const Network network(document, &record);
  const Converted converted = convert(document, network, record, target, runBy);
  std::ofstream(argv[3], std::ios::binary) << converted.edit.text;
  for (const Remark& remark : converted.remarks) {
    std::cerr << static_cast<int>(remark.what) << '\t'
              << (remark.row == kNoRow ? 0 : document.lineOf(remark.row)) << '\t' << remark.text
              << '\n';
  }
  return 0;
}
