// The byte encodings in which drawings keep their text, by the names that DXF files use.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// A named encoding. Names as in $DWGCODEPAGE, in any letter case: ANSI_874, ANSI_932, ANSI_936,
// ANSI_949, ANSI_950, ANSI_1250..ANSI_1258, ANSI_1361, DOS437, DOS850, DOS852, DOS855, DOS857,
// DOS860.. DOS866, DOS932, MACINTOSH, MAC-ROMAN, ISO8859-1..-15, KOI8-R, ASCII; "UTF-8". An unknown
// or empty name is ANSI_1252. Values are small and can be copied; all operations are safe for bytes
// and text of any content.
class CodePage {
 public:
  CodePage() = default;  // UTF-8
  static CodePage named(std::string_view name);
  // The page of an \M+nXXXX escape, n = 1..5: 932, 950, 949, 1361, 936.
  static CodePage multibyteEscape(int n);

  bool isUtf8() const { return index_ < 0; }
  // Bytes to text; a byte that has no meaning in the page becomes U+FFFD.
  std::u16string decode(std::string_view bytes) const;
  // Text to bytes; a character that the page does not have is given to `missing`, which returns the
  // bytes to stand for it (a null pointer means "?"). `out` is appended to.
  void encode(std::string& out, std::u16string_view text, std::string (*missing)(char16_t)) const;

 private:
  explicit CodePage(int index) : index_(index) {}
  int index_ = -1;
};

}  // namespace platform
