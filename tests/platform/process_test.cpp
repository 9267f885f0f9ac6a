// Programs that end well, badly, too late or not at all, and what is left of them: nothing.
#include "platform/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

#include "platform/temporary_files.h"
#include "tests/platform/scratch_folder.h"

namespace platform {
namespace {

using End = ProcessResult::End;

class Process : public ScratchFolder {
 protected:
  // A program of ours in the folder; its path.
  std::string program(const std::string& name, const std::string& text, mode_t mode = 0755) {
    std::ofstream(at(name)) << text;
    chmod(at(name).c_str(), mode);
    return at(name);
  }
  ProcessResult sh(const std::string& script, ProcessOptions options = {}) {
    if (options.folder.empty()) options.folder = folder_;
    return runProcess("/bin/sh", {"-c", script}, options);
  }
  // The number that a program has written into a file, once it has; -1 when it never does.
  pid_t numberIn(const std::string& name) const {
    for (int i = 0; i < kPatience; ++i) {
      std::ifstream file(at(name));
      pid_t number = -1;
      char end = 0;
      if (file >> number && file.get(end)) return number;
      poll(nullptr, 0, 5);
    }
    return -1;
  }
  // No longer running: gone, or dead and not cleared up yet by whoever inherits it.
  static bool isGone(pid_t process) {
    for (int i = 0; i < kPatience; ++i) {
      std::ifstream file("/proc/" + std::to_string(process) + "/stat");
      std::string number, name, state;
      if (!(file >> number >> name >> state) || state == "Z" || state == "X") return true;
      poll(nullptr, 0, 5);
    }
    return false;
  }
  static constexpr int kPatience = 4000;  // turns: what takes longer hangs
};

TEST_F(Process, ItsEndAndItsWordsAreTold) {
  auto r = sh("echo out; echo wrong >&2; exit 3");
  EXPECT_EQ(std::tuple(r.end, r.code, r.output, r.errors, r.cut, r.succeeded()),
            std::tuple(End::exited, 3, "out\n", "wrong\n", false, false));
  r = sh("kill -9 $$");
  EXPECT_EQ(std::tuple(r.end, r.code), std::tuple(End::signalled, SIGKILL));
  // Arguments and environment arrive to the letter, and it has nothing to read.
  const std::string show =
      program("show", "#!/bin/sh\nprintf '%s|' \"$@\" \"$V\" \"$HOME\" \"$PWD\"\ncat\n");
  ProcessOptions options;
  options.folder = folder_;
  options.environment = {{"V", "a b=$x"}, {"HOME", "/elsewhere"}};
  r = runProcess(show, {"", "a b", "*", "'\"$HOME"}, options);
  EXPECT_EQ(r.output, "|a b|*|'\"$HOME|a b=$x|/elsewhere|" + folder_ + "|");
  EXPECT_TRUE(r.succeeded());
  EXPECT_TRUE(runProcess("true", {}).succeeded()) << "by its name on the PATH";
}

TEST_F(Process, WhyItDidNotRunIsTold) {
  EXPECT_EQ(runProcess(at("none"), {}).end, End::notFound);
  EXPECT_EQ(runProcess("no-such-program-anywhere", {}).end, End::notFound);
  EXPECT_EQ(runProcess("", {}).end, End::notFound);
  EXPECT_EQ(runProcess(folder_, {}).end, End::notExecutable);
  EXPECT_EQ(runProcess(program("plain", "#!/bin/sh\n", 0644), {}).end, End::notExecutable);
  EXPECT_EQ(runProcess(program("text", "exit 0\n"), {}).end, End::notExecutable)
      << "no shell reads what is no program";
  EXPECT_EQ(runProcess(program("lost", "#!/no/such/interpreter\n"), {}).end, End::notExecutable);
  ProcessOptions nowhere;
  nowhere.folder = at("missing");
  const auto r = runProcess("/bin/true", {}, nowhere);
  EXPECT_EQ(std::tuple(r.end, r.code), std::tuple(End::notStarted, ENOTDIR));
}

TEST_F(Process, MoreWordsThanTheLimitAreReadAndDropped) {
  ProcessOptions options;
  options.outputLimit = 1000;
  const auto r =
      sh("head -c 300000 /dev/zero; head -c 300000 /dev/zero >&2; echo end > done", options);
  EXPECT_EQ(std::tuple(r.output.size(), r.errors.size(), r.cut), std::tuple(1000U, 1000U, true));
  EXPECT_TRUE(r.succeeded());
  EXPECT_EQ(content("done"), "end\n");
}

TEST_F(Process, AHangIsEndedWithAllThatItStarted) {
  const std::string hang = "sleep 1000 & echo $! > child; echo $$ > self; echo said; wait";
  ProcessOptions options;
  int asked = 0;
  options.cancelled = [&] { return ++asked > 2 && numberIn("self") > 0; };
  auto r = sh(hang, options);
  EXPECT_EQ(std::tuple(r.end, r.output), std::tuple(End::cancelled, "said\n"));
  EXPECT_TRUE(isGone(numberIn("child")) && isGone(numberIn("self")));

  ProcessOptions late;
  late.timeout = std::chrono::milliseconds(300);
  EXPECT_EQ(sh("trap '' TERM INT HUP; sleep 1000", late).end, End::timedOut);
  // A program that writes without end can be ended too.
  ProcessOptions flood;
  flood.cancelled = [] { return true; };
  EXPECT_EQ(sh("yes", flood).end, End::cancelled);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no zombie is left";
}

TEST_F(Process, WhatOutlivesTheProgramGoesAndHoldsNobodyUp) {
  const auto r = sh("sleep 1000 & echo $! > child; echo said");
  EXPECT_EQ(std::tuple(r.end, r.code, r.output), std::tuple(End::exited, 0, "said\n"));
  EXPECT_TRUE(isGone(numberIn("child")));
}

TEST_F(Process, ItGetsNoneOfOurFiles) {
  const int open = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY);  // not marked to be closed
  ASSERT_GE(open, 0);
  const auto r = sh("ls /proc/$$/fd");
  EXPECT_EQ(r.output, "0\n1\n2\n");
  close(open);
}

TEST_F(Process, ProgramsAreFoundOnThePath) {
  mkdir(at("a").c_str(), 0700);
  mkdir(at("b").c_str(), 0700);
  program("a/tool", "text", 0644);
  program("b/tool", "#!/bin/sh\n");
  mkdir(at("a/folder").c_str(), 0700);
  const std::string before = std::getenv("PATH");
  setenv("PATH", (":.:relative:" + at("a") + ":" + at("b")).c_str(), 1);
  EXPECT_EQ(findProgram("tool"), at("b/tool"));
  EXPECT_EQ(findProgram("folder"), "");
  EXPECT_EQ(findProgram("sh"), "");
  EXPECT_EQ(findProgram(""), "");
  EXPECT_EQ(findProgram(at("b/tool")), at("b/tool"));
  EXPECT_EQ(findProgram(at("a/tool")), "");
  setenv("PATH", before.c_str(), 1);
  EXPECT_EQ(findProgram("sh").substr(0, 1), "/");
}

// --- folders for a while -------------------------------------------------------------------------

class TemporaryFolders : public Process {
 protected:
  void SetUp() override {
    Process::SetUp();
    if (const char* const place = std::getenv("TMPDIR")) before_ = place;
    setenv("TMPDIR", folder_.c_str(), 1);
  }
  void TearDown() override {
    before_.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", before_.c_str(), 1);
    Process::TearDown();
  }
  static void fill(const std::string& folder) {
    std::filesystem::create_directories(folder + "/a/b/c");
    std::filesystem::create_directory_symlink("/", folder + "/root");
    for (int i = 0; i < 300; ++i)
      std::ofstream(folder + "/a/a long name of a file " + std::to_string(i));
  }

 private:
  std::string before_;
};

TEST_F(TemporaryFolders, GoWithAllThatIsInThem) {
  std::string path;
  {
    auto first = TemporaryFolder::make();
    auto second = TemporaryFolder::make();
    ASSERT_TRUE(first && second);
    EXPECT_NE(first->path(), second->path());
    struct stat info;
    ASSERT_EQ(stat(first->path().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700U);
    path = first->path();
    const TemporaryFolder moved = std::move(*first);
    EXPECT_EQ(moved.path(), path);
    fill(path);
    fill(second->path());
  }
  EXPECT_EQ(entries(), 0U);
  setenv("TMPDIR", at("missing").c_str(), 1);
  EXPECT_FALSE(TemporaryFolder::make());
}

TEST_F(TemporaryFolders, ASignalTakesThemAndTheProgramAlong) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    const pid_t us = fork();
    if (us == 0) {
      endTemporaryFilesOnSignals();
      auto folder = TemporaryFolder::make();
      fill(folder->path());
      ProcessOptions options;
      options.folder = folder->path();
      runProcess(
          "/bin/sh",
          {"-c", "sleep 1000 & echo $! > \"$0\"; while :; do echo x > file; done", at("child")},
          options);
      _exit(9);
    }
    const pid_t child = numberIn("child");
    EXPECT_GT(child, 0);
    kill(us, number);
    int status = 0;
    waitpid(us, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << status;
    EXPECT_TRUE(isGone(child));
    unlink(at("child").c_str());
    EXPECT_EQ(entries(), 0U);
  }
}

TEST_F(TemporaryFolders, WhatAKilledProcessLeftGoesWithTheNextOne) {
  const pid_t us = fork();
  if (us == 0) {
    auto folder = TemporaryFolder::make();
    fill(folder->path());
    ProcessOptions options;
    runProcess("/bin/sh", {"-c", "echo $$ > \"$0\"; exec sleep 1000", at("child")}, options);
    _exit(9);
  }
  const pid_t child = numberIn("child");
  kill(us, SIGKILL);
  waitpid(us, nullptr, 0);
  EXPECT_TRUE(isGone(child)) << "the program does not outlive us";
  EXPECT_EQ(hidden().size(), 1U);
  { ASSERT_TRUE(TemporaryFolder::make()); }
  EXPECT_EQ(hidden().size(), 0U);
}

}  // namespace
}  // namespace platform
