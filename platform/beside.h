// Work that goes on beside the caller's, where the machine has a thread for it.
#pragma once

#include <cstddef>
#include <future>
#include <type_traits>
#include <utility>
#include <vector>

namespace platform {

// Runs `work()` in another thread; where none can be had, when the answer is asked for. The answer
// must be waited for while everything lives that the work looks at: the future does so when it
// goes.
template <class Work>
std::future<std::invoke_result_t<Work>> beside(Work work) {
  return std::async(std::launch::async | std::launch::deferred, std::move(work));
}

// Two stages of one work: make(item) fills the next item and answers whether there was one,
// take(item) uses it. Items come in order; while one batch is taken, the next one is made. Items
// are used again: make finds in one what an earlier call has left there.
template <class Item>
class Stages {
 public:
  // take() runs in another thread.
  template <class Make, class Take>
  static void takeBeside(Make make, Take take) {
    Batch batches[2];
    std::future<void> taking;
    for (int turn = 0;; turn = 1 - turn) {
      Batch& batch = batches[turn];
      fill(batch, make);
      if (taking.valid()) taking.get();
      if (batch.count == 0) return;
      taking = beside([&batch, &take] { empty(batch, take); });
    }
  }
  // make() runs in another thread.
  template <class Make, class Take>
  static void makeBeside(Make make, Take take) {
    Batch batches[2];
    std::future<void> making = beside([&] { fill(batches[0], make); });
    for (int turn = 0;; turn = 1 - turn) {
      making.get();
      Batch& batch = batches[turn];
      if (batch.count == 0) return;
      making = beside([&next = batches[1 - turn], &make] { fill(next, make); });
      empty(batch, take);
    }
  }

 private:
  struct Batch {
    std::vector<Item> items{256};
    std::size_t count = 0;
  };
  template <class Make>
  static void fill(Batch& batch, Make& make) {
    batch.count = 0;
    while (batch.count < batch.items.size() && make(batch.items[batch.count])) ++batch.count;
  }
  template <class Take>
  static void empty(Batch& batch, Take& take) {
    for (std::size_t i = 0; i < batch.count; ++i) take(batch.items[i]);
  }
};

}  // namespace platform
