#include "module/results/rpt_reader.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/results/plain_rpt.h"

namespace vessora {
namespace {

// The four lines between a table's head and its rows. They are dropped unread.
const std::string kHead = "  ----\n  Node  Demand\n  Node  LPS\n  ----\n";

struct Read {
  RptKind kind = kRptUnreadable;
  NodeResultList nodes;
  LinkResultList links;
};

RptFile reportOf(const std::string& text) { return std::make_shared<const RptText>(text); }

Read read(const std::string& text) {
  Read r;
  r.kind = ReadRpt(reportOf(text), r.nodes, r.links);
  return r;
}

Read readPeriod(const std::string& text, const char16_t* time, bool lowerCaseHrs) {
  Read r;
  ReadRptPeriod(reportOf(text), r.nodes, r.links, time, lowerCaseHrs);
  return r;
}

std::string shown(const EpaNodeResult& r) {
  std::string all;
  for (const std::u16string_view t :
       {r.id.view(), r.demand.view(), r.head.view(), r.pressure.view(), r.quality.view()}) {
    all += (all.empty() ? "" : "|") + platform::narrow(t);
  }
  return all;
}
std::string shown(const EpaLinkResult& r) {
  std::string all;
  for (const std::u16string_view t :
       {r.id.view(), r.flow.view(), r.velocity.view(), r.headloss.view(), r.status.view()}) {
    all += (all.empty() ? "" : "|") + platform::narrow(t);
  }
  return all;
}

template <class List>
std::vector<std::string> shown(const List& list) {
  std::vector<std::string> rows;
  for (std::size_t i = 0; i < list.size(); ++i) rows.push_back(shown(list[i]));
  return rows;
}

using Rows = std::vector<std::string>;

TEST(RptReader, SinglePeriodRowsKeepWhatShortLinesDoNotReach) {
  const Read r = read("  Node Results:\n" + kHead +
                      "  N1  1 2 3 0.5 Reservoir\n"
                      "  N2\t4 5 6\n"
                      "  N3  7\n"
                      "   \n"
                      "  Link Results:\n" +
                      kHead +
                      "  P1  1 2 3 Closed Pump\n"
                      "  P2  4 5 6\n"
                      "  Analysis ended\n");
  EXPECT_EQ(r.kind, kRptSinglePeriod);
  EXPECT_EQ(shown(r.nodes), (Rows{"N1|1|2|3|0.5", "N2|4|5|6|0", "N3|7|5|6|0", "N3|7|5|6|0"}));
  // The last line is there twice: reading on at the end leaves it in place.
  EXPECT_EQ(shown(r.links), (Rows{"P1|1|2|3|Closed", "P2|4|5|6|Open", "Analysis|ended|5|6|Open",
                                  "Analysis|ended|5|6|Open"}));
}

TEST(RptReader, HeadsAreMatchedToTheLetter) {
  EXPECT_TRUE(read("  Node Results: \n" + kHead + "  N1 1 2 3\n").nodes.empty());
  EXPECT_TRUE(read("  NODE Results:\n" + kHead + "  N1 1 2 3\n").nodes.empty());
  EXPECT_TRUE(read("  AVERAGE Node Results:\n" + kHead + "  N1 1 2 3\n").nodes.empty());
  EXPECT_EQ(read("  Node Results: (continued)\n" + kHead + "  N1 1 2 3\n").nodes.size(), 2U);
  // The head may end in CR LF; without any line end it is no head.
  EXPECT_EQ(read("  Node Results:\r\n1\r\n2\r\n3\r\n4\r\n  N1 1 2 3\r\n").nodes.size(), 2U);
  EXPECT_TRUE(read("  Node Results:").nodes.empty());
  // One line of the four is missing: the first row is dropped, and what the last read left stays.
  EXPECT_EQ(shown(read("  Link Results:\n1\n2\n3\n  P1 1 2 3\n").links), Rows{"P1|1|2|3|Open"});
  EXPECT_TRUE(read("  Link Results:\n1\n2\n3\n").links.empty());
  EXPECT_EQ(read("").kind, kRptSinglePeriod);
  NodeResultList nodes;
  LinkResultList links;
  EXPECT_EQ(ReadRpt(RptText::load(u"/no/such/report.rpt"), nodes, links), kRptUnreadable);
  EXPECT_EQ(ReadRpt(RptText::load(u"/"), nodes, links), kRptUnreadable);
}

const std::string kTwoPeriods = "  Node Results at 0:00:00 hrs:\n" + kHead + "  N1 1 2 3\n  \n" +
                                "  Link Results at 0:00:00 hrs:\n" + kHead + "  P1 10 20 30\n  \n" +
                                "  Node Results at 1:00:00 hrs:\n" + kHead +
                                "  N1 4 5 6\n  N2 7 8 9\n  \n" +
                                "  Link Results at 1:00:00 hrs:\n" + kHead + "  P1 40 50 60\n";

TEST(RptReader, ALinkTableNeverEnds) {
  EXPECT_EQ(read(kTwoPeriods).kind, kRptMultiPeriod);
  EXPECT_TRUE(read(kTwoPeriods).nodes.empty());
  const Read r = readPeriod(kTwoPeriods, u"0:00:00", true);
  EXPECT_EQ(shown(r.nodes), (Rows{"N1|1|2|3|0", "N1|1|2|3|0"}));
  // Every later line, heads included; the first row of a name is the one of the period.
  EXPECT_EQ(r.links.size(), 17U);
  EXPECT_EQ(shown(r.links[r.links.find(u"P1")]), "P1|10|20|30|Open");
  EXPECT_EQ(shown(r.links[r.links.find(u"N2")]), "N2|7|8|9|Open");
  EXPECT_EQ(shown(r.links[2]), "Node|Results|at|1:00:00|hrs:");
  EXPECT_EQ(r.links.find(u"p1"), RptRowList::kNone);
  EXPECT_EQ(shown(r.links[r.links.size() - 1]), "P1|40|50|60|Open");
}

TEST(RptReader, ThePeriodAndTheHourWordMustFit) {
  EXPECT_TRUE(readPeriod(kTwoPeriods, u"0:00:00", false).nodes.empty());
  EXPECT_TRUE(readPeriod(kTwoPeriods, u"0:00", true).nodes.empty());
  EXPECT_TRUE(readPeriod(kTwoPeriods, u"", true).nodes.empty());
  EXPECT_EQ(readPeriod(kTwoPeriods, u"1:00:00", true).nodes.size(), 3U);

  const std::string capital = "  Node Results at 0:00 Hrs:\n" + kHead + "  N1 1 2 3 4 5 6\n";
  EXPECT_EQ(shown(readPeriod(capital, u"0:00", false).nodes), (Rows{"N1|1|2|3|4", "N1|1|2|3|4"}));
  EXPECT_TRUE(readPeriod(capital, u"0:00", true).nodes.empty());
  // A continued table has a capital in either case; with a small letter its head is a row.
  const std::string more = kHead + "  N2 4 5 6\n";
  const std::string page = "  Node Results at 0:00 Hrs: (continued)\n" + more;
  const std::string smallPage = "  Node Results at 0:00 hrs: (continued)\n" + more;
  const std::string small = "  Node Results at 0:00 hrs:\n" + kHead + "  N1 1 2 3\n";
  EXPECT_EQ(readPeriod(capital + page, u"0:00", false).nodes.size(), 3U);
  EXPECT_EQ(readPeriod(small + page, u"0:00", true).nodes.size(), 3U);
  const Read read = readPeriod(small + smallPage, u"0:00", true);
  EXPECT_EQ(read.nodes.size(), 8U);
  EXPECT_EQ(shown(read.nodes[read.nodes.find(u"N2")]), "N2|4|5|6|0");
}

TEST(RptReader, PeriodsAreListedFromNodeTables) {
  const auto steps = [](const std::string& text) {
    std::vector<std::u16string> list;
    ListRptTimeSteps(reportOf(text), list);
    std::string all;
    for (const std::u16string& s : list) all += "[" + platform::narrow(s) + "]";
    return all;
  };
  EXPECT_EQ(steps(kTwoPeriods), "[0:00:00][1:00:00]");
  EXPECT_EQ(steps("  Node Results at 5:00 Hrs:\n  Node Results at 5:00 Hrs: (continued)\n"
                  "  Link Results at 6:00 Hrs:\n  Node Results at 100:30:00 hrs:\n"
                  "  Node Results at 5:00 whatever\n"),
            "[5:00][100:30:00][5:00]");
  // Nothing but the prefix makes the report one of several periods.
  EXPECT_EQ(steps("  Node Results at"), "[]");
  EXPECT_EQ(read("  Node Results at").kind, kRptMultiPeriod);
  EXPECT_EQ(steps("   Node Results at 1:00 hrs:\n"), "");
}

TEST(RptReader, LongLinesAndFieldsAreCutWhereTheirRoomEnds) {
  const std::string name(300, 'n'), value(60, '7');
  Read r = read("  Node Results:\n" + kHead + "  " + name + " " + value + " 2 3\n");
  EXPECT_EQ(r.nodes[0].id.size(), 255U);
  EXPECT_EQ(r.nodes[0].demand.size(), 49U);
  EXPECT_EQ(r.nodes.find(std::u16string(255, u'n')), 0U);
  // 999 characters are a line; the rest is the next one.
  r = read("  Node Results:\n" + kHead + "  N1 1 2 3" + std::string(989, ' ') + "N2 4 5 6\n");
  EXPECT_EQ(shown(r.nodes), (Rows{"N1|1|2|3|0", "N2|4|5|6|0", "N2|4|5|6|0"}));
  // Bytes that are no UTF-8 are those of the usual code page.
  r = read("  Node Results:\n" + kHead + "  Citt\xE0 1 2 3\n");
  EXPECT_EQ(r.nodes.find(u"Città"), 0U);
}

// What a report may hold, drawn at random: heads of several periods, rows of any number of words,
// blank, long and broken lines.
std::string randomReport(std::mt19937& random) {
  const auto pick = [&random](int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
  };
  const char* const kinds[] = {"Node", "Link"};
  std::string text;
  for (int lines = pick(60); lines >= 0; --lines) {
    switch (pick(6)) {
      case 0:
        text += std::string("  ") + kinds[pick(2)] + " Results at " + std::to_string(pick(3)) +
                (pick(3) ? " hrs:" : " Hrs: (continued)");
        break;
      case 1:
        text += std::string(static_cast<std::size_t>(pick(4)), pick(2) ? ' ' : '\t');
        break;
      case 2:
        if (pick(4) == 0) text += std::string(static_cast<std::size_t>(980 + pick(40)), 'x');
        break;
      default:
        for (int words = pick(7); words > 0; --words) {
          text += "  " + std::string(pick(9) ? "" : "\xC3\xA8") + std::to_string(pick(12));
        }
    }
    text += pick(8) ? "\n" : "\r\n";
  }
  if (pick(3) == 0) text.pop_back();
  return text;
}

TEST(RptReader, RowsOnDemandAreTheRowsOfAPlainReading) {
  std::mt19937 random(20);
  for (int i = 0; i < 3000; ++i) {
    const std::string text = randomReport(random);
    const Read r = readPeriod(text, u"1", true);
    const PlainRows plain = readPlainly(text, " at 1 hrs", " at 1 Hrs");
    ASSERT_TRUE(agrees(r.nodes, plain.nodes)) << text;
    ASSERT_TRUE(agrees(r.links, plain.links)) << text;
    // Asked from the end backwards, and for names that are not there.
    const Read again = readPeriod(text, u"1", true);
    for (std::size_t row = plain.links.size(); row-- > 0;) {
      ASSERT_TRUE(same(again.links[row], plain.links[row])) << text;
    }
    ASSERT_EQ(again.nodes.find(u"no such name"), RptRowList::kNone);
    ASSERT_TRUE(agrees(again.nodes, plain.nodes)) << text;
  }
}

// Rows that take all but their name from the first one: looking back for each would never end.
TEST(RptReader, ShortRowsCostNoMoreThanWholeOnes) {
  const auto linesSplit = [](const std::string& rest) {
    std::string text = "  Node Results:\n" + kHead + "  first 1 2 3\n";
    constexpr int kRows = 3000;
    for (int i = 0; i < kRows; ++i) text += "  N" + std::to_string(i) + rest + "\n";
    const Read r = read(text);
    for (int i = kRows - 1; i >= 0; --i) {
      const std::size_t row = r.nodes.find(platform::widen("N" + std::to_string(i)));
      EXPECT_EQ(row, static_cast<std::size_t>(i) + 1);
      EXPECT_EQ(r.nodes[row].pressure, u"3");
    }
    return static_cast<double>(r.nodes.linesSplit()) / kRows;
  };
  const double whole = linesSplit(" 1 2 3"), brief = linesSplit("");
  EXPECT_LT(whole, 8);
  EXPECT_LT(brief, whole + 4);  // a look at each of the rows that the columns come from
}

// --- where the tables of a period end
// -------------------------------------------------------------

TEST(RptReader, RowsInTheTablesAreToldFromTheTail) {
  const struct {
    const char* text;  // behind the head of the node table
    const char* in;    // names that stand in it
    bool open;
  } reports[] = {
      {"  N1 1 2 3\n  N2 1 2 3\n", "N1 N2", true},
      {"  N1 1 2 3\n  N2 1 2 3", "N1 N2", true},
      {"  N1 1 2 3\n \n  N2 1 2 3\n", "N1", false},
      {"  N1 1 2 3\r\n\r\n  N2 1 2 3\r\n", "N1", false},
      {"  N1 1 2 3\n\f\n  N2 1 2 3\n", "N1", false},
      // The next page of the table, behind the head of the page.
      {"  N1 1 2 3\n\n  Page 2\n\n  Node Results: (continued)\n1\n2\n3\n4\n  N2 1 2 3\n\n", "N1 N2",
       false},
      {"  N1 1 2 3\n  Link Results:\n1\n2\n3\n4\n  N2 1 2 3\n\n", "N1", false},
      // The line that ends a table is a row as well, and none of the table's.
      {"  N1 1 2 3\n  Node Results altrove\n  N2 1 2 3\n", "N1", false},
      {"", "", true},
  };
  for (const auto& report : reports) {
    const Read r = read("  Node Results:\n" + kHead + report.text);
    std::string in;
    for (const char16_t* name : {u"N1", u"N2", u"Node"}) {
      const std::size_t row = r.nodes.find(name);
      if (row == RptRowList::kNone || !r.nodes.inTable(row)) continue;
      in += (in.empty() ? "" : " ") + platform::narrow(name);
    }
    EXPECT_EQ(in, report.in) << report.text;
    EXPECT_EQ(r.nodes.tableIsOpen(), report.open) << report.text;
  }
  const Read two = readPeriod(kTwoPeriods, u"0:00:00", true);
  EXPECT_TRUE(two.links.inTable(two.links.find(u"P1")));
  EXPECT_FALSE(two.links.inTable(two.links.find(u"N2")));  // a row of the other period
  EXPECT_FALSE(two.links.tableIsOpen());
  EXPECT_TRUE(readPeriod(kTwoPeriods, u"1:00:00", true).links.tableIsOpen());
  for (const auto& [head, lower] : {std::pair("hrs", true), std::pair("Hrs", false)}) {
    bool lowerCaseHrs = !lower;
    EXPECT_TRUE(isMultiPeriod(reportOf("  Node Results at 1:00 " + std::string(head) + ":\n"),
                              lowerCaseHrs));
    EXPECT_EQ(lowerCaseHrs, lower);
  }
}

TEST(RptReader, NamesAndValuesEndExactlyAtTheirCapacity) {
  for (const std::size_t n : {254U, 255U, 256U}) {
    const std::string name(n, 'n'), value(n / 5 - 1, '7');  // 49, 50, 50
    const Read r = read("  Link Results:\n" + kHead + "  " + name + " " + value + " " + value +
                        " 3 " + value + "\n");
    const std::size_t text = std::min<std::size_t>(n / 5 - 1, 49);
    EXPECT_EQ(r.links[0].id.size(), std::min<std::size_t>(n, 255));
    EXPECT_EQ(r.links[0].flow.size() + r.links[0].velocity.size() + r.links[0].status.size(),
              3 * text);
    EXPECT_EQ(r.links.find(std::u16string(std::min<std::size_t>(n, 255), u'n')), 0U);
  }
}

}  // namespace
}  // namespace vessora
