#include "module/results/rpt_reader.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include "platform/files.h"
#include "platform/text.h"

namespace vessora {

namespace {

constexpr std::size_t kLineLimit = 999;  // characters, the line feed included
constexpr int kHeadLines = 4;            // rule, column names, units, rule
constexpr std::string_view kPeriodPrefix = "  Node Results at";
constexpr std::string_view kNodeDefault = "0", kLinkDefault = "Open";

// Text mode: each CR LF becomes LF, once.
void dropReturns(std::string& text) {
  std::size_t from = text.find("\r\n");
  if (from == text.npos) return;
  std::size_t to = from;
  while (from < text.size()) {
    const std::size_t next = std::min(text.find("\r\n", from + 1), text.size());
    std::memmove(text.data() + to, text.data() + from + 1, next - from - 1);
    to += next - from - 1;
    from = next;
  }
  text.resize(to);
}

// How many bytes of a text make at most `units` UTF-16 units, in whole characters.
std::size_t bytesOfUnits(std::string_view text, std::size_t units) {
  std::size_t at = 0;
  while (at < text.size()) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t bytes = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    const std::size_t cost = bytes == 4 ? 2 : 1;
    if (cost > units) break;
    units -= cost;
    at += bytes;
  }
  return std::min(at, text.size());
}

bool isDelimiter(char c) { return c == ' ' || c == '\t' || c == '\n'; }

// The first words of a line, at most five; how many there are. A name has the length that a record
// has room for.
std::size_t splitLine(std::string_view line, RptRowList::Columns& words) {
  std::size_t count = 0;
  const char* at = line.data();
  const char* const end = at + line.size();
  while (count < words.size()) {
    while (at != end && isDelimiter(*at)) ++at;
    if (at == end) break;
    const char* const from = at;
    while (at != end && !isDelimiter(*at)) ++at;
    words[count++] = {from, static_cast<std::size_t>(at - from)};
  }
  constexpr std::size_t kNameUnits = platform::wide256::capacity - 1;
  if (count > 0 && words[0].size() > kNameUnits) {
    words[0] = words[0].substr(0, bytesOfUnits(words[0], kNameUnits));
  }
  return count;
}

template <std::size_t N>
void store(platform::Wide<N>& field, std::string_view text) {
  field = platform::widen(text);
}

void storeRow(const RptRowList::Columns& c, std::size_t count, EpaNodeResult& r) {
  if (count > 0) store(r.id, c[0]);
  if (count > 1) store(r.demand, c[1]);
  if (count > 2) store(r.head, c[2]);
  if (count > 3) store(r.pressure, c[3]);
  store(r.quality, count > 4 ? c[4] : kNodeDefault);
}

void storeRow(const RptRowList::Columns& c, std::size_t count, EpaLinkResult& r) {
  if (count > 0) store(r.id, c[0]);
  if (count > 1) store(r.flow, c[1]);
  if (count > 2) store(r.velocity, c[2]);
  if (count > 3) store(r.headloss, c[3]);
  store(r.status, count > 4 ? c[4] : kLinkDefault);
}

std::uint32_t hashOf(std::string_view name) {
  const std::size_t h = std::hash<std::string_view>()(name);
  return static_cast<std::uint32_t>(h ^ (h >> 32));
}

}  // namespace

void ParseNodeResultRow(std::string_view line, EpaNodeResult& record) {
  RptRowList::Columns words;
  storeRow(words, splitLine(line, words), record);
}

void ParseLinkResultRow(std::string_view line, EpaLinkResult& record) {
  RptRowList::Columns words;
  storeRow(words, splitLine(line, words), record);
}

// --- the text ------------------------------------------------------------------------------------

RptText::RptText(std::string bytes) : text_(platform::toUtf8(std::move(bytes))) {
  if (const std::size_t end = text_.find('\x1A'); end != text_.npos) text_.resize(end);
  dropReturns(text_);
  zeros_ = text_.find('\0') != text_.npos;
}

std::shared_ptr<const RptText> RptText::load(std::u16string_view path) {
  auto bytes = platform::readFile(platform::nativePath(path));
  if (!bytes) return nullptr;
  return std::make_shared<const RptText>(std::move(*bytes));
}

std::size_t RptText::endOf(std::size_t begin) const {
  // In as many bytes there are at most as many characters, so this finds the end of nearly all.
  const std::size_t near = std::min(kLineLimit, text_.size() - begin);
  const char* const from = text_.data() + begin;
  if (const void* feed = std::memchr(from, '\n', near)) {
    return static_cast<std::size_t>(static_cast<const char*>(feed) - text_.data()) + 1;
  }
  const std::string_view rest = std::string_view(text_).substr(begin);
  const std::size_t piece = bytesOfUnits(rest.substr(0, 3 * kLineLimit), kLineLimit);
  const std::size_t feed = rest.substr(0, piece).find('\n');
  return begin + (feed == rest.npos ? piece : feed + 1);
}

std::string_view RptText::line(std::size_t begin) const {
  const std::string_view line(text_.data() + begin, endOf(begin) - begin);
  return zeros_ ? line.substr(0, line.find('\0')) : line;
}

// --- rows ----------------------------------------------------------------------------------------

void RptRowList::add(const RptFile& report, std::size_t line) {
  report_ = report;
  lines_.push_back(line);
}

void RptRowList::beginTable() {
  endTable();
  open_ = true;
  tables_.emplace_back(lines_.size(), 0);
}

void RptRowList::endTable() {
  if (!std::exchange(open_, false)) return;
  tables_.back().second = lines_.size();
}

bool RptRowList::inTable(std::size_t row) const {
  auto after = std::upper_bound(tables_.begin(), tables_.end(), row,
                                [](std::size_t r, const auto& table) { return r < table.first; });
  if (after == tables_.begin()) return false;
  const std::size_t end = (--after)->second;
  return row < end || (open_ && &*after == &tables_.back());
}

std::size_t RptRowList::split(std::size_t row, Columns& columns) const {
  ++splits_;
  return splitLine(report_->line(lines_[row]), columns);
}

RptRowList::Columns RptRowList::columns(std::size_t row) const {
  while (indexed_ <= row) indexNext();
  Columns result;
  const std::size_t words = split(row, result);
  if (words < 5) result[4] = default_;
  if (words >= 4) return result;
  const auto known = std::lower_bound(short_.begin(), short_.end(), row,
                                      [](const ShortRow& s, std::size_t r) { return s.row < r; });
  for (std::size_t c = words; c < 4; ++c) {
    Columns earlier;
    if (known->from[c] == kNoRow) continue;
    split(known->from[c], earlier);
    result[c] = earlier[c];
  }
  return result;
}

std::string_view RptRowList::nameOf(std::size_t row) const {
  Columns words;
  return split(row, words) > 0 ? words[0] : std::string_view();
}

// Takes in one more row: its name, if it is a new one, and where its missing columns come from.
void RptRowList::indexNext() const {
  const auto row = static_cast<std::uint32_t>(indexed_);
  Columns words;
  const std::size_t count = split(indexed_, words);
  for (std::size_t c = 0; c < std::min<std::size_t>(count, 4); ++c) last_[c] = row;
  if (count < 4) short_.push_back({row, last_});
  // A line without a word repeats the name of the row before, which is known already.
  if (count > 0 || row == 0) enter(count > 0 ? words[0] : std::string_view(), row);
  ++indexed_;
}

void RptRowList::enter(std::string_view name, std::uint32_t row) const {
  // Later tables name the same elements in the same order.
  if (likely_ < row && nameOf(likely_) == name) {
    ++likely_;
    return;
  }
  if (slots_.size() < 2 * (names_ + 1)) makeRoom();
  const std::uint32_t hash = hashOf(name);
  Slot& slot = slots_[slotOf(name, hash)];
  if (slot.row == kNoRow) {
    slot = {hash, row};
    ++names_;
  }
  likely_ = slot.row + 1;
}

std::size_t RptRowList::slotOf(std::string_view name, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
    const Slot& slot = slots_[at];
    if (slot.row == kNoRow || (slot.hash == hash && nameOf(slot.row) == name)) return at;
  }
}

void RptRowList::makeRoom() const {
  std::vector<Slot> old(std::max<std::size_t>(64, slots_.size() * 4));
  old.swap(slots_);
  const std::size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.row == kNoRow) continue;
    std::size_t at = slot.hash & mask;
    while (slots_[at].row != kNoRow) at = (at + 1) & mask;
    slots_[at] = slot;
  }
}

std::size_t RptRowList::find(std::u16string_view name) const {
  const std::string wanted = platform::narrow(name);
  const std::uint32_t hash = hashOf(wanted);
  if (!slots_.empty()) {
    const Slot& slot = slots_[slotOf(wanted, hash)];
    if (slot.row != kNoRow) return slot.row;
  }
  while (indexed_ < size()) {
    const std::size_t row = indexed_, known = names_;
    indexNext();
    if (names_ != known && nameOf(row) == wanted) return row;
  }
  return kNone;
}

NodeResultList::NodeResultList() : RptRowList(kNodeDefault) {}
LinkResultList::LinkResultList() : RptRowList(kLinkDefault) {}

EpaNodeResult NodeResultList::operator[](std::size_t row) const {
  EpaNodeResult record;
  const Columns all = columns(row);
  storeRow(all, all.size(), record);
  return record;
}

EpaLinkResult LinkResultList::operator[](std::size_t row) const {
  EpaLinkResult record;
  const Columns all = columns(row);
  storeRow(all, all.size(), record);
  return record;
}

// --- reading -------------------------------------------------------------------------------------

namespace {

// The lines by which a table is known.
struct Banners {
  std::string nodes, nodesContinued, links, linksContinued;

  static Banners singlePeriod() {
    return {"  Node Results:\n", "  Node Results: (continued)\n", "  Link Results:\n",
            "  Link Results: (continued)\n"};
  }
  // Only the first head of a table can have a small h.
  static Banners ofPeriod(std::string_view time, bool lowerCaseHrs) {
    const std::string at = " Results at " + std::string(time);
    const std::string hours = lowerCaseHrs ? " hrs:\n" : " Hrs:\n";
    return {"  Node" + at + hours, "  Node" + at + " Hrs: (continued)\n", "  Link" + at + hours,
            "  Link" + at + " Hrs: (continued)\n"};
  }
  bool startNodes(std::string_view line) const { return line == nodes || line == nodesContinued; }
  bool startLinks(std::string_view line) const { return line == links || line == linksContinued; }
};

// Reads line by line. A read beyond the end leaves the last line in place, where it is handled once
// more.
class LineCursor {
 public:
  explicit LineCursor(const RptText& text) : text_(text) {}
  void next() {
    if (at_ >= text_.size()) {
      ended_ = true;
      return;
    }
    begin_ = at_;
    at_ = text_.endOf(begin_);
  }
  bool ended() const { return ended_; }
  std::size_t begin() const { return begin_; }
  std::string_view line() const { return text_.line(begin_); }

 private:
  const RptText& text_;
  std::size_t at_ = 0, begin_ = 0;
  bool ended_ = false;
};

// A blank line, or the head of a table of another period.
bool endsTable(std::string_view line) {
  return line.find_first_not_of(" \t\r\n\f") == line.npos || line.starts_with("  Node Results") ||
         line.starts_with("  Link Results");
}

void readTables(const RptFile& report, const Banners& banners, RptRowList& nodes,
                RptRowList& links) {
  RptRowList* table = nullptr;
  LineCursor cursor(*report);
  while (!cursor.ended()) {
    cursor.next();
    const std::string_view line = cursor.line();
    RptRowList* const begun = banners.startNodes(line)   ? &nodes
                              : banners.startLinks(line) ? &links
                                                         : nullptr;
    if (begun) {
      nodes.endTable();
      links.endTable();
      for (int i = 0; i < kHeadLines; ++i) cursor.next();
      table = begun;
      table->beginTable();
    } else if (table) {
      if (endsTable(line)) table->endTable();
      table->add(report, cursor.begin());
    }
  }
}

// Calls visit(line) for each line that carries a period, until it says stop by false.
template <class Visit>
void forEachPeriodLine(const RptText& text, Visit visit) {
  for (std::size_t at = 0; at < text.size(); at = text.endOf(at)) {
    const std::string_view line = text.line(at);
    if (line.substr(0, kPeriodPrefix.size()) == kPeriodPrefix && !visit(line)) return;
  }
}

}  // namespace

bool isMultiPeriod(const RptFile& report, bool& lowerCaseHrs) {
  bool several = false;
  if (!report) return several;
  forEachPeriodLine(*report, [&](std::string_view line) {
    several = true;
    lowerCaseHrs = line.find(" Hrs:") == line.npos;
    return false;
  });
  return several;
}

RptKind ReadRpt(const RptFile& report, NodeResultList& nodes, LinkResultList& links) {
  if (!report) return kRptUnreadable;
  bool lowerCaseHrs;
  if (isMultiPeriod(report, lowerCaseHrs)) return kRptMultiPeriod;
  if (report->size() > 0) readTables(report, Banners::singlePeriod(), nodes, links);
  return kRptSinglePeriod;
}

void ListRptTimeSteps(const RptFile& report, std::vector<std::u16string>& steps) {
  if (!report) return;
  std::u16string previous = u"strcompare";  // no time is written so
  forEachPeriodLine(*report, [&](std::string_view line) {
    // The line feed is part of a time that ends the line: such a time finds no table.
    platform::BasicTokens<char> words(line, " \t");
    std::u16string time;
    for (int i = 0; i < 4; ++i) time = platform::widen(words.next().value_or(""));
    if (time != previous) steps.push_back(time);
    previous = std::move(time);
    return true;
  });
}

void ReadRptPeriod(const RptFile& report, NodeResultList& nodes, LinkResultList& links,
                   std::u16string_view time, bool lowerCaseHrs) {
  if (!report || report->size() == 0) return;
  readTables(report, Banners::ofPeriod(platform::narrow(time), lowerCaseHrs), nodes, links);
}

}  // namespace vessora
