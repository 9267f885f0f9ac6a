#include "epanet/network.h"

#include "epanet/lexis.h"
#include "epanet/reader.h"
#include "platform/memory.h"

namespace epanet {
namespace {

constexpr std::string_view kFlowWords[] = {"CFS", "GPM", "MGD", "IMGD", "AFD", "LPS",
                                           "LPM", "MLD", "CMH", "CMD",  "CMS"};
constexpr std::string_view kPressureWords[] = {"PSI", "KPA", "METERS", "BAR", "FEET"};
constexpr std::string_view kFormulaWords[] = {"H-W", "D-W", "C-M"};
constexpr std::string_view kValveWords[] = {"PRV", "PSV", "PBV", "FCV", "TCV", "GPV", "PCV"};

}  // namespace

std::string_view wordOf(FlowUnits units) { return kFlowWords[static_cast<std::size_t>(units)]; }
std::string_view wordOf(PressureUnits units) {
  return kPressureWords[static_cast<std::size_t>(units)];
}
std::string_view wordOf(Formula formula) {
  return kFormulaWords[static_cast<std::size_t>(formula)];
}
std::string_view wordOf(ValveKind kind) { return kValveWords[static_cast<std::size_t>(kind)]; }

int solverCode(Fault fault) {
  constexpr int kCodes[] = {201, 202, 203, 204, 205, 206, 207, 208, 209, 211, 212,
                            213, 215, 216, 217, 219, 220, 221, 222, 223, 224, 225,
                            226, 227, 230, 231, 232, 233, 252, 299, 299};
  const auto at = static_cast<std::size_t>(fault);
  return at < std::size(kCodes) ? kCodes[at] : 0;
}

Network::Network(const Document& document, Record* record)
    : document_(&document), names_(std::make_unique<Names>()) {
  Reader(*this, record).read();
}
Network::Network(Network&&) noexcept = default;
Network& Network::operator=(Network&&) noexcept = default;
Network::~Network() = default;

std::uint32_t Network::findNode(std::string_view id) const {
  return names_->nodes.find(id, [this](std::uint32_t i) { return nodes[i].id; });
}
std::uint32_t Network::findLink(std::string_view id) const {
  return names_->links.find(id, [this](std::uint32_t i) { return links[i].id; });
}
std::uint32_t Network::findPattern(std::string_view id) const {
  return names_->patterns.find(id, [this](std::uint32_t i) { return patterns[i].id; });
}
std::uint32_t Network::findCurve(std::string_view id) const {
  return names_->curves.find(id, [this](std::uint32_t i) { return curves[i].id; });
}

double Network::demandOf(const Node& junction) const {
  if (junction.firstDemand == kNone) return junction.demand.value;
  double sum = 0;
  for (std::uint32_t i = junction.firstDemand; i != kNone; i = demands[i].next) {
    sum += demands[i].base.value;
  }
  return sum;
}

Ref Network::demandPatternOf(const Node& junction) const {
  return junction.firstDemand == kNone ? junction.pattern : demands[junction.firstDemand].pattern;
}

// --- reading -------------------------------------------------------------------------------------

void Reader::read() {
  setDefaults();
  checkText();
  findPatternsAndCurves();
  const auto& rows = doc_.rows();
  makeRoom(rows);
  for (row_ = 0; row_ < rows.size(); ++row_) {
    if (rows[row_].kind == RowKind::data) readRow();
  }
  row_ = kNoRow;
  settleOptions();
  check();
}

// Lists of a large network are not to grow by copies.
void Reader::makeRoom(const std::vector<Row>& rows) {
  std::array<std::size_t, kSections> count{};
  for (const Row& row : rows) {
    if (row.kind == RowKind::data) ++count[static_cast<std::size_t>(row.section)];
  }
  const auto of = [&](Section section) { return count[static_cast<std::size_t>(section)]; };
  const auto reserve = [](auto& list, std::size_t size) {
    list.reserve(size);
    platform::askForLargePages(list.data(), size * sizeof(list[0]));
  };
  reserve(net_.nodes, of(Section::junctions) + of(Section::reservoirs) + of(Section::tanks));
  reserve(net_.links, of(Section::pipes) + of(Section::pumps) + of(Section::valves));
  net_.names_->nodes.reserve(net_.nodes.capacity());
  net_.names_->links.reserve(net_.links.capacity());
  reserve(net_.pipes, of(Section::pipes));
  reserve(net_.demands, of(Section::demands));
  reserve(net_.vertices, of(Section::vertices));
}

void Reader::readRow() {
  section_ = doc_.rows()[row_].section;
  doc_.tokens(row_, tokens_);
  if (tokens_.count == 0) return;
  // The solver takes no words out of these.
  const bool unparsed =
      section_ == Section::title || section_ == Section::labels || section_ == Section::backdrop;
  if (tokens_.more && !unparsed) problem(Fault::manyTokens);
  for (int i = 0; i + 1 < count() && !unparsed; ++i) {
    if (tokens_[i].quoted) {
      problem(Fault::quotes, i);
      break;
    }
  }
  switch (section_) {
    case Section::title:
      if (net_.title.size() < 3) net_.title.push_back(doc_.contentOf(row_));
      return;
    case Section::junctions:
      return readJunction();
    case Section::reservoirs:
    case Section::tanks:
      return readTankOrReservoir();
    case Section::pipes:
      return readPipe();
    case Section::pumps:
      return readPump();
    case Section::valves:
      return readValve();
    case Section::controls:
      return readControl();
    case Section::rules:
      return readRule();
    case Section::demands:
      return readDemand();
    case Section::sources:
      return readSource();
    case Section::emitters:
      return readEmitter();
    case Section::patterns:
      return readPattern();
    case Section::curves:
      return readCurve();
    case Section::quality:
      return readQuality();
    case Section::status:
      return readStatus();
    case Section::energy:
      return readEnergy();
    case Section::reactions:
      return readReaction();
    case Section::mixing:
      return readMixing();
    case Section::report:
      return readReport();
    case Section::times:
      return readTime();
    case Section::options:
      return readOption();
    case Section::coordinates:
      return readCoordinates();
    case Section::vertices:
      return readVertex();
    case Section::labels:
      return readLabel();
    case Section::tags:
      return readTag();
    case Section::leakage:
      return readLeakage();
    default:
      return;  // [ROUGHNESS], [BACKDROP] and what nobody knows is kept as text
  }
}

bool Reader::is(int i, std::string_view keyword) const {
  return i < count() && isWord(word(i), keyword);
}

bool Reader::number(int i, Number& to, Fault fault) {
  const auto value = numberOf(word(i));
  if (!value) {
    problem(fault, i);
    return false;
  }
  to = {*value, at(i)};
  return true;
}

Ref Reader::node(int i, Role role) {
  const Ref ref{net_.findNode(word(i)), at(i)};
  if (!ref) problem(Fault::unknownNode, i);
  if (ref) mention(Thing::node, ref.index, role, i);
  return ref;
}
Ref Reader::link(int i, Role role) {
  const Ref ref{net_.findLink(word(i)), at(i)};
  if (!ref) problem(Fault::unknownLink, i);
  if (ref) mention(Thing::link, ref.index, role, i);
  return ref;
}
Ref Reader::pattern(int i, Role role) {
  const Ref ref{net_.findPattern(word(i)), at(i)};
  if (!ref) problem(Fault::unknownPattern, i);
  if (ref) mention(Thing::pattern, ref.index, role, i);
  return ref;
}
Ref Reader::curve(int i, Role role, CurveUse how) {
  const Ref ref{net_.findCurve(word(i)), at(i)};
  if (!ref) problem(Fault::unknownCurve, i);
  if (ref) mention(Thing::curve, ref.index, role, i);
  if (ref) use(ref.index, how, ref.at);
  return ref;
}

void Reader::use(std::uint32_t index, CurveUse how, Place where) {
  Curve& curve = net_.curves[index];
  if (curve.use != CurveUse::none) return;
  curve.use = how;
  curve.usedAt = where;
}

void Reader::problem(Fault fault, int token) {
  Problem problem{fault, row_, doc_.lineOf(row_), 0, section_, {}};
  if (token >= 0 && token < count()) {
    problem.column = tokens_[token].start + 1;
    problem.text = word(token);
  }
  net_.problems.push_back(std::move(problem));
}

void Reader::problemAt(Fault fault, RowId row, std::string_view text) {
  const Section section = row == kNoRow ? Section::before : doc_.rows()[row].section;
  const std::uint32_t line = row == kNoRow ? 0 : doc_.lineOf(row);
  net_.problems.push_back({fault, row, line, 0, section, std::string(text)});
}

}  // namespace epanet
