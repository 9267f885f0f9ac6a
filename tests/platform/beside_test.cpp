#include "platform/beside.h"

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <stdexcept>
#include <vector>

namespace platform {
namespace {

enum class Beside { make, take };

// What arrives of the numbers 0 to count, by two stages.
std::vector<int> passed(Beside beside, int count) {
  std::vector<int> arrived;
  int next = 0;
  const auto make = [&next, count](int& item) {
    if (next == count) return false;
    item = next++;
    return true;
  };
  const auto take = [&arrived](const int& item) { arrived.push_back(item); };
  if (beside == Beside::make) {
    Stages<int>::makeBeside(make, take);
  } else {
    Stages<int>::takeBeside(make, take);
  }
  return arrived;
}

TEST(Stages, HandOnEveryItemInOrder) {
  for (const Beside beside : {Beside::make, Beside::take}) {
    for (const int count : {0, 1, 255, 256, 257, 512, 5000}) {
      std::vector<int> all(static_cast<std::size_t>(count));
      std::iota(all.begin(), all.end(), 0);
      EXPECT_EQ(passed(beside, count), all) << count;
    }
  }
}

TEST(Stages, AFailureOfEitherReachesTheCaller) {
  const auto endless = [](int& item) { return ++item > 0; };
  const auto nothing = [](const int&) {};
  const auto fails = [](const int&) { throw std::runtime_error("taken"); };
  std::atomic<int> made{0};
  const auto failsLate = [&made](int&) -> bool {
    if (++made > 700) throw std::runtime_error("made");
    return true;
  };
  EXPECT_THROW(Stages<int>::takeBeside(endless, fails), std::runtime_error);
  EXPECT_THROW(Stages<int>::makeBeside(endless, fails), std::runtime_error);
  EXPECT_THROW(Stages<int>::takeBeside(failsLate, nothing), std::runtime_error);
  made = 0;
  EXPECT_THROW(Stages<int>::makeBeside(failsLate, nothing), std::runtime_error);
}

}  // namespace
}  // namespace platform
