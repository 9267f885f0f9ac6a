#include "module/inp/text_output.h"

#include <utility>

#include "module/host/host_drawing.h"
#include "module/host/translate.h"

namespace vessora {

namespace {

void tell(const char16_t* message, std::u16string_view path) {
  acutPrintf(platform::format(TraduciTesto(message), path));
}

}  // namespace

std::optional<TextOutput> TextOutput::open(std::u16string_view path) {
  auto file = platform::SaveFile::begin(platform::nativePath(path));
  if (file) return TextOutput(path, std::move(*file));
  tell(u"\nImpossibile aprire il file %s", path);
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

std::int32_t TextOutput::close() {
  flush();
  if (file_.commit(false)) return 1;
  tell(u"\nImpossibile scrivere il file %s", path_);
  return 0;
}

}  // namespace vessora
