#include "cad/drawing/history.h"

#include <algorithm>

#include "platform/check.h"

namespace cad {

std::size_t History::costOf(const Record& state) {
  return sizeof(std::pair<std::uint32_t, Record>) + (state.is(Record::stored) ? state.size : 0);
}

void History::begin(std::u16string_view command) {
  if (running_) end();
  now_ = Step();
  now_.name = command;
  running_ = true;
  changedBefore_ = changed_;
}

void History::noteChange(const Record& record) {
  changed_ = true;
  ++revision_;
  if (!record.is(Record::space)) ++definitions_;
}

void History::made(std::uint32_t record) {
  Record& r = records_.edit(record);
  noteChange(r);
  if (!running_) return;
  r.set(Record::touched);
  if (!now_.made.empty() && now_.made.back().end == record) {
    ++now_.made.back().end;
    return;
  }
  now_.made.push_back({record, record + 1});
}

void History::keep(std::uint32_t record) {
  Record& r = records_.edit(record);
  noteChange(r);
  if (!running_ || r.is(Record::touched)) return;
  now_.before.emplace_back(record, r);
  records_.hold(r);
  r.set(Record::touched);
  now_.bytes += costOf(r);
  bytes_ += costOf(r);
  if (bytes_ > limit_) trim();
}

bool History::end() {
  if (!running_) return false;
  running_ = false;
  settleMade(now_);
  const auto kept = std::remove_if(
      now_.before.begin(), now_.before.end(), [&](const std::pair<std::uint32_t, Record>& entry) {
        Record& r = records_.edit(entry.first);
        const Record& before = entry.second;
        r.set(Record::touched, false);
        const bool flags =
            r.is(Record::erased) == before.is(Record::erased) && r.owner == before.owner;
        if (!flags || r.text() != before.text()) return false;
        const std::size_t cost = costOf(before);
        now_.bytes -= cost;
        bytes_ -= cost;
        // Back to the old text, so that the new one takes no memory.
        if (r.bytes != before.bytes) {
          records_.release(r);
          r.bytes = before.bytes;
          r.set(Record::stored, before.is(Record::stored));
        } else {
          records_.release(before);
        }
        return true;
      });
  now_.before.erase(kept, now_.before.end());
  if (now_.before.empty() && now_.made.empty()) return false;
  now_.before.shrink_to_fit();
  undo_.push_back(std::move(now_));
  now_ = Step();
  for (Step& step : redo_) forget(step);
  redo_.clear();
  trim();
  return true;
}

// Leaves the records that the command made and did not erase again: the others are away either way.
void History::settleMade(Step& step) {
  std::vector<Run> stay;
  for (const Run& run : step.made) {
    for (std::uint32_t i = run.begin; i < run.end; ++i) {
      Record& r = records_.edit(i);
      r.set(Record::touched, false);
      if (r.is(Record::erased)) continue;
      if (!stay.empty() && stay.back().end == i) {
        ++stay.back().end;
      } else {
        stay.push_back({i, i + 1});
      }
    }
  }
  step.made = std::move(stay);
}

void History::setAway(const Step& step, bool away) {
  for (const Run& run : step.made) {
    for (std::uint32_t i = run.begin; i < run.end; ++i) {
      VESSORA_CHECK(!records_[i].is(Record::open), "a command was taken back under an open object");
      records_.edit(i).set(Record::erased, away);
      if (!away) index_.note(i, Record());
    }
  }
}

void History::abandon() {
  if (!running_) return;
  if (end()) {
    swap(undo_.back(), true);
    forget(undo_.back());
    undo_.pop_back();
  }
  changed_ = changedBefore_;
}

void History::forget(Step& step) {
  for (const auto& [record, state] : step.before) records_.release(state);
  bytes_ -= step.bytes;
}

// The command that runs, or the latest one, can always be taken back.
void History::trim() {
  std::size_t dropped = 0;
  const std::size_t stay = running_ ? 0 : 1;
  while (bytes_ > limit_ && dropped + stay < undo_.size()) forget(undo_[dropped++]);
  undo_.erase(undo_.begin(), undo_.begin() + static_cast<std::ptrdiff_t>(dropped));
}

// Exchanges the records' states with those kept, and takes away or brings back what was made; the
// places in the file order stay.
void History::swap(Step& step, bool away) {
  bytes_ -= step.bytes;
  step.bytes = 0;
  for (auto it = step.before.rbegin(); it != step.before.rend(); ++it) {
    Record& now = records_.edit(it->first);
    VESSORA_CHECK(!now.is(Record::open), "a command was taken back under an open object");
    Record then = it->second;
    it->second = now;
    then.next = now.next;
    then.previous = now.previous;
    then.set(Record::touched, false);
    then.set(Record::open, false);  // it was kept while the command had the object open
    now = then;
    if (!now.is(Record::erased)) index_.note(it->first, Record());
    step.bytes += costOf(it->second);
  }
  bytes_ += step.bytes;
  setAway(step, away);
  changed_ = true;
  ++revision_;
  ++definitions_;
}

std::u16string History::step(std::vector<Step>& from, std::vector<Step>& to, bool away) {
  if (from.empty() || running_) return {};
  Step step = std::move(from.back());
  from.pop_back();
  swap(step, away);
  to.push_back(std::move(step));
  return to.back().name;
}

}  // namespace cad
