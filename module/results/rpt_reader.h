// Report files of the solver: which periods they hold, and the rows of one period.
//
// A report is read from disk once, as bytes. Rows are not parsed when they are found: a list keeps
// where each of its lines begins and splits a line when somebody asks for the row. That matters
// because nothing ends a table. After the link table of a period every line to the end of the file
// is a link row, tables of later periods included, and a report of a large network has millions of
// them that nobody looks at. Who looks for an element takes the first row of its name, which is why
// the tail does no harm, or the last row of all when there is none of the name.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "module/network/result_records.h"

namespace vessora {

// The lines of a report as text: UTF-8, CR LF read as LF, ended by a Ctrl-Z, at most 999 characters
// each (the rest of a longer line is the next line). A line is known by the place where it begins.
class RptText {
 public:
  explicit RptText(std::string bytes);
  // Null when the file cannot be read.
  static std::shared_ptr<const RptText> load(std::u16string_view path);

  std::size_t size() const { return text_.size(); }
  // Whether the last line has an end.
  bool endsInFull() const { return text_.empty() || text_.back() == '\n'; }
  // Where the line that begins here ends, which is where the next one begins.
  std::size_t endOf(std::size_t begin) const;
  // The line that begins here, its line feed included.
  std::string_view line(std::size_t begin) const;

 private:
  std::string text_;
  bool zeros_;  // holds zero characters, which end the text of their line
};
using RptFile = std::shared_ptr<const RptText>;

// Rows of one table kind from one read of a report, in the order in which they stand there.
class RptRowList {
 public:
  // Name and four values. A line with fewer words leaves the words of an earlier row in the columns
  // that it does not reach, but for the last column, which falls back to its default.
  using Columns = std::array<std::string_view, 5>;
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  // `defaultText` stays the caller's.
  explicit RptRowList(std::string_view defaultText) : default_(defaultText) {}

  bool empty() const { return lines_.empty(); }
  std::size_t size() const { return lines_.size(); }
  // The row must exist. Rows that stand before it are looked at once, on the first question.
  Columns columns(std::size_t row) const;
  // The first row of the name, compared exactly, or kNone.
  std::size_t find(std::u16string_view name) const;

  // Adds the line that begins at this place of the report, which is the same one for all rows.
  void add(const RptFile& report, std::size_t line);

  // The tables themselves, which the list runs beyond: a table, or a page of one, ends at a line
  // without a word, at the head of another one, or with the file.
  void beginTable();
  void endTable();
  // Whether a row stands in one of the tables.
  bool inTable(std::size_t row) const;
  // How many lines have been split so far, for tests: looking rows up must not cost more for some
  // reports than for others.
  std::size_t linesSplit() const { return splits_; }
  // Whether a table was still open where the file ended.
  bool tableIsOpen() const { return open_; }

 private:
  // A row with fewer than four words: the rows that its first four columns come from.
  struct ShortRow {
    std::uint32_t row;
    std::array<std::uint32_t, 4> from;
  };
  static constexpr std::uint32_t kNoRow = 0xFFFFFFFF;

  std::size_t split(std::size_t row, Columns& columns) const;
  std::string_view nameOf(std::size_t row) const;
  void indexNext() const;
  void enter(std::string_view name, std::uint32_t row) const;
  std::size_t slotOf(std::string_view name, std::uint32_t hash) const;
  void makeRoom() const;

  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t row = kNoRow;
  };
  RptFile report_;
  std::string_view default_;
  std::vector<std::size_t> lines_;
  std::vector<std::pair<std::size_t, std::size_t>> tables_;  // first row, row behind the last
  bool open_ = false;
  // What is known of the rows before `indexed_`.
  mutable std::size_t indexed_ = 0;
  mutable std::size_t splits_ = 0;
  mutable std::array<std::uint32_t, 4> last_{kNoRow, kNoRow, kNoRow, kNoRow};
  mutable std::vector<ShortRow> short_;
  mutable std::vector<Slot> slots_;
  mutable std::size_t names_ = 0;
  mutable std::uint32_t likely_ = 0;  // row that probably has the next name
};

class NodeResultList : public RptRowList {
 public:
  NodeResultList();
  EpaNodeResult operator[](std::size_t row) const;
};

class LinkResultList : public RptRowList {
 public:
  LinkResultList();
  EpaLinkResult operator[](std::size_t row) const;
};

enum RptKind {
  kRptSinglePeriod = 0,
  kRptMultiPeriod = 1,
  kRptUnreadable = 2,
};

// Adds the rows of a report with a single period; of one with several periods, none. `report` may
// be null, which is unreadable.
RptKind ReadRpt(const RptFile& report, NodeResultList& nodes, LinkResultList& links);

// Whether a report has several periods; if so, whether the first one's head writes "hrs".
bool isMultiPeriod(const RptFile& report, bool& lowerCaseHrs);

// Adds the periods of a report with several, as their node tables name them ("12:00:00"). Only
// neighbours are compared, so that a time that comes back after another one is there twice.
void ListRptTimeSteps(const RptFile& report, std::vector<std::u16string>& steps);

// Adds the rows of one period. `lowerCaseHrs` says that the table heads write "hrs"; heads of
// continued tables are always looked for with "Hrs". The lists stay empty when there is no such
// period or it is written the other way.
void ReadRptPeriod(const RptFile& report, NodeResultList& nodes, LinkResultList& links,
                   std::u16string_view time, bool lowerCaseHrs);

// Splits one line into a record; columns that the line does not reach stay as they are, but for the
// last one, which becomes "0" or "Open".
void ParseNodeResultRow(std::string_view line, EpaNodeResult& record);
void ParseLinkResultRow(std::string_view line, EpaLinkResult& record);

}  // namespace vessora
