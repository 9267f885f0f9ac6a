#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "platform/text.h"

namespace platform {

namespace {

// The system's own text, untranslated whatever the locale.
std::string reasonOf(int error) {
  const char* text = strerrordesc_np(error);
  return text != nullptr ? text : "error " + std::to_string(error);
}

Error cannotRead(const std::string& path, const std::string& reason) {
  return Error{"cannot read " + path + ": " + reason};
}

std::size_t behindSeparator(std::u16string_view path) {
  const std::size_t at = path.find_last_of(u"/\\");
  return at == path.npos ? 0 : at + 1;
}

}  // namespace

std::string nativePath(std::string_view path) {
  std::string out(path);
  std::replace(out.begin(), out.end(), '\\', '/');
  return out;
}

std::string nativePath(std::u16string_view path) { return nativePath(narrow(path)); }

bool fileExists(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 && !S_ISDIR(info.st_mode);
}

bool folderExists(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::u16string_view fileNameOf(std::u16string_view path) {
  return path.substr(behindSeparator(path));
}

std::u16string_view folderOf(std::u16string_view path) {
  return path.substr(0, behindSeparator(path));
}

std::string absolutePath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path full = std::filesystem::absolute(path, error);
  return error ? path : full.string();
}

bool sameFile(const std::string& a, const std::string& b) {
  struct stat x {
  }, y{};
  return stat(a.c_str(), &x) == 0 && stat(b.c_str(), &y) == 0 && x.st_dev == y.st_dev &&
         x.st_ino == y.st_ino;
}

bool makeFolders(const std::string& path) {
  std::error_code ignored;
  std::filesystem::create_directories(path, ignored);
  return folderExists(path);
}

Result<std::string> readFile(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return cannotRead(path, reasonOf(errno));
  struct stat info;
  if (fstat(file, &info) != 0 || S_ISDIR(info.st_mode)) {
    close(file);
    return cannotRead(path, "it is a folder, not a file");
  }
  // One byte more than the size: the read that meets the end needs no further call. Pipes and files
  // that grow meanwhile are read to their end too.
  std::string bytes(static_cast<std::size_t>(std::max<off_t>(info.st_size, 0)) + 1, '\0');
  std::size_t have = 0;
  while (true) {
    if (have == bytes.size()) bytes.resize(std::max<std::size_t>(bytes.size() * 2, 65536));
    const ssize_t n = read(file, bytes.data() + have, bytes.size() - have);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      const int error = errno;
      close(file);
      return cannotRead(path, reasonOf(error));
    }
    if (n == 0) break;
    have += static_cast<std::size_t>(n);
  }
  close(file);
  bytes.resize(have);
  return bytes;
}

Result<FileBytes> readOrdinaryFile(const std::string& path) {
  const auto fail = [&](const std::string& reason) {
    return Error{path + ": cannot be read: " + reason};
  };
  // Opening a pipe would wait for somebody to write to it.
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return fail(reasonOf(errno));
  struct stat info;
  if (fstat(file, &info) != 0 || !S_ISREG(info.st_mode)) {
    close(file);
    return fail(S_ISDIR(info.st_mode) ? reasonOf(EISDIR) : "it is a pipe or device, no file");
  }
  const auto size = static_cast<std::size_t>(info.st_size);
  FileBytes bytes{Block(size + 1), 0};
  while (bytes.size < size) {
    const ssize_t n = read(file, bytes.memory.data() + bytes.size, size - bytes.size);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      const int error = errno;
      close(file);
      return fail(reasonOf(error));
    }
    if (n == 0) break;
    bytes.size += static_cast<std::size_t>(n);
  }
  close(file);
  bytes.memory.data()[bytes.size] = '\0';
  return bytes;
}

Result<void> writeFile(const std::string& path, std::string_view bytes) {
  Result<SaveFile> save = SaveFile::begin(path);
  if (!save) return Error{save.error()};
  save->write(bytes);
  return save->commit(false);
}

}  // namespace platform
