#include "platform/temporary_files.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/files.h"
#include "platform/words.h"

namespace platform {

// What a handler may read at any moment: a fixed place for each file being written and each program
// at work, and a mark that is set when it stands there in full. A process that saves more files at
// once than there are places has the others removed as litter.
constexpr int kSlots = 16;
enum SlotState { kFree, kTaken, kPath, kGroup };
struct Slot {
  std::atomic<int> state{kFree};
  std::atomic<pid_t> group{0};
  char path[PATH_MAX];
};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler reads it");

namespace {
Slot g_slots[kSlots];  // this copy's own
}  // namespace

// Shown to the loader: see slots().
extern "C" __attribute__((visibility("default"))) Slot* vessora_unfinished_work();
Slot* vessora_unfinished_work() { return g_slots; }

namespace {

// One table for the whole process: the program, the host's library and the module have a copy of
// this file each, and the program's handler must know what all of them write. The one that the
// loader shows counts; a copy that nobody shows (a module in another host) has its own.
Slot* slots() {
  static Slot* const all = [] {
    void* const shown = dlsym(RTLD_DEFAULT, "vessora_unfinished_work");
    return shown ? reinterpret_cast<Slot* (*)()>(shown)() : g_slots;
  }();
  return all;
}

// Runs at any moment: only calls that are safe in a handler. The signal's own work is done by its
// second coming, with the default action back in place.
void removeAndEnd(int signal) {
  const int error = errno;
  // Programs first: they may be writing into folders that go.
  for (int i = 0; i < kSlots; ++i) {
    if (slots()[i].state.load() == kGroup) endGroup(slots()[i].group.load());
  }
  for (int i = 0; i < kSlots; ++i) {
    if (slots()[i].state.load() == kPath) removeTree(slots()[i].path);
  }
  errno = error;
  raise(signal);
}

// Eight digits for this machine: its name, and the numbering of its processes, which containers
// have of their own.
const std::string& hostMark() {
  static const std::string mark = [] {
    char text[512] = {};
    gethostname(text, 255);
    std::string all = text;
    const ssize_t n = readlink("/proc/self/ns/pid", text, sizeof text);
    if (n > 0) all.append(text, static_cast<std::size_t>(n));
    std::uint32_t hash = 2166136261U;
    for (const char c : all) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    std::string digits;
    for (int shift = 28; shift >= 0; shift -= 4) digits += "0123456789abcdef"[(hash >> shift) & 15];
    return digits;
  }();
  return mark;
}

// What all temporary files of a target have in front; the folder apart.
void splitTemporary(const std::string& path, std::string& folder, std::string& beginning) {
  const std::size_t slash = path.rfind('/');
  const std::size_t begin = slash == path.npos ? 0 : slash + 1;
  folder = path.substr(0, begin);
  // Room for what is added, within the 255 bytes that file systems allow for a name.
  beginning = "." + path.substr(begin, 200) + "." + hostMark() + "-";
}

int takeSlot() {
  for (int i = 0; i < kSlots; ++i) {
    int expected = kFree;
    if (slots()[i].state.compare_exchange_strong(expected, kTaken)) return i;
  }
  return -1;
}

// The process of ".NAME.HOST-PID-COUNT", or 0 when the name is no such one.
pid_t processOf(const char* name, const std::string& beginning) {
  if (std::string_view(name).substr(0, beginning.size()) != beginning) return 0;
  const char* at = name + beginning.size();
  char* end = nullptr;
  if (*at < '1' || *at > '9') return 0;
  const long process = std::strtol(at, &end, 10);
  if (*end != '-' || end[1] < '0' || end[1] > '9' || process > INT_MAX) return 0;
  for (++end; *end; ++end) {
    if (*end < '0' || *end > '9') return 0;
  }
  return static_cast<pid_t>(process);
}

// Calls remove(path) for what dead processes of this machine left beside `path`.
template <class Remove>
void forEachLitter(const std::string& path, Remove remove) {
  std::string folder, beginning;
  splitTemporary(path, folder, beginning);
  DIR* const entries = opendir(folder.empty() ? "." : folder.c_str());
  if (!entries) return;
  while (const dirent* entry = readdir(entries)) {
    const pid_t process = processOf(entry->d_name, beginning);
    if (process > 0 && kill(process, 0) != 0 && errno == ESRCH) remove(folder + entry->d_name);
  }
  closedir(entries);
}

// An entry of an open folder, with what is in it. By calls of the system alone: reading a folder by
// the library takes memory, which no handler may.
void removeEntry(int folder, const char* name, int depth) {
  if (unlinkat(folder, name, 0) == 0 || (errno != EISDIR && errno != EPERM) || depth == 0) return;
  const int inside = openat(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (inside < 0) return;
  alignas(dirent64) char entries[2048];
  // What is removed while a folder is read may hide others: again, until nothing was there.
  for (int pass = 0, found = 1; found && pass < 100; ++pass) {
    found = 0;
    lseek(inside, 0, SEEK_SET);
    for (long n = 0; (n = syscall(SYS_getdents64, inside, entries, sizeof entries)) > 0;) {
      for (long at = 0; at < n;) {
        const auto* entry = reinterpret_cast<const dirent64*>(entries + at);
        at += entry->d_reclen;
        const char* const e = entry->d_name;
        if (e[0] == '.' && (e[1] == '\0' || (e[1] == '.' && e[2] == '\0'))) continue;
        found = 1;
        removeEntry(inside, e, depth - 1);
      }
    }
  }
  close(inside);
  unlinkat(folder, name, AT_REMOVEDIR);
}

}  // namespace

std::string nameBeside(const std::string& path) {
  static std::atomic<unsigned> counter{0};
  std::string folder, beginning;
  splitTemporary(path, folder, beginning);
  return folder + beginning + std::to_string(getpid()) + "-" + std::to_string(counter.fetch_add(1));
}

void removeLitterOf(const std::string& path) {
  forEachLitter(path, [](const std::string& litter) { unlink(litter.c_str()); });
}

SignalGuard::SignalGuard(const std::string& path) {
  if (path.size() >= PATH_MAX || (slot_ = takeSlot()) < 0) return;
  Slot& slot = slots()[slot_];
  path.copy(slot.path, path.size());
  slot.path[path.size()] = '\0';
  slot.state.store(kPath);
}

SignalGuard::SignalGuard(pid_t group) {
  if (group <= 1 || (slot_ = takeSlot()) < 0) return;
  slots()[slot_].group.store(group);
  slots()[slot_].state.store(kGroup);
}

SignalGuard::SignalGuard(SignalGuard&& other) noexcept : slot_(std::exchange(other.slot_, -1)) {}

SignalGuard& SignalGuard::operator=(SignalGuard&& other) noexcept {
  std::swap(slot_, other.slot_);
  return *this;
}

SignalGuard::~SignalGuard() {
  if (slot_ >= 0) slots()[slot_].state.store(kFree);
}

void removeTree(const char* path) {
  constexpr int kDepth = 64;
  const int error = errno;
  removeEntry(AT_FDCWD, path, kDepth);
  errno = error;
}

void endGroup(pid_t group) {
  const int error = errno;
  for (int wait = 0; wait < 200 && kill(-group, SIGKILL) == 0; ++wait) {
    // Children of ours stay members until they have been waited for.
    siginfo_t info;
    do info.si_pid = 0;
    while (waitid(P_PGID, static_cast<id_t>(group), &info, WEXITED | WNOHANG) == 0 && info.si_pid);
    if (kill(-group, 0) == 0) poll(nullptr, 0, 2);
  }
  errno = error;
}

// --- folders -------------------------------------------------------------------------------------

Result<TemporaryFolder> TemporaryFolder::make() {
  const char* const wanted = std::getenv("TMPDIR");
  const std::string place = absolutePath(wanted && *wanted ? wanted : "/tmp") + "/vessora";
  forEachLitter(place, [](const std::string& litter) { removeTree(litter.c_str()); });
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::string path = nameBeside(place);
    if (mkdir(path.c_str(), 0700) == 0) return TemporaryFolder(std::move(path));
    if (errno != EEXIST) return Error{path + words(": non si può creare: ") + reasonOf(errno)};
  }
  return Error{place + words(": nessun nome è libero per una cartella")};
}

TemporaryFolder::TemporaryFolder(TemporaryFolder&& other) noexcept
    : path_(std::exchange(other.path_, {})), guard_(std::move(other.guard_)) {}

TemporaryFolder& TemporaryFolder::operator=(TemporaryFolder&& other) noexcept {
  std::swap(path_, other.path_);
  std::swap(guard_, other.guard_);
  return *this;
}

TemporaryFolder::~TemporaryFolder() {
  if (!path_.empty()) removeTree(path_.c_str());
}

void endTemporaryFilesOnSignals() {
  slots();  // found before a handler asks for it
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU}) {
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
    action.sa_handler = removeAndEnd;
    action.sa_flags = SA_RESETHAND | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
  }
  // A file beyond the limit of the user makes the write fail, which is told; the signal would end
  // the program before.
  signal(SIGXFSZ, SIG_IGN);
}

}  // namespace platform
