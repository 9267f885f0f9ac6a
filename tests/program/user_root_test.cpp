// The product root of a user who may not write into the installed one.
#include "apps/program/user_root.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/files.h"
#include "platform/temporary_files.h"

namespace program {
namespace {

namespace fs = std::filesystem;

TEST(UserRoot, KeepsWhatTheUserChangesAndTakesOverWhatIsNewer) {
  if (geteuid() == 0) {
    // Root may write anywhere: another user does it.
    ASSERT_EQ(seteuid(65534), 0);
  }
  auto folder = platform::TemporaryFolder::make();
  ASSERT_TRUE(folder) << folder.error();
  const std::string installed = folder->path() + "/installed/";
  const auto put = [](const std::string& path, const char* text) {
    platform::makeFolders(fs::path(path).parent_path().string());
    EXPECT_TRUE(platform::writeFile(path, text));
  };
  const auto read = [](const std::string& path) {
    const auto bytes = platform::readFile(path);
    return bytes ? *bytes : std::string("(none)");
  };
  put(installed + "acqmateriali.dat", "ghisa");
  put(installed + "vessora/Junc.dxf", "segno");
  ASSERT_EQ(*rootForUser(installed), installed) << "who may write there needs no other";

  setenv("XDG_DATA_HOME", (folder->path() + "/anna").c_str(), 1);
  const auto locked = [&](bool lock) {
    chmod((installed + "vessora").c_str(), lock ? 0555 : 0755);
    chmod(installed.c_str(), lock ? 0555 : 0755);
  };
  locked(true);
  const auto own = rootForUser(installed);
  ASSERT_TRUE(own) << own.error();
  ASSERT_NE(*own, installed);
  EXPECT_EQ(read(*own + "acqmateriali.dat"), "ghisa");
  EXPECT_EQ(read(*own + "vessora/Junc.dxf"), "segno");

  put(*own + "acqmateriali.dat", "acciaio");
  locked(false);
  put(installed + "acqmateriali.dat", "di una versione nuova");
  put(installed + "vessora/Junc.dxf", "segno nuovo");
  locked(true);
  ASSERT_TRUE(rootForUser(installed));
  EXPECT_EQ(read(*own + "acqmateriali.dat"), "acciaio");
  EXPECT_EQ(read(*own + "vessora/Junc.dxf"), "segno nuovo");
  locked(false);
  if (getuid() == 0) {
    ASSERT_EQ(seteuid(0), 0);
  }
}

}  // namespace
}  // namespace program
