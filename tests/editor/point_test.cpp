// Places as users type them.
#include <gtest/gtest.h>

#include "cad/editor/pick.h"

namespace cad {
namespace {

TEST(Points, AreReadAsTheyAreTyped) {
  const AcGePoint3d base(100, 50, 7);
  struct Row {
    const char16_t* text;
    bool known;
    double x = 0, y = 0, z = 0;
  };
  for (const Row& row :
       {Row{u"3,4", true, 3, 4, 0}, Row{u"3,4,5", true, 3, 4, 5}, Row{u"@3,-4", true, 103, 46, 7},
        Row{u"@10<90", true, 100, 60, 7}, Row{u"@10<180", true, 90, 50, 7},
        Row{u"@10<-30", true, 108.6602540, 45, 7}, Row{u"10<90", false}, Row{u"@<90", false},
        Row{u"@10<", false}, Row{u"3", false}, Row{u"3,4,5,6", false}, Row{u"3,,4", false}}) {
    const auto p = parsePoint(row.text, &base);
    ASSERT_EQ(p.has_value(), row.known);
    if (!p) continue;
    EXPECT_NEAR(p->x, row.x, 1e-6);
    EXPECT_NEAR(p->y, row.y, 1e-6);
    EXPECT_NEAR(p->z, row.z, 1e-6);
  }
}

}  // namespace
}  // namespace cad
