#include "bench/make_grid.h"

#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

namespace bench {

namespace {

struct Place {
  double x = 0, y = 0;
  double elevation() const { return 12 + 6 * std::sin(x / 900) * std::cos(y / 700); }
};

// What a node's row and its coordinates need follows from its number alone, so nothing is kept but
// the text of the sections that the file has further down.
class Grid {
 public:
  explicit Grid(std::size_t nodes)
      : reservoirs_(1 + nodes / 2000),
        tanks_(1 + nodes / 1000),
        valves_(1 + nodes / 1000),
        junctions_(nodes - reservoirs_ - tanks_ - valves_),
        columns_(static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(junctions_))))) {}

  std::string text() {
    line("[TITLE]\nGriglia di %zu nodi\n\n[JUNCTIONS]",
         junctions_ + reservoirs_ + tanks_ + valves_);
    writeJunctions();
    writeSources();
    writePipes();
    writePumpsAndValves();
    line("\n[EMITTERS]");
    for (std::size_t i = 9; i < junctions_; i += 401) line(" J%zu\t0.01\t;", i + 1);
    line("\n[PATTERNS]\n 1\t0.4\t0.8\t1.3\t1.5\n 2\t0.2\t0.9\t1.9\t1.0");
    line(
        "\n[CURVES]\n;PUMP:\n 1\t50\t65\n;HEADLOSS:\n 0.000\t0\t0\n 0.000\t10\t0.5\n 0.000\t50\t4");
    line("\n[TIMES]\n Duration\t24:00\n\n[OPTIONS]\n Units\tLPS\n Headloss\tH-W\n\n[COORDINATES]");
    out_ += coordinates_;
    line("\n[VERTICES]");
    out_ += vertices_;
    line("\n[END]");
    return std::move(out_);
  }

 private:
  static void append(std::string& to, const char* format, std::va_list arguments) {
    char row[256];
    const int n = std::vsnprintf(row, sizeof row, format, arguments);
    to.append(row, static_cast<std::size_t>(n)) += '\n';
  }
  __attribute__((format(printf, 2, 3))) void line(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    append(out_, format, arguments);
    va_end(arguments);
  }
  __attribute__((format(printf, 2, 3))) static void add(std::string& to, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    append(to, format, arguments);
    va_end(arguments);
  }
  void place(const char* prefix, std::size_t number, Place at) {
    add(coordinates_, " %s%zu\t%.3f\t%.3f", prefix, number, at.x, at.y);
  }

  // Streets are never quite straight: up to ten metres beside the grid, by the junction's number.
  Place junction(std::size_t i) const {
    const std::uint64_t mixed = (i + 1) * 0x9E3779B97F4A7C15u;
    const auto off = [&](int shift) {
      return static_cast<double>((mixed >> shift) % 2001) / 100 - 10;
    };
    return {1000 + 100 * static_cast<double>(i % columns_) + off(17),
            2000 + 100 * static_cast<double>(i / columns_) + off(40)};
  }
  // The k-th of n junctions spread over the grid, on a column that carries a main.
  std::size_t spread(std::size_t k, std::size_t n) const {
    const std::size_t i = (2 * k + 1) * junctions_ / (2 * n);
    return i - i % columns_ % 4;
  }
  std::size_t valveAt(std::size_t k) const { return (2 * k + 1) * junctions_ / (2 * valves_); }

  void writeJunctions() {
    for (std::size_t i = 0; i < junctions_; ++i) {
      const Place at = junction(i);
      const double demand = i % 5 == 0 ? 0 : 0.01 + 0.001 * static_cast<double>(i * 7 % 20);
      line(" J%zu\t%.2f\t%.3f\t%s\t;", i + 1, at.elevation(), demand,
           i % 3 == 0   ? ""
           : i % 3 == 1 ? "1"
                        : "2");
      place("J", i + 1, at);
    }
    for (std::size_t k = 0; k < valves_; ++k) {
      const Place at = junction(valveAt(k));
      line(" L%zu\t%.2f\t0.1\t\t;", k + 1, at.elevation());
      place("L", k + 1, {at.x + 30, at.y - 40});
    }
  }

  void writeSources() {
    line("\n[RESERVOIRS]");
    for (std::size_t k = 0; k < reservoirs_; ++k) {
      const Place at = junction(spread(k, reservoirs_));
      line(" R%zu\t5\t\t;", k + 1);
      place("R", k + 1, {at.x - 35, at.y - 45});
    }
    line("\n[TANKS]");
    for (std::size_t k = 0; k < tanks_; ++k) {
      const Place at = junction(spread(k, tanks_ + 1));
      line(" T%zu\t62\t3.5\t0.5\t6\t18\t0\t\t;", k + 1);
      place("T", k + 1, {at.x + 40, at.y + 30});
    }
  }

  // Every tenth pipe goes round something: one vertex beside its middle.
  void writePipe(std::size_t from, const char* toPrefix, std::size_t to, Place b, int diameter) {
    const Place a = junction(from);
    double length = std::hypot(b.x - a.x, b.y - a.y);
    if (++pipes_ % 10 == 4) {
      const Place v{(a.x + b.x) / 2 - (b.y - a.y) * 0.12, (a.y + b.y) / 2 + (b.x - a.x) * 0.12};
      length = 2 * std::hypot(v.x - a.x, v.y - a.y);
      add(vertices_, " P%zu\t%.3f\t%.3f", pipes_, v.x, v.y);
    }
    line(" P%zu\tJ%zu\t%s%zu\t%.2f\t%d\t%zu\t0\tOpen\t;", pipes_, from + 1, toPrefix, to, length,
         diameter, 100 + 10 * (pipes_ % 4));
  }

  void writePipes() {
    line("\n[PIPES]");
    for (std::size_t i = 0; i < junctions_; ++i) {
      const std::size_t row = i / columns_, column = i % columns_;
      if (column + 1 < columns_ && i + 1 < junctions_) {
        writePipe(i, "J", i + 2, junction(i + 1), row % 8 == 0 ? 300 : 150);
      }
      if (column % 4 == 0 && i + columns_ < junctions_) {
        writePipe(i, "J", i + columns_ + 1, junction(i + columns_), column % 16 == 0 ? 400 : 250);
      }
    }
    for (std::size_t k = 0; k < tanks_; ++k) {
      const std::size_t at = spread(k, tanks_ + 1);
      const Place p = junction(at);
      writePipe(at, "T", k + 1, {p.x + 40, p.y + 30}, 300);
    }
  }

  void writePumpsAndValves() {
    line("\n[PUMPS]");
    for (std::size_t k = 0; k < reservoirs_; ++k) {
      line(" PU%zu\tR%zu\tJ%zu\tHEAD 1\t;", k + 1, k + 1, spread(k, reservoirs_) + 1);
    }
    line("\n[VALVES]");
    constexpr const char* kKinds[] = {"PRV\t30", "TCV\t5", "FCV\t10",
                                      "PSV\t5",  "PBV\t2", "GPV\t0.000"};
    for (std::size_t k = 0; k < valves_; ++k) {
      line(" V%zu\tJ%zu\tL%zu\t100\t%s\t0\t;", k + 1, valveAt(k) + 1, k + 1, kKinds[k % 6]);
    }
  }

  std::size_t reservoirs_, tanks_, valves_, junctions_, columns_;
  std::size_t pipes_ = 0;
  std::string out_, coordinates_, vertices_;
};

}  // namespace

bool makeGrid(std::size_t nodes, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  file << Grid(nodes).text();
  return static_cast<bool>(file.flush());
}

}  // namespace bench
