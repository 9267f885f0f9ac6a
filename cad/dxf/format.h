// How one drawing file writes its tags: ASCII or binary, version, text encoding, line ends; and
// what kind of value stands behind each group code.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/codepage.h"

namespace cad {

enum class ValueKind : std::uint8_t { text, handle, real, int16, int32, int64, boolean, bytes };

// The kind of value behind a group code (DXF reference, "Group Code Value Types"). Codes that no
// table names count as text.
ValueKind kindOf(int code);

// Versions by the number in their $ACADVER text: 1009 is R12 (and stands for everything older),
// 1012 R13, 1014 R14, 1015 R2000, 1018 R2004, 1021 R2007, 1024 R2010, 1027 R2013, 1032 R2018.
struct Format {
  int version = 1027;
  bool binary = false;
  bool wideCodes = true;  // binary files from R13 on: group codes of two bytes
  bool crlf = false;      // ASCII files: line ends
  platform::CodePage page;

  bool hasHandlesAndMarkers() const { return version >= 1012; }
  // Two formats of equal encoding can exchange encoded values as they are.
  bool sameEncoding(const Format& other) const;

  // Text between its stored bytes and UTF-16: code page, \U+XXXX and \M+nXXXX escapes, caret forms
  // of control characters.
  std::u16string decode(std::string_view bytes) const;
  // Appends the stored bytes. Characters outside the page become \U+XXXX, control characters their
  // caret form; text of a symbol or value is otherwise written as it stands.
  void encode(std::string& out, std::u16string_view text) const;
};

// Name of the CAD release that a version number belongs to ("R12", "R2013"), for messages.
const char* releaseName(int version);

}  // namespace cad
