#include "platform/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "platform/dynamic_library.h"
#include "platform/ini.h"
#include "platform/process.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

class Files : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "vessora-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
  }
  void TearDown() override {
    chmod(folder_.c_str(), 0700);
    fs::remove_all(folder_);
  }
  std::string at(const std::string& name) const { return folder_ + "/" + name; }
  // Names in the folder, hidden ones too: what a save leaves behind.
  std::size_t entries() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }
  std::string content(const std::string& name) const {
    const Result<std::string> bytes = readFile(at(name));
    return bytes ? *bytes : "<" + bytes.error() + ">";
  }

  std::string folder_;
};

// Runs as a plain user, for whom permissions count; the superuser passes through all of them.
template <class Body>
void asPlainUser(const std::string& folder, Body body) {
  if (geteuid() != 0) {
    body();
    return;
  }
  ASSERT_EQ(chown(folder.c_str(), 65534, 65534), 0);
  for (const auto& entry : fs::directory_iterator(folder)) {
    ASSERT_EQ(lchown(entry.path().c_str(), 65534, 65534), 0);
  }
  const pid_t child = fork();
  if (child == 0) {
    if (setgid(65534) != 0 || setuid(65534) != 0) _exit(2);
    body();
    _exit(::testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(Files, PathsWithEitherSeparator) {
  EXPECT_EQ(nativePath(u"C:\\dati\\città\\"), "C:/dati/città/");
  EXPECT_EQ(fileNameOf(u"/a/b\\Rete.inp"), u"Rete.inp");
  EXPECT_EQ(folderOf(u"/a/b\\Rete.inp"), u"/a/b\\");
  EXPECT_EQ(folderOf(u"Rete.inp"), u"");
  EXPECT_EQ(fileNameOf(u"cartella/"), u"");
}

TEST_F(Files, ReadingTellsWhyItFails) {
  EXPECT_NE(content("no.inp").find("no.inp: No such file or directory"), std::string::npos);
  EXPECT_NE(readFile(folder_).error().find("folder"), std::string::npos);
  ASSERT_TRUE(writeFile(at("empty"), ""));
  EXPECT_EQ(content("empty"), "");
  // Files of the system report no size.
  EXPECT_NE((*readFile("/proc/self/status")).size(), 0u);
}

TEST_F(Files, BytesArriveUnchangedInPiecesOfAnySize) {
  std::string expected;
  {
    Result<SaveFile> save = SaveFile::begin(at("big"));
    ASSERT_TRUE(save);
    for (std::size_t n : {1u, 1000u, 600000u, 600000u, 3u, 1048576u, 1048577u, 0u, 5u}) {
      const std::string piece(n, static_cast<char>('a' + n % 26));
      save->write(piece);
      expected += piece;
    }
    EXPECT_FALSE(fileExists(at("big")));
    ASSERT_TRUE(save->commit(true));
  }
  EXPECT_EQ(content("big"), expected);
  EXPECT_EQ(entries(), 1u);  // nothing to back up, nothing left behind
}

TEST_F(Files, ASaveKeepsPermissionsBackupAndLinks) {
  ASSERT_TRUE(writeFile(at("plan.dxf"), "one"));
  ASSERT_EQ(chmod(at("plan.dxf").c_str(), 0640), 0);
  fs::create_symlink("plan.dxf", at("link.dxf"));
  for (const char* text : {"two", "three"}) {
    Result<SaveFile> save = SaveFile::begin(at("link.dxf"));
    ASSERT_TRUE(save);
    save->write(text);
    ASSERT_TRUE(save->commit(true));
  }
  EXPECT_TRUE(fs::is_symlink(at("link.dxf")));
  EXPECT_EQ(content("plan.dxf"), "three");
  EXPECT_EQ(content("plan.dxf.bak"), "two");
  struct stat info;
  ASSERT_EQ(stat(at("plan.dxf").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  EXPECT_EQ(entries(), 3u);

  // A link to a file that is not there yet makes that file.
  fs::create_symlink("new.dxf", at("dangling"));
  ASSERT_TRUE(writeFile(at("dangling"), "x"));
  EXPECT_EQ(content("new.dxf"), "x");
  fs::create_symlink("loop", at("loop"));
  EXPECT_FALSE(writeFile(at("loop"), "x"));
}

TEST_F(Files, AnAbandonedSaveLeavesTheOldFile) {
  ASSERT_TRUE(writeFile(at("plan.dxf"), "old"));
  {
    Result<SaveFile> save = SaveFile::begin(at("plan.dxf"));
    save->write("half");
    SaveFile moved = std::move(*save);
    moved.write("more");
    EXPECT_EQ(entries(), 2u);
  }
  EXPECT_EQ(content("plan.dxf"), "old");
  EXPECT_EQ(entries(), 1u);
}

TEST_F(Files, FailuresSayWhatToDoAndTouchNothing) {
  auto errorOf = [](const std::string& path) {
    const Result<void> done = writeFile(path, "x");
    return done ? std::string("written") : done.error();
  };
  EXPECT_NE(errorOf(at("none/x.dxf")).find("the folder does not exist"), std::string::npos);
  EXPECT_NE(errorOf(folder_).find("it is a folder"), std::string::npos);
  EXPECT_NE(errorOf(at(std::string(300, 'n'))).find("the name is too long"), std::string::npos);
  EXPECT_EQ(errorOf(at(std::string(250, 'n'))), "written");

  ASSERT_TRUE(writeFile(at("locked.dxf"), "old"));
  ASSERT_TRUE(writeFile(at("plan.dxf"), "old"));
  ASSERT_EQ(chmod(at("locked.dxf").c_str(), 0444), 0);
  const std::size_t before = entries();
  asPlainUser(folder_, [&] {
    // The folder would let a protected file be replaced; its own protection must hold.
    EXPECT_NE(errorOf(at("locked.dxf")).find("permission denied"), std::string::npos);
    chmod(folder_.c_str(), 0500);
    const std::string error = errorOf(at("plan.dxf"));
    EXPECT_NE(error.find(at("plan.dxf")), std::string::npos);
    EXPECT_NE(error.find("permission denied"), std::string::npos);
    EXPECT_NE(error.find("the old file is untouched"), std::string::npos);
    chmod(folder_.c_str(), 0700);
  });
  EXPECT_EQ(content("plan.dxf"), "old");
  EXPECT_EQ(entries(), before);
}

TEST_F(Files, AFullDiskIsReportedByTheCommit) {
  // The device fails every write with "no space left"; being a device it is written to in place.
  Result<SaveFile> save = SaveFile::begin("/dev/full");
  if (!save) GTEST_SKIP() << save.error();
  save->write(std::string(3u << 20, 'x'));
  save->write("more");
  const Result<void> done = save->commit(true);
  ASSERT_FALSE(done);
  EXPECT_NE(done.error().find("the disk is full; free space or save elsewhere"), std::string::npos);
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST_F(Files, ABackupThatCannotBeKeptStopsTheSave) {
  ASSERT_TRUE(writeFile(at("plan.dxf"), "old"));
  fs::create_directory(at("plan.dxf.bak"));
  Result<SaveFile> save = SaveFile::begin(at("plan.dxf"));
  save->write("new");
  const Result<void> done = save->commit(true);
  ASSERT_FALSE(done);
  EXPECT_NE(done.error().find("plan.dxf.bak"), std::string::npos);
  EXPECT_EQ(content("plan.dxf"), "old");
}

TEST_F(Files, SettingsAsTheSystemReadsThem) {
  ASSERT_TRUE(
      writeFile(at("s.ini"),
                "Orphan=1\r\n; [LAYER]\r\n [layer ] trailing\r\n;Terreno=comment\r\n"
                "  terreno = Layer = con uguale  \r\nTERRENO=second\r\nnoequals\r\n"
                "Quoted=\" blanks \"\r\nHalf=\"open\r\nSingle='x'\nEmpty=\r\nCitt\xE0=\xE8\r\n"
                "[OTHER]\rKey=other\r[LAYER]\rLate=never\r"));
  auto value = [&](std::u16string_view section, std::u16string_view key, std::size_t limit = 255) {
    return iniValue(at("s.ini"), section, key, u"fallback", limit);
  };
  EXPECT_EQ(value(u"LAYER", u"Terreno"), u"Layer = con uguale");
  EXPECT_EQ(value(u"Layer", u"quoted"), u" blanks ");
  EXPECT_EQ(value(u"LAYER", u"half"), u"\"open");
  EXPECT_EQ(value(u"LAYER", u"single"), u"x");
  EXPECT_EQ(value(u"LAYER", u"empty"), u"");
  EXPECT_EQ(value(u"LAYER", u"CITTÀ"), u"è");
  EXPECT_EQ(value(u"OTHER", u"key"), u"other");
  EXPECT_EQ(value(u"LAYER", u"terreno", 5), u"Layer");
  for (const char16_t* absent : {u"orphan", u"noequals", u"late", u"key", u""}) {
    EXPECT_EQ(value(u"LAYER", absent), u"fallback");
  }
  EXPECT_EQ(value(u"NONE", u"terreno"), u"fallback");
  EXPECT_EQ(iniValue(at("none.ini"), u"a", u"b", u"fallback", 4), u"fall");

  const std::u16string wide = u"\xFEFF[A]\r\nk=è水\r\n";
  ASSERT_TRUE(
      writeFile(at("w.ini"), {reinterpret_cast<const char*>(wide.data()), wide.size() * 2}));
  EXPECT_EQ(iniValue(at("w.ini"), u"a", u"K", u""), u"è水");
}

TEST_F(Files, ProgramsStartWithTheirArgumentsAndLeaveNoZombie) {
  EXPECT_FALSE(startProcess(at("no-such-program"), {}));
  ASSERT_TRUE(
      startProcess("/bin/sh", {"-c", "printf '%s|' \"$@\" > \"$0.tmp\"; mv \"$0.tmp\" \"$0\"",
                               at("out"), "a b", "", "$(x)"}));
  for (int i = 0; i < 500 && !fileExists(at("out")); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(content("out"), "a b||$(x)|");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(Files, ProgramsKnowWhereTheyStand) {
  EXPECT_TRUE(fileExists(programPath()));
  EXPECT_EQ(modulePathOf(reinterpret_cast<const void*>(&fileExists)), programPath());
  EXPECT_FALSE(DynamicLibrary::find("libno-such-library.so"));
  EXPECT_FALSE(DynamicLibrary::load(""));
  EXPECT_NE(DynamicLibrary::load(at("none.so")).error().find("none.so"), std::string::npos);
}

}  // namespace
}  // namespace platform
