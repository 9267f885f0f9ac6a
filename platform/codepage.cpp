#include "platform/codepage.h"

#include <iconv.h>

#include <array>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/text.h"

namespace platform {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

// Drawing names and the converter's names of the pages. Row 0 stands for every unknown name.
struct PageName {
  const char* drawing;
  const char* converter;
};
constexpr PageName kPages[] = {
    {"ANSI_1252", "CP1252"},
    {"ANSI_874", "WINDOWS-874"},
    {"ANSI_932", "CP932"},
    {"ANSI_936", "GBK"},
    {"ANSI_949", "UHC"},
    {"ANSI_950", "BIG5"},
    {"ANSI_1250", "CP1250"},
    {"ANSI_1251", "CP1251"},
    {"ANSI_1253", "CP1253"},
    {"ANSI_1254", "CP1254"},
    {"ANSI_1255", "CP1255"},
    {"ANSI_1256", "CP1256"},
    {"ANSI_1257", "CP1257"},
    {"ANSI_1258", "CP1258"},
    {"ANSI_1361", "JOHAB"},
    {"DOS437", "IBM437"},
    {"DOS850", "IBM850"},
    {"DOS852", "IBM852"},
    {"DOS855", "IBM855"},
    {"DOS857", "IBM857"},
    {"DOS860", "IBM860"},
    {"DOS861", "IBM861"},
    {"DOS862", "IBM862"},
    {"DOS863", "IBM863"},
    {"DOS864", "IBM864"},
    {"DOS865", "IBM865"},
    {"DOS866", "IBM866"},
    {"DOS869", "IBM869"},
    {"DOS932", "CP932"},
    {"DOS936", "GBK"},
    {"DOS949", "UHC"},
    {"DOS950", "BIG5"},
    {"MACINTOSH", "MACINTOSH"},
    {"MAC-ROMAN", "MACINTOSH"},
    {"ISO8859-1", "ISO-8859-1"},
    {"ISO8859-2", "ISO-8859-2"},
    {"ISO8859-3", "ISO-8859-3"},
    {"ISO8859-4", "ISO-8859-4"},
    {"ISO8859-5", "ISO-8859-5"},
    {"ISO8859-6", "ISO-8859-6"},
    {"ISO8859-7", "ISO-8859-7"},
    {"ISO8859-8", "ISO-8859-8"},
    {"ISO8859-9", "ISO-8859-9"},
    {"ISO8859-10", "ISO-8859-10"},
    {"ISO8859-11", "ISO-8859-11"},
    {"ISO8859-13", "ISO-8859-13"},
    {"ISO8859-14", "ISO-8859-14"},
    {"ISO8859-15", "ISO-8859-15"},
    {"KOI8-R", "KOI8-R"},
};
constexpr std::size_t kPageCount = std::size(kPages);

// An open conversion that closes itself. Null when the system lacks one of the two sides.
class Converter {
 public:
  Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
  ~Converter() {
    if (*this) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  explicit operator bool() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Converts the whole of the input; the length of the result, or 0 when any of it has no
  // counterpart.
  std::size_t convert(const char* from, std::size_t n, char* to, std::size_t room) {
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    char copy[8];
    std::memcpy(copy, from, n);
    char* in = copy;
    char* out = to;
    std::size_t left = room;
    if (iconv(handle_, &in, &n, &out, &left) != 0 || n != 0) return 0;
    // Some pages hold a letter back in case an accent follows: this lets it go.
    if (iconv(handle_, nullptr, nullptr, &out, &left) == static_cast<std::size_t>(-1)) return 0;
    return room - left;
  }

 private:
  iconv_t handle_;
};

// A page as tables, made once. Tables instead of a running conversion: a bad byte costs itself
// alone, letters are never composed across bytes, and ASCII is ASCII in every page (some standards
// put a currency sign in place of the backslash, which drawings use for their escapes).
struct Page {
  std::array<char16_t, 256> single;                    // 0xFFFD: no character of its own
  std::array<std::unique_ptr<char16_t[]>, 256> pairs;  // by lead byte, then trail byte
  std::vector<std::uint16_t> bytes;  // by character: 0 none, else one or two bytes
};

void readSingles(Page& page, Converter& decode) {
  page.single.fill(kReplacement);
  for (unsigned i = 0; i < 256; ++i) {
    const char byte = static_cast<char>(i);
    char16_t text[4];
    if (i < 0x80) {
      page.single[i] = static_cast<char16_t>(i);
    } else if (decode &&
               decode.convert(&byte, 1, reinterpret_cast<char*>(text), sizeof text) == 2) {
      page.single[i] = text[0];
    }
  }
}

void readPairs(Page& page, Converter& decode) {
  for (unsigned lead = 0x81; lead < 0xFF; ++lead) {
    if (page.single[lead] != kReplacement) continue;
    auto row = std::make_unique<char16_t[]>(256);
    bool any = false;
    for (unsigned trail = 0; trail < 256; ++trail) {
      row[trail] = kReplacement;
      const char bytes[2] = {static_cast<char>(lead), static_cast<char>(trail)};
      char16_t text[4];
      if (trail < 0x30 ||
          decode.convert(bytes, 2, reinterpret_cast<char*>(text), sizeof text) != 2) {
        continue;
      }
      row[trail] = text[0];
      any = true;
    }
    if (any) page.pairs[lead] = std::move(row);
  }
}

// The way back. A character may stand at several places of an East Asian page; the converter knows
// which one the platform writes.
void makeReverse(Page& page, Converter& encode) {
  page.bytes.assign(0x10000, 0);
  auto enter = [&](char16_t text, std::uint16_t found) {
    if (text == kReplacement || page.bytes[text] != 0) return;
    unsigned char out[4];
    const std::size_t n = found < 0x100 || !encode
                              ? 0
                              : encode.convert(reinterpret_cast<const char*>(&text), 2,
                                               reinterpret_cast<char*>(out), sizeof out);
    page.bytes[text] = n == 2 ? static_cast<std::uint16_t>(out[0] << 8 | out[1]) : found;
  };
  for (unsigned i = 1; i < 256; ++i) enter(page.single[i], static_cast<std::uint16_t>(i));
  for (unsigned lead = 0; lead < 256; ++lead) {
    if (!page.pairs[lead]) continue;
    for (unsigned trail = 0; trail < 256; ++trail) {
      enter(page.pairs[lead][trail], static_cast<std::uint16_t>(lead << 8 | trail));
    }
  }
}

Page makePage(const PageName& name) {
  // A system without this page still reads the file: its letters beyond ASCII come out as Western
  // ones.
  const bool known = static_cast<bool>(Converter("UTF-16LE", name.converter));
  const char* converter = known ? name.converter : kPages[0].converter;
  Converter decode("UTF-16LE", converter), encode(converter, "UTF-16LE");
  Page page;
  readSingles(page, decode);
  // The platform that wrote the drawings added the euro sign to this standard.
  if (std::strcmp(converter, "GBK") == 0) page.single[0x80] = 0x20AC;
  if (decode) readPairs(page, decode);
  makeReverse(page, encode);
  return page;
}

const Page& pageAt(int index) {
  static std::array<std::once_flag, kPageCount> made;
  static std::array<std::unique_ptr<const Page>, kPageCount> pages;
  const auto i = static_cast<std::size_t>(index);
  std::call_once(made[i], [&] { pages[i] = std::make_unique<const Page>(makePage(kPages[i])); });
  return *pages[i];
}

}  // namespace

CodePage CodePage::named(std::string_view name) {
  const std::u16string wanted = upper(widen(name));
  if (wanted == u"UTF-8" || wanted == u"UTF8") return CodePage();
  for (std::size_t i = 0; i < kPageCount; ++i) {
    if (wanted == widen(kPages[i].drawing)) return CodePage(static_cast<int>(i));
  }
  return CodePage(0);
}

CodePage CodePage::multibyteEscape(int n) {
  static constexpr const char* kEscapes[] = {"ANSI_932", "ANSI_950", "ANSI_949", "ANSI_1361",
                                             "ANSI_936"};
  return named(n >= 1 && n <= 5 ? kEscapes[n - 1] : "");
}

std::u16string CodePage::decode(std::string_view bytes) const {
  if (isUtf8()) return widen(bytes);
  const Page& page = pageAt(index_);
  std::u16string out;
  out.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    char16_t text = page.single[byte];
    const char16_t* row = page.pairs[byte].get();
    if (row != nullptr && i + 1 < bytes.size()) {
      text = row[static_cast<unsigned char>(bytes[i + 1])];
      if (text != kReplacement) ++i;
    }
    out.push_back(text);
  }
  return out;
}

void CodePage::encode(std::string& out, std::u16string_view text,
                      std::string (*missing)(char16_t)) const {
  if (isUtf8()) {
    appendNarrow(out, text);
    return;
  }
  const Page& page = pageAt(index_);
  for (const char16_t c : text) {
    const std::uint16_t bytes = page.bytes[c];
    if (bytes >= 0x100) {
      out.push_back(static_cast<char>(bytes >> 8));
      out.push_back(static_cast<char>(bytes & 0xFF));
    } else if (bytes != 0 || c == 0) {
      out.push_back(static_cast<char>(bytes));
    } else if (missing != nullptr) {
      out += missing(c);
    } else {
      out.push_back('?');
    }
  }
}

}  // namespace platform
