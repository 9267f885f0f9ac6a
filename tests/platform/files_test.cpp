#include "platform/files.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "platform/dynamic_library.h"
#include "platform/ini.h"
#include "platform/process.h"
#include "tests/platform/scratch_folder.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

class Files : public ScratchFolder {};

// Runs as a plain user, for whom permissions count; the superuser passes through all of them. Only
// the superuser can give him a second group.
template <class Body>
void asPlainUser(const std::string& folder, Body body, std::vector<gid_t> groups = {}) {
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
    if (setgroups(groups.size(), groups.data()) != 0 || setgid(65534) != 0 || setuid(65534) != 0)
      _exit(2);
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
  // What may never end is refused without waiting for it.
  ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
  for (const std::string& path : {at("pipe"), std::string("/dev/null"), std::string("/dev/zero")}) {
    EXPECT_EQ(readFile(path).error(),
              "cannot read " + path + ": it is a pipe or device, not a file");
    EXPECT_EQ(readOrdinaryFile(path).error(),
              path + ": cannot be read: it is a pipe or device, not a file");
  }
}

TEST_F(Files, StampsTellEveryKindOfChange) {
  EXPECT_EQ(stampOf(at("none")), std::nullopt);
  const std::string path = at("plan.dxf");
  ASSERT_TRUE(writeFile(path, "one"));
  const auto first = stampOf(path);
  EXPECT_EQ(stampOf(path), first);
  ASSERT_TRUE(writeFile(path, "two"));
  const auto replaced = stampOf(path);
  EXPECT_NE(replaced, first) << "another file of the same size";
  // Written in place, and the time put back: the system's own time of change tells.
  struct stat info;
  ASSERT_EQ(stat(path.c_str(), &info), 0);
  const int file = open(path.c_str(), O_WRONLY);
  for (std::size_t tries = 0; tries < 100000 && stampOf(path) == replaced; ++tries) {
    ASSERT_EQ(pwrite(file, "TWO", 3, 0), 3);
    const timespec times[2] = {info.st_atim, info.st_mtim};
    ASSERT_EQ(futimens(file, times), 0);
  }
  close(file);
  EXPECT_NE(stampOf(path), replaced);
  fs::create_symlink("plan.dxf", at("link.dxf"));
  EXPECT_EQ(stampOf(at("link.dxf")), stampOf(path));
  EXPECT_EQ(canonicalPath(at("link.dxf")), canonicalPath(folder_ + "/./plan.dxf"));
  EXPECT_EQ(canonicalPath(at("x/../none")), canonicalPath(at("none")));
}

// A file shared by a group stays with it, whoever of the group saves it; where that cannot be, no
// other group gets its rights.
TEST_F(Files, ASharedFileKeepsItsGroupOrNarrowsItsRights) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can set owners and groups";
  const auto state = [&](const char* name) {
    struct stat info;
    EXPECT_EQ(stat(at(name).c_str(), &info), 0);
    return info;
  };
  for (const char* name : {"shared", "others", "closed", "root"})
    ASSERT_TRUE(writeFile(at(name), "old"));
  asPlainUser(folder_, [] {});
  const auto give = [&](const char* name, mode_t mode) {
    ASSERT_EQ(chown(at(name).c_str(), 4001, 4002), 0);
    ASSERT_EQ(chmod(at(name).c_str(), mode), 0);
  };
  give("shared", 04660);
  give("others", 02676);
  give("closed", 0606);
  give("root", 06750);
  ASSERT_TRUE(writeFile(at("root"), "new"));
  EXPECT_EQ(state("root").st_uid, 4001u);
  EXPECT_EQ(state("root").st_gid, 4002u);
  EXPECT_EQ(state("root").st_mode & 07777, 06750u);
  const auto saveAs = [&](const char* name, std::vector<gid_t> groups) {
    const pid_t child = fork();
    if (child == 0) {
      if (setgroups(groups.size(), groups.data()) != 0 || setgid(65534) != 0 || setuid(65534) != 0)
        _exit(2);
      Result<SaveFile> save = SaveFile::begin(at(name));
      if (!save) _exit(3);
      save->write("new");
      _exit(save->commit(true) ? 0 : 4);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0) << name;
    EXPECT_EQ(content(name), "new");
  };
  saveAs("shared", {4002});
  EXPECT_EQ(state("shared").st_gid, 4002u);
  EXPECT_EQ(state("shared").st_mode & 07777, 0660u) << "its bit to run as the owner is gone";
  saveAs("others", {});
  EXPECT_EQ(state("others").st_gid, 65534u);
  EXPECT_EQ(state("others").st_mode & 07777, 0666u);
  saveAs("closed", {});
  EXPECT_EQ(state("closed").st_mode & 07777, 0600u) << "the group had been kept out";
  EXPECT_EQ(state("closed.bak").st_mode & 07777, 0606u);
}

TEST_F(Files, AttributesOfTheFileStayWithIt) {
  ASSERT_TRUE(writeFile(at("plan.dxf"), "old"));
  if (setxattr(at("plan.dxf").c_str(), "user.note", "by hand", 7, 0) != 0) {
    GTEST_SKIP() << "this disk keeps no attributes";
  }
  ASSERT_TRUE(writeFile(at("plan.dxf"), "new"));
  char value[16] = {};
  EXPECT_EQ(getxattr(at("plan.dxf").c_str(), "user.note", value, sizeof value), 7);
  EXPECT_STREQ(value, "by hand");
}

TEST_F(Files, AFileBeyondTheLimitIsTold) {
  const pid_t child = fork();
  if (child == 0) {
    endTemporaryFilesOnSignals();
    const rlimit limit{4096, 4096};
    setrlimit(RLIMIT_FSIZE, &limit);
    const Result<void> done = writeFile(at("plan.dxf"), std::string(10000, 'x'));
    _exit(!done && done.error().find("larger than") != std::string::npos ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(entries(), 0u);
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

TEST_F(Files, ALargeFileArrivesWhole) {
  for (const std::size_t size : {kLarge - 1, kLarge, kLarge + 1, 3 * kLarge + 7}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7919 >> 3);
    ASSERT_TRUE(writeFile(at("large"), bytes));
    const auto read = readOrdinaryFile(at("large"));
    ASSERT_TRUE(read);
    EXPECT_TRUE(std::string_view(read->memory.data(), read->size) == bytes) << size;
  }
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
