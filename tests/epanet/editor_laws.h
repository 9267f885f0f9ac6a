// What holds of every text, and of every edit of it: for tests and for the fuzzer.
#pragma once

#include <map>
#include <random>
#include <string>
#include <vector>

#include "epanet/editor.h"
#include "epanet/network.h"

namespace epanet {

// The law that is broken, in words; empty when all hold.
class EditorLaws {
 public:
  EditorLaws(const std::string& text, unsigned seed)
      : text_(text), document_(text), random_(seed) {}

  std::string broken() {
    // A mark of the encoding is no part of the first row.
    std::string joined = text_.substr(0, document_.hasMark() ? 3 : 0);
    for (RowId row = 0; row < document_.rows().size(); ++row) joined += document_.textOf(row);
    if (document_.text() != text_ || joined != text_) return "rows make up the text";
    Record record;
    const Network network(document_, &record);
    for (const Mention& mention : record.mentions) {
      if (mention.at.row >= document_.rows().size()) return "mentions stand in rows";
    }
    if (Editor(document_).apply().text != text_) return "no edit is no change";
    if (document_.rows().empty()) return {};
    edit();
    return compare();
  }

 private:
  std::size_t pick(std::size_t n) { return random_() % n; }
  std::string word() { return std::string(1 + pick(9), static_cast<char>('a' + pick(26))); }

  // Where the solver cuts a long line other bytes before the cut move it.
  bool isPiece(RowId row) const {
    const std::uint32_t line = document_.lineOf(row);
    return (row > 0 && document_.lineOf(row - 1) == line) ||
           (row + 1 < document_.rows().size() && document_.lineOf(row + 1) == line);
  }

  // Some rows are changed, others go, new ones come behind.
  void edit() {
    Tokens tokens;
    for (int i = 0; i < 8; ++i) {
      const auto row = static_cast<RowId>(pick(document_.rows().size()));
      if (document_.rows()[row].kind != RowKind::data || isPiece(row)) continue;
      document_.tokens(row, tokens);
      switch (pick(5)) {
        case 0:
          gone_[row] = true;
          editor_.removeRow(row);
          break;
        case 1:
          commented_[row] = true;
          editor_.commentOut(row, "reason");
          break;
        case 2:
          added_ += 1;
          editor_.insertRow(row, {word(), word()});
          break;
        default: {
          if (tokens.count >= kMostTokens - 1 || document_.contentOf(row).size() > 900) break;
          auto& want = wanted_[row];
          if (want.empty()) {
            for (int k = 0; k < tokens.count; ++k) want.emplace_back(tokens.text(k));
          }
          const std::size_t at = pick(want.size() + 1);
          const std::string now = word();
          editor_.setToken(row, static_cast<int>(at), now);
          if (at == want.size()) want.emplace_back();
          want[at] = now;
        }
      }
    }
  }

  std::string compare() {
    const Document now(editor_.apply().text);
    Tokens tokens;
    std::size_t next = 0, extra = 0;
    const auto& rows = now.rows();
    for (RowId row = 0; row < document_.rows().size(); ++row) {
      if (gone_.contains(row)) continue;
      const std::string_view content = document_.contentOf(row);
      const bool touched = wanted_.contains(row) || commented_.contains(row);
      // A row that has been put in comes before the next old one.
      while (next < rows.size() && !touched && now.contentOf(static_cast<RowId>(next)) != content) {
        ++next;
        if (++extra > added_) return "untouched rows stay";
      }
      if (next >= rows.size()) return "untouched rows stay";
      if (wanted_.contains(row) && !commented_.contains(row)) {
        for (;; ++next) {
          if (next >= rows.size()) return "changed rows have their words";
          now.tokens(static_cast<RowId>(next), tokens);
          std::vector<std::string> got;
          for (int k = 0; k < tokens.count; ++k) got.emplace_back(tokens.text(k));
          if (got == wanted_[row]) break;
          if (++extra > added_) return "changed rows have their words";
        }
      } else if (commented_.contains(row)) {
        while (next < rows.size() &&
               !now.contentOf(static_cast<RowId>(next)).starts_with(";reason: ")) {
          ++next;
          if (++extra > added_) return "a comment takes the row's place";
        }
      }
      ++next;
    }
    return {};
  }

  std::string text_;
  Document document_;
  std::mt19937 random_;
  Editor editor_{document_};
  std::map<RowId, bool> gone_, commented_;
  std::map<RowId, std::vector<std::string>> wanted_;
  std::size_t added_ = 0;
};

inline std::string brokenLaw(const std::string& text, unsigned seed) {
  return EditorLaws(text, seed).broken();
}

}  // namespace epanet
