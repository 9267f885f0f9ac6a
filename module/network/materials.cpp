#include "module/network/materials.h"

#include <utility>

#include "module/host/messages.h"
#include "module/host/module.h"
#include "module/host/translate.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

std::vector<EpaMaterial> materials;

std::u16string materialsPath() {
  std::u16string path;
  readInstallPath(path);
  return path + u"\\acqmateriali.dat";
}

bool ReadMaterials(std::vector<EpaMaterial>& table) {
  if (loadMaterials(table)) return true;
  showMessage(TraduciTesto(u"Impossibile aprire il file!"));
  return false;
}

bool loadMaterials(std::vector<EpaMaterial>& table) {
  table.clear();
  auto bytes = platform::readFile(platform::nativePath(materialsPath()));
  if (bytes) table = parseMaterials(std::move(*bytes));
  return static_cast<bool>(bytes);
}

bool saveMaterials(const std::vector<EpaMaterial>& table) {
  const std::string path = platform::nativePath(materialsPath());
  const auto before = platform::readFile(path);
  const std::string bytes = formatMaterials(table, before ? *before : std::string());
  return static_cast<bool>(platform::writeFile(path, bytes));
}

namespace {

// Two units where it takes two.
void dropLastCharacter(std::u16string& line) {
  const char16_t last = line.back();
  line.pop_back();
  const bool pair = last >= 0xDC00 && last <= 0xDFFF && !line.empty() && line.back() >= 0xD800 &&
                    line.back() <= 0xDBFF;
  if (pair) line.pop_back();
}

}  // namespace

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
    dropLastCharacter(line);
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

namespace {

// Ctrl-Z ends a text file, and a carriage return before the line's end goes with it.
std::u16string oneLine(std::u16string_view text) {
  std::u16string line(text);
  for (char16_t& c : line) {
    if (c == u'\n' || c == u'\r' || c == 0x1A) c = u' ';
  }
  return line + u'\n';
}

}  // namespace

std::string formatMaterials(const std::vector<EpaMaterial>& table, std::string_view before) {
  std::u16string text;
  for (const EpaMaterial& row : table) {
    text += oneLine(row.name);
    platform::appendFormat(text, u"%.10lf\n", row.roughness);
    text += oneLine(row.thirdLine);
  }
  // Reading takes a mark at the start for the file's own: a name that begins with one needs two.
  if (text.starts_with(u'\uFEFF')) text.insert(text.begin(), u'\uFEFF');
  if (!platform::isValidUtf8(before)) {
    std::string bytes;
    platform::CodePage::named("ANSI_1252").encode(bytes, text, nullptr);
    if (platform::decodeBytes(bytes) == text) return bytes;
  }
  return platform::narrow(text);
}

}  // namespace vessora
