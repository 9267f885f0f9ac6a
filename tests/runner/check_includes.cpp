// Reads every #include of the sources and holds it against the layers: a folder may include its own
// headers and those of the folders that the list allows, and nothing else of the project.
//
//   check_includes SOURCE_ROOT "folder|allowed,allowed" ...
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

// Headers through which a layer is seen, where it may not be seen from everywhere: the module meets
// the host in one header and the dialog kit in another.
const std::map<std::string, std::set<std::string>> kSeams = {
    {"module|cad/ui", {"module/dialogs/toolkit.h", "module/grid/my_grid.h"}},
    {"module|cad/api",
     {"module/host/host_drawing.h", "module/host/host_values.h", "module/jobs.h"}},
    {"module|cad/family", {"module/host/host_drawing.h"}},
};

std::string layerOf(const std::string& path,
                    const std::map<std::string, std::set<std::string>>& layers) {
  std::string best;
  for (const auto& [name, allowed] : layers) {
    if (path.rfind(name + "/", 0) == 0 && name.size() > best.size()) best = name;
  }
  return best;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const fs::path root = argv[1];
  std::map<std::string, std::set<std::string>> layers;
  for (int i = 2; i < argc; ++i) {
    const std::string row = argv[i];
    std::istringstream allowed(row.substr(row.find('|') + 1));
    auto& set = layers[row.substr(0, row.find('|'))];
    for (std::string name; std::getline(allowed, name, ',');) set.insert(name);
  }
  int faults = 0, seen = 0;
  const auto fault = [&](const std::string& file, int line, const std::string& what) {
    std::cerr << file << ":" << line << ": " << what << "\n";
    ++faults;
  };
  for (const char* top : {"platform", "schema", "cad", "module", "apps"}) {
    if (!fs::exists(root / top)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(root / top)) {
      const std::string ext = entry.path().extension().string();
      if (ext != ".h" && ext != ".cpp") continue;
      const std::string file = fs::relative(entry.path(), root).generic_string();
      const std::string own = layerOf(file, layers);
      ++seen;
      std::ifstream in(entry.path());
      std::string line;
      for (int number = 1; std::getline(in, line); ++number) {
        const std::size_t at = line.find("#include ");
        if (at != 0) continue;
        const std::string what = line.substr(9);
        if (what.size() > 2 && what[0] == '<') {
          const bool qt = what[1] == 'Q' && own != "apps/desktop";
          const bool cairo = what.find("cairo") != what.npos && own != "cad/view";
          if (qt) fault(file, number, "Qt is seen by apps/desktop alone");
          if (cairo) fault(file, number, "Cairo is seen by cad/view alone");
          continue;
        }
        const std::string header = what.substr(1, what.find('"', 1) - 1);
        const std::string target = layerOf(header, layers);
        if (target.empty() || target == own || own.empty()) continue;
        if (!layers[own].count(target)) {
          fault(file, number, own + " may not use " + target + " (" + header + ")");
        }
        const auto seam = kSeams.find(file.substr(0, file.find('/')) + "|" + target);
        if (seam != kSeams.end() && !seam->second.count(file)) {
          fault(file, number, header + " is included only by " + *seam->second.begin());
        }
      }
    }
  }
  std::cout << seen << " files, " << faults << " faults\n";
  return faults || seen == 0 ? 1 : 0;
}
