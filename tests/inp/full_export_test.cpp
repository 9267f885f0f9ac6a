// What other programs do to a drawing, and the rows of the file that change for it.
#include <fstream>

#include "tests/inp/full_testing.h"

namespace vessora {
namespace {

std::string withEnds(std::string_view text, std::string_view end) {
  std::string out;
  for (const char c : text) {
    if (c == '\n') {
      out += end;
    } else {
      out += c;
    }
  }
  return out;
}

class FullExport : public FullNetwork {
 protected:
  // What an edit leads to: rows that go and come, notices ("!"), and what the drawing says
  // otherwise than the file that was written ("?"), which is nothing as a rule.
  std::string resultOf(const std::string& edits, const std::string& text) {
    edit(edits);
    const std::string now = exported();
    std::string result = changedLines(text, now);
    if (!said.empty()) result += "! " + said + "\n";
    if (const std::string more = otherwise(now); !more.empty()) result += "? " + more + "\n";
    return result;
  }
};

// Each line "# edit" of the golden file is one drawing, the lines behind it are what it leads to.
// With UPDATE_GOLDEN set they become what they are now, to be reviewed as a difference.
TEST_F(FullExport, EachEditChangesItsRowsAndNoOthers) {
  const std::string golden = std::string(VESSORA_TESTS_DIR) + "/inp/golden/full_edits.txt";
  for (const char* end : {"\r\n", "\n"}) {
    const std::string text = withEnds(kTown, end);
    import(text);
    EXPECT_EQ(exported(), text);
    EXPECT_EQ(said, "");
    EXPECT_EQ(otherwise(text), "");
    const std::string drawn = bytes();
    std::ifstream in(golden);
    std::string all, wanted, got;
    for (std::string line; std::getline(in, line); all += line + "\n") {
      if (!line.starts_with("# ")) {
        wanted += line + "\n";
        continue;
      }
      EXPECT_EQ(got, wanted) << all.substr(all.rfind("# "));
      wanted.clear();
      reopen(drawn);
      got = resultOf(line.substr(2), text);
    }
    EXPECT_EQ(got, wanted);
    if (std::getenv("UPDATE_GOLDEN") != nullptr) {
      std::istringstream lines(all);
      std::ofstream out(golden);
      for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("# ")) continue;
        reopen(drawn);
        out << line << "\n" << resultOf(line.substr(2), text);
      }
    }
    DrawnNetwork::TearDown();
    SetUp();
  }
}

// The same edits in other units: other numbers in the rows, but what is written is what is drawn.
TEST_F(FullExport, WritesWhatIsDrawnInEveryUnit) {
  std::ifstream in(std::string(VESSORA_TESTS_DIR) + "/inp/golden/full_edits.txt");
  std::vector<std::pair<std::string, std::string>> edits;  // and their "?" lines
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("# ")) edits.emplace_back(line.substr(2), "");
    if (line.starts_with("? ")) edits.back().second = line.substr(2);
  }
  for (const auto units :
       {epanet::FlowUnits::lps, epanet::FlowUnits::cms, epanet::FlowUnits::mgd}) {
    const KeptFile file(kTown);
    const std::string text =
        epanet::convert(file.document, file.network, file.record(), units).edit.text;
    import(text);
    const std::string drawn = bytes();
    for (const auto& [edits_, left] : edits) {
      SCOPED_TRACE(edits_);
      reopen(drawn);
      edit(edits_);
      const std::string now = exported();
      if (left.empty()) {
        EXPECT_EQ(otherwise(now), "");
      }
    }
    DrawnNetwork::TearDown();
    SetUp();
  }
}

// Without the kept rows, and with all of them written anew.
TEST_F(FullExport, WritesEverythingAnew) {
  import(kTown);
  EXPECT_EQ(otherwise(exported(true)), "");
}

TEST_F(FullExport, LeavesLayoutAsItIs) {
  // Rows that end in carriage returns alone; no [END], no last line end; an order of one's own.
  const std::string text = withEnds(
      "[OPTIONS]\n UNITS LPS\n[JUNCTIONS]\n\"A\"\t10;\n B 20 1\n[PIPES]\n P A B 5 6 7;near\n"
      "[COORDINATES]\n A 0 0\n[RESERVOIRS]\n R 9",
      "\r");
  import(text);
  EXPECT_EQ(exported(), text);
  const std::string drawn = bytes();
  edit("A elevation=11; P status=Closed; A emitter=2; B at=5,5; R head=8");
  EXPECT_EQ(exported(),
            withEnds("[OPTIONS]\n UNITS LPS\n[JUNCTIONS]\n\"A\"\t11;\n B 20 1\n[PIPES]\n"
                     " P A B 5 6 7 0 Closed;near\n[COORDINATES]\n A 0 0\n B 5 5\n[RESERVOIRS]\n"
                     " R 8\n\n[EMITTERS]\n A                2\n",
                     "\r"));
  reopen(drawn);
  edit("A called=Some name; B erased; R erased");
  EXPECT_EQ(exported(),
            withEnds("[OPTIONS]\n UNITS LPS\n[JUNCTIONS]\n\"Some name\"\t10;\n[PIPES]\n"
                     " P \"Some name\" B 5 6 7;near\n[COORDINATES]\n \"Some name\" 0 0\n"
                     "[RESERVOIRS]\n",
                     "\r"));
}

TEST_F(FullExport, KeepsToTheEncodingOfTheFile) {
  const std::string text =
      "[JUNCTIONS]\n \xE8 1 2 p\xE0\n b 1\n[PATTERNS]\n p\xE0 1 2\n[PIPES]\n P \xE8 b 1 1 1\n"
      "[RESERVOIRS]\n r 1\n[OPTIONS]\n UNITS LPS\n";
  import(text);
  EXPECT_EQ(exported(), text);
  edit("b pattern=p\u00E0; \u00E8 copied=5,5; b called=\u20AC; r called=\u6C34");
  EXPECT_EQ(changedLines(text, exported()),
            "-b 1\n+\x80 1 0 p\xE0\n+\xE8-2 1 2 p\xE0\n-P \xE8 b 1 1 1\n+P \xE8 \x80 1 1 1\n-r 1\n"
            "+? 1\n+[COORDINATES]\n+\xE8-2 205 5\n+\n");
  EXPECT_EQ(said, "letters \u6C34 ?; copied \u00E8 \u00E8-2; ");
}

TEST_F(FullExport, RefusesWhatItCannotTell) {
  import(kTown);
  edit(
      "J1 erased;J2 erased;J3 erased;J4 erased;R1 erased;T1 erased;T2 erased;P1 erased;P2 "
      "erased;P3 erased;"
      "P4 erased;P5 erased;U1 erased;U2 erased;U3 erased;V1 erased;V2 erased;V3 erased;V4 erased");
  EXPECT_EQ(exported(), "nothing");
  EXPECT_EQ(said, "nothing left Rete ; ");
}

}  // namespace
}  // namespace vessora
