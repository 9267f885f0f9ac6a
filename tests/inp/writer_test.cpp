#include "module/inp/csv_writer.h"
#include "module/inp/inp_writer.h"
#include "tests/inp/inp_testing.h"

namespace vessora {
namespace {

EpaSettings unusualSettings() {
  EpaSettings s;
  s.name = u"Borgo à";
  s.flowUnits = u"GPM";  // this and the next three never reach a file
  s.qualityUnits = u"ug/L";
  s.statistic = u"Maximum";
  s.durationDays = 2;
  s.headloss = u"M-C";
  s.trials = 100;
  s.accuracy = 0.0000004;
  s.qualityParam = u"Chlorine";
  s.wallOrder = u"Zero";
  s.globalBulk = -0.5;
  s.globalPrice = 0.0005;
  s.energyPattern = u"night";
  s.duration = u"49:30";
  return s;
}

TEST_F(NetworkFiles, everyFormOfRow) {
  ASSERT_EQ(WriteNetworkInp(path("network.inp"), fullNetwork(), unusualSettings(), notices), 1);
  expectGolden("network.inp");
}

TEST_F(NetworkFiles, emptyNetworkHasAllSections) {
  ASSERT_EQ(WriteNetworkInp(path("empty.inp"), EpaNetwork(), EpaSettings(), notices), 1);
  expectGolden("empty.inp");
}

TEST_F(NetworkFiles, schematicNetwork) {
  const EpaNetwork n = fullNetwork();
  ASSERT_EQ(WriteSchemaInp(path("schema.inp"), n.juncs, n.resvs, n.pipes, n.coords, n.vertices,
                           u"D-W", notices),
            1);
  expectGolden("schema.inp");
}

TEST_F(NetworkFiles, listing) {
  ASSERT_EQ(WriteNetworkCsv(path("network.csv"), fullNetwork(), unusualSettings(), notices), 1);
  expectGolden("network.csv");
}

// Only the exact word counts, in the one place where a text becomes a number.
TEST_F(NetworkFiles, wallOrderIsOneForFirstAlone) {
  for (const char16_t* order : {u"First", u"first", u"1", u"", u"First "}) {
    EpaSettings s;
    s.wallOrder = order;
    ASSERT_EQ(WriteNetworkInp(path("order.inp"), EpaNetwork(), s, notices), 1);
    const bool one = content("order.inp").find(" Order Wall   \t\t\t1\n") != std::string::npos;
    EXPECT_EQ(one, s.wallOrder == u"First") << platform::narrow(order);
  }
}

// Rows beyond the size of the write buffer, and an older file that is longer than the new one.
TEST_F(NetworkFiles, largeFileReplacesAnOlderOne) {
  EpaNetwork large;
  large.vertices.resize(40000);
  for (std::size_t i = 0; i < large.vertices.size(); ++i) {
    large.vertices[i].id = std::u16string_view(platform::widen(std::to_string(i)));
  }
  EpaNetwork small;
  small.vertices.resize(1);
  ASSERT_EQ(WriteNetworkInp(path("a.inp"), large, EpaSettings(), notices), 1);
  const std::string written = content("a.inp");
  EXPECT_GT(written.size(), std::size_t{64} * 40000);
  const Parsed back(written);
  ASSERT_EQ(back.network.vertices.size(), 40000u);
  EXPECT_EQ(back.network.vertices[39999].id, u"39999");

  ASSERT_EQ(WriteNetworkInp(path("a.inp"), small, EpaSettings(), notices), 1);
  EXPECT_TRUE(content("a.inp").ends_with("\n[END]\n"));
  EXPECT_LT(content("a.inp").size(), std::size_t{4000});
}

TEST_F(NetworkFiles, filesThatCannotBeWritten) {
  const EpaNetwork n = fullNetwork();
  const EpaSettings s;
  EXPECT_EQ(WriteNetworkInp(path("no/folder/a.inp"), n, s, notices), 0);
  EXPECT_EQ(WriteNetworkCsv(path("no/folder/a.csv"), n, s, notices), 0);
  EXPECT_EQ(WriteSchemaInp(u"", n.juncs, n.resvs, n.pipes, n.coords, n.vertices, u"D-W", notices),
            0);
  EXPECT_EQ(WriteNetworkInp(path(""), n, s, notices), 0);  // a folder
  if (std::filesystem::exists("/dev/full")) {              // opens, and then has no room
    EXPECT_EQ(WriteNetworkInp(u"/dev/full", n, s, notices), 0);
  }
}

}  // namespace
}  // namespace vessora
