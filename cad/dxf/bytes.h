// Values of binary files: little-endian numbers of the size that their code asks for.
#pragma once

#include <cstring>

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

}  // namespace cad
