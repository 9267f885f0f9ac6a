// The first few of many names, for messages.
#pragma once

#include <string>
#include <string_view>

#include "platform/format.h"

namespace vessora {

class SomeNames {
 public:
  void add(std::u16string_view name) {
    if (++count_ > kShown) return;
    if (count_ > 1) text_ += u", ";
    text_ += name;
  }
  bool empty() const { return count_ == 0; }
  // "P1, P2, P3", with how many more there are: "... (+12)".
  std::u16string text() const {
    return count_ > kShown ? text_ + platform::format(u"... (+%d)", count_ - kShown) : text_;
  }

 private:
  static constexpr int kShown = 5;
  int count_ = 0;
  std::u16string text_;
};

}  // namespace vessora
