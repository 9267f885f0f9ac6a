#include "epanet/document.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "epanet/lexis.h"
#include "platform/memory.h"
#include "platform/text.h"

namespace epanet {
namespace {

constexpr std::size_t kPiece = 1023;  // bytes that the solver reads of a row at once

// By the order of Section; the solver's own names.
constexpr std::string_view kHeadings[kSections] = {
    "",           "[TITLE]",   "[JUNCTIONS]", "[RESERVOIRS]", "[TANKS]",
    "[PIPES]",    "[PUMPS]",   "[VALVES]",    "[CONTROLS]",   "[RULES]",
    "[DEMANDS]",  "[SOURCES]", "[EMITTERS]",  "[PATTERNS]",   "[CURVES]",
    "[QUALITY]",  "[STATUS]",  "[ROUGHNESS]", "[ENERGY]",     "[REACTIONS]",
    "[MIXING]",   "[REPORT]",  "[TIMES]",     "[OPTIONS]",    "[COORDINATES]",
    "[VERTICES]", "[LABELS]",  "[BACKDROP]",  "[TAGS]",       "[LEAKAGE]",
    "",           "[END]"};

Section sectionOf(std::string_view heading) {
  for (int i = 0; i < kSections; ++i) {
    const std::string_view name = kHeadings[i].substr(0, 5);
    if (!name.empty() && isWord(heading, name.ends_with(']') ? name.substr(0, 4) : name)) {
      return static_cast<Section>(i);
    }
  }
  return Section::unknown;
}

bool isSeparator(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// What the solver sees of a row: a zero byte ends its text.
std::string_view seen(std::string_view row) {
  const void* const zero = std::memchr(row.data(), 0, row.size());
  return zero ? row.substr(0, static_cast<std::size_t>(static_cast<const char*>(zero) - row.data()))
              : row;
}

std::string_view withoutLineEnd(std::string_view row) {
  while (!row.empty() && (row.back() == '\n' || row.back() == '\r')) row.remove_suffix(1);
  return row;
}

}  // namespace

std::string_view headingOf(Section section) { return kHeadings[static_cast<std::size_t>(section)]; }

Document::Document(std::string bytes) {
  if (bytes.size() >= kNoRow) throw std::length_error("an input file of more than 4 GB");
  text_ = std::make_unique<std::string>(std::move(bytes));
  mark_ = text_->starts_with("\xEF\xBB\xBF");
  utf8_ = platform::isValidUtf8(*text_);
  divide();
}

void Document::divide() {
  const std::string_view text = *text_;
  const char end = text.find('\n') == text.npos && text.find('\r') != text.npos ? '\r' : '\n';
  if (end == '\r') lineEnd_ = "\r";
  rows_.reserve(text.size() / 48 + 16);
  platform::askForLargePages(rows_.data(), rows_.capacity() * sizeof(Row));
  Section section = Section::before;
  std::size_t at = mark_ ? 3 : 0;
  std::size_t carriageReturns = 0, lines = 0;
  while (at < text.size()) {
    const void* const found = std::memchr(text.data() + at, end, text.size() - at);
    const std::size_t next =
        found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data()) + 1
              : text.size();
    ++lines;
    if (end == '\n' && next - at > 1 && text[next - 2] == '\r') ++carriageReturns;
    for (bool first = true; at < next; first = false) {
      const std::size_t length = std::min(kPiece, next - at);
      if (!first) pieces_.push_back(static_cast<RowId>(rows_.size()));
      Row& row = rows_.emplace_back();
      row.start = static_cast<std::uint32_t>(at);
      row.length = static_cast<std::uint32_t>(length);
      classify(row, section);
      at += length;
    }
  }
  if (end == '\n' && 2 * carriageReturns > lines) lineEnd_ = "\r\n";
}

void Document::classify(Row& row, Section& section) {
  const std::string_view text = std::string_view(*text_).substr(row.start, row.length);
  std::size_t at = 0;
  while (at < text.size() && isSeparator(text[at])) ++at;
  const char first = at < text.size() ? text[at] : '\0';
  const bool heading =
      first == '[' || (first == '"' && at + 1 < text.size() && text[at + 1] == '[');
  if (section != Section::end && heading) {
    section = sectionOf(text.substr(first == '"' ? at + 1 : at));
    row.kind = RowKind::heading;
  } else if (section == Section::end) {
    row.kind = RowKind::unread;
  } else if (first != '\0') {
    row.kind = first == ';' ? RowKind::comment : RowKind::data;
  }
  row.section = section;
  const auto id = static_cast<RowId>(rows_.size() - 1);
  RowId& last = last_[static_cast<std::size_t>(section)];
  // Column lines follow the heading at once; other comments stand among data.
  const bool columns = row.kind == RowKind::comment && last != kNoRow && last + 1 == id &&
                       rows_[last].kind != RowKind::data;
  if (row.kind == RowKind::heading || row.kind == RowKind::data || columns) last = id;
}

std::string_view Document::contentOf(RowId row) const { return withoutLineEnd(textOf(row)); }

void Document::tokens(RowId row, Tokens& tokens) const {
  std::string_view text = seen(textOf(row));
  tokens.count = 0;
  tokens.more = false;
  tokens.comment = {};
  if (const std::size_t semicolon = text.find(';'); semicolon != text.npos) {
    tokens.comment = withoutLineEnd(text.substr(semicolon + 1));
    text = text.substr(0, semicolon);
  }
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  for (const char* at = begin;;) {
    while (at != end && isSeparator(*at)) ++at;
    if (at == end) return;
    if (tokens.count == kMostTokens) {
      tokens.more = true;
      return;
    }
    Token& token = tokens.tokens[static_cast<std::size_t>(tokens.count++)];
    token.start = static_cast<std::uint32_t>(at - begin);
    token.quoted = *at == '"';
    const char* const from = token.quoted ? at + 1 : at;
    at = from;
    if (token.quoted) {
      while (at != end && *at != '"' && *at != '\n' && *at != '\r') ++at;
    } else {
      while (at != end && !isSeparator(*at)) ++at;
    }
    token.text = std::string_view(from, static_cast<std::size_t>(at - from));
    if (token.quoted && at != end && *at == '"') ++at;
    token.length = static_cast<std::uint32_t>(at - begin) - token.start;
  }
}

std::uint32_t Document::lineOf(RowId row) const {
  const auto pieces = std::upper_bound(pieces_.begin(), pieces_.end(), row) - pieces_.begin();
  return row + 1 - static_cast<std::uint32_t>(pieces);
}

}  // namespace epanet
