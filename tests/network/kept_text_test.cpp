// What a drawing keeps of an INP file: through files of every release and form, among other things
// in the drawing, with undo, and when it does not fit any more.
#include "module/network/kept_text.h"

#include "module/network/settings_store.h"
#include "platform/deflate.h"
#include "tests/cad/sample_drawings.h"
#include "tests/network/network_testing.h"
#include "tests/tools/check_drawing.h"

namespace vessora {
namespace {

using namespace std::string_literals;

std::string longText() {
  std::string text = "[TITLE]\r\n\xE8 not UTF-8, a zero \0 and no end\r"s;
  for (int i = 0; i < 5000; ++i) text += " P" + std::to_string(i * 7919 % 5000) + "\t12.5 ;\n";
  return text;
}

class KeptTextTest : public DrawnNetwork {
 protected:
  static void addSettings(const char16_t* name) {
    EpaSettings settings;
    settings.name = name;
    SaveSettings(settings, true);
  }
  static KeptState stateOf(std::u16string_view network) {
    KeptText text;
    const KeptState state = loadKeptText(network, text);
    EXPECT_EQ(text.bytes.empty(), state != KeptState::whole);
    return state;
  }
  static std::string textOf(std::u16string_view network) {
    KeptText text;
    EXPECT_EQ(loadKeptText(network, text), KeptState::whole);
    EXPECT_EQ(text.checksum, platform::crc32(text.bytes));
    return text.bytes;
  }
  // Opens the drawing as its file would be with something replaced.
  void reopenWith(std::string_view old, std::string_view fresh) {
    std::string file = bytes();
    const std::size_t at = file.find(old);
    ASSERT_NE(at, file.npos);
    reopen(file.replace(at, old.size(), fresh));
  }
};

TEST_F(KeptTextTest, NetworksKeepTheirOwnAndNamesCompareExactly) {
  EXPECT_EQ(stateOf(u"Rete"), KeptState::none);
  addSettings(u"Rete");
  // Case alone, characters that keys must not have, names that are alike for their first letters.
  const std::u16string longName(200, u'a');
  const std::vector<std::u16string> names = {u"Rete", u"RETE",         u"città è €",
                                             u"$x y", longName + u"1", longName + u"2"};
  for (const std::u16string& name : names) {
    ASSERT_TRUE(saveKeptText(name, platform::narrow(name)));
  }
  EXPECT_EQ(stateOf(u"rete"), KeptState::none);
  saveAndReload();
  for (const std::u16string& name : names) EXPECT_EQ(textOf(name), platform::narrow(name));

  ASSERT_TRUE(saveKeptText(u"Rete", longText()));
  EXPECT_EQ(textOf(u"Rete"), longText());
  ASSERT_TRUE(saveKeptText(u"Rete", "x"));
  EXPECT_EQ(textOf(u"Rete"), "x") << "a shorter one replaces a longer one";
  eraseKeptText(u"Rete");
  EXPECT_EQ(stateOf(u"Rete"), KeptState::none);
  EXPECT_EQ(textOf(u"RETE"), "RETE");
  saveAndReload();
  EXPECT_EQ(stateOf(u"Rete"), KeptState::none);
  ASSERT_TRUE(saveKeptText(u"Rete", "again"));
  EXPECT_EQ(textOf(u"Rete"), "again");
  expectNothingHeld();
}

TEST_F(KeptTextTest, EveryReleaseWithDictionariesKeepsIt) {
  for (const int version : {1012, 1015, 1018, 1021, 1024, 1032}) {
    for (const bool binary : {false, true}) {
      SCOPED_TRACE(std::to_string(version) + (binary ? " binary" : " ascii"));
      AcDbDatabase plain;
      reopen(testing_drawings::converted(plain, testing_drawings::formatOf(version, binary)));
      addSettings(u"Città");
      ASSERT_TRUE(saveKeptText(u"Città", longText()));
      ASSERT_TRUE(addRename(u"Città", RenamedKind::node, u"è 1", u"\u0416^2"));
      ASSERT_TRUE(saveResultMark(u"Città", {u"1A2B", u"7:00:00"}));
      const std::string bytes = drawing().toBytes();
      for (const std::string& fault : checking::checkDrawing(bytes)) ADD_FAILURE() << fault;
      reopen(bytes);
      EXPECT_EQ(textOf(u"Città"), longText());
      EXPECT_EQ(loadRenames(u"Città"),
                (std::vector<Rename>{{RenamedKind::node, u"è 1", u"\u0416^2"}}));
      EXPECT_EQ(loadResultMark(u"Città"), (ResultMark{u"1A2B", u"7:00:00"}));
      EXPECT_EQ(drawing().toBytes(), bytes) << "reading changes nothing";
    }
  }
}

TEST_F(KeptTextTest, ReleasesWithoutDictionariesSayThatTheyDoNot) {
  reopen(testing_drawings::oldDrawing());
  addSettings(u"Rete");
  const std::string before = bytes();
  EXPECT_FALSE(saveKeptText(u"Rete", "x"));
  EXPECT_FALSE(saveResultMark(u"Rete", {u"1", u"2"}));
  EXPECT_TRUE(addRename(u"Rete", RenamedKind::link, u"a", u"b"));
  eraseKeptText(u"Rete");
  markSettings(u"Rete");
  EXPECT_EQ(stateOf(u"Rete"), KeptState::none);
  EXPECT_EQ(loadRenames(u"Rete"), std::vector<Rename>());
  EXPECT_EQ(bytes(), before);
  expectNothingHeld();
}

TEST_F(KeptTextTest, TheChecksumOfTheSettingsTellsWhatDoesNotBelongTogether) {
  addSettings(u"Rete");
  addSettings(u"Altra");
  ASSERT_TRUE(saveKeptText(u"Rete", "first"));
  const auto points = onLayer(layer::kReserved);
  const std::string mark = data(points[0], app::kKept);
  EXPECT_EQ(mark.size(), 8U);
  EXPECT_EQ(data(points[1], app::kKept), "");
  // Settings that are stored anew keep it.
  EpaSettings settings;
  settings.name = u"Rete";
  SaveSettings(settings, false);
  EXPECT_EQ(data(points[0], app::kKept), mark);

  // Another text of the same network, put in by other means.
  const std::string file = bytes();
  reopenWith("1000\n" + mark + "\n", "1000\n00C0FFEE\n");
  EXPECT_EQ(stateOf(u"Rete"), KeptState::damaged);
  ASSERT_TRUE(saveKeptText(u"Rete", "second"));
  EXPECT_EQ(textOf(u"Rete"), "second");

  // A settings point that came later has none, until it gets it.
  addSettings(u"Nuova");
  ASSERT_TRUE(saveKeptText(u"Senza", "text"));
  addSettings(u"Senza");
  EXPECT_EQ(textOf(u"Senza"), "text");
  markSettings(u"Senza");
  EXPECT_EQ(data(onLayer(layer::kReserved).back(), app::kKept).size(), 8U);
  EXPECT_EQ(textOf(u"Senza"), "text");

  // The text has gone, as some programs' cleaning does, and the point still tells of it.
  reopen(file);
  reopenWith("VESSORA_INP\n350\n", "VESSORA_XXX\n350\n");
  EXPECT_EQ(stateOf(u"Rete"), KeptState::lost);
  EXPECT_EQ(stateOf(u"Altra"), KeptState::none);
  eraseKeptText(u"Rete");
  EXPECT_EQ(stateOf(u"Rete"), KeptState::none);
}

TEST_F(KeptTextTest, WhatHasBeenTamperedWithIsNotTaken) {
  ASSERT_TRUE(saveKeptText(u"Rete", "abc"));
  const std::string file = bytes();
  const std::string checksum =
      std::to_string(static_cast<std::int32_t>(platform::crc32("abc"))) + "\n";
  const std::pair<std::string, std::string> changes[] = {
      {" 90\n3\n", " 90\n4\n"},
      {" 90\n3\n", " 90\n2147483647\n"},
      {" 90\n3\n", " 90\n-1\n"},
      {" 90\n3\n", ""},
      {" 90\n" + checksum, " 90\n5\n"},
      {" 70\n1\n  1\nRete\n", " 70\n2\n  1\nRete\n"},
      {" 70\n1\n  1\nRete\n", " 70\n1\n  1\nAltra\n"},
      {"310\n785E", "310\n795E"},
      {"310\n785E", "310\n85E"},
      {"310\n785E", "310\nzz5E"},
      {"310\n", "999\n"}};
  for (const auto& [old, fresh] : changes) {
    SCOPED_TRACE(old + " -> " + fresh);
    reopen(file);
    EXPECT_EQ(textOf(u"Rete"), "abc");
    reopenWith(old, fresh);
    EXPECT_EQ(stateOf(u"Rete"), KeptState::damaged);
    EXPECT_TRUE(hasKeptText(u"Rete"));
  }
}

TEST_F(KeptTextTest, OneUndoTakesItAllBackAndOneRedoBringsIt) {
  addSettings(u"Rete");
  const auto command = [&](auto&& body) {
    drawing().beginCommand(u"PROVA");
    body();
    drawing().endCommand();
  };
  command([] { ASSERT_TRUE(saveKeptText(u"Rete", "first")); });
  drawing().undo();
  EXPECT_EQ(stateOf(u"Rete"), KeptState::none);
  drawing().redo();
  EXPECT_EQ(textOf(u"Rete"), "first");
  command([] { addRename(u"Rete", RenamedKind::node, u"a", u"b"); });
  command([] { ASSERT_TRUE(saveKeptText(u"Rete", "second")); });
  EXPECT_TRUE(loadRenames(u"Rete").empty()) << "of another text";
  drawing().undo();
  EXPECT_EQ(textOf(u"Rete"), "first");
  EXPECT_EQ(loadRenames(u"Rete").size(), 1U);
  command([] { eraseKeptText(u"Rete"); });
  EXPECT_TRUE(loadRenames(u"Rete").empty());
  drawing().undo();
  saveAndReload();
  EXPECT_EQ(textOf(u"Rete"), "first");
  EXPECT_EQ(loadRenames(u"Rete").size(), 1U);
}

TEST_F(KeptTextTest, RenamesLeadFromTheTextsNameToTheDrawings) {
  using enum RenamedKind;
  EXPECT_TRUE(addRename(u"Rete", node, u"a", u"b"));
  EXPECT_TRUE(loadRenames(u"Rete").empty()) << "without a text there is nothing to lead to";
  ASSERT_TRUE(saveKeptText(u"Rete", "x"));
  const auto rename = [](RenamedKind kind, const char16_t* from, const char16_t* to) {
    ASSERT_TRUE(addRename(u"Rete", kind, from, to));
  };
  rename(node, u"a", u"b");
  rename(link, u"b", u"z");  // links and nodes have names apart
  rename(node, u"b", u"c");
  EXPECT_EQ(loadRenames(u"Rete"), (std::vector<Rename>{{node, u"a", u"c"}, {link, u"b", u"z"}}));
  // Two change their names, by way of a third.
  rename(node, u"d", u"t");
  rename(node, u"c", u"d");
  rename(node, u"t", u"a");
  EXPECT_EQ(loadRenames(u"Rete"),
            (std::vector<Rename>{{node, u"a", u"d"}, {link, u"b", u"z"}, {node, u"d", u"a"}}));
  rename(node, u"a", u"d2");
  rename(node, u"d", u"a");
  rename(link, u"z", u"b");
  rename(curve, u"q", u"q");
  EXPECT_EQ(loadRenames(u"Rete"), (std::vector<Rename>{{node, u"d", u"d2"}}));
  rename(node, u"d2", u"d");
  EXPECT_TRUE(loadRenames(u"Rete").empty());
  rename(pattern, u"1", u"2");
  EXPECT_EQ(loadRenames(u"Rete"), (std::vector<Rename>{{pattern, u"1", u"2"}}));
  EXPECT_TRUE(loadRenames(u"RETE").empty());
  expectNothingHeld();
}

TEST_F(KeptTextTest, ResultsAreMarkedAlsoWithoutAText) {
  EXPECT_TRUE(loadResultMark(u"Rete").empty());
  ASSERT_TRUE(saveResultMark(u"Rete", {u"F", u"0:00:00"}));
  ASSERT_TRUE(saveResultMark(u"Rete", {u"", u"1:00:00"}));
  EXPECT_EQ(loadResultMark(u"Rete"), (ResultMark{u"", u"1:00:00"}));
  EXPECT_EQ(stateOf(u"Rete"), KeptState::none);
  clearResultMark(u"Rete");
  clearResultMark(u"Rete");
  EXPECT_TRUE(loadResultMark(u"Rete").empty());
}

TEST_F(KeptTextTest, ForeignThingsOfTheSameNameAreLeftAlone) {
  AcDbDictionary* root = nullptr;
  ASSERT_EQ(acdbHostApplicationServices()->workingDatabase()->getNamedObjectsDictionary(
                root, AcDb::kForWrite),
            Acad::eOk);
  {
    const Opened<AcDbDictionary> opened(root);
    Fresh<AcDbXrecord> foreign;
    AcDbObjectId id;
    ASSERT_TRUE(foreign.taken(root->setAt(u"Vessora_Inp", foreign.get(), id)));
  }
  const std::string before = bytes();
  EXPECT_FALSE(saveKeptText(u"Rete", "x"));
  EXPECT_EQ(bytes(), before);
}

}  // namespace
}  // namespace vessora
