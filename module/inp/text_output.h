// A text file being written row by row from wide templates (UTF-8, lines end in LF), or in bytes.
//
// The file appears at its path as a whole when it is closed; until then, and after any failure, an
// older file there is untouched.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "module/host/notices.h"
#include "platform/files.h"
#include "platform/format.h"

namespace vessora {

class TextOutput {
 public:
  // Starts the file, whose folder must exist. When that cannot be done a notice says so and there
  // is no value.
  static std::optional<TextOutput> open(std::u16string_view path, Notices& notices);

  // Appends one row or several: `pattern` as platform::format takes it.
  template <class... Args>
  void print(std::u16string_view pattern, const Args&... args) {
    platform::appendFormat(pending_, pattern, args...);
    if (pending_.size() >= kPiece) flush();
  }

  // Appends bytes as they are.
  void write(std::string_view bytes);

  // 1 when every byte is on disk and the file stands at its path; else 0, with a notice.
  std::int32_t close(Notices& notices);

 private:
  static constexpr std::size_t kPiece = std::size_t{1} << 20;

  TextOutput(std::u16string_view path, platform::SaveFile file);
  void flush();

  std::u16string path_;
  platform::SaveFile file_;
  std::string pending_;
};

}  // namespace vessora
