// What the tests of written and read network files share.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "module/inp/inp_reader.h"
#include "module/network/records.h"
#include "platform/text.h"

namespace vessora {

inline std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Tests that write files: each has a folder of its own.
class NetworkFiles : public ::testing::Test {
 protected:
  Notices notices;  // of what was written and read

  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "vessora-inp-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::filesystem::path file(const std::string& name) const { return folder_ / name; }
  std::u16string path(const std::string& name) const {
    return platform::widen(file(name).string());
  }
  std::string content(const std::string& name) const { return bytesOf(file(name)); }

  // Compares a written file with tests/inp/golden/NAME; with UPDATE_GOLDEN set it becomes the
  // golden file, to be reviewed as a difference.
  void expectGolden(const std::string& name) const {
    const auto golden = std::filesystem::path(VESSORA_TESTS_DIR) / "inp" / "golden" / name;
    if (std::getenv("UPDATE_GOLDEN") != nullptr) {
      std::filesystem::copy_file(file(name), golden,
                                 std::filesystem::copy_options::overwrite_existing);
    }
    EXPECT_EQ(content(name), bytesOf(golden)) << golden;
  }

 private:
  std::filesystem::path folder_;
};

struct Parsed {
  explicit Parsed(const std::string& text) { parseInp(text, network, settings); }
  EpaNetwork network;
  EpaSettings settings;
};

// A network that has every form of row.
inline EpaNetwork fullNetwork() {
  EpaNetwork n;
  const auto junction = [&n](const char16_t* id, const char16_t* emitter, const char16_t* pattern) {
    EpaJunc& j = n.juncs.emplace_back();
    j.id = id;
    j.elev = u"12.5";
    j.demand = u"0.150";
    j.emitter = emitter;
    j.pattern = pattern;
  };
  junction(u"J1", u"0.000", u"day");
  junction(u"J2", u"0.500", u"");
  junction(u"nineteen-characters", u"", u"\n");
  junction(u"an-id-longer-than-its-column", u"abc", u"a-pattern-longer-than-its-column");
  junction(u"Città", u"2e1 x", u"\n");

  for (const char16_t* pattern : {u"", u"head"}) {
    EpaResv& r = n.resvs.emplace_back();
    r.id = *pattern ? u"R2" : u"R1";
    r.head = u"120.000";
    r.pattern = pattern;
  }
  for (const char16_t* curve : {u"", u"vol"}) {
    EpaTank& t = n.tanks.emplace_back();
    t.id = *curve ? u"T2" : u"T1";
    t.elev = u"80";
    t.initLevel = u"2";
    t.minLevel = u"0.5";
    t.maxLevel = u"4";
    t.diameter = u"10";
    t.minVol = u"1";
    t.volCurve = curve;
  }
  for (const char16_t* id : {u"P1", u""}) {
    EpaPipe& p = n.pipes.emplace_back();
    p.id = id;
    p.node1 = u"R1";
    p.node2 = u"J1";
    p.length = u"100.250";
    p.diameter = u"150.000";
    p.roughness = u"130.000";
    p.minorLoss = u"0.000";
    p.status = *id ? u"Open" : u"CV";
  }
  const auto pump = [&n](const char16_t* id, const char16_t* curve, const char16_t* power,
                         const char16_t* speed, const char16_t* pattern) {
    EpaPump& p = n.pumps.emplace_back();
    p.id = id;
    p.node1 = u"T1";
    p.node2 = u"J2";
    p.headCurve = curve;
    p.power = power;
    p.speed = speed;
    p.speedPattern = pattern;
    p.status = u"Open";
  };
  pump(u"C", u"c1", u"", u"", u"p1");
  pump(u"CS", u"c1", u"", u"1.2", u"");
  pump(u"CSP", u"c1", u"", u"1.2", u"p1");
  pump(u"W", u"", u"5.000", u"", u"p1");
  pump(u"WS", u"", u"5.000", u"1.2", u"");
  pump(u"WSP", u"", u"5.000", u"1.2", u"p1");
  pump(u"CW", u"c1", u"5.000", u"", u"p1");
  pump(u"CWSP", u"c1", u"5.000", u"1.2", u"p1");
  pump(u"none", u"", u"", u"", u"p1");
  pump(u"noneSP", u"", u"", u"1.2", u"p1");
  n.pumps[0].effCurve = u"eff";
  n.pumps[0].price = u"0.120";
  n.pumps[0].pricePattern = u"night";
  n.pumps[1].price = u"0.130";
  n.pumps[2].status = u"";
  n.pumps[3].status = u"Closed";
  for (const char16_t* status : {u"None", u"Open", u"", u"Nonesuch"}) {
    EpaValv& v = n.valves.emplace_back();
    v.id = *status ? status : u"V-empty";
    v.node1 = u"J1";
    v.node2 = u"J2";
    v.diameter = u"100.000";
    v.type = u"PRV";
    v.setting = u"0.000";
    v.minorLoss = u"0.000";
    v.status = status;
  }
  for (const char16_t* id : {u"J1", u"J2"}) {
    EpaCoord& c = n.coords.emplace_back();
    c.id = id;
    c.x = u"1650000.125";
    c.y = u"-12.000";
  }
  for (const char16_t* x : {u"1.000", u"2.000"}) {
    EpaCoord& c = n.vertices.emplace_back();
    c.id = u"P1";
    c.x = x;
    c.y = u"3.000";
  }
  n.curves.push_back({u"c1", u"PUMP", {{10, 20}}});
  n.curves.push_back({u"vol", u"VOLUME", {}});
  n.curves.push_back({u"loss", u"HEADLOSS", {{-0.5, 1234567.1234567}, {1e-7, 2}}});
  n.patterns.push_back({u"day", {1, 2}});
  n.patterns.push_back({u"night", {0.0625}});
  return n;
}

}  // namespace vessora
