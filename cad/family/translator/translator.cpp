// HNTranslatorDll: the translator that the modules of the family find by name at run time.
//
// The language is that of platform/words.h; where that is "it", texts stay the Italian that they
// are. Any other language needs its dictionary lingue/<language>.po under the product root or
// beside this library; English has one within. A language that has none, or a faulty one, is told
// once on standard error, and texts stay Italian.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "cad/api/editor.h"
#include "cad/ui/dialog.h"
#include "platform/dictionary.h"
#include "platform/dynamic_library.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/words.h"

#define TRANSLATOR_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

// What callers offer to be filled, the ending zero included.
constexpr std::size_t kTextCapacity = 1024;

struct State {
  std::string language;         // empty: Italian
  std::u16string languageWide;  // the same for callers
  bool known = false;           // the language has been asked for
  bool settled = false;         // there is a dictionary, or it has been told that there is none
  std::optional<platform::Dictionary> dictionary;
  std::vector<std::u16string> libraries;  // whose texts are wanted beside the caller's own
};
State state;

void complain(const std::string& message) {
  std::fprintf(stderr, "HNTranslatorDll: %s\n", message.c_str());
}

// The language of texts; empty for Italian. What VESSORA_LANG says becomes part of a path and may
// hold nothing that leads elsewhere.
std::string wantedLanguage() {
  const std::string language = platform::language();
  if (language != "it") return language;
  const char* const chosen = std::getenv("VESSORA_LANG");
  if (chosen && *chosen && std::strncmp(chosen, "it", 2) != 0) {
    complain("VESSORA_LANG non è una lingua: \"" + std::string(chosen) +
             "\"; i testi restano in italiano");
  }
  return {};
}

// The product root, or nothing before the product's start-up has said where it is.
std::optional<std::string> productRoot() {
  resbuf* chain = nullptr;
  const int status = acedGetSym(u"hn-cpath", &chain);
  std::optional<std::string> root;
  if (status == RTNORM && chain && acutKindOf(chain->restype) == RbKind::text &&
      chain->resval.rstring && chain->resval.rstring[0]) {
    root = platform::nativePath(chain->resval.rstring);
  }
  acutRelRb(chain);
  return root;
}

std::string folderOfThisLibrary() {
  const std::string path = platform::modulePathOf(&state);
  return path.substr(0, path.find_last_of('/') + 1);
}

// "en_GB" is looked for as it stands and then as "en".
std::vector<std::string> candidates(const std::optional<std::string>& root) {
  std::vector<std::string> files;
  std::vector<std::string> names = {state.language};
  const std::string general = state.language.substr(0, state.language.find_first_of("_-"));
  if (general != state.language) names.push_back(general);
  for (const std::string& name : names) {
    if (root) files.push_back(*root + "lingue/" + name + ".po");
    files.push_back(folderOfThisLibrary() + "lingue/" + name + ".po");
  }
  return files;
}

void readDictionary(const std::string& path) {
  state.settled = true;
  const auto bytes = platform::readFile(path);
  if (!bytes) return complain(bytes.error() + "; i testi restano in italiano");
  auto dictionary = platform::Dictionary::parse(*bytes, path);
  if (!dictionary) return complain(dictionary.error() + "; i testi restano in italiano");
  state.dictionary = std::move(*dictionary);
}

void findDictionary() {
  if (!state.known) {
    state.known = true;
    state.language = wantedLanguage();
    state.languageWide = platform::widen(state.language.empty() ? "it" : state.language);
    state.settled = state.language.empty();
  }
  if (state.settled) return;
  const std::optional<std::string> root = productRoot();
  const std::vector<std::string> files = candidates(root);
  for (const std::string& file : files) {
    if (platform::fileExists(file)) return readDictionary(file);
  }
  if (!root) return;  // it may still be there once the root is known
  state.settled = true;
  if (state.language == "en" || state.language.rfind("en_", 0) == 0) {
    auto own = platform::Dictionary::parse(platform::englishCatalogue(), "en.po");
    if (own) state.dictionary = std::move(*own);
    return;
  }
  complain("manca il dizionario della lingua \"" + state.language + "\" (cercati " + files.front() +
           " e " + files[1] + "); i testi restano in italiano");
}

// The translation of a text of the caller `context`, or null.
const std::u16string* translationOf(std::u16string_view text, std::u16string_view context) {
  findDictionary();
  if (!state.dictionary || text.empty()) return nullptr;
  if (state.dictionary->hasContexts()) {
    if (const auto* found = state.dictionary->find(text, context)) return found;
    for (const std::u16string& library : state.libraries) {
      if (const auto* found = state.dictionary->find(text, library)) return found;
    }
  }
  return state.dictionary->find(text);
}

std::u16string callerOf(const char16_t* appName, const char16_t* appExtension) {
  std::u16string caller = appName ? appName : u"";
  if (appExtension) caller += appExtension;
  return caller;
}

void copyCut(char16_t* to, std::u16string_view text) {
  std::size_t n = std::min(text.size(), kTextCapacity - 1);
  if (n < text.size() && (text[n - 1] & 0xFC00) == 0xD800) --n;
  std::memcpy(to, text.data(), n * sizeof(char16_t));
  to[n] = 0;
}

}  // namespace

// Translates all texts of a dialog that is opening.
TRANSLATOR_EXPORT void TraduciMfc(cad::ui::Dialog* dialog, const char16_t* appName,
                                  const char16_t* appExtension) {
  if (!dialog) return;
  findDictionary();
  if (!state.dictionary) return;
  const std::u16string caller = callerOf(appName, appExtension);
  dialog->forEachText([&](std::u16string& text) {
    if (const std::u16string* found = translationOf(text, caller)) text = *found;
  });
}

// Translates a text in place; the buffer has room for 1024 units, the ending zero included.
TRANSLATOR_EXPORT void TraduciMessaggioVoid(char16_t* text, const char16_t* appName,
                                            const char16_t* appExtension) {
  if (!text) return;
  findDictionary();
  if (!state.dictionary) return;
  const std::u16string* found = translationOf(text, callerOf(appName, appExtension));
  if (found) copyCut(text, *found);
}

// Adds the texts of a library to those that are looked up.
TRANSLATOR_EXPORT void FiltraDizPerLib(const char16_t* library) {
  if (!library || !*library) return;
  auto& all = state.libraries;
  if (std::find(all.begin(), all.end(), library) == all.end()) all.push_back(library);
}

// A module begins to ask: from here on the language of the environment counts anew.
TRANSLATOR_EXPORT void SetAppName(const char16_t*, const char16_t*) {
  std::vector<std::u16string> libraries = std::move(state.libraries);
  state = State();
  state.libraries = std::move(libraries);
}

// A module has ended: its strings are not needed any more.
TRANSLATOR_EXPORT void FreeDllStrings(const char16_t*) { state = State(); }

// Translates the entries of a popup menu.
TRANSLATOR_EXPORT void TraduciMenu(std::u16string* entries, int count) {
  for (int i = 0; entries && i < count; ++i) {
    if (const std::u16string* found = translationOf(entries[i], {})) entries[i] = *found;
  }
}

// Translates a line of cells with tabs between them, cell by cell; the buffer is as above.
TRANSLATOR_EXPORT void TrTab(char16_t* text, const char16_t* appName,
                             const char16_t* appExtension) {
  if (!text) return;
  const std::u16string caller = callerOf(appName, appExtension);
  const std::u16string line = text;
  std::u16string out;
  for (std::size_t from = 0; from <= line.size();) {
    const std::size_t end = std::min(line.find(u'\t', from), line.size());
    const std::u16string cell = line.substr(from, end - from);
    const std::u16string* found = translationOf(cell, caller);
    if (from > 0) out += u'\t';
    out += found ? *found : cell;
    from = end + 1;
  }
  copyCut(text, out);
}

// The language in use, "it" without a dictionary's.
TRANSLATOR_EXPORT const char16_t* GetCurInteropLanguage() {
  findDictionary();
  return state.languageWide.c_str();
}
