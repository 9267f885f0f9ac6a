// The texts that an element of a file would have in the drawing.
#pragma once

#include <cstdint>
#include <string_view>

#include "module/inp/full_form.h"
#include "module/network/element_data.h"
#include "schema/element.h"

namespace vessora {

inline const schema::Kind& kindOfNode(epanet::NodeKind kind) {
  return kind == epanet::NodeKind::junction    ? schema::kJunc
         : kind == epanet::NodeKind::reservoir ? schema::kResv
                                               : schema::kTank;
}
inline const schema::Kind& kindOfLink(epanet::LinkKind kind) {
  return kind == epanet::LinkKind::pipe   ? schema::kPipe
         : kind == epanet::LinkKind::pump ? schema::kPump
                                          : schema::kValv;
}

// The records of the element at hand, one of each kind: they are large, and one is filled for each
// element.
class Wanted {
 public:
  explicit Wanted(const FullForm& form) : form_(form) {}
  const schema::Kind& kind() const { return *kind_; }
  std::uint32_t index() const { return index_; }
  void take(const schema::Kind& kind, std::uint32_t index) {
    kind_ = &kind;
    index_ = index;
    if (kind_ == &schema::kJunc) form_.fill(index, junc_);
    if (kind_ == &schema::kResv) form_.fill(index, resv_);
    if (kind_ == &schema::kTank) form_.fill(index, tank_);
    if (kind_ == &schema::kPipe) form_.fill(index, pipe_);
    if (kind_ == &schema::kPump) form_.fill(index, pump_);
    if (kind_ == &schema::kValv) form_.fill(index, valv_);
  }
  std::u16string_view text(schema::Field field) const {
    if (kind_ == &schema::kJunc) return textOf(junc_, field);
    if (kind_ == &schema::kResv) return textOf(resv_, field);
    if (kind_ == &schema::kTank) return textOf(tank_, field);
    if (kind_ == &schema::kPipe) return textOf(pipe_, field);
    if (kind_ == &schema::kPump) return textOf(pump_, field);
    return textOf(valv_, field);
  }

 private:
  const FullForm& form_;
  const schema::Kind* kind_ = nullptr;
  std::uint32_t index_ = epanet::kNone;
  EpaJunc junc_;
  EpaResv resv_;
  EpaTank tank_;
  EpaPipe pipe_;
  EpaPump pump_;
  EpaValv valv_;
};

}  // namespace vessora
