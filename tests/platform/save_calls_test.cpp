// A save seen from the system: which calls it makes in which order, and what stands on disk when it
// dies at any of them. The functions below stand before those of the C library in this program.
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <string>
#include <vector>

#include "platform/files.h"
#include "tests/platform/scratch_folder.h"

namespace {

struct Watch {
  bool on = false;
  int dieAt = 0;  // the call at which the process is killed; 0 for none
  int calls = 0;
  bool linksFail = false;
  int fsyncError = 0;
  std::vector<std::string> names;
};
Watch g_watch;

// What a descriptor leads to: "folder", or "file" for the temporary one and its like.
std::string kindOf(int file) {
  struct stat info;
  return fstat(file, &info) == 0 && S_ISDIR(info.st_mode) ? "folder" : "file";
}

void step(const std::string& name) {
  if (!g_watch.on) return;
  g_watch.names.push_back(name);
  if (++g_watch.calls == g_watch.dieAt) kill(getpid(), SIGKILL);
}

template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {
ssize_t write(int file, const void* bytes, size_t n) {
  static auto* real = next<ssize_t(int, const void*, size_t)>("write");
  if (file > 2) step("write");
  return real(file, bytes, n);
}
int fsync(int file) {
  static auto* real = next<int(int)>("fsync");
  step("fsync " + kindOf(file));
  if (g_watch.on && g_watch.fsyncError && kindOf(file) == "file") {
    errno = g_watch.fsyncError;
    return -1;
  }
  return real(file);
}
int rename(const char* from, const char* to) {
  static auto* real = next<int(const char*, const char*)>("rename");
  step(std::string(to).ends_with(".bak") ? "rename backup" : "rename");
  return real(from, to);
}
int link(const char* from, const char* to) noexcept {
  static auto* real = next<int(const char*, const char*)>("link");
  step("link");
  if (g_watch.on && g_watch.linksFail) {
    errno = EPERM;
    return -1;
  }
  return real(from, to);
}
int unlink(const char* path) noexcept {
  static auto* real = next<int(const char*)>("unlink");
  step("unlink");
  return real(path);
}
int fchmod(int file, mode_t mode) noexcept {
  static auto* real = next<int(int, mode_t)>("fchmod");
  step("fchmod");
  return real(file, mode);
}
}

namespace platform {
namespace {

class SaveCalls : public ScratchFolder {
 protected:
  void TearDown() override {
    g_watch = {};
    ScratchFolder::TearDown();
  }
  static Result<void> save(const std::string& path, const std::string& text, bool backup) {
    Result<SaveFile> file = SaveFile::begin(path);
    if (!file) return Error{file.error()};
    file->write(text);
    file->write(std::string(3u << 20, 'x'));
    return file->commit(backup);
  }
  // The calls of one save that settle what is on disk, runs of the same one joined.
  std::vector<std::string> callsOf(const std::string& path, bool backup) {
    g_watch.on = true;
    const Result<void> saved = save(path, "new", backup);
    g_watch.on = false;
    EXPECT_EQ(static_cast<bool>(saved), g_watch.fsyncError == 0);
    std::vector<std::string> names;
    for (const std::string& name : g_watch.names) {
      if (name != "fchmod" && name != "unlink" && (names.empty() || names.back() != name)) {
        names.push_back(name);
      }
    }
    return names;
  }
};

TEST_F(SaveCalls, TheBytesAreOnDiskBeforeTheNameLeadsToThem) {
  using Names = std::vector<std::string>;
  EXPECT_EQ(callsOf(at("plan.dxf"), true),
            (Names{"write", "fsync file", "rename", "fsync folder"}));
  g_watch = {};
  EXPECT_EQ(callsOf(at("plan.dxf"), true),
            (Names{"write", "fsync file", "link", "rename backup", "rename", "fsync folder"}));
  g_watch = {};
  EXPECT_EQ(callsOf(at("plan.dxf"), false),
            (Names{"write", "fsync file", "rename", "fsync folder"}));
  // On a disk without links the backup is a copy, and as safe.
  g_watch = {};
  g_watch.linksFail = true;
  EXPECT_EQ(callsOf(at("plan.dxf"), true),
            (Names{"write", "fsync file", "link", "write", "fsync file", "rename backup", "rename",
                   "fsync folder"}));
  EXPECT_EQ(content("plan.dxf.bak"), content("plan.dxf"));
}

TEST_F(SaveCalls, BytesThatDoNotReachTheDiskReplaceNothing) {
  ASSERT_TRUE(writeFile(at("plan.dxf"), "old"));
  g_watch.fsyncError = EIO;
  EXPECT_EQ(callsOf(at("plan.dxf"), true), (std::vector<std::string>{"write", "fsync file"}));
  EXPECT_EQ(content("plan.dxf"), "old");
  EXPECT_EQ(entries(), 1u);
  // A disk that knows no flushing is no failure.
  g_watch = {};
  for (const int unknown : {EINVAL, ENOTSUP, EROFS}) {
    g_watch.on = true;
    g_watch.fsyncError = unknown;
    EXPECT_TRUE(save(at("plan.dxf"), "new", false)) << unknown;
  }
}

// Killed at each of its calls in turn, until one run meets its end: the file is the old one or the
// new one as a whole, and the next save leaves nothing but the file and its backup.
TEST_F(SaveCalls, ASaveThatDiesAtAnyCallLeavesAWholeFileAndNoLitter) {
  const std::string path = at("plan.dxf"), tail(3u << 20, 'x');
  ASSERT_TRUE(writeFile(path, "old" + tail));
  ASSERT_TRUE(save(path, "old", true));
  int old = 0, fresh = 0, litter = 0, rounds = 0;
  for (bool finished = false; !finished; ++rounds) {
    ASSERT_LT(rounds, 100);
    const pid_t child = fork();
    if (child == 0) {
      g_watch = {};
      g_watch.on = true;
      g_watch.dieAt = rounds + 1;
      _exit(save(path, "new", true) ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    finished = WIFEXITED(status);
    ASSERT_TRUE(finished ? WEXITSTATUS(status) == 0 : WTERMSIG(status) == SIGKILL);
    const std::string now = content("plan.dxf"), backup = content("plan.dxf.bak");
    ASSERT_TRUE(now == "old" + tail || now == "new" + tail) << "call " << rounds + 1;
    ASSERT_EQ(backup, "old" + tail) << "call " << rounds + 1;
    now[0] == 'o' ? ++old : ++fresh;
    if (entries() > 2) ++litter;
    ASSERT_TRUE(save(path, "old", true));
    ASSERT_TRUE(save(path, "old", true));
    ASSERT_EQ(entries(), 2u) << "call " << rounds + 1;
  }
  EXPECT_GT(old, 5);
  EXPECT_GT(fresh, 1);
  EXPECT_GT(litter, 3) << "the deaths left something to clear up";
}

// Only litter goes: not what a living process writes, nor files that merely look like it.
TEST_F(SaveCalls, OnlyWhatDeadProcessesLeftIsCleared) {
  Result<SaveFile> other = SaveFile::begin(at("plan.dxf"));
  ASSERT_TRUE(other);
  const std::string own = hidden().at(0);
  const std::string mark = own.substr(0, own.find('-') + 1);
  ASSERT_EQ(mark.rfind(".plan.dxf.", 0), 0u);
  const pid_t dead = fork();
  if (dead == 0) _exit(0);
  waitpid(dead, nullptr, 0);
  const std::string gone = mark + std::to_string(dead) + "-0";
  for (const std::string& name :
       {gone, gone + "x", gone + "-1", mark + "-5-0", mark + "0", mark + "x-0",
        ".plan.dxf.00000000-" + std::to_string(dead) + "-0", ".other.dxf" + gone.substr(9)}) {
    ASSERT_TRUE(writeFile(at(name), "x"));
  }
  // What another user's living process writes is none of ours either: the first one is the
  // system's.
  ASSERT_TRUE(writeFile(at(mark + "1-0"), "x"));
  const std::size_t before = entries();
  ASSERT_EQ(chmod(folder_.c_str(), 0777), 0);
  const pid_t child = fork();
  if (child == 0)
    _exit((geteuid() != 0 || setuid(65534) == 0) && writeFile(at("plan.dxf"), "y") ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(entries(), before) << "one came and one went";
  EXPECT_FALSE(fileExists(at(gone)));
  other->write("z");
  EXPECT_TRUE(other->commit(false));
}

TEST_F(SaveCalls, SignalsTakeTheUnfinishedFileAway) {
  ASSERT_TRUE(writeFile(at("plan.dxf"), "old"));
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
    const pid_t child = fork();
    if (child == 0) {
      std::signal(signal, SIG_DFL);  // programs run in the background ignore some of them
      endTemporaryFilesOnSignals();
      Result<SaveFile> first = SaveFile::begin(at("plan.dxf"));
      Result<SaveFile> second = SaveFile::begin(at("second.dxf"));
      { Result<SaveFile> done = SaveFile::begin(at("third.dxf")); }
      first->write(std::string(2u << 20, 'x'));
      raise(signal);
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
    EXPECT_EQ(entries(), 1u) << signal;
  }
  // A signal that the parent had ignored stays ignored.
  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGHUP, SIG_IGN);
    endTemporaryFilesOnSignals();
    raise(SIGHUP);
    _exit(7);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 7);
  EXPECT_EQ(content("plan.dxf"), "old");
}

}  // namespace
}  // namespace platform
