#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

#include "platform/file_traits.h"
#include "platform/files.h"
#include "platform/words.h"

namespace platform {

namespace {

constexpr std::size_t kBuffer = std::size_t{1} << 20;

// What went wrong in words a user can act on. Whatever it is, nothing has replaced the old file
// yet.
Error cannotWrite(const std::string& path, int error) {
  std::string text = words("non si può scrivere ") + path + ": ";
  switch (error) {
    case ENOSPC:
      text += words("il disco è pieno; liberare spazio o salvare altrove");
      break;
    case EDQUOT:
      text += words("lo spazio concesso sul disco è esaurito; liberare spazio o salvare altrove");
      break;
    case EROFS:
      text += words("il disco è in sola lettura; salvare altrove");
      break;
    case EACCES:
    case EPERM:
      text += words(
          "permesso negato; cambiare i permessi del file e della sua cartella o salvare altrove");
      break;
    case ENOENT:
    case ENOTDIR:
      text += words("la cartella non esiste; crearla o salvare altrove");
      break;
    case EISDIR:
      text += words("è una cartella; scegliere un altro nome");
      break;
    case ENAMETOOLONG:
      text += words("il nome è troppo lungo; sceglierne uno più corto");
      break;
    case EFBIG:
      text += words(
          "il file sarebbe più grande di quanto il disco o l'utente può avere; salvare altrove");
      break;
    case ELOOP:
      text += words("i suoi collegamenti girano in cerchio; salvare altrove");
      break;
    default: {
      text += reasonOf(error);
      text += words("; salvare altrove");
    }
  }
  struct stat info;
  if (stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode))
    text += words(" (il vecchio file è intatto)");
  return Error{text};
}

// What the path points to in the end, so that a symbolic link stays a link. The path itself when it
// is no link; empty when the links lead in a circle.
std::string followLinks(std::string path) {
  for (int step = 0; step < 40; ++step) {
    char target[PATH_MAX];
    const ssize_t n = readlink(path.c_str(), target, sizeof target);
    if (n < 0) return path;
    std::string to(target, static_cast<std::size_t>(n));
    const std::size_t slash = path.rfind('/');
    if (to.empty() || to[0] != '/') to.insert(0, path, 0, slash == path.npos ? 0 : slash + 1);
    path = std::move(to);
  }
  return {};
}

constexpr int kAttempts = 1000;

// Makes a new file beside `path`; its descriptor, or -1 with errno set. The guard stands before the
// file does, so that no signal finds a file without one.
int createBeside(const std::string& path, mode_t mode, std::string& name, SignalGuard& guard) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    name = nameBeside(path);
    guard = SignalGuard(name);
    const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (file >= 0 || errno != EEXIST) return file;
  }
  return -1;
}

// All of the bytes or an errno.
int writeAll(int file, const char* bytes, std::size_t n) {
  while (n > 0) {
    const ssize_t written = ::write(file, bytes, n);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    if (written == 0) return EIO;
    bytes += written;
    n -= static_cast<std::size_t>(written);
  }
  return 0;
}

// Some file systems and devices cannot flush; that is no failure of the save.
int flushToDisk(int file) {
  while (fsync(file) != 0) {
    if (errno == EINTR) continue;
    return errno == EINVAL || errno == ENOTSUP || errno == EROFS ? 0 : errno;
  }
  return 0;
}

void flushFolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == path.npos ? "." : path.substr(0, slash + 1);
  const int file = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file < 0) return;
  flushToDisk(file);  // the rename has happened: a failure here must not be told as a failed save
  close(file);
}

int copyFile(const std::string& from, const std::string& to) {
  const int in = open(from.c_str(), O_RDONLY | O_CLOEXEC);
  if (in < 0) return errno;
  const int out = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (out < 0) {
    const int error = errno;
    close(in);
    return error;
  }
  struct stat info;
  if (fstat(in, &info) == 0) takeOverTraits(in, info, out);
  std::string buffer(kBuffer, '\0');
  int error = 0;
  while (error == 0) {
    const ssize_t n = read(in, buffer.data(), buffer.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) error = errno;
    if (n <= 0) break;
    error = writeAll(out, buffer.data(), static_cast<std::size_t>(n));
  }
  if (error == 0) error = flushToDisk(out);
  close(in);
  if (close(out) != 0 && error == 0) error = errno;
  return error;
}

// Gives the file at `path` the second name `backup`, in place of an older backup. A link costs
// nothing and leaves `path` where it is; disks without links get a copy.
int keepAs(const std::string& path, const std::string& backup) {
  std::string second;
  SignalGuard guard;
  int error = EEXIST;
  for (int attempt = 0; attempt < kAttempts && error == EEXIST; ++attempt) {
    second = nameBeside(path);
    guard = SignalGuard(second);
    error = link(path.c_str(), second.c_str()) == 0 ? 0 : errno;
  }
  if (error != 0) error = copyFile(path, second);
  if (error == 0 && rename(second.c_str(), backup.c_str()) != 0) error = errno;
  // Left over after a failure, and after renaming onto another name of the very same file.
  unlink(second.c_str());
  return error;
}

}  // namespace

Result<SaveFile> SaveFile::begin(const std::string& path) {
  SaveFile save;
  save.path_ = followLinks(path);
  if (save.path_.empty()) return cannotWrite(path, ELOOP);
  struct stat old;
  const bool exists = stat(save.path_.c_str(), &old) == 0;
  if (exists && S_ISDIR(old.st_mode)) return cannotWrite(path, EISDIR);
  // The rename would get round a write protection: it needs the folder's permission only.
  if (exists && access(save.path_.c_str(), W_OK) != 0) return cannotWrite(path, errno);
  if (exists && !S_ISREG(old.st_mode)) {  // a device or pipe is written to, never replaced
    save.file_ = open(save.path_.c_str(), O_WRONLY | O_CLOEXEC);
    if (save.file_ < 0) return cannotWrite(path, errno);
    return save;
  }
  removeLitterOf(save.path_);
  // Nobody else may read it before it has its permissions.
  save.file_ = createBeside(save.path_, exists ? 0600 : 0666, save.temporary_, save.guard_);
  if (save.file_ < 0) {
    const int error = errno;
    save.temporary_.clear();
    return cannotWrite(path, error);
  }
  if (exists) {
    const int from = open(save.path_.c_str(), O_RDONLY | O_CLOEXEC);
    takeOverTraits(from, old, save.file_);
    if (from >= 0) close(from);
  }
  return save;
}

SaveFile::SaveFile(SaveFile&& other) noexcept
    : path_(std::move(other.path_)),
      temporary_(std::exchange(other.temporary_, {})),
      guard_(std::move(other.guard_)),
      file_(std::exchange(other.file_, -1)),
      failure_(other.failure_),
      pending_(std::move(other.pending_)) {}

SaveFile::~SaveFile() {
  if (file_ >= 0) close(file_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void SaveFile::flush() {
  if (failure_ == 0) failure_ = writeAll(file_, pending_.data(), pending_.size());
  pending_.clear();
}

void SaveFile::write(std::string_view bytes) {
  if (failure_ != 0) return;
  if (pending_.size() + bytes.size() > kBuffer) flush();
  if (bytes.size() >= kBuffer) {
    if (failure_ == 0) failure_ = writeAll(file_, bytes.data(), bytes.size());
    return;
  }
  if (pending_.capacity() < kBuffer && pending_.size() + bytes.size() > 4096)
    pending_.reserve(kBuffer);
  pending_.append(bytes);
}

Result<void> SaveFile::commit(bool keepBackup) {
  if (file_ < 0) return cannotWrite(path_, failure_ != 0 ? failure_ : EBADF);
  flush();
  if (failure_ == 0) failure_ = flushToDisk(file_);
  // Some network disks report a failed write only now.
  if (close(std::exchange(file_, -1)) != 0 && failure_ == 0 && errno != EINTR) failure_ = errno;
  if (failure_ != 0) return cannotWrite(path_, failure_);
  if (temporary_.empty()) return {};
  struct stat old;
  if (keepBackup && stat(path_.c_str(), &old) == 0) {
    const int error = keepAs(path_, path_ + ".bak");
    if (error != 0) {
      Error cause = cannotWrite(path_ + ".bak", error);
      cause.message += "; " + path_ +
                       words(" non è stato salvato, perché il suo stato precedente non vada perso");
      return cause;
    }
  }
  if (rename(temporary_.c_str(), path_.c_str()) != 0) return cannotWrite(path_, errno);
  temporary_.clear();
  guard_ = SignalGuard();
  flushFolderOf(path_);
  return {};
}

}  // namespace platform
