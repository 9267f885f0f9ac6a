#include "bench/make_report.h"

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

void head(std::string& out, const char* kind, int hour, const char* columns) {
  out += "\n  " + std::string(kind) + " Results at " + std::to_string(hour) + ":00:00 hrs:\n  " +
         std::string(50, '-') + "\n  " + columns +
         "\n                      LPS         m         m\n  " + std::string(50, '-');
}

}  // namespace

platform::Result<void> makeReport(const std::string& inp, int periods, const std::string& path) {
  auto text = platform::readFile(inp);
  if (!text) return platform::Error{text.error()};
  vessora::EpaNetwork network;
  vessora::EpaSettings settings;
  vessora::parseInp(std::move(*text), network, settings);
  auto file = platform::SaveFile::begin(path);
  if (!file) return platform::Error{file.error()};
  std::string out = "  Page 1                                    Mon Jan  1 00:00:00 2024\n";
  for (int hour = 0; hour < periods; ++hour) {
    head(out, "Node", hour, "Node             Demand      Head  Pressure");
    int i = 0;
    const auto node = [&](std::u16string_view id) {
      ++i;
      row(out, id, i % 37 * 0.05, 60 + i % 41, 20 + (i * 7 + hour) % 53);
    };
    for (const auto& n : network.juncs) node(n.id);
    for (const auto& n : network.resvs) node(n.id);
    for (const auto& n : network.tanks) node(n.id);
    out += "\n  \n  ";
    head(out, "Link", hour, "Link               Flow  Velocity  Headloss");
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

}  // namespace bench
