// Makes water networks as EPANET input files, laid out as EPANET's own Windows program saves them.
//
//   make_network town N SEED FILE [--crlf]    towns of irregular blocks with hamlets around them:
//   every
//                                             kind of element, a network that the solver runs
//   make_network grid N SEED FILE [--crlf]    a plain grid, made in seconds up to a million nodes
//
// N is the number of junctions, reservoirs and tanks together. The same arguments give the same
// file.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <numeric>
#include <queue>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// The headloss curve of general-purpose valves. An export of a drawn network writes this text as
// the setting of every valve, and their setting is the name of their curve: so the exported file
// runs.
const char kMeterCurve[] = "0.000";

const double kPi = std::acos(-1.0);

// A generator of our own: the distributions of the standard library differ between its makers.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 1) {}
  std::uint64_t next() {
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }
  double range(double low, double high) { return low + (high - low) * unit(); }
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(next() % n); }
  bool chance(double p) { return unit() < p; }

 private:
  std::uint64_t state_;
};

struct Point {
  double x = 0, y = 0;
};
Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
Point operator*(Point a, double f) { return {a.x * f, a.y * f}; }
double length(Point a) { return std::hypot(a.x, a.y); }
double distance(Point a, Point b) { return length(a - b); }
Point direction(double angle) { return {std::cos(angle), std::sin(angle)}; }
Point between(Point a, Point b, double t) { return a + (b - a) * t; }

// --- a network -----------------------------------------------------------------------------------

using NodeIndex = std::size_t;  // among all nodes, whatever their kind

struct Node {
  std::string id;
  Point at;
  double elevation = 0;  // total head of a reservoir
  double demand = 0, emitter = 0;
  const char* pattern = "";
};

struct Tank {
  NodeIndex node = 0;
  double initial = 0, minimum = 0, maximum = 0, diameter = 0;
  std::string volumeCurve;
};

struct Link {
  std::string id;
  NodeIndex from = 0, to = 0;
  std::vector<Point> vertices;
};

struct Pipe : Link {
  double length = 0, diameter = 0, roughness = 0, minorLoss = 0;
  const char* status = "Open";
};

struct Valve : Link {
  double diameter = 0;
  const char* type = "";
  std::string setting;
};

struct Pump : Link {
  std::string parameters;
};

struct Curve {
  const char* kind;
  std::string id;
  std::vector<Point> points;
};

struct Row {
  std::string id, value;
};

struct Network {
  std::string title;
  std::vector<Node> nodes;
  std::vector<NodeIndex> junctions, reservoirs;
  std::vector<Tank> tanks;
  std::vector<Pipe> pipes;
  std::vector<Valve> valves;
  std::vector<Pump> pumps;
  std::vector<Curve> curves;
  std::vector<Row> statuses;
  std::vector<std::string> controls, energy;

  NodeIndex add(Node node) {
    nodes.push_back(std::move(node));
    return nodes.size() - 1;
  }
  NodeIndex addJunction(Node node) {
    junctions.push_back(add(std::move(node)));
    return junctions.back();
  }
  NodeIndex addReservoir(Node node) {
    reservoirs.push_back(add(std::move(node)));
    return reservoirs.back();
  }
};

// --- writing -------------------------------------------------------------------------------------

std::string fixed(double value, int places) {
  char text[64];
  return {text,
          std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, places).ptr};
}

// As a person would type it: no zeros behind the last digit that says something.
std::string plain(double value, int places) {
  std::string text = fixed(value, places);
  if (text.find('.') != text.npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

class Writer {
 public:
  Writer(const std::string& path, std::string_view lineEnd)
      : file_(path, std::ios::binary), end_(lineEnd) {}

  void line(std::string_view text = {}) {
    text_.append(text).append(end_);
    if (text_.size() > (1u << 20)) flush();
  }
  void section(std::string_view name, std::string_view columns = {}) {
    line("[" + std::string(name) + "]");
    if (!columns.empty()) line(columns);
  }
  // A cell padded to its column; `lead` stands before the first and tabs between all.
  Writer& lead(std::string_view text) {
    text_.append(text);
    first_ = true;
    return *this;
  }
  Writer& cell(std::string_view text, std::size_t width) {
    if (!first_) text_.push_back('\t');
    first_ = false;
    text_.append(text);
    if (text.size() < width) text_.append(width - text.size(), ' ');
    return *this;
  }
  Writer& cell(double value, int places, std::size_t width) {
    return cell(plain(value, places), width);
  }
  void endRow() { line("\t;"); }

  bool close() {
    flush();
    file_.close();
    return !file_.fail();
  }

 private:
  void flush() {
    file_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
  }
  std::ofstream file_;
  std::string end_, text_;
  bool first_ = true;
};

void writeNodes(Writer& w, const Network& n) {
  w.section("JUNCTIONS", ";ID              \tElev        \tDemand      \tPattern         ");
  for (const NodeIndex i : n.junctions) {
    const Node& node = n.nodes[i];
    w.lead(" ")
        .cell(node.id, 16)
        .cell(node.elevation, 2, 12)
        .cell(node.demand, 3, 12)
        .cell(node.pattern, 16)
        .endRow();
  }
  w.line();
  w.section("RESERVOIRS", ";ID              \tHead        \tPattern         ");
  for (const NodeIndex i : n.reservoirs) {
    const Node& node = n.nodes[i];
    w.lead(" ").cell(node.id, 16).cell(node.elevation, 2, 12).cell(node.pattern, 16).endRow();
  }
  w.line();
  w.section("TANKS",
            ";ID              \tElevation   \tInitLevel   \tMinLevel    \tMaxLevel    \tDiameter   "
            " \tMinVol      "
            "\tVolCurve        \tOverflow");
  for (const Tank& t : n.tanks) {
    const Node& node = n.nodes[t.node];
    w.lead(" ")
        .cell(node.id, 16)
        .cell(node.elevation, 2, 12)
        .cell(t.initial, 2, 12)
        .cell(t.minimum, 2, 12);
    w.cell(t.maximum, 2, 12)
        .cell(t.diameter, 2, 12)
        .cell("0", 12)
        .cell(t.volumeCurve, 16)
        .cell("", 16)
        .endRow();
  }
  w.line();
}

void writeLinks(Writer& w, const Network& n) {
  auto ends = [&](const Link& link) -> Writer& {
    return w.lead(" ")
        .cell(link.id, 16)
        .cell(n.nodes[link.from].id, 16)
        .cell(n.nodes[link.to].id, 16);
  };
  w.section("PIPES",
            ";ID              \tNode1           \tNode2           \tLength      \tDiameter    "
            "\tRoughness   "
            "\tMinorLoss   \tStatus");
  for (const Pipe& p : n.pipes) {
    ends(p)
        .cell(p.length, 2, 12)
        .cell(p.diameter, 1, 12)
        .cell(p.roughness, 1, 12)
        .cell(p.minorLoss, 2, 12);
    w.cell(p.status, 6).endRow();
  }
  w.line();
  w.section("PUMPS", ";ID              \tNode1           \tNode2           \tParameters");
  for (const Pump& p : n.pumps) ends(p).cell(p.parameters, 0).endRow();
  w.line();
  w.section("VALVES",
            ";ID              \tNode1           \tNode2           \tDiameter    \tType\tSetting    "
            " \tMinorLoss   ");
  for (const Valve& v : n.valves) {
    ends(v).cell(v.diameter, 1, 12).cell(v.type, 4).cell(v.setting, 12).cell("0", 12).endRow();
  }
  w.line();
  w.section("TAGS");
  w.line();
  w.section("DEMANDS", ";Junction        \tDemand      \tPattern         \tCategory");
  w.line();
  w.section("STATUS", ";ID              \tStatus/Setting");
  for (const Row& row : n.statuses) w.lead(" ").cell(row.id, 16).cell(row.value, 0).line();
  w.line();
}

struct Pattern {
  const char* id;
  const char* text;
  std::array<double, 24> factors;
};

constexpr Pattern kPatterns[] = {
    {"1", "Utenza domestica", {0.42, 0.35, 0.31, 0.3,  0.36, 0.55, 1.12, 1.58,
                               1.52, 1.3,  1.18, 1.22, 1.41, 1.33, 1.05, 0.95,
                               0.98, 1.1,  1.36, 1.58, 1.45, 1.15, 0.83, 0.6}},
    {"2", "Commercio e uffici", {0.2, 0.2, 0.2, 0.2, 0.2, 0.3, 0.7, 1.2, 1.9, 2.1, 2.1, 1.9,
                                 1.5, 1.3, 1.6, 1.9, 2.0, 1.8, 1.2, 0.6, 0.4, 0.2, 0.2, 0.1}},
    {"3", "Irrigazione notturna", {3, 3, 3, 3, 2.5, 1.5, 0, 0, 0, 0, 0,   0,
                                   0, 0, 0, 0, 0,   0,   0, 0, 1, 2, 2.5, 2.5}},
    {"4", "Rilancio notturno", {1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0,
                                1, 1, 1, 0, 0, 0, 0, 0, 0, 1, 1, 1}},
    {"5", "Tariffa energia", {0.7, 0.7, 0.7, 0.7, 0.7, 0.7, 0.7, 0.9, 1.2, 1.2, 1.2, 1.2,
                              1.2, 1.2, 1.2, 1.2, 1.2, 1.2, 1.2, 0.9, 0.9, 0.9, 0.9, 0.7}},
};

void writePatternsAndCurves(Writer& w, const Network& n) {
  w.section("PATTERNS", ";ID              \tMultipliers");
  for (const Pattern& p : kPatterns) {
    w.line(";" + std::string(p.text));
    for (std::size_t h = 0; h < p.factors.size(); h += 6) {
      w.lead(" ").cell(p.id, 16);
      for (std::size_t k = h; k < h + 6; ++k) w.cell(p.factors[k], 3, 12);
      w.line();
    }
  }
  w.line();
  w.section("CURVES", ";ID              \tX-Value     \tY-Value");
  for (const Curve& c : n.curves) {
    w.line(";" + std::string(c.kind) + ": ");
    for (const Point& p : c.points)
      w.lead(" ").cell(c.id, 16).cell(p.x, 2, 12).cell(p.y, 2, 12).line();
  }
  w.line();
}

void writeRules(Writer& w, const Network& n) {
  w.section("CONTROLS");
  for (const std::string& control : n.controls) w.line(control);
  w.line();
  w.section("RULES");
  w.line();
  w.section("ENERGY");
  for (const char* text : {" Global Efficiency  \t75", " Global Price       \t0.18",
                           " Global Pattern     \t5", " Demand Charge      \t0"}) {
    w.line(text);
  }
  for (const std::string& row : n.energy) w.line(row);
  w.line();
  w.section("EMITTERS", ";Junction        \tCoefficient");
  for (const NodeIndex i : n.junctions) {
    const Node& node = n.nodes[i];
    if (node.emitter > 0) w.lead(" ").cell(node.id, 16).cell(node.emitter, 3, 0).line();
  }
  w.line();
  w.section("QUALITY", ";Node            \tInitQual");
  w.line();
  w.section("SOURCES", ";Node            \tType        \tQuality     \tPattern");
  w.line();
  w.section("REACTIONS", ";Type     \tPipe/Tank       \tCoefficient");
  w.line();
  w.line();
  w.section("REACTIONS");
}

constexpr const char* kSettings[] = {" Order Bulk            \t1",
                                     " Order Tank            \t1",
                                     " Order Wall            \t1",
                                     " Global Bulk           \t0",
                                     " Global Wall           \t0",
                                     " Limiting Potential    \t0",
                                     " Roughness Correlation \t0",
                                     "",
                                     "[MIXING]",
                                     ";Tank            \tModel",
                                     "",
                                     "[TIMES]",
                                     " Duration           \t24:00 ",
                                     " Hydraulic Timestep \t1:00 ",
                                     " Quality Timestep   \t0:05 ",
                                     " Pattern Timestep   \t1:00 ",
                                     " Pattern Start      \t0:00 ",
                                     " Report Timestep    \t1:00 ",
                                     " Report Start       \t0:00 ",
                                     " Start ClockTime    \t12 am",
                                     " Statistic          \tNone",
                                     "",
                                     "[REPORT]",
                                     " Status             \tNo",
                                     " Summary            \tNo",
                                     " Page               \t0",
                                     "",
                                     "[OPTIONS]",
                                     " Units              \tLPS",
                                     " Headloss           \tH-W",
                                     " Specific Gravity   \t1",
                                     " Viscosity          \t1",
                                     " Trials             \t100",
                                     " Accuracy           \t0.001",
                                     " CHECKFREQ          \t2",
                                     " MAXCHECK           \t10",
                                     " DAMPLIMIT          \t0",
                                     " Unbalanced         \tContinue 10",
                                     " Pattern            \t1",
                                     " Demand Multiplier  \t1.0",
                                     " Emitter Exponent   \t0.5",
                                     " Quality            \tNone mg/L",
                                     " Diffusivity        \t1",
                                     " Tolerance          \t0.01",
                                     ""};

void writeMap(Writer& w, const Network& n) {
  Point low{1e30, 1e30}, high{-1e30, -1e30};
  auto position = [&](const std::string& id, Point p) {
    w.lead("").cell(id, 16).cell(fixed(p.x, 3), 18).cell(fixed(p.y, 3), 18).line();
  };
  w.section("COORDINATES", ";Node            \tX-Coord           \tY-Coord");
  for (const Node& node : n.nodes) {
    position(node.id, node.at);
    low = {std::min(low.x, node.at.x), std::min(low.y, node.at.y)};
    high = {std::max(high.x, node.at.x), std::max(high.y, node.at.y)};
  }
  w.line();
  w.section("VERTICES", ";Link            \tX-Coord           \tY-Coord");
  auto vertices = [&](const auto& links) {
    for (const Link& link : links) {
      for (const Point& p : link.vertices) position(link.id, p);
    }
  };
  vertices(n.pipes);
  vertices(n.pumps);
  vertices(n.valves);
  w.line();
  w.section("LABELS", ";X-Coord             Y-Coord             Label & Anchor Node");
  w.line();
  w.section("BACKDROP");
  w.lead("  DIMENSIONS  \t").cell(fixed(low.x - 100, 3), 18).cell(fixed(low.y - 100, 3), 18);
  w.cell(fixed(high.x + 100, 3), 18).cell(fixed(high.y + 100, 3), 18).line();
  for (const char* text : {" UNITS          \tMeters", " FILE           \t",
                           " OFFSET         \t0.00            \t0.00            ", "", "[END]"}) {
    w.line(text);
  }
}

bool write(const Network& n, const std::string& path, bool crlf) {
  Writer w(path, crlf ? "\r\n" : "\n");
  w.section("TITLE", n.title);
  w.line();
  writeNodes(w, n);
  writeLinks(w, n);
  writePatternsAndCurves(w, n);
  writeRules(w, n);
  for (const char* line : kSettings) w.line(line);
  writeMap(w, n);
  return w.close();
}

// --- terrain and streets -------------------------------------------------------------------------

// A smooth field of waves in random directions, between -1 and 1.
class Waves {
 public:
  Waves(Random& random, double shortest, double longest) {
    for (Wave& wave : waves_) {
      const double k = 2 * kPi / random.range(shortest, longest);
      wave = {direction(random.range(0, 2 * kPi)) * k, random.range(0, 2 * kPi)};
    }
  }
  double at(Point p) const {
    double sum = 0;
    for (const Wave& wave : waves_) sum += std::sin(wave.k.x * p.x + wave.k.y * p.y + wave.phase);
    return sum / static_cast<double>(waves_.size());
  }

 private:
  struct Wave {
    Point k;
    double phase = 0;
  };
  std::array<Wave, 6> waves_;
};

class Terrain {
 public:
  explicit Terrain(Random& random) : waves_(random, 1500, 5000) {}
  void addHill(Point top, double height, double radius) { hills_.push_back({top, height, radius}); }
  double at(Point p) const {
    double z = 180 + 14 * waves_.at(p);
    for (const Hill& hill : hills_) {
      const double d = distance(p, hill.top) / hill.radius;
      if (d < 4) z += hill.height * std::exp(-d * d / 2);
    }
    return z;
  }

 private:
  struct Hill {
    Point top;
    double height, radius;
  };
  Waves waves_;
  std::vector<Hill> hills_;
};

// Sets of nodes of which it is asked whether a further street would join two of them.
class Groups {
 public:
  explicit Groups(std::size_t n) : parent_(n) { std::iota(parent_.begin(), parent_.end(), 0u); }
  bool join(std::size_t a, std::size_t b) {
    a = find(a);
    b = find(b);
    parent_[a] = b;
    return a != b;
  }

 private:
  std::size_t find(std::size_t a) {
    while (parent_[a] != a) a = parent_[a] = parent_[parent_[a]];
    return a;
  }
  std::vector<std::size_t> parent_;
};

// What a settlement offers to whoever connects to it.
struct Settlement {
  std::vector<NodeIndex> nodes, mains;  // mains: on the main cross
  double demand = 0;
  double lowest = 1e9, highest = -1e9;
};

constexpr double kSpacing = 85;  // mean distance of crossings, m

double radiusOf(std::size_t nodes) {
  return kSpacing * std::sqrt(static_cast<double>(nodes) / kPi) * 1.05;
}

// What every town has besides its settlements: sources, tanks and the junctions at them.
constexpr std::size_t kFixedNodes = 11;

class TownMaker {
 public:
  TownMaker(std::size_t nodes, std::uint64_t seed)
      : wanted_(nodes),
        random_(seed),
        terrain_(random_),
        bendX_(random_, 500, 1400),
        bendY_(random_, 500, 1400) {}

  Network make();

 private:
  // Where things stand around a town's centre.
  struct Site {
    Point centre, valley, hill, tank, wells, spring;
    double angle = 0;
    std::size_t streets = 0, valleyNodes = 0, hillNodes = 0, branchNodes = 0;
  };

  struct Crossing {
    int i = 0, j = 0;
    Point base;  // before the streets are bent
    NodeIndex node = 0;
  };
  struct Street {
    std::size_t a = 0, b = 0;
    int rank = 2;  // 0 the main cross, 1 rings, 2 local
  };

  Site placeSite(Point centre, std::size_t nodes);
  NodeIndex buildSite(const Site& site, int number);
  Settlement buildStreets(Point centre, double turn, std::size_t count, const char* prefix);
  std::vector<Crossing> chooseCrossings(Point centre, double turn, std::size_t count);
  void connectStreets(const std::vector<Crossing>& crossings, Settlement& town);
  void addStreet(const Crossing& a, const Crossing& b, int rank, bool spare);
  double supply(const Site& site, const Settlement& town, int number);
  double addTank(const Site& site, const Settlement& town, int number, double mean);
  void addWells(const Site& site, const Settlement& town, int number, double mean, double bottom);
  void addSpring(const Site& site, const Settlement& town, int number, double mean, double bottom);
  void valleyHamlet(const Site& site, const Settlement& town, int number);
  void hillHamlet(const Site& site, const Settlement& town, int number, double townHead);
  void branch(const Site& site, const Settlement& town, double degrees, const char* type,
              const std::string& setting);

  Point bent(Point p) const { return {p.x + 45 * bendX_.at(p), p.y + 45 * bendY_.at(p)}; }
  std::string nextId(const char* prefix) {
    return prefix + std::to_string(++counters_[prefix[0] & 31]);
  }
  Node junctionAt(Point p, const char* prefix);
  void giveDemand(Node& node);
  NodeIndex outermost(const Settlement& town, Point towards) const;
  NodeIndex nearestMain(const Settlement& town, Point p) const;
  Pipe& lay(NodeIndex a, NodeIndex b, double diameter, double roughness);
  Valve& addValve(NodeIndex a, NodeIndex b, const char* type, double diameter, std::string setting);

  std::size_t wanted_;
  Random random_;
  Terrain terrain_;
  Waves bendX_, bendY_;
  Network net_;
  std::array<int, 32> counters_{};
};

Node TownMaker::junctionAt(Point p, const char* prefix) {
  Node node;
  node.id = nextId(prefix);
  node.at = p;
  node.elevation = std::round(terrain_.at(p) * 100) / 100;
  return node;
}

void TownMaker::giveDemand(Node& node) {
  const double kind = random_.unit();
  node.demand = std::round(random_.range(0.03, 0.16) * 1000) / 1000;
  node.pattern = "1";
  if (kind < 0.08) {
    node.demand = 0;  // a mere crossing
    node.pattern = "";
  } else if (kind < 0.2) {
    node.demand = std::round(random_.range(0.08, 0.4) * 100) / 100;
    node.pattern = "2";
  } else if (kind < 0.23) {
    node.demand = 0.1;
    node.pattern = "3";
  } else if (kind < 0.234 && node.id[0] == 'N') {
    node.demand = -0.8;  // water bought from a neighbour; a hamlet could not use it up
    node.pattern = "";
  }
  if (random_.chance(0.006)) node.emitter = std::round(random_.range(0.01, 0.05) * 1000) / 1000;
}

NodeIndex TownMaker::outermost(const Settlement& town, Point towards) const {
  return *std::max_element(town.nodes.begin(), town.nodes.end(), [&](NodeIndex a, NodeIndex b) {
    const Point p = net_.nodes[a].at, q = net_.nodes[b].at;
    return p.x * towards.x + p.y * towards.y < q.x * towards.x + q.y * towards.y;
  });
}

NodeIndex TownMaker::nearestMain(const Settlement& town, Point p) const {
  const std::vector<NodeIndex>& among = town.mains.empty() ? town.nodes : town.mains;
  return *std::min_element(among.begin(), among.end(), [&](NodeIndex a, NodeIndex b) {
    return distance(net_.nodes[a].at, p) < distance(net_.nodes[b].at, p);
  });
}

// A country pipe: it winds a little on longer ways.
Pipe& TownMaker::lay(NodeIndex a, NodeIndex b, double diameter, double roughness) {
  Pipe pipe;
  pipe.id = nextId("C");
  pipe.from = a;
  pipe.to = b;
  const Point p = net_.nodes[a].at, q = net_.nodes[b].at;
  const double d = distance(p, q);
  const int bends = std::min(12, static_cast<int>(d / 140));
  const Point across{-(q.y - p.y) / d, (q.x - p.x) / d};
  Point last = p;
  for (int k = 1; k <= bends; ++k) {
    const double t = k / (bends + 1.0);
    pipe.vertices.push_back(between(p, q, t) +
                            across * (random_.range(-0.05, 0.05) * d * std::sin(kPi * t)));
    pipe.length += distance(last, pipe.vertices.back());
    last = pipe.vertices.back();
  }
  pipe.length += distance(last, q);
  pipe.diameter = diameter;
  pipe.roughness = roughness;
  net_.pipes.push_back(std::move(pipe));
  return net_.pipes.back();
}

Valve& TownMaker::addValve(NodeIndex a, NodeIndex b, const char* type, double diameter,
                           std::string setting) {
  Valve valve;
  valve.id = nextId("V");
  valve.from = a;
  valve.to = b;
  valve.type = type;
  valve.diameter = diameter;
  valve.setting = std::move(setting);
  net_.valves.push_back(std::move(valve));
  return net_.valves.back();
}

// Crossings of an irregular net of lines, taken from the centre outwards until there are enough, so
// that they hang together and the outline is that of a grown town.
std::vector<TownMaker::Crossing> TownMaker::chooseCrossings(Point centre, double turn,
                                                            std::size_t count) {
  const int half = static_cast<int>(std::sqrt(static_cast<double>(count))) + 4;
  const auto side = static_cast<std::size_t>(2 * half + 1);
  std::vector<double> x(side), y(side);
  for (std::vector<double>* lines : {&x, &y}) {
    for (std::size_t k = 1; k < side; ++k)
      (*lines)[k] = (*lines)[k - 1] + random_.range(0.6, 1.4) * kSpacing;
    const double middle = (*lines)[static_cast<std::size_t>(half)];
    for (double& v : *lines) v -= middle;
  }
  auto baseOf = [&](int i, int j) {
    const double u = x[static_cast<std::size_t>(i + half)],
                 v = y[static_cast<std::size_t>(j + half)];
    return centre +
           Point{u * std::cos(turn) - v * std::sin(turn), u * std::sin(turn) + v * std::cos(turn)};
  };
  struct Candidate {
    double cost;
    int i, j;
    bool operator<(const Candidate& o) const { return cost > o.cost; }  // cheapest first
  };
  std::priority_queue<Candidate> front;
  std::vector<bool> seen(side * side);
  auto offer = [&](int i, int j) {
    if (std::abs(i) > half || std::abs(j) > half) return;
    const std::size_t cell =
        static_cast<std::size_t>(i + half) * side + static_cast<std::size_t>(j + half);
    if (seen[cell]) return;
    seen[cell] = true;
    const Point base = baseOf(i, j);
    const double cross = i == 0 || j == 0 ? 0.9 : 1;
    front.push(
        {cross * distance(base, centre) * (1 + 0.35 * bendX_.at(base) + random_.range(0, 0.25)), i,
         j});
  };
  std::vector<Crossing> out;
  offer(0, 0);
  while (out.size() < count && !front.empty()) {
    const Candidate c = front.top();
    front.pop();
    out.push_back(
        {c.i, c.j, baseOf(c.i, c.j) + Point{random_.range(-7, 7), random_.range(-7, 7)}, 0});
    // Outwards only: the main cross then grows along itself alone and has no gap. It feeds the
    // town.
    if (c.i >= 0) offer(c.i + 1, c.j);
    if (c.i <= 0) offer(c.i - 1, c.j);
    if (c.j >= 0) offer(c.i, c.j + 1);
    if (c.j <= 0) offer(c.i, c.j - 1);
  }
  return out;
}

void TownMaker::addStreet(const Crossing& a, const Crossing& b, int rank, bool spare) {
  Pipe pipe;
  pipe.id = nextId("C");
  pipe.from = a.node;
  pipe.to = b.node;
  const Point p = net_.nodes[a.node].at, q = net_.nodes[b.node].at;
  const double sag = distance(bent(between(a.base, b.base, 0.5)), between(p, q, 0.5));
  const int bends = sag < 1.2 ? 0 : sag < 3 ? 1 : 3;
  Point last = p;
  for (int k = 1; k <= bends; ++k) {
    pipe.vertices.push_back(bent(between(a.base, b.base, k / (bends + 1.0))));
    pipe.length += distance(last, pipe.vertices.back());
    last = pipe.vertices.back();
  }
  pipe.length += distance(last, q);
  static constexpr double kLocal[] = {80, 100, 100, 125};
  pipe.diameter = rank == 0 ? 350 : rank == 1 ? 250 : kLocal[random_.below(4)];
  pipe.roughness = rank < 2 ? 130 : random_.chance(0.3) ? 105 : 140;
  pipe.minorLoss = random_.chance(0.15) ? 0.5 : 0;
  // Only a street that closes a loop may be shut without cutting anybody off.
  if (spare && random_.chance(0.02)) pipe.status = random_.chance(0.7) ? "Closed" : "CV";
  net_.pipes.push_back(std::move(pipe));
}

void TownMaker::connectStreets(const std::vector<Crossing>& crossings, Settlement& town) {
  constexpr int kRing = 5;  // every fifth line carries a main
  int reach = 1;
  for (const Crossing& c : crossings)
    reach = std::max({reach, std::abs(c.i) + 1, std::abs(c.j) + 1});
  auto cell = [&](int i, int j) {
    return static_cast<std::size_t>((i + reach) * (2 * reach + 2) + j + reach);
  };
  std::vector<std::size_t> at(cell(reach, reach) + 2, SIZE_MAX);
  for (std::size_t k = 0; k < crossings.size(); ++k) at[cell(crossings[k].i, crossings[k].j)] = k;

  auto rankOf = [](int line) { return line == 0 ? 0 : line % kRing == 0 ? 1 : 2; };
  std::vector<Street> streets;
  for (std::size_t k = 0; k < crossings.size(); ++k) {
    const Crossing& c = crossings[k];
    if (const std::size_t o = at[cell(c.i + 1, c.j)]; o != SIZE_MAX)
      streets.push_back({k, o, rankOf(c.j)});
    if (const std::size_t o = at[cell(c.i, c.j + 1)]; o != SIZE_MAX)
      streets.push_back({k, o, rankOf(c.i)});
    if (c.i == 0 || c.j == 0) town.mains.push_back(c.node);
  }
  for (std::size_t k = streets.size(); k > 1; --k)
    std::swap(streets[k - 1], streets[random_.below(k)]);
  std::stable_sort(streets.begin(), streets.end(),
                   [](const Street& a, const Street& b) { return a.rank < b.rank; });
  Groups groups(crossings.size());
  for (const Street& s : streets) {
    const bool needed = groups.join(s.a, s.b);
    if (needed || s.rank < 2 || random_.chance(0.6)) {
      addStreet(crossings[s.a], crossings[s.b], s.rank, !needed && s.rank == 2);
    }
  }
}

Settlement TownMaker::buildStreets(Point centre, double turn, std::size_t count,
                                   const char* prefix) {
  Settlement town;
  std::vector<Crossing> crossings = chooseCrossings(centre, turn, count);
  for (Crossing& c : crossings) {
    Node node = junctionAt(bent(c.base), prefix);
    giveDemand(node);
    town.demand += node.demand;
    town.lowest = std::min(town.lowest, node.elevation);
    town.highest = std::max(town.highest, node.elevation);
    c.node = net_.addJunction(std::move(node));
    town.nodes.push_back(c.node);
  }
  connectStreets(crossings, town);
  return town;
}

// The terrain is made first and whole: every settlement then finds the hills and valleys it needs.
TownMaker::Site TownMaker::placeSite(Point centre, std::size_t nodes) {
  Site s;
  s.centre = centre;
  s.angle = random_.range(0, 2 * kPi);
  const std::size_t rest = nodes - kFixedNodes;
  s.valleyNodes = rest * 8 / 100 + 4;
  s.hillNodes = rest * 6 / 100 + 4;
  s.branchNodes = rest / 100 + 2;
  s.streets = rest - s.valleyNodes - s.hillNodes - 3 * s.branchNodes;
  const double r = radiusOf(s.streets);
  auto around = [&](double degrees, double away) {
    return centre + direction(s.angle + degrees * kPi / 180) * (r * 1.15 + away);
  };
  // The four ends of the main cross lead to the valley, the tank, the wells and the hill.
  s.valley = around(0, 450 + radiusOf(s.valleyNodes));
  s.hill = around(270, 450 + radiusOf(s.hillNodes));
  s.tank = around(90, 150);
  s.spring = around(90, 900);
  s.wells = around(180, 350);
  terrain_.addHill(centre, 14, r * 0.8);
  terrain_.addHill(s.valley, -48, 330 + radiusOf(s.valleyNodes));
  terrain_.addHill(s.hill, 68, 300 + radiusOf(s.hillNodes));
  terrain_.addHill(s.tank, 36, 220);
  terrain_.addHill(s.spring, 70, 350);
  return s;
}

// Wells with a pump and its standby, a tank above the town and a spring of limited yield. Returns
// the bottom of the tank.
double TownMaker::supply(const Site& site, const Settlement& town, int number) {
  const double mean = std::max(town.demand, 1.0) * 1.15;  // with what the hamlets draw
  const double bottom = addTank(site, town, number, mean);
  addWells(site, town, number, mean, bottom);
  addSpring(site, town, number, mean, bottom);
  return bottom;
}

double TownMaker::addTank(const Site& site, const Settlement& town, int number, double mean) {
  Node tower;
  tower.id = "SERB" + std::to_string(number);
  tower.at = site.tank;
  tower.elevation = std::round(std::max(terrain_.at(site.tank), town.highest + 30));
  const double bottom = tower.elevation;
  Tank tank;
  tank.node = net_.add(std::move(tower));
  tank.initial = 3;
  tank.minimum = 0.5;
  tank.maximum = 5;
  // A third of a day's demand over the working depth.
  tank.diameter = std::round(std::sqrt(mean * 86.4 / 3 / 4.5 * 4 / kPi) * 10) / 10;
  net_.tanks.push_back(tank);
  lay(tank.node, nearestMain(town, site.tank), 400, 130);
  return bottom;
}

void TownMaker::addWells(const Site& site, const Settlement& town, int number, double mean,
                         double bottom) {
  const std::string k = std::to_string(number);
  const double water = std::round(terrain_.at(site.wells) - 14);
  Node wells;
  wells.id = "POZZI" + k;
  wells.at = site.wells;
  wells.elevation = water;
  const NodeIndex source = net_.addReservoir(std::move(wells));
  const NodeIndex station =
      net_.addJunction(junctionAt(between(site.wells, site.centre, 0.04), "S"));
  const double lift = std::round(bottom + 14 - water), flow = std::round(mean * 1.2 * 10) / 10;
  net_.curves.push_back(
      {"PUMP", "P" + k, {{0, lift * 1.3}, {flow, lift}, {flow * 1.8, lift * 0.6}}});
  net_.curves.push_back({"PUMP", "R" + k, {{flow * 0.7, lift}}});
  net_.curves.push_back({"EFFICIENCY", "E" + k, {{flow * 0.3, 42}, {flow, 76}, {flow * 1.6, 58}}});
  Pump duty, standby;
  duty.id = nextId("PO");
  standby.id = nextId("PO");
  duty.from = standby.from = source;
  duty.to = standby.to = station;
  duty.parameters = "HEAD P" + k;
  standby.parameters = "HEAD R" + k;
  // Beside the other one, or the two symbols would cover each other.
  const Point a = net_.nodes[source].at, b = net_.nodes[station].at;
  standby.vertices.push_back(between(a, b, 0.3) +
                             Point{-(b.y - a.y), b.x - a.x} * (12 / distance(a, b)));
  net_.statuses.push_back({standby.id, "Closed"});
  net_.controls.push_back("LINK " + duty.id + " CLOSED IF NODE SERB" + k + " ABOVE 4.8");
  net_.controls.push_back("LINK " + duty.id + " OPEN IF NODE SERB" + k + " BELOW 3.5");
  const std::array<Row, 3> energy = {
      Row{"Efficiency", "E" + k}, {"Price     ", "0.21"}, {"Pattern   ", "5"}};
  for (const Row& row : energy) {
    net_.energy.push_back(" Pump \t" + duty.id + std::string(16 - duty.id.size(), ' ') + "\t" +
                          row.id + "\t" + row.value);
  }
  net_.pumps.push_back(std::move(duty));
  net_.pumps.push_back(std::move(standby));
  lay(station, nearestMain(town, site.wells), 350, 130).status = "CV";
}

void TownMaker::addSpring(const Site& site, const Settlement& town, int number, double mean,
                          double bottom) {
  Node spring;
  spring.id = "SORG" + std::to_string(number);
  spring.at = site.spring;
  spring.elevation = std::round(std::max(bottom + 22, terrain_.at(site.spring)));
  const NodeIndex origin = net_.addReservoir(std::move(spring));
  Node chamber = junctionAt(between(site.spring, site.centre, 0.12), "S");
  // Below the tank's level, which is the pressure behind the valve.
  chamber.elevation = std::round(std::min(chamber.elevation, bottom - 10));
  Node outlet = junctionAt(chamber.at + direction(site.angle) * 14, "S");
  outlet.elevation = chamber.elevation;
  const NodeIndex before = net_.addJunction(std::move(chamber)),
                  after = net_.addJunction(std::move(outlet));
  lay(origin, before, 200, 130);
  addValve(before, after, "FCV", 150, plain(mean * 0.2, 2));
  lay(after, nearestMain(town, net_.nodes[after].at), 200, 130);
}

// A metered main down the slope to a hamlet behind a pressure reducing valve.
void TownMaker::valleyHamlet(const Site& site, const Settlement& town, int number) {
  const Settlement hamlet = buildStreets(site.valley, site.angle + 0.5, site.valleyNodes, "FV");
  if (number == 1) {  // meters of one make: all share the first hamlet's curve
    net_.curves.push_back(
        {"HEADLOSS", kMeterCurve, {{0, 0}, {hamlet.demand, 0.4}, {hamlet.demand * 4, 4}}});
  }
  const NodeIndex gate = nearestMain(town, site.valley);
  const Point from = net_.nodes[gate].at;
  const NodeIndex entry = nearestMain(hamlet, from);
  const Point to = net_.nodes[entry].at;
  const double d = distance(from, to);
  const NodeIndex metered = net_.addJunction(junctionAt(between(from, to, 16 / d), "S"));
  const NodeIndex high = net_.addJunction(junctionAt(between(from, to, 0.8), "S"));
  const NodeIndex low = net_.addJunction(junctionAt(between(from, to, 0.8 + 16 / d), "S"));
  addValve(gate, metered, "GPV", 150, kMeterCurve);
  lay(metered, high, 150, 130);
  addValve(high, low, "PRV", 125, "35");
  lay(low, entry, 150, 130);
}

// A pump of constant power fills a tower above a hamlet that the town's tank cannot reach.
void TownMaker::hillHamlet(const Site& site, const Settlement& town, int number, double townHead) {
  const Settlement hamlet = buildStreets(site.hill, site.angle - 0.4, site.hillNodes, "FC");
  const double mean = std::max(hamlet.demand, 0.3);
  Node tower;
  tower.id = "TORRE" + std::to_string(number);
  tower.at = net_.nodes[hamlet.nodes.front()].at + Point{28, 24};
  tower.elevation = std::round(hamlet.highest + 20);
  Tank tank;
  tank.initial = 2.5;
  tank.minimum = 0.3;
  tank.maximum = 4;
  tank.volumeCurve = "V" + std::to_string(number);
  // A bowl: narrow at the foot. Most of a day's demand in all.
  const double volume = std::ceil(mean * 70);
  tank.diameter = std::round(std::sqrt(volume / 4 * 4 / kPi) * 10) / 10;
  net_.curves.push_back({"VOLUME",
                         tank.volumeCurve,
                         {{0, 0}, {1, volume * 0.15}, {2.5, volume * 0.55}, {4, volume}}});
  const double lift = tower.elevation + 4 - townHead + 8;
  tank.node = net_.add(std::move(tower));
  lay(tank.node, hamlet.nodes.front(), 150, 130);
  net_.tanks.push_back(std::move(tank));

  const NodeIndex suction = nearestMain(town, site.hill);
  const NodeIndex entry = nearestMain(hamlet, net_.nodes[suction].at);
  const Point a = net_.nodes[suction].at, b = net_.nodes[entry].at;
  const NodeIndex delivery = net_.addJunction(junctionAt(between(a, b, 18 / distance(a, b)), "S"));
  Pump pump;
  pump.id = nextId("PO");
  pump.from = suction;
  pump.to = delivery;
  // It runs some thirteen hours a day, and not against a full tower.
  net_.controls.push_back("LINK " + pump.id + " CLOSED IF NODE TORRE" + std::to_string(number) +
                          " ABOVE 3.7");
  pump.parameters = "POWER " + plain(0.00981 * mean * 2 * lift, 2) + "\tSPEED 1\tPATTERN 4";
  net_.pumps.push_back(std::move(pump));
  lay(delivery, entry, 150, 130);
}

// Houses along a country road, behind a valve.
void TownMaker::branch(const Site& site, const Settlement& town, double degrees, const char* type,
                       const std::string& setting) {
  double angle = site.angle + degrees * kPi / 180;
  NodeIndex last = outermost(town, direction(angle));
  for (std::size_t k = 0; k < site.branchNodes; ++k) {
    const double step = k == 0 ? 16 : random_.range(70, 150);
    angle += random_.range(-0.25, 0.25);
    Node node = junctionAt(net_.nodes[last].at + direction(angle) * step, "Z");
    if (k > 0) giveDemand(node);
    node.demand = std::max(node.demand, 0.0);
    const NodeIndex next = net_.addJunction(std::move(node));
    if (k == 0) {
      addValve(last, next, type, 100, setting);
    } else {
      lay(last, next, 100, 140);
    }
    last = next;
  }
}

// Returns a node where a neighbouring town may connect.
NodeIndex TownMaker::buildSite(const Site& site, int number) {
  const Settlement town = buildStreets(site.centre, site.angle, site.streets, "N");
  const double bottom = supply(site, town, number);
  valleyHamlet(site, town, number);
  hillHamlet(site, town, number, bottom);
  branch(site, town, 45, "PSV", "20");
  branch(site, town, 135, "PBV", "6");
  branch(site, town, 225, "TCV", "15");
  return town.nodes.front();
}

Network TownMaker::make() {
  constexpr std::size_t kPerTown =
      1100;  // larger places are several towns, each with its own supply
  const std::size_t count = std::max<std::size_t>(1, (wanted_ + kPerTown / 2) / kPerTown);
  const std::size_t across =
      static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
  const double pitch = 3.6 * radiusOf(wanted_ / count) + 2600;
  net_.title = "Rete di esempio di " + std::to_string(wanted_) + " nodi";
  std::vector<Site> sites;
  for (std::size_t k = 0; k < count; ++k) {
    const Point cell{static_cast<double>(k % across), static_cast<double>(k / across)};
    const Point shift{random_.range(-250, 250), random_.range(-250, 250)};
    sites.push_back(placeSite(Point{685000, 4850000} + cell * pitch + shift,
                              wanted_ / count + (k < wanted_ % count ? 1 : 0)));
  }
  NodeIndex before = 0;
  for (std::size_t k = 0; k < count; ++k) {
    const NodeIndex here = buildSite(sites[k], static_cast<int>(k + 1));
    // For emergencies only: the towns are zones of their own.
    if (k > 0) lay(before, here, 150, 130).status = "Closed";
    before = here;
  }
  return std::move(net_);
}

// --- the plain grid ------------------------------------------------------------------------------

class GridMaker {
 public:
  GridMaker(std::size_t nodes, std::uint64_t seed)
      : random_(seed),
        reservoirs_(1 + nodes / 2000),
        tanks_(1 + nodes / 1000),
        valves_(1 + nodes / 1000),
        junctions_(nodes - reservoirs_ - tanks_ - valves_),
        columns_(static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(junctions_))))) {}

  Network make() {
    net_.title =
        "Griglia di " + std::to_string(junctions_ + reservoirs_ + tanks_ + valves_) + " nodi";
    net_.nodes.reserve(junctions_ + reservoirs_ + tanks_ + valves_);
    net_.junctions.reserve(junctions_ + valves_);
    net_.pipes.reserve(junctions_ * 3 / 2);
    addJunctions();
    addPipes();
    addSources();
    addValves();
    net_.curves.push_back({"PUMP", "1", {{50, 65}}});
    net_.curves.push_back({"HEADLOSS", kMeterCurve, {{0, 0}, {10, 0.5}, {50, 4}}});
    return std::move(net_);
  }

 private:
  Node nodeAt(std::string id, Point p) {
    Node node;
    node.id = std::move(id);
    node.at = p;
    node.elevation = 12 + 6 * std::sin(p.x / 900) * std::cos(p.y / 700);
    return node;
  }

  void addJunctions() {
    for (std::size_t i = 0; i < junctions_; ++i) {
      const Point at{1000 + 100 * static_cast<double>(i % columns_) + random_.range(-10, 10),
                     2000 + 100 * static_cast<double>(i / columns_) + random_.range(-10, 10)};
      Node node = nodeAt("J" + std::to_string(i + 1), at);
      node.demand = i % 5 == 0 ? 0 : 0.01 + 0.001 * static_cast<double>(random_.below(20));
      node.pattern = i % 3 == 0 ? "" : i % 3 == 1 ? "1" : "2";
      if (i % 401 == 9) node.emitter = 0.01;
      net_.addJunction(std::move(node));
    }
  }

  void addPipe(NodeIndex a, NodeIndex b, double diameter) {
    Pipe pipe;
    pipe.id = "P" + std::to_string(net_.pipes.size() + 1);
    pipe.from = a;
    pipe.to = b;
    const Point p = net_.nodes[a].at, q = net_.nodes[b].at;
    pipe.length = distance(p, q);
    if (net_.pipes.size() % 10 == 3) {
      pipe.vertices.push_back(between(p, q, 0.5) + Point{-(q.y - p.y), q.x - p.x} * 0.12);
      pipe.length = 2 * distance(p, pipe.vertices.front());
    }
    pipe.diameter = diameter;
    pipe.roughness = 100 + 10 * static_cast<double>(random_.below(4));
    net_.pipes.push_back(std::move(pipe));
  }

  void addPipes() {
    for (std::size_t i = 0; i < junctions_; ++i) {
      const std::size_t row = i / columns_, column = i % columns_;
      if (column + 1 < columns_ && i + 1 < junctions_) addPipe(i, i + 1, row % 8 == 0 ? 300 : 150);
      if (column % 4 == 0 && i + columns_ < junctions_)
        addPipe(i, i + columns_, column % 16 == 0 ? 400 : 250);
    }
  }

  // The k-th of n junctions spread over the grid, on a column that carries a main.
  NodeIndex spread(std::size_t k, std::size_t n) const {
    const std::size_t i = (2 * k + 1) * junctions_ / (2 * n);
    return i - i % columns_ % 4;
  }

  void addSources() {
    for (std::size_t k = 0; k < reservoirs_; ++k) {
      const NodeIndex at = spread(k, reservoirs_);
      Node node = nodeAt("R" + std::to_string(k + 1), net_.nodes[at].at + Point{-35, -45});
      node.elevation = 5;
      Pump pump;
      pump.id = "PU" + std::to_string(k + 1);
      pump.from = net_.addReservoir(std::move(node));
      pump.to = at;
      pump.parameters = "HEAD 1";
      net_.pumps.push_back(std::move(pump));
    }
    for (std::size_t k = 0; k < tanks_; ++k) {
      const NodeIndex at = spread(k, tanks_ + 1);
      Node node = nodeAt("T" + std::to_string(k + 1), net_.nodes[at].at + Point{40, 30});
      node.elevation = 62;
      Tank tank;
      tank.node = net_.add(std::move(node));
      tank.initial = 3.5;
      tank.minimum = 0.5;
      tank.maximum = 6;
      tank.diameter = 18;
      net_.tanks.push_back(tank);
      addPipe(at, tank.node, 300);
    }
  }

  void addValves() {
    constexpr std::pair<const char*, const char*> kKinds[] = {{"PRV", "30"}, {"TCV", "5"},
                                                              {"FCV", "10"}, {"PSV", "5"},
                                                              {"PBV", "2"},  {"GPV", kMeterCurve}};
    for (std::size_t k = 0; k < valves_; ++k) {
      const NodeIndex at = (2 * k + 1) * junctions_ / (2 * valves_);
      Node leaf = nodeAt("L" + std::to_string(k + 1), net_.nodes[at].at + Point{30, -40});
      leaf.demand = 0.1;
      Valve valve;
      valve.id = "V" + std::to_string(k + 1);
      valve.from = at;
      valve.to = net_.addJunction(std::move(leaf));
      valve.diameter = 100;
      valve.type = kKinds[k % 6].first;
      valve.setting = kKinds[k % 6].second;
      net_.valves.push_back(std::move(valve));
    }
  }

  Random random_;
  std::size_t reservoirs_, tanks_, valves_, junctions_, columns_;
  Network net_;
};

constexpr std::size_t kSmallestTown = 60, kSmallestGrid = 12, kLargest = 5000000;

int usage() {
  std::cerr << "usage: make_network town|grid N SEED FILE [--crlf]\n"
               "       N: nodes in all, from 60 (town) or 12 (grid)\n";
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool crlf = arguments.size() == 5 && arguments[4] == "--crlf";
  if (arguments.size() != (crlf ? 5u : 4u)) return usage();
  const bool town = arguments[0] == "town";
  const std::size_t nodes = std::strtoull(arguments[1].c_str(), nullptr, 10);
  const std::uint64_t seed = std::strtoull(arguments[2].c_str(), nullptr, 10);
  if (!town && arguments[0] != "grid") return usage();
  if (nodes < (town ? kSmallestTown : kSmallestGrid) || nodes > kLargest) return usage();
  const Network network = town ? TownMaker(nodes, seed).make() : GridMaker(nodes, seed).make();
  if (!write(network, arguments[3], crlf)) {
    std::cerr << "make_network: cannot write " << arguments[3] << "\n";
    return 1;
  }
  return 0;
}
