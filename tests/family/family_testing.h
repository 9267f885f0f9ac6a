// A drawing in which the family's services work, and what they leave there as short lines.
#pragma once

#include <gtest/gtest.h>

#include "cad/editor/session.h"
#include "cad/family/hn_geometry.h"
#include "platform/format.h"
#include "platform/text.h"
#include "tests/cad/drawing_testing.h"

class FamilyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    acdbHostApplicationServices()->setWorkingDatabase(&database);
    nodes_ = acutLiveNodes();
  }
  void TearDown() override {
    EXPECT_EQ(drawing().openCount(), 0);
    EXPECT_EQ(acutLiveNodes(), nodes_);
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  }
  cad::Drawing& drawing() { return database.drawing(); }
  // "TYPE code=value ...", without handles, owners and markers; then its parts.
  std::string tagsOf(std::uint32_t record) {
    cad::TagList t;
    drawing().parse(record, t);
    std::string out;
    for (int i = 0; i < t.size(); ++i) {
      const int code = t[i].code;
      if (code == 5 || code == 330 || code == 100 || code == 360) continue;
      if (i > 0) out += ' ' + std::to_string(code) + '=';
      out += t[i].bytes();
    }
    for (std::uint32_t p = drawing().structure().firstPart(record); p;
         p = drawing().structure().nextPart(record, p))
      out += " / " + tagsOf(p);
    return out;
  }
  std::string tagsOf(AcDbObjectId id) { return id.isNull() ? "null" : tagsOf(id.index()); }
  std::size_t entities() { return drawing().index().allInSpace().size(); }

  AcDbDatabase database;

 private:
  int nodes_ = 0;  // what the test itself holds
};
