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
  // An orderly text is edited also when it is not plain.
  EditorLaws(const std::string& text, unsigned seed, bool orderly)
      : text_(text), document_(text), random_(seed), orderly_(orderly) {}

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
    // Carriage returns and zeros end rows or texts by what else the file has, a mark counts at its
    // beginning alone: an edit may change what they mean elsewhere.
    const bool plain = text_.find('\r') == text_.npos && text_.find('\0') == text_.npos &&
                       text_.find("\xEF\xBB\xBF") == text_.npos;
    if (document_.rows().empty() || (!plain && !orderly_)) return {};
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
      // Longer rows would be cut by the solver, or go on in further comments.
      if (document_.contentOf(row).size() > 900) continue;
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
          if (tokens.count >= kMostTokens - 1) break;
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

  // The rows that there must be, by what the editor says that it did.
  std::vector<std::string> expected(const EditResult& result,
                                    std::map<RowId, RowId>& places) const {
    std::multimap<RowId, const Change*> changes;
    for (const Change& change : result.changes) changes.emplace(change.row, &change);
    std::vector<std::string> rows;
    for (RowId row = 0; row < document_.rows().size(); ++row) {
      std::string content(document_.contentOf(row));
      std::vector<std::string> behind;
      bool stays = true;
      const auto [from, to] = changes.equal_range(row);
      for (auto at = from; at != to; ++at) {
        const Change& change = *at->second;
        if (change.what == Change::What::inserted) {
          behind.push_back(change.after);
        } else {
          stays = change.what != Change::What::removed;
          content = change.after;
        }
      }
      places[row] = static_cast<RowId>(rows.size());
      if (stays) rows.push_back(content);
      rows.insert(rows.end(), behind.begin(), behind.end());
    }
    return rows;
  }

  std::string compare() {
    const EditResult result = editor_.apply();
    const Document now(result.text);
    // What is first now may begin with the bytes of a mark.
    if (now.hasMark() != document_.hasMark()) return {};
    std::map<RowId, RowId> places;  // of old rows among the new ones
    const std::vector<std::string> rows = expected(result, places);
    if (rows.size() != now.rows().size()) return "as many rows as were left and put in";
    for (RowId row = 0; row < now.rows().size(); ++row) {
      if (now.contentOf(row) != rows[row]) return "untouched rows stay, others are what was told";
    }
    std::size_t added = 0;
    for (const Change& change : result.changes) {
      const auto wanted = wanted_.find(change.row);
      if (change.what == Change::What::inserted) {
        ++added;
      } else if (change.what == Change::What::commentedOut) {
        if (!change.after.starts_with(";reason: ")) return "a comment takes the row's place";
      } else if (change.what == Change::What::changed) {
        if (wanted == wanted_.end()) return "changed rows were to change";
        Tokens tokens;
        now.tokens(places[change.row], tokens);
        std::vector<std::string> got;
        for (int k = 0; k < tokens.count; ++k) got.emplace_back(tokens.text(k));
        if (got != wanted->second) return "changed rows have their words";
      } else if (!gone_.contains(change.row)) {
        return "what goes was to go";
      }
    }
    return added == added_ ? std::string() : "each new row is there";
  }

  std::string text_;
  Document document_;
  std::mt19937 random_;
  bool orderly_;
  Editor editor_{document_};
  std::map<RowId, bool> gone_, commented_;
  std::map<RowId, std::vector<std::string>> wanted_;
  std::size_t added_ = 0;
};

inline std::string brokenLaw(const std::string& text, unsigned seed, bool orderly = true) {
  return EditorLaws(text, seed, orderly).broken();
}

}  // namespace epanet
