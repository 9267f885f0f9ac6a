#include "module/network/materials.h"

#include <utility>

#include "module/host/messages.h"
#include "module/host/module.h"
#include "module/host/translate.h"
#include "platform/files.h"
#include "platform/text.h"

namespace vessora {

std::vector<EpaMaterial> materials;

std::u16string materialsPath() {
  std::u16string path;
  readInstallPath(path);
  return path + u"\\acqmateriali.dat";
}

bool ReadMaterials(std::vector<EpaMaterial>& table) {
  table.clear();
  auto bytes = platform::readFile(platform::nativePath(materialsPath()));
  if (!bytes) {
    showMessage(TraduciTesto(u"Impossibile aprire il file!"));
    return false;
  }
  table = parseMaterials(std::move(*bytes));
  return true;
}

std::vector<EpaMaterial> parseMaterials(std::string bytes) {
  const std::string text = platform::toUtf8(std::move(bytes));
  platform::TextLines lines(text);
  std::vector<EpaMaterial> table;
  EpaMaterial row;
  int part = 1;
  while (const auto next = lines.next()) {
    std::u16string line = platform::widen(next->substr(0, next->find('\0')));
    if (line.empty()) continue;
    if (part == 2) {
      row.roughness = platform::wtof(line);
      part = 3;
      continue;
    }
    // The last character is taken for the line end without a look at it, so that a file whose last
    // line has none loses a character there.
    line.pop_back();
    if (part == 1) {
      row.name = line;
      part = 2;
    } else {
      row.thirdLine = line;
      table.push_back(row);
      part = 1;
    }
  }
  return table;
}

}  // namespace vessora
