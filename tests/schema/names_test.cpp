#include "schema/names.h"

#include <gtest/gtest.h>

#include <string>

namespace schema {
namespace {

TEST(Names, AqueductNetworksBeginExactlySo) {
  for (const char16_t* name : {u"HN-AQ", u"HN-AQ1", u"HN-AQUEDOTTO"}) {
    EXPECT_TRUE(isAqueductName(name));
  }
  for (const char16_t* name : {u"", u"HN-A", u"HN-A1", u"hn-aq1", u"XHN-AQ", u"HN-AR"}) {
    EXPECT_FALSE(isAqueductName(name));
  }
}

TEST(Names, LayersBearEveryCharacterButTheReservedOnes) {
  for (const char16_t c : std::u16string(u"<>/\\\":;?*|,=`\x01\x1F\x7F")) {
    EXPECT_EQ(unusableCharacter(std::u16string(u"rete") + c + u"1"), c);
  }
  EXPECT_EQ(unusableCharacter(u"Rete è_1-$ (2) [b] 'x' !"), 0);
  EXPECT_EQ(unusableCharacter(u"a?b*c"), u'?');  // the first one
  EXPECT_EQ(unusableCharacter(u""), 0);
  EXPECT_EQ(longestLayerName(u"abc"), 9U);  // Q-OUT-abc
  EXPECT_EQ(layerName(u"JUNC-", u"abc"), u"JUNC-abc");
}

TEST(Names, ANetworkIsCalledLikeItsFileLessFourCharacters) {
  EXPECT_EQ(networkOfFile(u"/a/b/rete.inp"), u"rete");
  EXPECT_EQ(networkOfFile(u"C:\\a.b\\rete"), u"");  // "rete" is taken for an extension
  EXPECT_EQ(networkOfFile(u"a/x.inp/.inp"), u"");
  EXPECT_EQ(networkOfFile(u"a\\b/rete.v2.INP"), u"rete.v2");
  EXPECT_EQ(networkOfFile(u"inp"), u"");
}

}  // namespace
}  // namespace schema
