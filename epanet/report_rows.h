// Rows of a report's tables, cut into id, columns and the word behind them. A part of report.cpp.
//
// A row has the id in fifteen places (in the Windows dialect and a blank), ten or more for each
// column, right-aligned, and for elements that are no junctions or pipes a word. Whatever is wider
// pushes the rest to the right. So a row of the least length is cut by places; a longer one has a
// long id or a number of more than ten characters, and where one number ends and the next begins is
// told by the count of decimals, which a column has in all rows alike. A row that can still be read
// in two ways is not read at all.
#pragma once

#include <array>
#include <string_view>

#include "epanet/report.h"

namespace epanet {

inline constexpr std::size_t kMostColumns = 14;

struct CutRow {
  std::string_view id, word;
  std::array<std::string_view, kMostColumns> fields;  // without blanks
};

class RowCutter {
 public:
  // The head must outlive this.
  explicit RowCutter(const ReportHead& head);

  bool isOfLeastLength(std::string_view line) const;
  // Takes the decimals of columns from a row where they are beyond doubt.
  void learn(std::string_view line);
  bool hasLearntAll() const;
  // False when the row cannot be told apart into what it is made of. Rows of the least length need
  // nothing learnt.
  bool cut(std::string_view line, CutRow& row) const;

 private:
  static constexpr int kUnknown = -1;
  std::string_view takeWord(std::string_view& line) const;
  bool isText(std::size_t column) const;
  bool isValue(std::size_t column, std::string_view field) const;
  void learn(std::size_t column, std::string_view number);
  bool cutByPlaces(std::string_view body, CutRow& row) const;
  struct Ends;
  struct Search {
    std::string_view body;
    std::array<std::string_view, kMostColumns> fields, result;
    std::size_t found = 0;  // ways to cut the row
    int steps = 0;
  };
  bool cutWide(std::string_view body, CutRow& row) const;
  void cutColumns(Search& search, std::size_t from, std::size_t column) const;
  Ends endsOfNumber(std::string_view body, std::size_t from, std::size_t column) const;
  std::size_t count() const { return head_.columns.size(); }
  std::size_t leastLength() const { return valuesAt_ + 10 * count(); }

  const ReportHead& head_;
  std::size_t valuesAt_;
  std::array<int, kMostColumns> decimals_;
};

}  // namespace epanet
