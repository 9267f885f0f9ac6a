// Small drawings for tests of shapes.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "cad/api/database.h"
#include "cad/shape/extents.h"
#include "cad/shape/hit.h"
#include "cad/shape/reference.h"

namespace cad::shape {

// A drawing of an old release, as tags "code value" separated by '|'.
class Sample {
 public:
  Sample(const std::string& blocks, const std::string& entities) : database_(false) {
    std::string text = section("BLOCKS", blocks) + section("ENTITIES", entities) + "0\nEOF\n";
    Block bytes(text.size());
    std::memcpy(bytes.data(), text.data(), text.size());
    std::vector<std::string> warnings;
    const auto loaded =
        database_.drawing().loadBytes(std::move(bytes), text.size(), "sample", warnings);
    EXPECT_TRUE(loaded) << loaded.error();
  }
  const Drawing& drawing() { return database_.drawing(); }
  std::uint32_t first() {
    return drawing().structure().firstEntity(drawing().structure().modelSpace());
  }
  AcDbExtents box() { return extentsOf(drawing(), first()); }
  double distance(double x, double y) { return planDistance(drawing(), first(), {x, y, 0}); }
  bool inside(const PlanWindow& w) { return liesInside(drawing(), first(), w); }
  bool touched(const PlanWindow& w) { return touches(drawing(), first(), w); }

 private:
  static std::string section(const char* name, const std::string& tags) {
    std::string text = "0\nSECTION\n2\n" + std::string(name) + "\n";
    for (std::size_t at = 0; at < tags.size();) {
      const std::size_t end = std::min(tags.find('|', at), tags.size());
      std::string tag = tags.substr(at, end - at);
      tag[tag.find(' ')] = '\n';
      text += tag + "\n";
      at = end + 1;
    }
    return text + "0\nENDSEC\n";
  }
  AcDbDatabase database_;
};

}  // namespace cad::shape
