#include "platform/dynamic_library.h"
#include "platform/words.h"

#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace platform {

namespace {

struct Search {
  std::string wanted;
  std::string path;  // of the loaded library whose last part is the wanted name
};

int matchLoaded(dl_phdr_info* info, std::size_t, void* data) {
  auto* search = static_cast<Search*>(data);
  const char* slash = std::strrchr(info->dlpi_name, '/');
  if (search->wanted != (slash != nullptr ? slash + 1 : info->dlpi_name)) return 0;
  search->path = info->dlpi_name;
  return 1;
}

// The handle of a library that is loaded already, without a reference of our own.
void* handleOf(const char* name) {
  void* handle = dlopen(name, RTLD_NOLOAD | RTLD_LAZY);
  if (handle != nullptr) dlclose(handle);
  return handle;
}

std::string fullPath(const std::string& path) {
  char* full = realpath(path.c_str(), nullptr);
  if (full == nullptr) return path;
  std::string out = full;
  ::free(full);
  return out;
}

}  // namespace

DynamicLibrary DynamicLibrary::find(const std::string& fileName) {
  DynamicLibrary library;
  if (fileName.empty()) return library;
  library.handle_ = handleOf(fileName.c_str());
  if (library.handle_ != nullptr) return library;
  Search search{fileName, {}};
  dl_iterate_phdr(matchLoaded, &search);
  if (!search.path.empty()) library.handle_ = handleOf(search.path.c_str());
  return library;
}

Result<DynamicLibrary> DynamicLibrary::load(const std::string& path) {
  DynamicLibrary library;
  // An empty name would mean the program itself.
  if (path.empty()) return Error{words("non si può caricare una libreria senza nome")};
  library.handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library.handle_ == nullptr) {
    const char* reason = dlerror();
    return Error{reason != nullptr ? reason : words("non si può caricare ") + path};
  }
  return library;
}

void* DynamicLibrary::symbol(const char* name) const {
  return handle_ != nullptr ? dlsym(handle_, name) : nullptr;
}

void DynamicLibrary::free() {
  if (void* handle = std::exchange(handle_, nullptr)) dlclose(handle);
}

std::string modulePathOf(const void* address) {
  Dl_info info;
  link_map* map = nullptr;
  if (dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0) return {};
  // The program itself has no name in the loader's list, and dladdr gives it as it was typed.
  if (map != nullptr && map->l_name != nullptr && map->l_name[0] == '\0') return programPath();
  return fullPath(info.dli_fname);
}

std::string programPath() {
  char path[PATH_MAX];
  const ssize_t n = readlink("/proc/self/exe", path, sizeof path);
  return n > 0 ? std::string(path, static_cast<std::size_t>(n)) : std::string();
}

}  // namespace platform
