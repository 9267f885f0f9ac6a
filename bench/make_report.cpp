#include "bench/make_report.h"

#include <cstdint>
#include <cstdio>

#include "module/inp/inp_reader.h"
#include "platform/files.h"
#include "platform/text.h"

namespace bench {
namespace {

// One row: an id in fifteen places, then numbers of two decimals in ten.
void row(std::string& out, std::u16string_view id, double a, double b, double c) {
  char text[128];
  const std::string name = platform::narrow(id);
  const int n =
      std::snprintf(text, sizeof text, "\n  %-15s%10.2f%10.2f%10.2f", name.c_str(), a, b, c);
  out.append(text, static_cast<std::size_t>(n));
}

void head(std::string& out, const char* kind, int hour, const char* columns, const char* units) {
  const std::string rule = "\n  " + std::string(46, '-');
  out += "\n  " + std::string(kind) + " Results at " + std::to_string(hour) + ":00:00 hrs:" + rule +
         "\n                 " + columns + "\n  " + kind + "           " + units + rule;
}

platform::Result<void> readGrid(const std::string& inp, vessora::EpaNetwork& network) {
  auto text = platform::readFile(inp);
  if (!text) return platform::Error{text.error()};
  vessora::EpaSettings settings;
  vessora::parseInp(std::move(*text), network, settings);
  return {};
}

// Words of four bytes, the lowest byte first.
void put(std::string& out, std::int32_t value) {
  const auto word = static_cast<std::uint32_t>(value);
  for (int shift = 0; shift < 32; shift += 8) out += static_cast<char>(word >> shift & 255);
}
void put(std::string& out, std::u16string_view id) {
  std::string name = platform::narrow(id);
  name.resize(32, '\0');
  out += name;
}

}  // namespace

platform::Result<void> makeReport(const std::string& inp, int periods, const std::string& path) {
  vessora::EpaNetwork network;
  if (auto read = readGrid(inp, network); !read) return read;
  auto file = platform::SaveFile::begin(path);
  if (!file) return platform::Error{file.error()};
  std::string out = "  Page 1                                    Mon Jan  1 00:00:00 2024\n";
  for (int hour = 0; hour < periods; ++hour) {
    head(out, "Node", hour, "    Demand      Head  Pressure", "       L/s         m    METERS");
    int i = 0;
    const auto node = [&](std::u16string_view id) {
      ++i;
      row(out, id, i % 37 * 0.05, 60 + i % 41, 20 + (i * 7 + hour) % 53);
    };
    for (const auto& n : network.juncs) node(n.id);
    for (const auto& n : network.resvs) node(n.id);
    for (const auto& n : network.tanks) node(n.id);
    out += "\n  \n  ";
    head(out, "Link", hour, "      Flow  Velocity  Headloss", "       L/s       m/s    /1000m");
    const auto link = [&](std::u16string_view id) {
      ++i;
      row(out, id, i % 61 * 0.3, (i + hour) % 19 * 0.1, i % 23 * 0.2);
    };
    for (const auto& l : network.pipes) link(l.id);
    for (const auto& l : network.pumps) link(l.id);
    for (const auto& l : network.valves) link(l.id);
    out += "\n  \n  ";
    file->write(out);
    out.clear();
  }
  return file->commit(false);
}

platform::Result<void> makeOutput(const std::string& inp, int periods, const std::string& path) {
  constexpr std::int32_t kMagic = 516114521, kLitresPerSecond = 5, kMetres = 2, kHour = 3600;
  vessora::EpaNetwork network;
  if (auto read = readGrid(inp, network); !read) return read;
  auto file = platform::SaveFile::begin(path);
  if (!file) return platform::Error{file.error()};
  const auto tanks = static_cast<std::int32_t>(network.resvs.size() + network.tanks.size());
  const std::int32_t nodes = static_cast<std::int32_t>(network.juncs.size()) + tanks;
  const auto pumps = static_cast<std::int32_t>(network.pumps.size());
  const auto valves = static_cast<std::int32_t>(network.valves.size());
  const std::int32_t links = static_cast<std::int32_t>(network.pipes.size()) + pumps + valves;
  std::string out;
  for (const std::int32_t head : {kMagic, 20012, nodes, tanks, links, 0, valves, 0, 0,
                                  kLitresPerSecond, kMetres, 0, 0, kHour, (periods - 1) * kHour}) {
    put(out, head);
  }
  out.append(3 * 80 + 2 * 260 + 2 * 32, '\0');
  for (const auto& n : network.juncs) put(out, n.id);
  for (const auto& n : network.resvs) put(out, n.id);
  for (const auto& n : network.tanks) put(out, n.id);
  for (const auto& l : network.pipes) put(out, l.id);
  for (const auto& l : network.pumps) put(out, l.id);
  for (const auto& l : network.valves) put(out, l.id);
  for (std::int32_t i = 0; i < 2 * links; ++i) put(out, i % nodes + 1);
  for (std::int32_t i = 0; i < links; ++i) put(out, 1);
  for (std::int32_t i = 0; i < tanks; ++i) put(out, nodes - i);
  for (std::int32_t i = 0; i < tanks + nodes + 2 * links + 1; ++i) put(out, 0);
  for (int hour = 0; hour < periods; ++hour) {
    // A number near 1 for each, by its bits.
    for (std::int32_t i = 0; i < 4 * nodes + 8 * links; ++i) put(out, 0x3F800000 + (i * 7 + hour));
    file->write(out);
    out.clear();
  }
  for (int i = 0; i < 4; ++i) put(out, 0);
  for (const std::int32_t end : {periods, 0, kMagic}) put(out, end);
  file->write(out);
  return file->commit(false);
}

}  // namespace bench
