// Free records: chains and long runs of bytes.
#include <gtest/gtest.h>

#include "tests/cad/drawing_testing.h"

namespace {

using namespace testing_drawings;

// A record in the named objects dictionary; open for write until it is let go.
AcDbObjectId addRecord(AcDbDatabase& database) {
  AcDbDictionary* root = nullptr;
  EXPECT_EQ(database.getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
  auto* record = new AcDbXrecord;
  AcDbObjectId id;
  EXPECT_EQ(root->setAt(u"PROVA", record, id), Acad::eOk);
  record->close();
  root->close();
  return id;
}

TEST(FreeRecords, BytesStandBehindTheChainInTagsOfTheirOwn) {
  std::string bytes;
  for (int i = 0; i < 1000; ++i) bytes += static_cast<char>(i);
  const Chain chain(acutBuildList(70, 1, 1, u"testo", 310, u"0aFF", RTNONE));
  for (const bool binary : {false, true}) {
    AcDbDatabase plain;
    auto db = load(converted(plain, formatOf(1015, binary)));
    ASSERT_TRUE(db);
    const AcDbObjectId id = addRecord(*db);
    for (const std::size_t size : {0U, 1U, 127U, 128U, 1000U}) {
      SCOPED_TRACE(size);
      const std::string kept = bytes.substr(0, size);
      Open<AcDbXrecord> record(id, AcDb::kForWrite);
      ASSERT_EQ(record->setFromRbChain(chain.head, kept), Acad::eOk);
      std::string read = "old";
      const Chain head(record->rbChain(read));
      EXPECT_EQ(read, "\x0A\xFF" + kept);
      ASSERT_TRUE(head.head);
      EXPECT_EQ(head.head->rbnext->restype, 1);
      EXPECT_FALSE(head.head->rbnext->rbnext) << "the bytes are no part of the short chain";
      int nodes = 0;
      const Chain all(record->rbChain());
      for (const resbuf* n = all.head; n; n = n->rbnext) ++nodes;
      EXPECT_EQ(nodes, 3 + static_cast<int>((size + 126) / 127));
    }
  }
}

TEST(FreeRecords, WhatIsNoRowOfBytesIsNotRead) {
  AcDbDatabase database;
  const AcDbObjectId id = addRecord(database);
  Open<AcDbXrecord> record(id, AcDb::kForWrite);
  std::string bytes;
  for (const char16_t* digits : {u"0", u"0G", u"0 ", u"ABC"}) {
    const Chain chain(acutBuildList(1, u"x", 310, digits, RTNONE));
    ASSERT_EQ(record->setFromRbChain(chain.head), Acad::eOk);
    EXPECT_EQ(record->rbChain(bytes), nullptr);
  }
  const Chain long310(acutBuildList(1, u"y", 310, std::u16string(256, u'0'), RTNONE));
  EXPECT_EQ(record->setFromRbChain(long310.head), Acad::eInvalidInput);
  const Chain kept(record->rbChain());
  EXPECT_EQ(std::u16string(kept.head->resval.rstring), u"x") << "a refusal changes nothing";
}

}  // namespace
