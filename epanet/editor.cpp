#include "epanet/editor.h"

#include <algorithm>

namespace epanet {
namespace {

std::string_view lineEndOf(std::string_view row) {
  std::size_t size = row.size();
  while (size > 0 && (row[size - 1] == '\n' || row[size - 1] == '\r')) --size;
  return row.substr(size);
}

std::string written(std::string_view text) {
  const bool quote = text.empty() || text.find_first_of(" \t") != text.npos;
  return quote ? "\"" + std::string(text) + "\"" : std::string(text);
}

// Appends the blanks between two tokens after the first one has grown by `growth` bytes.
void appendGap(std::string& row, std::string_view gap, std::ptrdiff_t growth) {
  if (growth == 0 || gap.empty()) {
    row += gap;
    return;
  }
  const std::size_t blanks = gap.size() - (gap.find_last_not_of(' ') + 1);
  if (growth < 0) {
    // Where tabs lead to the next column they lead there still, as a rule.
    const bool padded = blanks == gap.size() && blanks > 1;
    row += gap;
    if (padded) row.append(static_cast<std::size_t>(-growth), ' ');
    return;
  }
  std::size_t leading = gap.find_first_not_of(' ');
  if (leading == gap.npos) leading = gap.size();
  const std::size_t least = leading == gap.size() ? 1 : 0;
  const std::size_t kept = leading > static_cast<std::size_t>(growth) + least
                               ? leading - static_cast<std::size_t>(growth)
                               : least;
  row.append(std::min(kept, leading), ' ');
  row += gap.substr(leading);
}

}  // namespace

void Editor::setToken(RowId row, int token, std::string_view text) {
  rows_[row].tokens[token] = written(text);
}
void Editor::removeToken(RowId row, int token) {
  std::vector<int>& dropped = rows_[row].dropped;
  if (std::find(dropped.begin(), dropped.end(), token) == dropped.end()) dropped.push_back(token);
}
void Editor::removeRow(RowId row) { rows_[row].fate = Edits::Fate::removed; }
void Editor::commentOut(RowId row, std::string_view reason) {
  Edits& edits = rows_[row];
  if (edits.fate != Edits::Fate::stays) return;
  edits.fate = Edits::Fate::commentedOut;
  edits.reason = reason;
}
bool Editor::removed(RowId row) const {
  const auto at = rows_.find(row);
  return at != rows_.end() && at->second.fate != Edits::Fate::stays;
}

int Editor::countTokens(RowId row) const {
  Tokens tokens;
  document_.tokens(row, tokens);
  const auto at = rows_.find(row);
  if (at == rows_.end() || at->second.tokens.empty()) return tokens.count;
  return std::max(tokens.count, at->second.tokens.rbegin()->first + 1);
}

int Editor::countKept(RowId row) const {
  const auto at = rows_.find(row);
  const std::size_t dropped = at == rows_.end() ? 0 : at->second.dropped.size();
  return countTokens(row) - static_cast<int>(dropped);
}

void Editor::insertRow(RowId after, const std::vector<std::string>& tokens) {
  rows_[after].after.push_back(styled(after, tokens));
}

void Editor::addRow(Section section, const std::vector<std::string>& tokens) {
  addText(section, styled(modelRow(section), tokens));
}

void Editor::addText(Section section, std::string_view row) {
  const RowId last = document_.lastOf(section);
  if (last == kNoRow) {
    sections_[section].emplace_back(row);
  } else {
    rows_[last].after.emplace_back(row);
  }
}

// The last row of data of a section, after whose columns new rows are written.
RowId Editor::modelRow(Section section) const {
  const RowId last = document_.lastOf(section);
  return last != kNoRow && document_.rows()[last].kind == RowKind::data ? last : kNoRow;
}

std::string Editor::styled(RowId neighbour, const std::vector<std::string>& tokens) const {
  std::string row;
  Tokens model;
  std::string_view text;
  if (neighbour != kNoRow && document_.rows()[neighbour].kind == RowKind::data) {
    document_.tokens(neighbour, model);
    text = document_.contentOf(neighbour);
  }
  if (model.count == 0) {
    for (const std::string& token : tokens) {
      row += ' ';
      row += written(token);
      if (&token != &tokens.back() && token.size() < 16) row.append(16 - token.size(), ' ');
    }
    return row;
  }
  row = text.substr(0, model[0].start);
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const int at = static_cast<int>(i);
    row += written(tokens[i]);
    if (i + 1 == tokens.size()) break;
    if (at + 1 >= model.count) {
      row += ' ';
      continue;
    }
    const std::size_t end = model[at].start + model[at].length;
    appendGap(row, text.substr(end, model[at + 1].start - end),
              static_cast<std::ptrdiff_t>(written(tokens[i]).size()) -
                  static_cast<std::ptrdiff_t>(model[at].length));
  }
  // Rows of this kind end in a semicolon with nothing behind it.
  const std::size_t semicolon = text.find(';');
  if (semicolon != text.npos && text.find_first_not_of(" \t;", semicolon) == text.npos) {
    const std::size_t end = model[model.count - 1].start + model[model.count - 1].length;
    row += text.substr(end, semicolon - end);
    row += ';';
  }
  return row;
}

std::string Editor::changedRow(RowId id, const Edits& edits) const {
  const std::string_view text = document_.contentOf(id);
  Tokens tokens;
  document_.tokens(id, tokens);
  std::string row;
  std::size_t at = 0;
  std::ptrdiff_t growth = 0;
  for (int i = 0; i < tokens.count; ++i) {
    const Token& token = tokens[i];
    const bool dropped =
        std::find(edits.dropped.begin(), edits.dropped.end(), i) != edits.dropped.end();
    if (dropped) {
      // What stands before the token goes with it, but for the margin of the first one.
      if (i == 0) row += text.substr(0, token.start);
      at = token.start + token.length;
      continue;
    }
    appendGap(row, text.substr(at, token.start - at), i == 0 ? 0 : growth);
    at = token.start + token.length;
    const auto set = edits.tokens.find(i);
    const std::string_view old = text.substr(token.start, token.length);
    const std::string_view now = set == edits.tokens.end() ? old : std::string_view(set->second);
    row += now;
    growth = static_cast<std::ptrdiff_t>(now.size()) - static_cast<std::ptrdiff_t>(old.size());
  }
  for (auto more = edits.tokens.lower_bound(tokens.count); more != edits.tokens.end(); ++more) {
    if (!row.empty()) row += tokens.count > 0 && text.find('\t') != text.npos ? '\t' : ' ';
    const std::size_t before = row.size();
    row += more->second;
    growth = static_cast<std::ptrdiff_t>(row.size() - before) + 1;
  }
  const std::string_view tail = text.substr(at);
  if (!tail.empty() && tail.find(';') != tail.npos) {
    const std::size_t comment = tail.find(';');
    appendGap(row, tail.substr(0, comment), growth);
    row += tail.substr(comment);
  } else {
    row += tail;
  }
  return row;
}

EditResult Editor::apply() const {
  EditResult result;
  std::string& out = result.text;
  const std::string& text = document_.text();
  const std::string_view end = document_.lineEnd();
  const auto& rows = document_.rows();
  out.reserve(text.size() + 4096);
  std::size_t copied = 0;  // of the text
  const auto ensureLineEnd = [&] {
    if (!out.empty() && out.back() != '\n' && out.back() != '\r') out += end;
  };
  const auto insert = [&](RowId after, Section section, const std::string& row) {
    ensureLineEnd();
    out += row;
    out += end;
    result.changes.push_back({Change::What::inserted, after, section, {}, row});
  };
  const auto insertSections = [&] {
    for (const auto& [section, lines] : sections_) {
      ensureLineEnd();
      out += end;
      insert(kNoRow, section, std::string(headingOf(section)));
      for (const std::string& line : lines) insert(kNoRow, section, line);
    }
    if (!sections_.empty() && document_.has(Section::end)) out += end;
  };
  // Rows of text are copied in runs between the edited ones.
  const auto copyTo = [&](std::size_t place) {
    out.append(text, copied, place - copied);
    copied = place;
  };
  const RowId behind = document_.lastOf(Section::end);  // new sections go before it
  std::size_t firstEnd = text.size();
  if (behind != kNoRow) firstEnd = rows[behind].start;
  bool sectionsWritten = sections_.empty();
  for (const auto& [id, edits] : rows_) {
    const Row& row = rows[id];
    if (!sectionsWritten && row.start >= firstEnd) {
      copyTo(firstEnd);
      insertSections();
      sectionsWritten = true;
    }
    const std::string before(document_.contentOf(id));
    // A piece of a long row that changes its length gets an end, lest the next piece begin
    // elsewhere.
    std::string_view lineEnd = lineEndOf(document_.textOf(id));
    if (lineEnd.empty() && id + 1 < rows.size()) lineEnd = end;
    copyTo(row.start);
    if (edits.fate == Edits::Fate::removed) {
      copied = row.start + row.length;
      result.changes.push_back({Change::What::removed, id, row.section, before, {}});
    } else if (edits.fate == Edits::Fate::commentedOut) {
      copied = row.start + row.length;
      const std::string after = ";" + edits.reason + ": " + before;
      out += after;
      out += lineEnd;
      result.changes.push_back({Change::What::commentedOut, id, row.section, before, after});
    } else if (!edits.tokens.empty() || !edits.dropped.empty()) {
      copied = row.start + row.length;
      const std::string after = changedRow(id, edits);
      out += after;
      out += lineEnd;
      if (after != before) {
        result.changes.push_back({Change::What::changed, id, row.section, before, after});
      }
    } else {
      copyTo(row.start + row.length);
    }
    for (const std::string& line : edits.after) insert(id, row.section, line);
  }
  if (!sectionsWritten) {
    copyTo(firstEnd);
    insertSections();
  }
  copyTo(text.size());
  return result;
}

}  // namespace epanet
