// Files as the product sees them: whole files in, safe replacement out, paths with either
// separator.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/memory.h"
#include "platform/result.h"
#include "platform/temporary_files.h"

namespace platform {

// A path as users and drawings hold it may have backslashes (the product root ends in one): turned
// into the native separator. UTF-16 in, UTF-8 out; the UTF-8 form is for paths that are native
// already.
std::string nativePath(std::u16string_view path);
std::string nativePath(std::string_view path);

bool fileExists(const std::string& path);
bool folderExists(const std::string& path);
// The name behind the last separator (either kind), and what stands before it with its separator.
std::u16string_view fileNameOf(std::u16string_view path);
std::u16string_view folderOf(std::u16string_view path);
std::string absolutePath(const std::string& path);
// Whether both paths lead to one file that exists, by links too.
bool sameFile(const std::string& a, const std::string& b);
// Makes a folder and those above it that are missing. False when it is not there afterwards.
bool makeFolders(const std::string& path);
// The absolute path without links and detours, as far as its folders exist.
std::string canonicalPath(const std::string& path);

// What a folder holds, sorted; names of folders end in '/'. Empty for a folder that cannot be read.
std::vector<std::string> namesIn(const std::string& folder);

// The whole file as bytes. The error names the path and the reason ("No such file or
// directory"...), and tells a folder from a file. Ordinary files alone are read: a pipe or device,
// which may never end, is refused without waiting for it.
Result<std::string> readFile(const std::string& path);
// The same into memory of its own, for files of many megabytes: `size` bytes of the block are the
// file, and a zero stands behind them.
struct FileBytes {
  Block memory;
  std::size_t size = 0;
};
Result<FileBytes> readOrdinaryFile(const std::string& path);

// Which file stood at a path, and in which state: equal stamps mean that nobody has written to it
// or put another in its place.
struct FileStamp {
  std::uint64_t device = 0, inode = 0, size = 0;
  std::int64_t modified = 0, changed = 0;  // nanoseconds
  bool operator==(const FileStamp&) const = default;
};
// Empty when there is no file.
std::optional<FileStamp> stampOf(const std::string& path);

// Called once when a program starts: a signal that ends it while it saves takes the unfinished file
// away first, and a file larger than the user may write is told as a failure instead of ending the
// program. Signals that are ignored stay so.
void endTemporaryFilesOnSignals();

// Writes a new file as a whole or not at all: the bytes go to a temporary file beside `path`, which
// takes its place when everything has been written and flushed to disk. On failure the temporary
// file is gone, an older file at `path` is whole, and the error says what happened and what to do.
Result<void> writeFile(const std::string& path, std::string_view bytes);

// A safe replacement in pieces, for large files.
//   auto save = SaveFile::begin(path);  save->write(a); save->write(b);  save->commit(true);
// Destroying it without commit removes the temporary file; what a killed process left of an earlier
// save of `path` is removed too. Killed at any moment, the file at `path` is whole, old or new. The
// new file takes over owner, group, permissions and attributes of the older one, as far as the user
// may, and its rights never widen.
class SaveFile {
 public:
  static Result<SaveFile> begin(const std::string& path);
  SaveFile(SaveFile&&) noexcept;
  SaveFile& operator=(SaveFile&&) = delete;
  ~SaveFile();

  // Appends bytes; after a failure further writes do nothing and commit reports the first failure.
  void write(std::string_view bytes);
  // Flushes to disk, keeps the older file as path + ".bak" when asked (by a link, so that `path`
  // never stops existing), renames over `path` and flushes the folder.
  Result<void> commit(bool keepBackup);

 private:
  SaveFile() = default;
  std::string path_, temporary_;
  SignalGuard guard_;
  int file_ = -1;
  int failure_ = 0;  // errno of the first failed write
  std::string pending_;
  void flush();
};

}  // namespace platform
