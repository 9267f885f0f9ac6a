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

}  // namespace
}  // namespace vessora
