#include "module/network/record_list.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "module/network/records.h"
#include "platform/text.h"

namespace vessora {
namespace {

// Growing from the heap into large blocks and on, then shrinking and moving: records keep their
// content and a new one is empty whatever the memory held before.
TEST(RecordList, growsThroughEveryKindOfBlock) {
  RecordList<EpaPipe> pipes;
  for (int i = 0; i < 10000; ++i) {
    EpaPipe& p = pipes.emplace_back();
    ASSERT_TRUE(p.id.empty() && p.node2.empty() && p.status.empty() && p.objectId.isNull());
    p.id = std::u16string_view(platform::widen(std::to_string(i)));
    p.status = u"Open";
  }
  pipes.erase(pipes.begin());
  const RecordList<EpaPipe> copy = pipes;
  pipes.resize(5);
  pipes.shrink_to_fit();
  EXPECT_EQ(pipes[4].id, u"5");
  pipes = RecordList<EpaPipe>();
  EXPECT_EQ(copy.size(), 9999u);
  for (int i = 0; i < 9999; i += 101) {
    ASSERT_EQ(copy[static_cast<std::size_t>(i)].id, platform::widen(std::to_string(i + 1)));
    ASSERT_EQ(copy[static_cast<std::size_t>(i)].status, u"Open");
  }
}

TEST(RecordList, blocksOfManySizesDoNotOverlapAndAreAligned) {
  std::vector<RecordList<EpaCoord>> lists(12);
  for (std::size_t i = 0; i < lists.size(); ++i) {
    lists[i].resize(std::size_t{1} << (i + 4));
    for (EpaCoord& c : lists[i]) c.x = std::u16string_view(platform::widen(std::to_string(i)));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(lists[i].data()) % alignof(EpaCoord), 0u);
  }
  for (std::size_t i = 0; i < lists.size(); ++i) {
    const auto expected = platform::widen(std::to_string(i));
    EXPECT_EQ(lists[i].front().x, expected);
    EXPECT_EQ(lists[i].back().x, expected);
  }
}

TEST(RecordList, hugeDemandFailsAsAllocationFailure) {
  RecordList<EpaPipe> pipes;
  EXPECT_THROW(pipes.reserve(pipes.max_size()), std::bad_alloc);
  EXPECT_TRUE(pipes.empty());
}

TEST(EpaSettings, resetReturnsToANewNetwork) {
  EpaSettings s;
  s.name = u"x";
  s.isDefault = 1;
  s.trials = 3;
  s.wallOrder = u"1";
  s.startClock = u"";
  ResetSettings(s);
  EXPECT_TRUE(s.name.empty());
  EXPECT_EQ(s.isDefault, 0);
  EXPECT_EQ(s.trials, 40);
  EXPECT_EQ(s.wallOrder, u"First");
  EXPECT_EQ(s.startClock, u"12:00:00");
}

}  // namespace
}  // namespace vessora
