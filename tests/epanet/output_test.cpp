// Binary results files: a small one built here word by word, whole, cut and damaged.
#include "epanet/output.h"

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>

namespace epanet {
namespace {

constexpr std::int32_t kMagic = 516114521;

class Bytes {
 public:
  void integer(std::int32_t value) { word(static_cast<std::uint32_t>(value)); }
  void integers(std::initializer_list<std::int32_t> values) {
    for (const std::int32_t value : values) integer(value);
  }
  void real(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    word(bits);
  }
  void reals(std::initializer_list<float> values) {
    for (const float value : values) real(value);
  }
  void text(std::string value, std::size_t width) {
    value.resize(width, '\0');
    bytes_ += value;
  }
  const std::string& bytes() const { return bytes_; }

 private:
  void word(std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes_ += static_cast<char>(value >> shift & 255);
  }
  std::string bytes_;
};

struct Made {
  std::size_t idWidth = 32;
  std::int32_t flowUnit = 1, pressureUnit = 0, quality = 1, statistic = 0, duration = 3600;
  int periods = 2;
};

// Two junctions and a tank, a pipe, a pump and a valve.
std::string make(const Made& made) {
  Bytes b;
  b.integers({kMagic, 20012, 3, 1, 3, 1, 1, made.quality, 0, made.flowUnit, made.pressureUnit,
              made.statistic, 0, 1800, made.duration});
  b.text("title", 240);
  b.text("files", 520);
  b.text("Chlorine", made.idWidth);
  b.text("mg/L", made.idWidth);
  for (const char* id : {"A", "same", "T", "same", "pump", "valve"}) b.text(id, made.idWidth);
  b.integers({1, 2, 3, 2, 3, 1, 1, 2, 3, 3});  // ends, types, the tank's node
  b.reals({0, 1, 2, 3, 10, 20, 30, 1, 2, 3});
  b.integer(2);
  b.reals({50, 75, 1, 2, 3, 4, 0.5F});
  for (int k = 0; k < made.periods; ++k) {
    const auto at = static_cast<float>(k);
    b.reals({1 + at, 2, -3, 100.1F, 200, 300, 10, 20, 30, 0.5F, 0.25F, 1});
    b.reals({448.831F, 2, 3, 1, 2, 3, 10, -20, 30, 0, 0, 0});
    b.reals({3, 2, 4, 100, 1, 50, 0, 0, 0, 0.02F, 0, 0});
  }
  b.reals({0, 0, 0, 0});
  b.integers({made.periods, 6, kMagic});
  return b.bytes();
}

std::shared_ptr<const Output> opened(const std::string& bytes) {
  return std::dynamic_pointer_cast<const Output>(openResults(bytes).results);
}
OutputFault faultOf(const std::string& bytes) { return openResults(bytes).fault; }
std::string with(std::string bytes, std::size_t word, std::int32_t value) {
  Bytes b;
  b.integer(value);
  return bytes.replace(4 * word, 4, b.bytes());
}

TEST(Output, ValuesAtFullPrecision) {
  for (const std::size_t idWidth : {32U, 16U}) {
    const auto output = opened(make({.idWidth = idWidth}));
    ASSERT_TRUE(output) << idWidth;
    ASSERT_EQ(output->periods().size(), 2U);
    EXPECT_EQ(output->periods()[1].name, "0:30:00");
    EXPECT_EQ(output->warning(), 6);
    PeriodValues v = output->values(1);
    EXPECT_EQ(v.nodes.find("A")->demand, 2.0);
    EXPECT_EQ(v.nodes.find("A")->head, static_cast<double>(100.1F));
    EXPECT_EQ(v.nodes.find("same")->quality, 0.25);
    EXPECT_EQ(v.links.find("same")->state, LinkState::open);
    EXPECT_EQ(v.links.find("pump")->state, LinkState::closed);
    EXPECT_EQ(v.links.find("valve")->state, LinkState::active);
    EXPECT_EQ(v.links.find("valve")->setting, 50.0);
    EXPECT_EQ(v.links.find("nothing"), nullptr);
    EXPECT_EQ(v.units.nodeQuality, "mg/L");
    ASSERT_EQ(convertToDrawing(v), "");
    EXPECT_NEAR(*v.links.find("same")->flow, 28.317, 1e-5);
    EXPECT_EQ(v.links.find("same")->headloss, 10.0);
    EXPECT_EQ(v.links.find("pump")->headloss, -20.0 * 0.3048);
    ASSERT_EQ(output->pumpUses().size(), 1U);
    EXPECT_EQ(output->linkId(static_cast<std::size_t>(output->pumpUses()[0].link)), "pump");
    EXPECT_EQ(output->demandCharge(), 0.5F);
  }
}

TEST(Output, OnePeriodIsNamedAsReportsNameIt) {
  EXPECT_EQ(opened(make({.duration = 0, .periods = 1}))->periods()[0].name, "");
  EXPECT_EQ(opened(make({.periods = 1}))->periods()[0].name, "0:00:00");
  EXPECT_EQ(opened(make({.statistic = 4, .periods = 1}))->periods()[0].name, "DIFFERENTIAL");
  EXPECT_EQ(opened(make({.quality = 0}))->values(0).nodes.find("A")->quality, std::nullopt);
}

// Whatever the length: what is told is whole periods, or none of it is taken.
TEST(Output, FilesThatAreCut) {
  const std::string whole = make({});
  const std::size_t period = 16 * 3 + 32 * 3, first = whole.size() - 28 - 2 * period;
  for (std::size_t size = 4; size < whole.size(); ++size) {
    const OpenedResults opened = openResults(whole.substr(0, size));
    if (size < first + period) {
      EXPECT_EQ(opened.fault, OutputFault::tooShort) << size;
      continue;
    }
    ASSERT_TRUE(opened.results) << size;
    EXPECT_TRUE(opened.results->isCut());
    EXPECT_EQ(opened.results->periods().size(), size < first + 2 * period ? 1U : 2U) << size;
  }
  EXPECT_FALSE(opened(whole)->isCut());
}

TEST(Output, DamagedFilesAreRefused) {
  const std::string whole = make({});
  EXPECT_EQ(faultOf(with(whole, 2, -1)), OutputFault::wrongCounts);
  EXPECT_EQ(faultOf(with(whole, 2, 0)), OutputFault::wrongCounts);
  EXPECT_EQ(faultOf(with(whole, 3, 4)), OutputFault::wrongCounts);
  EXPECT_EQ(faultOf(with(whole, 4, 0x7FFFFFFF)), OutputFault::tooShort);
  EXPECT_EQ(faultOf(with(whole, 9, 11)), OutputFault::wrongUnits);
  EXPECT_EQ(faultOf(with(whole, 10, -1)), OutputFault::wrongUnits);
  const std::size_t ends = (60 + 760 + 8 * 32) / 4;
  EXPECT_EQ(faultOf(with(whole, ends, 4)), OutputFault::wrongLinks);
  EXPECT_EQ(faultOf(with(whole, ends, 0)), OutputFault::wrongLinks);
  std::string longer = whole;
  EXPECT_EQ(faultOf(longer.insert(whole.size() - 28, 4, '\0')), OutputFault::wrongSize);
  EXPECT_EQ(faultOf(with(whole, ends + 6, 10)), OutputFault::wrongLinks);
  EXPECT_EQ(faultOf(with(whole, whole.size() / 4 - 3, 3)), OutputFault::wrongSize);
  EXPECT_EQ(faultOf(with(whole, whole.size() / 4 - 3, 0)), OutputFault::tooShort);
}

}  // namespace
}  // namespace epanet
