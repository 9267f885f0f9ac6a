// Which fields of an element somebody has changed.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "schema/element.h"

namespace vessora {

// A set of fields. All of them is more than each of them: who hands over all of them says that the
// element is written anew as a whole.
class FieldSet {
 public:
  constexpr FieldSet() = default;
  constexpr FieldSet(std::initializer_list<schema::Field> fields) {
    for (const schema::Field field : fields) bits_ |= bit(field);
  }
  static constexpr FieldSet all() {
    FieldSet set;
    set.bits_ = ~std::uint64_t{0};
    return set;
  }
  constexpr bool isAll() const { return bits_ == ~std::uint64_t{0}; }
  constexpr bool isEmpty() const { return bits_ == 0; }
  constexpr bool has(schema::Field field) const { return (bits_ & bit(field)) != 0; }
  constexpr void add(schema::Field field) { bits_ |= bit(field); }
  // What both have.
  friend constexpr FieldSet operator&(FieldSet a, FieldSet b) {
    a.bits_ &= b.bits_;
    return a;
  }

 private:
  static constexpr std::uint64_t bit(schema::Field field) {
    return std::uint64_t{1} << static_cast<unsigned>(field);
  }
  std::uint64_t bits_ = 0;
};

static_assert(static_cast<unsigned>(schema::Field::title) < 64, "a bit for each field");

}  // namespace vessora
