// Laws of documents and of their editor, on files that strain the reader and on noise.
#include "epanet/editor.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "epanet/network.h"
#include "tests/epanet/editor_laws.h"

namespace epanet {
namespace {

std::string edited(const std::string& text, void (*edit)(const Document&, Editor&)) {
  const Document document(text);
  Editor editor(document);
  edit(document, editor);
  return editor.apply().text;
}

TEST(Editor, KeepsColumns) {
  const auto set = [](const char* row, int token, const char* word) {
    const Document document("[PIPES]\n" + std::string(row) + "\n");
    Editor editor(document);
    editor.setToken(1, token, word);
    const std::string text = editor.apply().text;
    return text.substr(8, text.size() - 9);
  };
  EXPECT_EQ(set("a   1.5   x", 1, "22.75"), "a   22.75 x");
  EXPECT_EQ(set("a   1.5   x", 1, "22.7512345"), "a   22.7512345 x");
  EXPECT_EQ(set("a   22.75  x", 1, "1"), "a   1      x");
  EXPECT_EQ(set("a 22.75 x", 1, "1"), "a 1 x");  // no columns here
  EXPECT_EQ(set(" a\t22.75\tx", 1, "1"), " a\t1\tx");
  EXPECT_EQ(set(" a\t22.7500   \tx", 1, "1"), " a\t1         \tx");
  EXPECT_EQ(set(" a\t1   \tx\t;", 1, "123456"), " a\t123456\tx\t;");
  EXPECT_EQ(set("a 1 ;said", 1, "1234"), "a 1234 ;said");
  EXPECT_EQ(set("a \"b c\" d", 1, "e f"), "a \"e f\" d");
  EXPECT_EQ(set("a b", 3, "d"), "a b d");  // whoever leaves one out knows why
  EXPECT_EQ(set("a\tb;", 2, ""), "a\tb\t\"\";");
}

TEST(Editor, NewRowsStandWhereTheSolverReadsThemInTime) {
  const auto add = [](const Document&, Editor& editor) {
    editor.addRow(Section::pumps, {"U", "J", "K", "POWER", "1"});
    editor.addRow(Section::tanks, {"T", "1", "2", "3", "4", "5"});
    editor.addRow(Section::status, {"U", "Closed"});
    editor.addRow(Section::pipes, {"P2", "J", "T"});
    editor.addRow(Section::tanks, {"T2", "1", "2", "3", "4", "5"});
  };
  const std::string text =
      edited("[JUNCTIONS]\r\n J 1\r\n K\r\n\r\n[PIPES]\r\n;ID\r\n\r\n[VERTICES]\r\n P 1 2", add);
  EXPECT_EQ(text.substr(0, 22), "[JUNCTIONS]\r\n J 1\r\n K\r");
  const Network network{Document(text)};
  for (const Problem& problem : network.problems) {
    EXPECT_NE(problem.fault, Fault::unknownNode);
    EXPECT_NE(problem.fault, Fault::unknownLink);
  }
  EXPECT_EQ(text.find("\n\n"), text.npos);  // line ends are those of the file
  EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
  EXPECT_LT(text.find("[TANKS]"), text.find("[PIPES]"));
  EXPECT_LT(text.find("[PUMPS]"), text.find("[VERTICES]"));
  EXPECT_LT(text.find("[VERTICES]"), text.find("[STATUS]"));
}

TEST(Editor, HoldsItsLawsOnFilesAndOnNoise) {
  std::vector<std::string> texts = {"", "\n", "[", "[END]", "a", "[JUNC\r J 1\r", "\"", "[TITLE"};
  const auto folder = std::filesystem::path(VESSORA_TESTS_DIR) / "epanet" / "strain";
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".inp") continue;
    std::ifstream in(entry.path(), std::ios::binary);
    texts.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  std::mt19937 random(7);
  const auto pick = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
  };
  const std::size_t files = texts.size();
  for (int i = 0; i < 400; ++i) {
    std::string text = texts[pick(files)].substr(0, 4000);
    for (int k = 0; k < 20 && !text.empty(); ++k) {
      text[pick(text.size())] = "[]\";\r\n\t 0-1.e\xE8"[pick(15)];
    }
    texts.push_back(text);
  }
  for (const std::string& text : texts) {
    for (unsigned seed = 0; seed < 3; ++seed) {
      ASSERT_EQ(brokenLaw(text, seed), "") << text.substr(0, 300);
    }
  }
}

}  // namespace
}  // namespace epanet
