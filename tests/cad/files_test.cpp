// Reading damaged files and text in old encodings; saving so that the file on disk is always whole.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/cad/sample_drawings.h"
#include "tests/tools/check_drawing.h"

namespace {

using namespace testing_drawings;
namespace fs = std::filesystem;

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, text.npos) << from;
  if (at != text.npos) text.replace(at, from.size(), to);
  return text;
}

TEST(Damaged, FilesAreRefusedWithLineAndReason) {
  const std::string good = oldDrawing();
  const struct {
    std::string bytes;
    const char* reason;
  } cases[] = {
      {"", "no DXF drawing"},
      {"ciao\nmondo\n", "test.dxf:1: a group code was expected, found \"ciao\""},
      {replaced(good, " 62\n7\n", " 6x2\n7\n"),
       "test.dxf:61: a group code was expected, found \"6x2\""},
      {replaced(good, " 70\n64\n", " 70\n64\n\n"), "a group code was expected"},
      {"AC1027\0\0binary", "this is a DWG file"},
      {tags("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1040\n0 ENDSEC\n0 EOF\n"), "newer release"},
      {tags("0 LINE\n8 0\n0 EOF\n"), "holds no section"},
      {good.substr(0, good.find("33\n 10\n") + 5), "the file ends in the middle of a tag"},
      {good.substr(0, good.find("SEGNO")), "the file ends in the middle of a tag"},
      {std::string("AutoCAD Binary DXF\r\n\x1A\0\0\0SECTION\0\x02\0HEA", 36), "cut off"},
  };
  for (const auto& c : cases) {
    std::string error;
    EXPECT_FALSE(load(c.bytes, nullptr, &error)) << c.reason;
    EXPECT_NE(error.find(c.reason), error.npos) << error << "\n" << c.reason;
  }
}

// What is repaired is said; the drawing can be changed and is then complete.
TEST(Damaged, FilesAreRepairedWithAWarning) {
  const std::string good = oldDrawing();
  const struct {
    const char* what;
    std::string bytes;
    const char* warning;
  } cases[] = {
      {"no end mark", replaced(good, "  0\nEOF\n", ""), "no end mark"},
      {"cut off in the last entity", good.substr(0, good.find("  2\nSEGNO")), "no end mark"},
      {"cut off without a line end", good.substr(0, good.find("SEGNO") + 3), "no end mark"},
      {"blank lines at the end", replaced(good, "  0\nEOF\n", "\n \n"), "no end mark"},
      {"section not closed",
       replaced(good, "  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES", "  0\nSECTION\n  2\nENTITIES"),
       "section BLOCKS is not closed"},
      {"block not closed", replaced(good, "  0\nENDBLK\n  8\n0\n  5\n23\n", ""), nullptr},
      {"table not closed", replaced(good, "  0\nENDTAB\n  0\nENDSEC", "  0\nENDSEC"), nullptr},
      {"handle twice", replaced(good, "  5\n33\n", "  5\n31\n"), "1 handle(s) used twice"},
      {"layer twice",
       replaced(good, "  0\nLAYER\n  2\nMURI",
                "  0\nLAYER\n  2\n0\n 70\n0\n 62\n1\n  6\nCONTINUOUS\n  0\nLAYER\n  2\nMURI"),
       "has \"0\" twice"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<std::string> warnings;
    auto db = load(c.bytes, &warnings);
    ASSERT_TRUE(db);
    if (c.warning) {
      ASSERT_FALSE(warnings.empty());
      EXPECT_NE(warnings[0].find(c.warning), std::string::npos) << warnings[0];
    }
    if (std::string(c.what) != "handle twice") {
      EXPECT_EQ(db->drawing().toBytes(), c.bytes);
    } else {
      // Saved without another change, too: the new handle lies below $HANDSEED.
      const std::string saved = db->drawing().toBytes();
      for (const std::string& f : checking::checkDrawing(saved)) ADD_FAILURE() << f;
    }
    const std::size_t before = db->drawing().index().allInSpace().size();
    auto symbol = symbolDrawing();
    EXPECT_EQ(editEverything(*db, *symbol), "");
    const std::string bytes = db->drawing().toBytes();
    auto again = load(bytes, &warnings);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->drawing().index().allInSpace().size(), before + 5);
    if (std::string(c.what) == "layer twice") continue;
    EXPECT_TRUE(warnings.empty()) << warnings[0];
    for (const std::string& f : checking::checkDrawing(bytes)) ADD_FAILURE() << f;
  }
}

TEST(Encodings, TextIsReadAndWrittenInThePageOfTheFile) {
  const struct {
    const char* page;
    const char* version;
    const char* bytes;
    std::u16string text;
    std::u16string written;
    const char* writtenBytes;
  } cases[] = {
      {"ANSI_1252", "AC1015", "caff\xE8 \x80", u"caffè €", u"più \u0416", "pi\xF9 \\U+0416"},
      {"ansi_1251", "AC1018", "\xC6\xE8", u"\u0416\u0438", u"\u0416è", "\xC6\\U+00E8"},
      {"ANSI_932", "AC1015", "\x83\x5C\x83\x7B", u"\u30BD\u30DC", u"\u30BD", "\x83\x5C"},
      {"ANSI_936", "AC1015", "\xB9\xDC\xB5\xC0", u"\u7BA1\u9053", u"\u7BA1", "\xB9\xDC"},
      {"dos850", "AC1009", "\x8A", u"è", u"é", "\x82"},
      {"MAC-ROMAN", "AC1018", "\x8F", u"è", u"é", "\x8E"},
      {"", "AC1015", "\xE8", u"è", u"é", "\xE9"},
      {"ANSI_1251", "AC1021", "\xC3\xA8", u"è", u"\u0416", "\xD0\x96"},
      {"ANSI_1252", "AC1015", "\\U+0416\\M+1835C", u"\u0416\u30BD", u"x", "x"},
      {"ANSI_1252", "AC1027", "a^Jb^ c^I", u"a\nb^c\t", u"1^2\n", "1^ 2^J"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.page) + " " + c.bytes);
    const std::string bytes =
        tags("0 SECTION\n2 HEADER\n9 $ACADVER\n1 " + std::string(c.version) +
             (*c.page ? "\n9 $DWGCODEPAGE\n3 " + std::string(c.page) : "") +
             "\n9 $HANDSEED\n5 FF\n0 ENDSEC\n0 SECTION\n2 ENTITIES\n0 TEXT\n5 50\n8 0\n10 0.0\n"
             "20 0.0\n30 0.0\n40 1.0\n1 " +
             c.bytes + "\n0 ENDSEC\n0 EOF\n");
    auto db = load(bytes);
    ASSERT_TRUE(db);
    const AcDbObjectId id = db->drawing().idOf(db->drawing().byHandle(0x50));
    {
      Open<AcDbText> text(id, AcDb::kForWrite);
      EXPECT_EQ(text->textString(), c.text);
      text->setHeight(2);  // what is not touched keeps its bytes
    }
    EXPECT_NE(db->drawing().toBytes().find("  1\n" + std::string(c.bytes) + "\n"), bytes.npos);
    Open<AcDbText>(id, AcDb::kForWrite)->setTextString(c.written);
    EXPECT_EQ(Open<AcDbText>(id)->textString(), c.written);
    EXPECT_NE(db->drawing().toBytes().find("  1\n" + std::string(c.writtenBytes) + "\n"),
              bytes.npos);
  }
}

struct SavingTest : testing::Test {
  fs::path folder;
  std::string path;
  void SetUp() override {
    // In memory where there is such a disk: flushing is what these tests do most.
    std::string name = fs::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
    name += "/vessora-saving-XXXXXX";
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder = name;
    path = (folder / "disegno.dxf").string();
  }
  void TearDown() override {
    fs::permissions(folder, fs::perms::owner_all);
    fs::remove_all(folder);
  }
  static std::string read(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
  static void write(const std::string& file, std::string_view bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
  }
  // What an action in a process of its own returns.
  template <class Act>
  static int inChild(Act&& act) {
    const pid_t child = fork();
    if (child == 0) _exit(act());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::size_t filesInFolder() {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  }
};

TEST_F(SavingTest, KeepsTheOlderFileAsBackup) {
  write(path, oldDrawing());
  fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  AcDbDatabase db(false);
  std::vector<std::string> warnings;
  ASSERT_TRUE(db.drawing().load(path, warnings));
  db.drawing().structure().layerNamed(u"NUOVO", true);
  EXPECT_TRUE(db.drawing().isChanged());
  ASSERT_TRUE(db.drawing().save(path));
  EXPECT_FALSE(db.drawing().isChanged());
  EXPECT_EQ(read(path + ".bak"), oldDrawing());
  EXPECT_EQ(read(path), db.drawing().toBytes());
  EXPECT_EQ(fs::status(path).permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  ASSERT_TRUE(db.drawing().save(path, {false}));
  EXPECT_EQ(filesInFolder(), 2u);
  // The text is in memory: another program may change the file meanwhile.
  write(path, "guasto");
  EXPECT_EQ(db.drawing().toBytes().find("guasto"), std::string::npos);
}

TEST_F(SavingTest, AFolderThatTakesNoFileLeavesTheOldOne) {
  write(path, oldDrawing());
  AcDbDatabase db;
  const auto missing = db.drawing().save((folder / "manca" / "x.dxf").string());
  ASSERT_FALSE(missing);
  EXPECT_NE(missing.error().find("manca"), std::string::npos);
  fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                              fs::perms::others_exec);
  EXPECT_EQ(inChild([&] {
              // The superuser may write everywhere: become nobody.
              if (geteuid() == 0 && setuid(65534) != 0) return 3;
              return db.drawing().save(path) ? 1 : db.drawing().isChanged() ? 0 : 2;
            }),
            0);
  EXPECT_EQ(read(path), oldDrawing());
  EXPECT_EQ(filesInFolder(), 1u);
}

// A full disk, as far as a process can tell: the file may not grow beyond a limit.
TEST_F(SavingTest, AFullDiskLeavesTheOldFile) {
  write(path, "il vecchio");
  EXPECT_EQ(inChild([&] {
              signal(SIGXFSZ, SIG_IGN);
              const rlimit limit{4096, 4096};
              setrlimit(RLIMIT_FSIZE, &limit);
              AcDbDatabase db;
              const auto saved = db.drawing().save(path);
              if (saved) return 1;
              if (saved.error().find("disegno.dxf") == std::string::npos) return 2;
              return db.drawing().isChanged() ? 0 : 3;
            }),
            0);
  EXPECT_EQ(read(path), "il vecchio");
  EXPECT_EQ(filesInFolder(), 1u);
}

}  // namespace
