// Bytes of values: little-endian numbers of binary files, of the size that their code asks for, and
// short copies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "cad/dxf/format.h"

namespace cad {

template <class T>
void putLittleEndian(char* to, T value) {
  std::memcpy(to, &value, sizeof value);
}

template <class T>
T littleEndian(const char* from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

// Bytes of a number; -1 for values that end otherwise.
inline int sizeOfBinary(ValueKind kind) {
  switch (kind) {
    case ValueKind::real:
      return 8;
    case ValueKind::int16:
      return 2;
    case ValueKind::int32:
      return 4;
    case ValueKind::int64:
      return 8;
    case ValueKind::boolean:
      return 1;
    default:
      return -1;
  }
}

// --- bytes of values. Most are few, and what is done with them without a call is done more
// quickly.

// Copies them with two steps that overlap; where the copy ends.
inline char* copyShort(char* out, std::string_view bytes) {
  const std::size_t n = bytes.size();
  if (n > 16) {
    std::memcpy(out, bytes.data(), n);
  } else if (n >= 8) {
    std::uint64_t head, tail;
    std::memcpy(&head, bytes.data(), 8);
    std::memcpy(&tail, bytes.data() + n - 8, 8);
    std::memcpy(out, &head, 8);
    std::memcpy(out + n - 8, &tail, 8);
  } else if (n >= 4) {
    std::uint32_t head, tail;
    std::memcpy(&head, bytes.data(), 4);
    std::memcpy(&tail, bytes.data() + n - 4, 4);
    std::memcpy(out, &head, 4);
    std::memcpy(out + n - 4, &tail, 4);
  } else if (n > 0) {
    out[0] = bytes.front();
    out[n / 2] = bytes[n / 2];
    out[n - 1] = bytes.back();
  }
  return out + n;
}

template <class T>
bool sameAt(const char* a, const char* b, std::size_t at) {
  return littleEndian<T>(a + at) == littleEndian<T>(b + at);
}

// Whether two values of the same size are the same.
inline bool sameShort(const char* a, const char* b, std::size_t n) {
  if (n > 16) return std::memcmp(a, b, n) == 0;
  if (n >= 8) {
    return sameAt<std::uint64_t>(a, b, 0) && sameAt<std::uint64_t>(a, b, n - 8);
  }
  if (n >= 4) {
    return sameAt<std::uint32_t>(a, b, 0) && sameAt<std::uint32_t>(a, b, n - 4);
  }
  return n == 0 || (a[0] == b[0] && a[n / 2] == b[n / 2] && a[n - 1] == b[n - 1]);
}

}  // namespace cad
