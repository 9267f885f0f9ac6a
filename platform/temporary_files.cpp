#include "platform/temporary_files.h"

#include <dirent.h>
#include <dlfcn.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <utility>

#include "platform/files.h"

namespace platform {

// What a handler may read at any moment: a fixed place for each file being written, and a mark that
// is set when its name stands there in full. A process that saves more files at once than there are
// places has the others removed as litter.
constexpr int kSlots = 8;
enum SlotState { kFree, kTaken, kReady };
struct Slot {
  std::atomic<int> state{kFree};
  char path[PATH_MAX];
};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler reads it");

namespace {
Slot g_slots[kSlots];  // this copy's own
}  // namespace

// Shown to the loader: see slots().
extern "C" __attribute__((visibility("default"))) Slot* vessora_unfinished_files();
Slot* vessora_unfinished_files() { return g_slots; }

namespace {

// One table for the whole process: the program, the host's library and the module have a copy of
// this file each, and the program's handler must know what all of them write. The one that the
// loader shows counts; a copy that nobody shows (a module in another host) has its own.
Slot* slots() {
  static Slot* const all = [] {
    void* const shown = dlsym(RTLD_DEFAULT, "vessora_unfinished_files");
    return shown ? reinterpret_cast<Slot* (*)()>(shown)() : g_slots;
  }();
  return all;
}

// Runs at any moment: only calls that are safe in a handler. The signal's own work is done by its
// second coming, with the default action back in place.
void removeAndEnd(int signal) {
  const int error = errno;
  for (int i = 0; i < kSlots; ++i) {
    if (slots()[i].state.load() == kReady) unlink(slots()[i].path);
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

}  // namespace

std::string nameBeside(const std::string& path) {
  static std::atomic<unsigned> counter{0};
  std::string folder, beginning;
  splitTemporary(path, folder, beginning);
  return folder + beginning + std::to_string(getpid()) + "-" + std::to_string(counter.fetch_add(1));
}

void removeLitterOf(const std::string& path) {
  std::string folder, beginning;
  splitTemporary(path, folder, beginning);
  DIR* const entries = opendir(folder.empty() ? "." : folder.c_str());
  if (!entries) return;
  while (const dirent* entry = readdir(entries)) {
    const pid_t process = processOf(entry->d_name, beginning);
    if (process > 0 && kill(process, 0) != 0 && errno == ESRCH) {
      unlink((folder + entry->d_name).c_str());
    }
  }
  closedir(entries);
}

SignalGuard::SignalGuard(const std::string& path) {
  if (path.size() >= PATH_MAX) return;
  for (int i = 0; i < kSlots && slot_ < 0; ++i) {
    int expected = kFree;
    Slot& slot = slots()[i];
    if (!slot.state.compare_exchange_strong(expected, kTaken)) continue;
    path.copy(slot.path, path.size());
    slot.path[path.size()] = '\0';
    slot.state.store(kReady);
    slot_ = i;
  }
}

SignalGuard::SignalGuard(SignalGuard&& other) noexcept : slot_(std::exchange(other.slot_, -1)) {}

SignalGuard& SignalGuard::operator=(SignalGuard&& other) noexcept {
  std::swap(slot_, other.slot_);
  return *this;
}

SignalGuard::~SignalGuard() {
  if (slot_ >= 0) slots()[slot_].state.store(kFree);
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
