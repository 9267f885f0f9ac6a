// What changed and how to take it back: the state of each record before a command's first write to
// it, command by command. Texts are never overwritten, so a state is 56 bytes and a share in a
// text; of records that a command has made it is enough to know which. Older commands are forgotten
// when what they keep takes too much memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cad/drawing/index.h"
#include "cad/drawing/records.h"

namespace cad {

class CAD_API History {
 public:
  History(Records& records, Index& index) : records_(records), index_(index) {}

  void begin(std::u16string_view command);
  // Ends the running command. What it changed and put back again is no change; false when nothing
  // is left to take back.
  bool end();
  // Ends the running command and takes back what it has changed, as if it had never begun.
  void abandon();
  bool running() const { return running_; }
  // Keeps the record's state, if the running command has not yet; marks the drawing as changed.
  void keep(std::uint32_t record);
  // The record, the last of the list, is new: taking the running command back takes it away.
  void made(std::uint32_t record);
  // Name of the command taken back or brought back; empty when there is none.
  std::u16string undo() { return step(undo_, redo_, true); }
  std::u16string redo() { return step(redo_, undo_, false); }

  // The drawing differs from its file.
  bool isChanged() const { return changed_; }
  void setChanged(bool changed) { changed_ = changed; }
  // Grows with every change, also of what is only shown.
  std::uint64_t revision() const { return revision_; }
  void touch() { ++revision_; }
  // Grows with every change of what is no entity of a space nor a part of one: layers, styles,
  // applications, blocks and what is in them.
  std::uint64_t definitions() const { return definitions_; }
  // Memory that the kept states hold on to.
  std::size_t bytes() const { return bytes_; }
  void setLimit(std::size_t bytes) { limit_ = bytes; }

  // For the span of a scope, changes are no part of the running command: later ones stand on them.
  class Pause {
   public:
    explicit Pause(History& history)
        : history_(history), was_(std::exchange(history.running_, false)) {}
    ~Pause() { history_.running_ = was_; }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    History& history_;
    bool was_;
  };

 private:
  struct Run {
    std::uint32_t begin = 0, end = 0;
  };
  struct Step {
    std::u16string name;
    std::vector<Run> made;  // in the order of the list
    std::vector<std::pair<std::uint32_t, Record>> before;
    std::size_t bytes = 0;
  };
  std::u16string step(std::vector<Step>& from, std::vector<Step>& to, bool away);
  void noteChange(const Record& record);
  void settleMade(Step& step);
  void setAway(const Step& step, bool away);
  void swap(Step& step, bool away);
  void forget(Step& step);
  void trim();
  static std::size_t costOf(const Record& state);

  Records& records_;
  Index& index_;
  bool running_ = false, changed_ = false;
  bool changedBefore_ = false;  // what stood in `changed_` when the running command began
  std::uint64_t revision_ = 0, definitions_ = 0;
  Step now_;
  std::vector<Step> undo_, redo_;
  std::size_t bytes_ = 0;
  std::size_t limit_ = std::size_t{64} << 20;
};

}  // namespace cad
