#include "epanet/report.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

#include "epanet/report_head.h"
#include "epanet/report_rows.h"
#include "platform/text.h"

namespace epanet {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// A line without its end, and where the next one begins.
struct Line {
  std::string_view text;
  std::size_t next = 0;
  bool ended = false;  // with a line feed
};

Line lineAt(std::string_view bytes, std::size_t at) {
  const std::size_t end = bytes.find('\n', at);
  Line line;
  line.ended = end != kNone;
  line.next = line.ended ? end + 1 : bytes.size();
  line.text = bytes.substr(at, (line.ended ? end : bytes.size()) - at);
  if (line.text.ends_with('\r')) line.text.remove_suffix(1);
  return line;
}

bool isBlank(std::string_view line) { return line.find_first_not_of(" \t\r\f") == kNone; }

}  // namespace

// --- finding tables ------------------------------------------------------------------------------

class Report::Reader {
 public:
  explicit Reader(Report& report) : report_(report), bytes_(report.bytes_) {}
  void read();

 private:
  bool begin(const Banner& banner, std::size_t at);
  void end(std::size_t at);
  Table& tableOf(const Banner& banner);
  std::size_t headOf(ReportHead head);
  void takeMessage(ReportMessage message, std::size_t next);

  Report& report_;
  const std::string_view bytes_;
  std::unordered_map<std::string_view, std::size_t> periods_;
  std::size_t table_ = kNoHead;  // the open one's place
  std::size_t next_ = 0;         // where reading goes on
  std::uint64_t line_ = 0;
};

void Report::Reader::read() {
  while (next_ < bytes_.size()) {
    const std::size_t at = next_;
    const Line line = lineAt(bytes_, at);
    next_ = line.next;
    ++line_;
    if (isBlank(line.text)) {
      end(at);
    } else if (const auto banner = bannerOf(line.text); banner && begin(*banner, at)) {
      continue;
    } else if (auto message = messageOf(line.text)) {
      takeMessage(std::move(*message), line.next);
    } else if (table_ != kNoHead && !line.ended) {
      report_.cut_ = true;
    }
  }
  if (table_ != kNoHead) report_.tables_[table_].open = true;
  end(bytes_.size());
}

// Whether a table begins at the banner that stands here, with a head below it.
bool Report::Reader::begin(const Banner& banner, std::size_t at) {
  HeadLines lines;
  std::size_t next = next_;
  for (std::string_view& text : lines) {
    if (next >= bytes_.size()) break;
    const Line line = lineAt(bytes_, next);
    text = line.text;
    next = line.next;
  }
  auto head = epanet::headOf(lines, banner.ofLinks);
  if (!head) {
    if (next >= bytes_.size() && lines[0].starts_with("  --")) report_.cut_ = true;
    return false;
  }
  end(at);
  Table& table = tableOf(banner);
  if (table.head == kNoHead) table.head = headOf(std::move(*head));
  table.spans.push_back({next, next});
  table_ = static_cast<std::size_t>(&table - report_.tables_.data());
  next_ = next;
  line_ += lines.size();
  return true;
}

void Report::Reader::end(std::size_t at) {
  if (table_ == kNoHead) return;
  report_.tables_[table_].spans.back().end = at;
  table_ = kNoHead;
}

Report::Table& Report::Reader::tableOf(const Banner& banner) {
  const auto [found, isNew] = periods_.try_emplace(banner.period, report_.periods_.size());
  if (isNew) {
    report_.periods_.push_back({std::string(banner.period), secondsOf(banner.period)});
    report_.tables_.resize(report_.tables_.size() + 2);
  }
  return report_.tables_[2 * found->second + (banner.ofLinks ? 1 : 0)];
}

// Tables of all periods have few heads among them.
std::size_t Report::Reader::headOf(ReportHead head) {
  const auto same = [&](const ReportHead& known) {
    return known.ofLinks == head.ofLinks && known.windows == head.windows &&
           std::equal(known.columns.begin(), known.columns.end(), head.columns.begin(),
                      head.columns.end(), [](const auto& a, const auto& b) {
                        return a.what == b.what && a.name == b.name && a.unit == b.unit;
                      });
  };
  auto& heads = report_.heads_;
  const auto known = std::find_if(heads.begin(), heads.end(), same);
  const auto place = static_cast<std::size_t>(known - heads.begin());
  if (known == heads.end()) heads.push_back(std::move(head));
  return place;
}

void Report::Reader::takeMessage(ReportMessage message, std::size_t next) {
  message.line = line_;
  // The row of the input file stands below what is said of it.
  if (message.isError && message.words.ends_with(':') && next < bytes_.size()) {
    const std::string_view row = lineAt(bytes_, next).text;
    if (!isBlank(row)) message.row = row.substr(row.find_first_not_of(" \t"));
  }
  report_.messages_.push_back(std::move(message));
}

Report::Report(std::string bytes) : bytes_(std::move(bytes)) {
  Reader(*this).read();
  utf8_ = platform::isValidUtf8(bytes_);
}

bool Report::hasEmblem() const {
  constexpr std::size_t kBeginning = 4096;
  return std::string_view(bytes_).substr(0, kBeginning).find("E P A N E T") != kNone;
}

// --- values --------------------------------------------------------------------------------------

namespace {

std::optional<double> realOf(std::string_view field) {
  if (field == "#N/A") return std::nullopt;
  return platform::wtof(field);
}

std::optional<LinkState> stateOf(std::string_view field) {
  if (field == "open" || field == "Open") return LinkState::open;
  if (field == "closed" || field == "Closed") return LinkState::closed;
  if (field == "active" || field == "Active") return LinkState::active;
  return std::nullopt;
}

void put(NodeValues& values, ReportColumn column, std::string_view field) {
  if (column == ReportColumn::demand) values.demand = realOf(field);
  if (column == ReportColumn::head) values.head = realOf(field);
  if (column == ReportColumn::pressure) values.pressure = realOf(field);
  if (column == ReportColumn::quality) values.quality = realOf(field);
}

void put(LinkValues& values, ReportColumn column, std::string_view field) {
  if (column == ReportColumn::flow) values.flow = realOf(field);
  if (column == ReportColumn::velocity) values.velocity = realOf(field);
  if (column == ReportColumn::headloss) values.headloss = realOf(field);
  if (column == ReportColumn::quality) values.quality = realOf(field);
  if (column == ReportColumn::setting) values.setting = realOf(field);
  if (column == ReportColumn::state) values.state = stateOf(field);
}

void takeWord(NodeValues&, std::string_view) {}
void takeWord(LinkValues& values, std::string_view word) { values.isPipe = word.empty(); }

void nameUnits(const ReportHead& head, ValueUnits& units) {
  for (const ReportHead::Column& c : head.columns) {
    if (c.what == ReportColumn::demand) units.demand = c.unit;
    if (c.what == ReportColumn::head) units.head = c.unit;
    if (c.what == ReportColumn::pressure) units.pressure = c.unit;
    if (c.what == ReportColumn::quality && !head.ofLinks) units.nodeQuality = c.unit;
    if (c.what == ReportColumn::flow) units.flow = c.unit;
    if (c.what == ReportColumn::velocity) units.velocity = c.unit;
    if (c.what == ReportColumn::headloss) units.headloss = c.unit;
  }
}

}  // namespace

// Until `act` says false.
template <class Act>
void Report::forEachRow(const Table& table, Act act) const {
  const std::string_view bytes = bytes_;
  for (const Span& span : table.spans) {
    for (std::size_t at = span.begin; at < span.end;) {
      const Line line = lineAt(bytes, at);
      if (!act(line.text, at)) return;
      at = line.next;
    }
  }
}

template <class Values>
void Report::parse(const Table& table, ValueTable<Values>& values, PeriodValues& result) const {
  const ReportHead& head = heads_[table.head];
  nameUnits(head, result.units);
  RowCutter cutter(head);
  bool learnt = false;
  CutRow row;
  std::vector<std::size_t> unreadable;
  forEachRow(table, [&](std::string_view line, std::size_t at) {
    if (!learnt && !cutter.isOfLeastLength(line)) {
      forEachRow(table, [&](std::string_view other, std::size_t) {
        cutter.learn(other);
        return !cutter.hasLearntAll();
      });
      learnt = true;
    }
    if (!cutter.cut(line, row)) {
      if (!messageOf(line)) unreadable.push_back(at);
      return true;
    }
    Values v;
    for (std::size_t c = 0; c < head.columns.size(); ++c) {
      put(v, head.columns[c].what, row.fields[c]);
    }
    takeWord(v, row.word);
    values.add(row.id, v);
    return true;
  });
  values.index();
  const auto lines = linesOf(unreadable);
  result.unreadableLines.insert(result.unreadableLines.end(), lines.begin(), lines.end());
}

// The lines that begin at these places, which ascend.
std::vector<std::uint64_t> Report::linesOf(const std::vector<std::size_t>& places) const {
  std::vector<std::uint64_t> lines;
  std::uint64_t line = 1;
  auto counted = bytes_.begin();
  for (const std::size_t place : places) {
    const auto at = bytes_.begin() + static_cast<std::ptrdiff_t>(place);
    line += static_cast<std::uint64_t>(std::count(counted, at, '\n'));
    counted = at;
    lines.push_back(line);
  }
  return lines;
}

PeriodValues Report::values(std::size_t k) const {
  const Table &nodes = tables_[2 * k], &links = tables_[2 * k + 1];
  PeriodValues result;
  result.period = periods_[k];
  result.hasNodes = nodes.head != kNoHead;
  result.hasLinks = links.head != kNoHead;
  result.endsOpen = nodes.open || links.open;
  if (result.hasNodes) parse(nodes, result.nodes, result);
  if (result.hasLinks) parse(links, result.links, result);
  return result;
}

}  // namespace epanet
