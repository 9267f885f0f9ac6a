#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "platform/beside.h"
#include "platform/memory.h"
#include "platform/text.h"
#include "platform/words.h"

namespace platform {

namespace {

// Opens an ordinary file; the error is the reason alone.
Result<int> openOrdinary(const std::string& path, std::size_t& size) {
  // Opening a pipe would wait for somebody to write to it.
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return Error{reasonOf(errno)};
  struct stat info;
  if (fstat(file, &info) != 0 || !S_ISREG(info.st_mode)) {
    close(file);
    return Error{S_ISDIR(info.st_mode) ? words("è una cartella, non un file")
                                       : words("è una pipe o un dispositivo, non un file")};
  }
  size = static_cast<std::size_t>(info.st_size);
  return file;
}

// Some bytes, none at the end of the file. A failure closes the file.
Result<std::size_t> readSome(int file, char* to, std::size_t n) {
  for (;;) {
    const ssize_t got = read(file, to, n);
    if (got >= 0) return static_cast<std::size_t>(got);
    if (errno == EINTR) continue;
    const int error = errno;
    close(file);
    return Error{reasonOf(error)};
  }
}

// The bytes from `at` on, fewer when the file ends before.
Result<std::size_t> readAt(int file, char* to, std::size_t n, std::size_t at) {
  std::size_t have = 0;
  while (have < n) {
    const ssize_t got = pread(file, to + have, n - have, static_cast<off_t>(at + have));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return Error{reasonOf(errno)};
    if (got == 0) break;
    have += static_cast<std::size_t>(got);
  }
  return have;
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

std::string canonicalPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path full = std::filesystem::weakly_canonical(path, error);
  return error ? absolutePath(path) : full.string();
}

std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end;
       at.increment(error)) {
    std::error_code unknown;
    names.push_back(at->path().filename().string() + (at->is_directory(unknown) ? "/" : ""));
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::optional<FileStamp> stampOf(const std::string& path) {
  struct stat info;
  if (stat(path.c_str(), &info) != 0) return std::nullopt;
  const auto nanoseconds = [](const timespec& t) {
    return static_cast<std::int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
  };
  return FileStamp{info.st_dev, info.st_ino, static_cast<std::uint64_t>(info.st_size),
                   nanoseconds(info.st_mtim), nanoseconds(info.st_ctim)};
}

Result<std::string> readFile(const std::string& path) {
  const auto fail = [&](const std::string& why) {
    return Error{words("non si può leggere ") + path + ": " + why};
  };
  std::size_t size = 0;
  const auto file = openOrdinary(path, size);
  if (!file) return fail(file.error());
  // One byte more than the size: the read that meets the end needs no further call. Files that grow
  // meanwhile, and those of the system that report no size, are read to their end too.
  std::string bytes;
  bytes.reserve(size + 1);
  askForLargePages(bytes.data(), size + 1);
  bytes.resize(size + 1);
  std::size_t have = 0;
  while (true) {
    if (have == bytes.size()) bytes.resize(std::max<std::size_t>(bytes.size() * 2, 65536));
    const auto n = readSome(*file, bytes.data() + have, bytes.size() - have);
    if (!n) return fail(n.error());
    if (*n == 0) break;
    have += *n;
  }
  close(*file);
  bytes.resize(have);
  return bytes;
}

Result<FileBytes> readOrdinaryFile(const std::string& path) {
  const auto fail = [&](const std::string& why) {
    return Error{path + words(": non si può leggere: ") + why};
  };
  std::size_t size = 0;
  const auto file = openOrdinary(path, size);
  if (!file) return fail(file.error());
  FileBytes bytes{Block(size + 1), 0};
  char* const to = bytes.memory.data();
  // Fresh memory costs more than the copying: of a large file two threads take a half each.
  const std::size_t half = size < kLarge ? size : size / 2;
  std::future<Result<std::size_t>> rest;
  if (half < size) rest = beside([=] { return readAt(*file, to + half, size - half, half); });
  const auto first = readAt(*file, to, half, 0);
  const auto second = rest.valid() ? rest.get() : Result<std::size_t>(std::size_t{0});
  close(*file);
  if (!first) return fail(first.error());
  if (!second) return fail(second.error());
  bytes.size = *first < half ? *first : half + *second;
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
