// Shared libraries found and bound at run time by name.
#pragma once

#include <string>

#include "platform/result.h"

namespace platform {

// A loaded library; a null handle means none. Not an owner: the caller says when to free.
class DynamicLibrary {
 public:
  DynamicLibrary() = default;
  // The library if the process has loaded one of this file name (its SONAME or the last part of its
  // path), else null. Takes no reference: the library stays owned by whoever loaded it.
  static DynamicLibrary find(const std::string& fileName);
  // Loads it; the error is the loader's own text.
  static Result<DynamicLibrary> load(const std::string& path);

  explicit operator bool() const { return handle_ != nullptr; }
  // Address of an exported name, or null.
  void* symbol(const char* name) const;
  template <class Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(symbol(name));
  }
  // Gives back the reference that load took and becomes null.
  void free();

 private:
  void* handle_ = nullptr;
};

// Full path of the library or program that holds this address.
std::string modulePathOf(const void* address);
// Full path of the running program.
std::string programPath();

}  // namespace platform
