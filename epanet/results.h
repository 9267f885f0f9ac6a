// Results of a run of the solver, as its reports and its binary results file have them alike:
// periods, and for one period the values of each node and link.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace epanet {

struct Period {
  // As the file writes it: "7:00:00"; the name of a statistic ("AVERAGE", "MINIMUM", "MAXIMUM",
  // "DIFFERENTIAL"); empty for the only period of a run without duration.
  std::string name;
  std::int64_t seconds = -1;  // since the beginning of the run; -1 when the name is no time
};
// The time of a period, "7:00" or "7:00:00" or "100:30:00"; -1 for any other text.
std::int64_t secondsOf(std::string_view time);
std::string timeText(std::int64_t seconds);  // "7:00:00"

enum class LinkState : std::uint8_t { closed, open, active };

struct NodeValues {
  std::optional<double> demand, head, pressure, quality;
};
struct LinkValues {
  // A loss of head is one per thousand of length for pipes, and one between the ends for others.
  std::optional<double> flow, velocity, headloss, quality, setting;
  std::optional<LinkState> state;
  bool isPipe = true;
};
// The units of the values, as the file names them; empty where there is no such value.
struct ValueUnits {
  std::string demand, head, pressure, nodeQuality;
  std::string flow, velocity, headloss;
};

// The values of elements of one kind, by their ids. Ids are views into the results' own bytes.
template <class Values>
class ValueTable {
 public:
  struct Row {
    std::string_view id;
    Values values;
  };
  const std::vector<Row>& rows() const { return rows_; }
  // Null when there is no such element. Of rows with one id the first counts.
  const Values* find(std::string_view id) const;
  void reserve(std::size_t count) { rows_.reserve(count); }
  void add(std::string_view id, const Values& values) { rows_.push_back({id, values}); }
  // Makes find() know the rows; they are not added to afterwards.
  void index();
  template <class Change>
  void forEach(Change change) {
    for (Row& row : rows_) change(row.values);
  }

 private:
  std::vector<Row> rows_;
  std::vector<std::uint32_t> slots_;  // row + 1; a power of two, at most half full
};

struct PeriodValues {
  Period period;
  ValueUnits units;
  // A report may have a table of nodes alone, or of links alone.
  bool hasNodes = false, hasLinks = false;
  ValueTable<NodeValues> nodes;
  ValueTable<LinkValues> links;
  // Lines of a report, from 1, where a row stands that cannot be told apart into its values. Their
  // elements are missing above.
  std::vector<std::uint64_t> unreadableLines;
  // A table of the period is the last thing in the file, without the line that ends tables.
  bool endsOpen = false;
};

// Turns the values into those of a drawing: l/s, m, m/s, per thousand, m; pressures as those of
// water (see growsWithGravity). Nothing is changed when a unit is not known: its name is the answer
// then, which else is empty.
std::string convertToDrawing(PeriodValues& values);

// What a results file is, once read. It holds the file's bytes.
class Results {
 public:
  virtual ~Results() = default;
  // In the order of the file; empty when it has no results.
  virtual const std::vector<Period>& periods() const = 0;
  // Period `k` of these, parsed now. Throws std::bad_alloc alone.
  virtual PeriodValues values(std::size_t k) const = 0;
  // Whether the file ends before it should: in the middle of a row, or of the periods of a binary
  // file. The periods above are all there then, but for the last one of a report.
  virtual bool isCut() const = 0;
  // Whether the bytes of ids are UTF-8; else they are Windows-1252.
  virtual bool isUtf8() const = 0;

 protected:
  Results() = default;
  Results(const Results&) = delete;
  Results& operator=(const Results&) = delete;
};

// What is wrong with a binary results file.
enum class OutputFault {
  none,
  tooShort,     // it ends before its first period does
  wrongCounts,  // its counts of elements contradict each other or its size
  wrongUnits,   // it names units that the solver does not have
  wrongLinks,   // its links end at nodes that it does not have
  wrongSize,    // it has an end, and more or less before it than its periods take
};

struct OpenedResults {
  std::shared_ptr<const Results> results;  // null exactly when there is a fault
  OutputFault fault = OutputFault::none;
};
// Takes any bytes: those of a binary results file, by their beginning; else of a report, which may
// turn out to have no results.
OpenedResults openResults(std::string bytes);

}  // namespace epanet
