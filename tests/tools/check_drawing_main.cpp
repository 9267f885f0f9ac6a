// check_drawing FILE...: prints the faults of drawing files. Exit status 0 none, 1 some, 2
// unreadable.
#include <fstream>
#include <iostream>
#include <iterator>

#include "tests/tools/check_drawing.h"

int main(int argc, char** argv) {
  int status = argc > 1 ? 0 : 2;
  for (int i = 1; i < argc; ++i) {
    std::ifstream file(argv[i], std::ios::binary);
    if (!file) {
      std::cerr << argv[i] << ": cannot be read\n";
      status = 2;
      continue;
    }
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    for (const std::string& fault : checking::checkDrawing(bytes)) {
      std::cout << argv[i] << ": " << fault << "\n";
      status = status == 2 ? 2 : 1;
    }
  }
  return status;
}
