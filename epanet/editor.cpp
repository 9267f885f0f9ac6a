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

// A comment that the solver would cut, and read its rest as a row, goes on in comments of its own.
std::string inPieces(std::string comment, std::string_view end) {
  constexpr std::size_t kLongest = 1000;
  std::string pieces;
  while (comment.size() > kLongest) {
    (pieces += comment.substr(0, kLongest)) += end;
    comment = ";" + comment.substr(kLongest);
  }
  return pieces + comment;
}

// Appends the blanks between two tokens after the first one has grown by `growth` bytes.
void appendGap(std::string& row, std::string_view gap, std::ptrdiff_t growth) {
  if (growth == 0 || gap.empty()) {
    row += gap;
    return;
  }
  if (growth < 0) {
    // A tab leads to the next column still; blanks before one are part of the word's width.
    const bool padded = gap[0] == ' ' && gap != " ";
    if (padded) row.append(static_cast<std::size_t>(-growth), ' ');
    row += gap;
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
    if (const RowId anchor = anchorOf(section); anchor != kNoRow) rows_[anchor];
  } else {
    rows_[last].after.emplace_back(row);
  }
}

// The row behind which a missing section of elements goes: what names elements is read after them.
RowId Editor::anchorOf(Section section) const {
  const auto last = [this](std::initializer_list<Section> sections) {
    RowId row = kNoRow;
    for (const Section own : sections) {
      if (document_.has(own) && (row == kNoRow || row < document_.lastOf(own))) {
        row = document_.lastOf(own);
      }
    }
    return row;
  };
  if (section < Section::junctions || section > Section::valves) return kNoRow;
  const RowId nodes = last({Section::junctions, Section::reservoirs, Section::tanks});
  if (section < Section::pipes) return nodes;
  const RowId links = last({Section::pipes, Section::pumps, Section::valves});
  return links == kNoRow ? nodes : links;
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
    // Quotes divide words too, until one of them loses them.
    if (i > 0 && token.start == at && !row.empty()) row += ' ';
    at = token.start + token.length;
    const auto set = edits.tokens.find(i);
    const std::string_view old = text.substr(token.start, token.length);
    const std::string_view now = set == edits.tokens.end() ? old : std::string_view(set->second);
    row += now;
    growth = static_cast<std::ptrdiff_t>(now.size()) - static_cast<std::ptrdiff_t>(old.size());
  }
  if (tokens.count > 0 && edits.tokens.lower_bound(tokens.count) != edits.tokens.end()) {
    const Token& last = tokens[tokens.count - 1];
    const std::string_view old = text.substr(last.start, last.length);
    const bool open = last.quoted && (old.size() < 2 || old.back() != '"');
    if (open && !edits.tokens.contains(tokens.count - 1)) row += '"';
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
    const std::size_t mark = document_.hasMark() ? 3 : 0;
    if (out.size() > mark && out.back() != end.back()) out += end;
  };
  const auto insert = [&](RowId after, Section section, const std::string& row) {
    ensureLineEnd();
    out += row;
    out += end;
    result.changes.push_back({Change::What::inserted, after, section, {}, row});
  };
  const auto insertSections = [&](RowId anchor) {
    bool any = false;
    for (const auto& [section, lines] : sections_) {
      if (anchorOf(section) != anchor) continue;
      any = true;
      ensureLineEnd();
      out += end;
      insert(anchor, section, std::string(headingOf(section)));
      for (const std::string& line : lines) insert(anchor, section, line);
    }
    if (any && anchor == kNoRow && document_.has(Section::end)) out += end;
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
      insertSections(kNoRow);
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
      const std::string after = inPieces(";" + edits.reason + ": " + before, end);
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
    insertSections(id);
  }
  if (!sectionsWritten) {
    copyTo(firstEnd);
    insertSections(kNoRow);
  }
  copyTo(text.size());
  return result;
}

}  // namespace epanet
