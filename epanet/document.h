// An input file as its own bytes, divided into sections and rows.
//
// The text is the state: rows, tokens and comments are places in it, and writing a document that
// was not edited gives back the bytes that were read, whatever they are. What rows mean is the
// business of network.h; here only the solver's rules of the text hold:
//
// - A row ends with a line feed. A file without any line feed may end its rows with carriage
//   returns (the solver itself takes such a file as one row). A carriage return elsewhere is blank.
// - The solver reads a row in pieces of at most 1023 bytes; each piece is a row here too.
// - Blanks and tabs divide tokens, a semicolon begins the comment even inside quotes, a token that
//   begins with a quote runs to the next quote, and of a row 40 tokens are read.
// - Any row whose first token begins with "[" is a heading, in every section. A heading needs its
//   first four letters only, in any case; what the newest solver does not take is a problem that
//   the network tells.
// - Nothing is read behind [END].
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace epanet {

enum class Section : std::uint8_t {
  before,  // rows before the first heading, which the solver ignores
  title,
  junctions,
  reservoirs,
  tanks,
  pipes,
  pumps,
  valves,
  controls,
  rules,
  demands,
  sources,
  emitters,
  patterns,
  curves,
  quality,
  status,
  roughness,
  energy,
  reactions,
  mixing,
  report,
  times,
  options,
  coordinates,
  vertices,
  labels,
  backdrop,
  tags,
  leakage,
  unknown,
  end,  // and everything behind it
};
inline constexpr int kSections = static_cast<int>(Section::end) + 1;
// The heading as the solver writes it, "[JUNCTIONS]"; empty for `before` and `unknown`.
std::string_view headingOf(Section section);

enum class RowKind : std::uint8_t { data, comment, blank, heading, unread };

using RowId = std::uint32_t;  // place in Document::rows(), from 0
inline constexpr RowId kNoRow = 0xFFFFFFFF;

struct Row {
  std::uint32_t start = 0;   // in the document's text
  std::uint32_t length = 0;  // with its line end
  Section section = Section::before;
  RowKind kind = RowKind::blank;
};

inline constexpr int kMostTokens = 40;
struct Token {
  std::string_view text;     // without quotes
  std::uint32_t start = 0;   // in the row, of the quote when there is one
  std::uint32_t length = 0;  // in the row, with the quotes
  bool quoted = false;
};
struct Tokens {
  int count = 0;
  bool more = false;         // there are tokens that the solver drops
  std::string_view comment;  // behind the semicolon, without the line end; empty also without one
  const Token& operator[](int i) const { return tokens[static_cast<std::size_t>(i)]; }
  std::string_view text(int i) const {
    return i < count ? tokens[static_cast<std::size_t>(i)].text : std::string_view();
  }
  std::array<Token, kMostTokens> tokens;
};

class Document {
 public:
  Document() = default;
  // Takes any bytes. Throws std::length_error beyond 4 GB, std::bad_alloc without memory.
  explicit Document(std::string bytes);
  // Rows are places in the text, which must not move: documents move, and are not copied.
  Document(Document&&) noexcept = default;
  Document& operator=(Document&&) noexcept = default;
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  const std::string& text() const { return *text_; }
  // The text, for who needs nothing else of the document any more.
  std::string takeText() && { return std::move(*text_); }
  const std::vector<Row>& rows() const { return rows_; }
  std::string_view textOf(RowId row) const {
    return std::string_view(*text_).substr(rows_[row].start, rows_[row].length);
  }
  // The row without line end.
  std::string_view contentOf(RowId row) const;
  // The tokens of a row of any kind.
  void tokens(RowId row, Tokens& tokens) const;

  // The number of the text's line in which a row stands, from 1: pieces of one line share it.
  std::uint32_t lineOf(RowId row) const;
  // The last row of a section that is its heading or has data; kNoRow when there is no such
  // section. Of repeated sections the last.
  RowId lastOf(Section section) const { return last_[static_cast<std::size_t>(section)]; }
  bool has(Section section) const { return lastOf(section) != kNoRow; }

  // How rows of this file end, as most do: "\n", "\r\n" or "\r".
  std::string_view lineEnd() const { return lineEnd_; }
  bool hasMark() const { return mark_; }  // a UTF-8 byte order mark, which the solver trips over
  // All bytes are valid UTF-8 (else the file is taken as Windows-1252).
  bool isUtf8() const { return utf8_; }

 private:
  void divide();
  void classify(Row& row, Section& section);

  // Behind a pointer, so that views stay valid when the document moves.
  std::unique_ptr<std::string> text_ = std::make_unique<std::string>();
  std::vector<Row> rows_;
  std::vector<RowId> pieces_;  // rows that go on with the line of the row before
  std::array<RowId, kSections> last_ = filled();
  std::string_view lineEnd_ = "\n";
  bool mark_ = false, utf8_ = true;
  static constexpr std::array<RowId, kSections> filled() {
    std::array<RowId, kSections> rows{};
    rows.fill(kNoRow);
    return rows;
  }
};

}  // namespace epanet
