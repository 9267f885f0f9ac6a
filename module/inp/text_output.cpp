#include "module/inp/text_output.h"

#include <utility>

namespace vessora {

std::optional<TextOutput> TextOutput::open(std::u16string_view path, Notices& notices) {
  auto file = platform::SaveFile::begin(platform::nativePath(path));
  if (file) return TextOutput(path, std::move(*file));
  notices.push_back({NoticeCode::fileNotOpened, std::u16string(path)});
  return std::nullopt;
}

TextOutput::TextOutput(std::u16string_view path, platform::SaveFile file)
    : path_(path), file_(std::move(file)) {
  pending_.reserve(kPiece + 4096);
}

void TextOutput::flush() {
  file_.write(pending_);
  pending_.clear();
}

void TextOutput::write(std::string_view bytes) {
  flush();
  file_.write(bytes);
}

std::int32_t TextOutput::close(Notices& notices) {
  flush();
  if (file_.commit(false)) return 1;
  notices.push_back({NoticeCode::fileNotWritten, path_});
  return 0;
}

}  // namespace vessora
