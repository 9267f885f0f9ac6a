// Work that goes on beside the caller's, where the machine has a thread for it.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <future>
#include <mutex>
#include <optional>
#include <system_error>
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
// take(item) uses it. Items come in order; while one batch is taken, the next ones are made. Items
// are used again: make finds in one what an earlier call has left there. Where no thread can be
// had, batches are made and taken in turn. What either stage throws reaches the caller.
template <class Item>
class Stages {
 public:
  // take() runs in another thread. So many batches of 256 items may wait for it: where its first
  // call has to wait for something, items are made meanwhile.
  template <class Make, class Take>
  static void takeBeside(Make make, Take take, std::size_t waiting = 2) {
    Line line(waiting);
    auto taking = startBeside([&] {
      const Leave leave(line);
      while (Batch* const batch = line.full()) {
        empty(*batch, take);
        line.emptied();
      }
    });
    if (!taking) return inTurn(make, take);
    {
      const Leave leave(line);
      while (Batch* const batch = line.free()) {
        if (!fill(*batch, make)) break;
        line.filled();
      }
    }
    taking->get();
  }
  // make() runs in another thread.
  template <class Make, class Take>
  static void makeBeside(Make make, Take take) {
    Line line(2);
    auto making = startBeside([&] {
      const Leave leave(line);
      while (Batch* const batch = line.free()) {
        if (!fill(*batch, make)) break;
        line.filled();
      }
    });
    if (!making) return inTurn(make, take);
    {
      const Leave leave(line);
      while (Batch* const batch = line.full()) {
        empty(*batch, take);
        line.emptied();
      }
    }
    making->get();
  }

 private:
  struct Batch {
    std::vector<Item> items;
    std::size_t count = 0;
  };

  // The batches, in a ring: one thread fills them and the other one empties them.
  class Line {
   public:
    explicit Line(std::size_t batches) : ring_(batches) {}
    // The next batch to be filled, once there is one; null when the other thread takes no more.
    Batch* free() {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [&] { return filled_ - emptied_ < ring_.size() || over_; });
      return over_ ? nullptr : &ring_[filled_ % ring_.size()];
    }
    // The next filled batch, once there is one; null when there will be none.
    Batch* full() {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [&] { return filled_ != emptied_ || over_; });
      return filled_ != emptied_ ? &ring_[emptied_ % ring_.size()] : nullptr;
    }
    void filled() { step(filled_); }
    void emptied() { step(emptied_); }
    // One of the two has come to its end, or has failed.
    void leave() {
      {
        const std::lock_guard lock(mutex_);
        over_ = true;
      }
      changed_.notify_all();
    }

   private:
    void step(std::size_t& count) {
      {
        const std::lock_guard lock(mutex_);
        ++count;
      }
      changed_.notify_all();
    }
    std::vector<Batch> ring_;
    std::size_t filled_ = 0, emptied_ = 0;
    bool over_ = false;
    std::mutex mutex_;
    std::condition_variable changed_;
  };
  struct Leave {
    explicit Leave(Line& left) : line(left) {}
    ~Leave() { line.leave(); }
    Line& line;
  };

  // Nothing where no thread can be had.
  template <class Work>
  static std::optional<std::future<void>> startBeside(Work work) {
    try {
      return std::async(std::launch::async, std::move(work));
    } catch (const std::system_error&) {
      return std::nullopt;
    }
  }
  // False when there was nothing to fill it with.
  template <class Make>
  static bool fill(Batch& batch, Make& make) {
    if (batch.items.empty()) batch.items.resize(256);
    batch.count = 0;
    while (batch.count < batch.items.size() && make(batch.items[batch.count])) ++batch.count;
    return batch.count > 0;
  }
  template <class Take>
  static void empty(Batch& batch, Take& take) {
    for (std::size_t i = 0; i < batch.count; ++i) take(batch.items[i]);
  }
  template <class Make, class Take>
  static void inTurn(Make& make, Take& take) {
    for (Batch batch; fill(batch, make);) empty(batch, take);
  }
};

}  // namespace platform
