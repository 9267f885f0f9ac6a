#include "platform/beside.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <future>
#include <numeric>
#include <stdexcept>
#include <system_error>
#include <utility>
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

// While the first item that is taken waits for something, the next ones are made: up to what may
// wait, and no more.
TEST(Stages, MakeAheadOfAFirstItemThatWaits) {
  std::promise<void> comes;
  std::atomic<int> made{0};
  int taken = 0;
  const auto make = [&](int& item) {
    item = ++made;
    if (made == 3 * 256) comes.set_value();
    return made <= 2000;
  };
  const auto take = [&, first = true](const int& item) mutable {
    if (std::exchange(first, false)) {
      comes.get_future().wait();
      EXPECT_LE(made, 4 * 256);
    }
    EXPECT_EQ(item, ++taken);
  };
  Stages<int>::takeBeside(make, take, 4);
  EXPECT_EQ(taken, 2000);
}

// Asks for threads so large that the system has none to give.
class NoThreads {
 public:
  NoThreads() {
    pthread_getattr_default_np(&before_);
    pthread_attr_t none;
    pthread_getattr_default_np(&none);
    pthread_attr_setstacksize(&none, std::size_t{1} << 46);
    pthread_setattr_default_np(&none);
    pthread_attr_destroy(&none);
  }
  ~NoThreads() {
    pthread_setattr_default_np(&before_);
    pthread_attr_destroy(&before_);
  }

 private:
  pthread_attr_t before_;
};

TEST(Stages, WorkInTurnWhereThereIsNoThread) {
  const NoThreads none;
  EXPECT_THROW(std::async(std::launch::async, [] {}), std::system_error);
  for (const Beside beside : {Beside::make, Beside::take}) {
    EXPECT_EQ(passed(beside, 600).size(), 600u);
  }
  EXPECT_EQ(platform::beside([] { return 7; }).get(), 7);
}

}  // namespace
}  // namespace platform
