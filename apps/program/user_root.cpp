#include "apps/program/user_root.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "platform/files.h"
#include "platform/words.h"

namespace program {
namespace {

namespace fs = std::filesystem;

// What commands write: an installation never covers it.
const std::set<std::string> kOfTheUser = {"acqmateriali.dat"};

std::string ownFolder() {
  const char* const data = std::getenv("XDG_DATA_HOME");
  if (data && *data == '/') return std::string(data) + "/vessora/root/";
  const char* const home = std::getenv("HOME");
  return home && *home ? std::string(home) + "/.local/share/vessora/root/" : std::string();
}

bool isSame(const fs::path& a, const fs::path& b) {
  std::error_code none;
  return fs::file_size(a, none) == fs::file_size(b, none) &&
         fs::last_write_time(a, none) == fs::last_write_time(b, none);
}

platform::Result<void> seed(const fs::path& from, const fs::path& to) {
  std::error_code fault;
  for (auto it = fs::recursive_directory_iterator(from, fault);
       !fault && it != fs::recursive_directory_iterator(); it.increment(fault)) {
    const fs::path target = to / fs::relative(it->path(), from, fault);
    if (fault) break;
    if (it->is_directory()) {
      fs::create_directories(target, fault);
      continue;
    }
    const bool there = fs::exists(target, fault);
    const bool own = kOfTheUser.contains(target.filename().string());
    if (there && (own || isSame(it->path(), target))) continue;
    const auto bytes = platform::readFile(it->path().string());
    if (!bytes) return platform::Error{bytes.error()};
    if (auto written = platform::writeFile(target.string(), *bytes); !written) return written;
    fs::last_write_time(target, fs::last_write_time(it->path(), fault), fault);
  }
  if (fault) return platform::Error{to.string() + ": " + fault.message()};
  return {};
}

}  // namespace

platform::Result<std::string> rootForUser(const std::string& installed) {
  if (faccessat(AT_FDCWD, installed.c_str(), W_OK, AT_EACCESS) == 0) return installed;
  const std::string own = ownFolder();
  if (own.empty() || !platform::makeFolders(own)) {
    return platform::Error{(own.empty() ? installed : own) + ": " +
                           platform::words("la cartella non si può creare")};
  }
  if (auto seeded = seed(installed, own); !seeded) return platform::Error{seeded.error()};
  return own;
}

}  // namespace program
