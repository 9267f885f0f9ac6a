#include "module/inp/inp_reader.h"

#include <new>
#include <utility>

#include "module/inp/inp_scanner.h"
#include "module/network/settings_store.h"
#include "platform/files.h"
#include "platform/text.h"

namespace vessora {

void ReadInp(std::u16string_view path, EpaNetwork& network, EpaSettings& settings,
             Notices& notices) {
  auto bytes = platform::readFile(platform::nativePath(path));
  if (!bytes) {
    notices.push_back({NoticeCode::inpUnreadable, std::u16string(path)});
    return;
  }
  try {
    parseInp(std::move(*bytes), network, settings);
  } catch (const std::bad_alloc&) {
    network = EpaNetwork();
    notices.push_back({NoticeCode::inpTooLarge, std::u16string(path)});
  }
}

void parseInp(std::string bytes, EpaNetwork& network, EpaSettings& settings) {
  const std::string text = platform::toUtf8(std::move(bytes));
  reserveRows(text, network);
  InpScanner(text, network, settings).run();
}

std::u16string NormalizeTime(std::u16string_view text) {
  if (text.size() == 9) return std::u16string(text);
  return text.size() <= 6 ? withSeconds(text) : std::u16string();
}

}  // namespace vessora
