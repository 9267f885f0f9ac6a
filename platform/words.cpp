#include "platform/words.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>

#include "platform/check.h"
#include "platform/dictionary.h"
#include "platform/dynamic_library.h"
#include "platform/files.h"
#include "platform/text.h"

// The file's bytes as data of the program; EN_PO is its path.
asm(".section .rodata\n"
    ".global vessora_en_po\n"
    ".hidden vessora_en_po\n"
    ".global vessora_en_po_end\n"
    ".hidden vessora_en_po_end\n"
    "vessora_en_po:\n"
    ".incbin \"" EN_PO
    "\"\n"
    "vessora_en_po_end:\n"
    ".byte 0\n"
    ".previous\n");

extern "C" const char vessora_en_po[], vessora_en_po_end[];

namespace platform {
namespace {

using Catalogue = std::optional<Dictionary>;

Catalogue english() {
  auto parsed = Dictionary::parse(englishCatalogue(), "en.po");
  VESSORA_CHECK(static_cast<bool>(parsed), "the English catalogue is damaged");
  return std::move(*parsed);
}

// Of a language that has a file; whoever finds none or a faulty one complains elsewhere.
Catalogue fromFile(const std::string& language) {
  const char* named = std::getenv("VESSORA_ROOT");
  const std::string program = programPath();
  const std::string root = named && *named
                               ? std::string(named) + "/"
                               : program.substr(0, program.rfind('/') + 1) + "../share/vessora/";
  const auto bytes = readFile(root + "lingue/" + language + ".po");
  if (!bytes) return {};
  auto parsed = Dictionary::parse(*bytes, language);
  return parsed ? Catalogue(std::move(*parsed)) : Catalogue();
}

// Null where texts stay Italian.
const Dictionary* catalogue() {
  static std::map<std::string, Catalogue> known;
  static bool reading = false;  // a file that cannot be read is told in words, too
  const std::string wanted = language();
  if (wanted == "it" || reading) return nullptr;
  auto at = known.find(wanted);
  if (at == known.end()) {
    reading = true;
    Catalogue found = fromFile(wanted);
    const std::string general = wanted.substr(0, wanted.find_first_of("_-"));
    if (!found && general == "en") found = english();
    if (!found && general != wanted) found = fromFile(general);
    reading = false;
    at = known.emplace(wanted, std::move(found)).first;
  }
  return at->second ? &*at->second : nullptr;
}

std::string chosenLanguage(std::string name) {
  name.resize(std::min(name.find_first_of(".@"), name.size()));
  if (name.empty() || name == "it" || name.rfind("it_", 0) == 0 || name.rfind("it-", 0) == 0)
    return "it";
  for (const char c : name) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (!plain && c != '_' && c != '-') return "it";
  }
  return name;
}

}  // namespace

std::string language() {
  if (const char* chosen = std::getenv("VESSORA_LANG"); chosen && *chosen) {
    return chosenLanguage(chosen);
  }
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (!value || !*value) continue;
    const std::string_view locale = std::string_view(value).substr(0, std::strcspn(value, ".@"));
    return locale == "C" || locale == "POSIX" || locale.substr(0, 2) == "it" ? "it" : "en";
  }
  return "it";
}

void chooseLanguage(const std::string& name) { setenv("VESSORA_LANG", name.c_str(), 1); }

bool isItalian() { return language() == "it"; }

std::u16string words(std::u16string_view italian) {
  const Dictionary* dictionary = catalogue();
  const std::u16string* found = dictionary ? dictionary->find(italian) : nullptr;
  return found ? *found : std::u16string(italian);
}

std::string words(std::string_view italian) {
  if (!catalogue()) return std::string(italian);
  return narrow(words(widen(italian)));
}

std::u16string words(std::u16string_view one, std::u16string_view many, long long count) {
  return words(count == 1 ? one : many);
}

std::string reasonOf(int error) {
  switch (error) {
    case ENOENT:
      return words("il file o la cartella non c'è");
    case EACCES:
      return words("il permesso è negato");
    case EPERM:
      return words("l'operazione non è permessa");
    case ENOTDIR:
      return words("non è una cartella");
    case EISDIR:
      return words("è una cartella");
    case EIO:
      return words("errore di lettura o scrittura del disco");
    case EMFILE:
      return words("troppi file aperti");
    case ELOOP:
      return words("troppi collegamenti uno dentro l'altro");
    case ENAMETOOLONG:
      return words("il nome è troppo lungo");
    default:
      break;
  }
  const char* text = strerrordesc_np(error);
  return text != nullptr ? text : words("errore ") + std::to_string(error);
}

std::string_view englishCatalogue() {
  return {vessora_en_po, static_cast<std::size_t>(vessora_en_po_end - vessora_en_po)};
}

}  // namespace platform
