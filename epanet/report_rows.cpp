#include "epanet/report_rows.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "platform/text.h"

namespace epanet {
namespace {

constexpr std::size_t kWidth = 10;
constexpr std::size_t kMostIntegerDigits = 7;
constexpr double kMostWithoutExponent = 1e6;
constexpr int kMostSteps = 2000;  // no row of a solver takes more than a few
constexpr std::size_t kNone = std::string_view::npos;

constexpr std::string_view kNodeWords[] = {"Reservoir", "Tank"};
constexpr std::string_view kLinkWords[] = {"Pump", "PRV", "PSV", "PBV",  "FCV",
                                           "TCV",  "GPV", "PCV", "Valve"};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view withoutBlanks(std::string_view text) {
  const std::size_t from = text.find_first_not_of(' ');
  if (from == kNone) return {};
  return text.substr(from, text.find_last_not_of(' ') + 1 - from);
}

// Sign, digits, at most one point, exponent: all of the text.
bool isNumber(std::string_view text) {
  double value;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, value);
  return read.ec != std::errc::invalid_argument && read.ptr == end &&
         (isDigit(text.back()) || text.back() == '.') &&
         (isDigit(text[0]) || text[0] == '-' || text[0] == '.');
}

std::size_t digitsFrom(std::string_view text, std::size_t from) {
  std::size_t at = from;
  while (at < text.size() && isDigit(text[at])) ++at;
  return at - from;
}

}  // namespace

RowCutter::RowCutter(const ReportHead& head) : head_(head), valuesAt_(head.windows ? 18 : 17) {
  decimals_.fill(kUnknown);
}

bool RowCutter::isText(std::size_t column) const {
  return head_.columns[column].what == ReportColumn::state;
}

bool RowCutter::isValue(std::size_t column, std::string_view field) const {
  if (field.empty()) return false;
  return isText(column) ? field.find(' ') == kNone : field == "#N/A" || isNumber(field);
}

// Takes the word behind the columns off a line, and blanks at its end.
std::string_view RowCutter::takeWord(std::string_view& line) const {
  line = line.substr(0, line.find_last_not_of(' ') + 1);
  const std::size_t blank = line.rfind(' ');
  if (blank == kNone) return {};
  const std::string_view word = line.substr(blank + 1);
  const auto isIn = [word](const auto& words) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
  };
  if (!(head_.ofLinks ? isIn(kLinkWords) : isIn(kNodeWords))) return {};
  line = line.substr(0, line.find_last_not_of(' ', blank) + 1);
  return word;
}

bool RowCutter::isOfLeastLength(std::string_view line) const {
  takeWord(line);
  return line.size() == leastLength();
}

bool RowCutter::cut(std::string_view line, CutRow& row) const {
  row.word = takeWord(line);
  if (line.size() < leastLength()) return false;
  if (line.size() == leastLength()) return cutByPlaces(line, row);
  return cutWide(line, row);
}

bool RowCutter::cutByPlaces(std::string_view body, CutRow& row) const {
  row.id = withoutBlanks(body.substr(2, valuesAt_ - 2));
  for (std::size_t c = 0; c < count(); ++c) {
    row.fields[c] = withoutBlanks(body.substr(valuesAt_ + kWidth * c, kWidth));
    if (!isValue(c, row.fields[c])) return false;
  }
  return !row.id.empty();
}

// --- numbers and ids wider than their columns ----------------------------------------------------

// Where numbers that begin here, and fill their column or more, may end.
struct RowCutter::Ends {
  std::array<std::size_t, 16> at;
  std::size_t count = 0;
  void add(std::size_t end) {
    if (count < at.size()) at[count++] = end;
  }
};

RowCutter::Ends RowCutter::endsOfNumber(std::string_view body, std::size_t from,
                                        std::size_t column) const {
  Ends ends;
  const auto isAt = [body](std::size_t at, const char* any) {
    return at < body.size() && std::strchr(any, body[at]) != nullptr;
  };
  const std::size_t first = from + (body[from] == '-' ? 1 : 0);
  const std::size_t whole = digitsFrom(body, first), point = first + whole;
  const bool zeros = whole > 1 && body[first] == '0';
  if (whole == 0 || whole > kMostIntegerDigits || zeros || !isAt(point, ".")) return ends;
  const std::size_t digits = digitsFrom(body, point + 1), last = point + 1 + digits;
  if (isAt(last, "eE")) {
    if (whole != 1) return ends;
    const bool sign = isAt(last + 1, "+-");
    const std::size_t exponent = last + (sign ? 2 : 1), written = digitsFrom(body, exponent);
    // Two digits behind a sign, or three of which the first is a zero (an older C library); as many
    // as it takes without a sign, which is how the Windows program writes.
    for (std::size_t n = sign ? 2 : 1; n <= std::min<std::size_t>(written, sign ? 3 : 2); ++n) {
      if (n < 3 || body[exponent] == '0') ends.add(exponent + n);
    }
    return ends;
  }
  const std::string_view number = body.substr(first, last - first);
  if (!head_.windows && platform::wtof(number) > kMostWithoutExponent) return ends;
  const int known = decimals_[column];
  for (std::size_t n = digits; n > 0; --n) {
    if (known == kUnknown || n == static_cast<std::size_t>(known)) ends.add(point + 1 + n);
  }
  return ends;
}

// Cuts the columns from one on, of which the first begins here, in every way that there is.
void RowCutter::cutColumns(Search& search, std::size_t from, std::size_t column) const {
  if (search.found > 1 || ++search.steps > kMostSteps) return;
  const std::string_view body = search.body;
  if (column == count()) {
    if (from == body.size() && ++search.found == 1) search.result = search.fields;
    return;
  }
  if (from + kWidth * (count() - column) > body.size()) return;
  const auto goOn = [&](std::size_t end) {
    const std::string_view field = withoutBlanks(body.substr(from, end - from));
    if (end < from + kWidth || !isValue(column, field)) return;
    search.fields[column] = field;
    cutColumns(search, end, column + 1);
  };
  if (body[from] == ' ') return goOn(from + kWidth);
  const Ends ends = endsOfNumber(body, from, column);
  for (std::size_t i = 0; i < ends.count; ++i) goOn(ends.at[i]);
}

// An id in its places first; then longer ones, for as long as there is but one way to read the row.
bool RowCutter::cutWide(std::string_view body, CutRow& row) const {
  Search search;
  search.body = body;
  std::size_t idEnd = 0;
  const std::size_t most = body.size() - kWidth * count();
  for (std::size_t at = valuesAt_; at <= most; ++at) {
    const bool apart = !head_.windows || body[at - 1] == ' ';
    const std::size_t before = search.found;
    if (apart) cutColumns(search, at, 0);
    if (search.found > before) idEnd = at;
    if (at == valuesAt_ && search.found == 1) break;
  }
  if (search.found != 1 || search.steps > kMostSteps) return false;
  row.fields = search.result;
  row.id = withoutBlanks(body.substr(2, idEnd - 2));
  return !row.id.empty();
}

// --- decimals ------------------------------------------------------------------------------------

void RowCutter::learn(std::size_t column, std::string_view number) {
  if (isText(column) || decimals_[column] != kUnknown || !isNumber(number)) return;
  const std::size_t point = number.find('.');
  if (number.find('E') == kNone) {
    decimals_[column] = static_cast<int>(point == kNone ? 0 : digitsFrom(number, point + 1));
  }
}

bool RowCutter::hasLearntAll() const {
  for (std::size_t c = 0; c < count(); ++c) {
    if (decimals_[c] == kUnknown && !isText(c)) return false;
  }
  return true;
}

void RowCutter::learn(std::string_view line) {
  takeWord(line);
  if (line.size() < leastLength()) return;
  // A column that begins with a blank has its ten places and no more: so do the first ones, behind
  // an id that does not reach its last place, and the last ones.
  const bool exact = line.size() == leastLength();
  const auto place = [&](std::size_t from) { return withoutBlanks(line.substr(from, kWidth)); };
  if (exact || line[valuesAt_ - 1] == ' ') {
    for (std::size_t c = 0, at = valuesAt_; c < count() && (exact || line[at] == ' '); ++c) {
      learn(c, place(at));
      at += kWidth;
    }
  }
  std::size_t at = line.size();
  for (std::size_t c = count(); c-- > 0 && line[at - kWidth] == ' '; at -= kWidth) {
    learn(c, place(at - kWidth));
  }
  // Of the last column at least the end is known.
  const std::size_t point = line.rfind('.');
  if (point != kNone && point > 0) learn(count() - 1, line.substr(point - 1));
}

}  // namespace epanet
