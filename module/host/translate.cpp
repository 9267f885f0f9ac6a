#include "module/host/translate.h"

#include <algorithm>
#include <cstring>

#include "module/host/messages.h"
#include "platform/dynamic_library.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

namespace {

constexpr char kLibraryFile[] = "HNTranslatorDll.dll";
constexpr std::size_t kTextCapacity = 1024;  // what the library may fill, the ending zero included
constexpr std::size_t kResultCapacity = 1000;  // what TraduciTesto hands out

// The library's functions in the order in which they are checked; the last one may be missing.
enum Entry {
  kTraduciMfc,
  kTraduciMessaggioVoid,
  kFiltraDizPerLib,
  kSetAppName,
  kFreeDllStrings,
  kTraduciMenu,
  kTrTab,
  kGetCurInteropLanguage,
  kEntryCount,
  kRequiredCount = kGetCurInteropLanguage,
};
constexpr const char* kEntryNames[kEntryCount] = {
    "TraduciMfc",     "TraduciMessaggioVoid", "FiltraDizPerLib", "SetAppName",
    "FreeDllStrings", "TraduciMenu",          "TrTab",           "GetCurInteropLanguage"};

using TranslateDialogFunction = void(cad::ui::Dialog*, const char16_t*, const char16_t*);
using TranslateTextFunction = void(char16_t*, const char16_t*, const char16_t*);
using NameFunction = void(const char16_t*);
using SetAppNameFunction = void(const char16_t*, const char16_t*);
using TranslateMenuFunction = void(std::u16string*, int);

platform::DynamicLibrary translatorModule;
bool loadedByUs = false;
std::u16string appName;       // "vessora"
std::u16string appExtension;  // ".arx"
void* entries[kEntryCount] = {};
char16_t translated[kResultCapacity];

// The function, or null while it is not bound.
template <class Function>
Function* bound(Entry entry) {
  return translatorModule ? reinterpret_cast<Function*>(entries[entry]) : nullptr;
}

// Copies a text into a buffer and cuts it where it does not fit, between whole characters.
void copyText(char16_t* to, std::size_t capacity, std::u16string_view text) {
  std::size_t n = std::min(text.size(), capacity - 1);
  if (n < text.size() && n > 0 && (text[n - 1] & 0xFC00) == 0xD800) --n;
  std::memcpy(to, text.data(), n * sizeof(char16_t));
  to[n] = 0;
}

std::string pathBesideThisModule() {
  const std::u16string path = platform::widen(platform::modulePathOf(&translatorModule));
  const std::size_t separator = path.find_last_of(u"\\/");
  const std::u16string folder = separator == path.npos ? u"." : path.substr(0, separator);
  return platform::nativePath(folder + u"\\" + platform::widen(kLibraryFile));
}

// Puts the library into translatorModule: the one in the process, or the one beside this module.
bool findLibrary() {
  translatorModule = platform::DynamicLibrary::find(kLibraryFile);
  loadedByUs = !translatorModule;
  if (translatorModule) return true;
  const std::string path = pathBesideThisModule();
  if (auto library = platform::DynamicLibrary::load(path)) {
    translatorModule = *library;
    return true;
  }
  loadedByUs = false;
  showMessage(u"Error while loading " + platform::widen(path));
  return false;
}

void letLibraryGo() {
  if (loadedByUs) translatorModule.free();
  translatorModule = {};
  loadedByUs = false;
}

}  // namespace

int BindTranslator(std::u16string_view moduleFileName) {
  const std::size_t stem = moduleFileName.size() > 4 ? moduleFileName.size() - 4 : 0;
  appName = moduleFileName.substr(0, stem);
  appExtension = moduleFileName.substr(stem);
  if (!findLibrary()) return 0;
  for (int i = 0; i < kEntryCount; ++i) entries[i] = translatorModule.symbol(kEntryNames[i]);
  for (int i = 0; i < kRequiredCount; ++i) {
    if (entries[i]) continue;
    showMessage(platform::format(u"Error while creating imported function %d from %s.", i + 1,
                                 std::string_view(kLibraryFile)));
    letLibraryGo();
    return 0;
  }
  bound<SetAppNameFunction>(kSetAppName)(appName.c_str(), appExtension.c_str());
  return 1;
}

void FilterDictionary(std::u16string_view libraryName) {
  if (auto* filter = bound<NameFunction>(kFiltraDizPerLib)) {
    filter(std::u16string(libraryName).c_str());
  }
}

// The library may have gone with whoever loaded it, so the process is asked again.
void ReleaseTranslator() {
  translatorModule = platform::DynamicLibrary::find(kLibraryFile);
  if (platform::equalNoCase(appExtension, u".dll")) {
    if (auto* release = bound<NameFunction>(kFreeDllStrings)) release(appName.c_str());
  }
  if (loadedByUs && translatorModule) letLibraryGo();
}

const char16_t* TraduciTesto(const char16_t* text) {
  char16_t buffer[kTextCapacity];
  copyText(buffer, kTextCapacity, text ? text : u"");
  if (auto* translate = bound<TranslateTextFunction>(kTraduciMessaggioVoid)) {
    translate(buffer, appName.c_str(), appExtension.c_str());
    buffer[kTextCapacity - 1] = 0;
  }
  copyText(translated, kResultCapacity, buffer);
  return translated;
}

void TranslateDialog(cad::ui::Dialog& dialog) {
  if (auto* translate = bound<TranslateDialogFunction>(kTraduciMfc)) {
    translate(&dialog, appName.c_str(), appExtension.c_str());
  }
}

void TranslateMenu(std::u16string* menu, int count) {
  if (auto* translate = bound<TranslateMenuFunction>(kTraduciMenu)) translate(menu, count);
}

}  // namespace vessora
