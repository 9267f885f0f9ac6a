// Reports of the solver in either of their dialects: the solver's own, and the full report of the
// Windows program, of versions 2.0 to 2.3.
//
// A report is kept as its bytes. Reading it finds where tables begin and end, in one pass, and what
// their heads say of columns and units; rows are parsed when a period is asked for. Rows are cut by
// the widths of their columns, not at blanks: an id may touch the first number, and numbers touch
// each other when they fill their columns.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "epanet/results.h"

namespace epanet {

enum class ReportColumn : std::uint8_t {
  elevation,
  demand,
  head,
  pressure,
  quality,  // of nodes or links, under the name of the chemical, of the age or of the traced node
  length,
  diameter,
  flow,
  velocity,
  headloss,
  state,
  setting,
  reaction,
  friction,
};

// The head of a table.
struct ReportHead {
  struct Column {
    ReportColumn what;
    std::string name, unit;  // as written
  };
  bool ofLinks = false;
  bool windows = false;  // in the dialect of the Windows program
  std::vector<Column> columns;
};

// Something that the solver says in a report, beside its tables.
struct ReportMessage {
  bool isError = false;
  int code = 0;             // of an error
  std::uint64_t line = 0;   // of the report, from 1
  std::string words;        // without "WARNING:" or "Error 200:", and without the time
  std::string time;         // "8:00:00", or empty
  std::string elementKind;  // "Node", "Link", "Pump", "PRV"..., or empty
  std::string element;      // its id
  std::string row;          // of the input file, which an error shows below it
};

class Report final : public Results {
 public:
  // Takes any bytes.
  explicit Report(std::string bytes);

  const std::vector<Period>& periods() const override { return periods_; }
  PeriodValues values(std::size_t k) const override;
  bool isCut() const override { return cut_; }
  bool isUtf8() const override { return utf8_; }
  const std::string& bytes() const { return bytes_; }
  // Whether the solver's emblem stands at its beginning: other texts have no tables either.
  bool hasEmblem() const;

  // The heads of a period's tables, for what else they have; null when it has no such table.
  const ReportHead* nodeHead(std::size_t k) const { return headOf(2 * k); }
  const ReportHead* linkHead(std::size_t k) const { return headOf(2 * k + 1); }
  const std::vector<ReportMessage>& messages() const { return messages_; }

 private:
  // Rows that stand together: a table, or its part on one page.
  struct Span {
    std::size_t begin = 0, end = 0;
  };
  struct Table {
    std::size_t head = kNoHead;
    std::vector<Span> spans;
    bool open = false;  // the file ends in it
  };
  static constexpr std::size_t kNoHead = static_cast<std::size_t>(-1);
  class Reader;

  const ReportHead* headOf(std::size_t table) const {
    return tables_[table].head == kNoHead ? nullptr : &heads_[tables_[table].head];
  }
  template <class Act>
  void forEachRow(const Table& table, Act act) const;
  template <class Values>
  void parse(const Table& table, ValueTable<Values>& values, PeriodValues& result) const;

  std::vector<std::uint64_t> linesOf(const std::vector<std::size_t>& places) const;

  std::string bytes_;
  std::vector<Period> periods_;
  std::vector<Table> tables_;  // of nodes and of links, for each period
  std::vector<ReportHead> heads_;
  std::vector<ReportMessage> messages_;
  bool cut_ = false, utf8_ = true;
};

}  // namespace epanet
