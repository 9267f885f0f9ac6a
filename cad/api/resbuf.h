// Result chains: singly linked lists of typed values in which extended data, filters and arguments
// travel. A chain that the host returns belongs to the caller and is released with acutRelRb.
#pragma once

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "cad/api/codes.h"
#include "cad/api/export.h"
#include "cad/api/ge.h"

struct resbuf {
  resbuf* rbnext = nullptr;
  std::int16_t restype = 0;
  union Value {
    double rreal;
    double rpoint[3];
    std::int16_t rint;
    std::int32_t rlong;
    char16_t* rstring;  // owned by the node; null counts as empty
  } resval = {};
};

// One node of the type, with a zero value; a text node has an empty text. The caller owns it. Null
// only for a type that is no type of a chain.
CAD_API resbuf* acutNewRb(int type);
// Releases a chain; null is allowed.
CAD_API void acutRelRb(resbuf* chain);
// Replaces the text of a node.
CAD_API void acutSetText(resbuf* node, std::u16string_view text);
// The kind of value a node of this type holds.
enum class RbKind { none, text, real, point, int16, int32 };
CAD_API RbKind acutKindOf(int type);
// How many chains returned to callers are not yet released: the host checks it after each command.
CAD_API int acutLiveNodes();

namespace acut_detail {
// One argument of acutBuildList after its code.
struct Argument {
  Argument(std::u16string_view v) : kind(RbKind::text), text(v) {}        // NOLINT
  Argument(const char16_t* v) : kind(RbKind::text), text(v ? v : u"") {}  // NOLINT
  template <class T, std::enable_if_t<std::is_convertible_v<const T&, std::u16string_view> &&
                                          !std::is_convertible_v<const T&, const char16_t*>,
                                      int> = 0>
  Argument(const T& v) : kind(RbKind::text), text(static_cast<std::u16string_view>(v)) {}  // NOLINT
  Argument(double v) : kind(RbKind::real), real(v) {}                                      // NOLINT
  Argument(int v) : kind(RbKind::int16), integer(v) {}                                     // NOLINT
  Argument(const AcGePoint3d& v) : kind(RbKind::point), point(v) {}                        // NOLINT
  RbKind kind;
  std::u16string_view text;
  double real = 0;
  int integer = 0;
  AcGePoint3d point;
};
CAD_API void append(resbuf*& head, resbuf*& tail, int code, const Argument& value);

inline void build(resbuf*&, resbuf*&, int) {}
template <class Value, class... Rest>
void build(resbuf*& head, resbuf*& tail, int code, const Value& value, const Rest&... rest) {
  append(head, tail, code, Argument(value));
  build(head, tail, rest...);
}
}  // namespace acut_detail

// A chain from pairs of code and value, ended by RTNONE:
//   acutBuildList(1001, u"APP", 1000, u"text", 1040, 3.5, RTNONE)
// A value is converted to the kind that its code asks for where that makes sense (whole number to
// real); a value of another kind becomes the zero of the code's kind. The caller owns the chain.
template <class... Args>
resbuf* acutBuildList(const Args&... args) {
  resbuf *head = nullptr, *tail = nullptr;
  acut_detail::build(head, tail, args...);
  return head;
}
