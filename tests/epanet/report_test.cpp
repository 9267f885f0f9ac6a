// Reports of both dialects, in small: what real ones hold that is hard to read.
#include "epanet/report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string>

namespace epanet {
namespace {

// A row as the solver pads it, by bytes.
std::string row(std::string line, std::initializer_list<const char*> fields,
                const std::string& word = "") {
  line.resize(std::max<std::size_t>(line.size(), 15), ' ');
  for (const std::string field : fields) {
    line.append(field.size() < 10 ? 10 - field.size() : 0, ' ').append(field);
  }
  return "  " + line + word + "\n";
}
std::string rule(int columns) { return "  " + std::string(16 + 10 * columns, '-') + "\n"; }

// A table of nodes and one of links as the solver writes them, and what stands between the colon
// and the end of their banners.
std::string nodeTable(const std::string& at, const std::string& rows,
                      const std::string& units = "gpm        ft       PSI") {
  return "  Node Results" + at + "\n" + rule(3) +
         "                     Demand      Head  Pressure\n  Node                  " + units +
         "\n" + rule(3) + rows + "   \n";
}
std::string linkTable(const std::string& at, const std::string& rows) {
  return "  Link Results" + at + "\n" + rule(3) +
         "                       Flow  Velocity  Headloss\n"
         "  Link                  gpm       fps   /1000ft\n" +
         rule(3) + rows + "   \n";
}
const std::string kWindowsRule = "  " + std::string(70, '-') + "\n";

std::string show(const std::optional<double>& value) {
  char text[32] = "-";
  if (value) std::snprintf(text, sizeof text, "%.10g", *value);
  return text;
}
std::string show(const NodeValues& v) {
  return show(v.demand) + " " + show(v.head) + " " + show(v.pressure) + " " + show(v.quality);
}
std::string show(const LinkValues& v) {
  const char* const states[] = {"closed", "open", "active"};
  return show(v.flow) + " " + show(v.velocity) + " " + show(v.headloss) + " " +
         (v.state ? states[static_cast<int>(*v.state)] : "-") + (v.isPipe ? "" : " !");
}
template <class Values>
std::string show(const ValueTable<Values>& table, std::string_view id) {
  const Values* const values = table.find(id);
  return values ? show(*values) : "none";
}

TEST(Report, PeriodsPagesAndRowsOfAnySubset) {
  const std::string text =
      // A title that looks like the head of a table is none.
      "  Page 1\r\n\r\n  Node Results at 9:00:00 hrs:\r\n  ----------\r\n\r\n" +
      nodeTable(" at 0:00:00 hrs:", row("A", {"1.00", "2.00", "-0.00"})) +
      linkTable(" at 0:00:00 hrs:", row("p", {"1.00", "2.00", "3.00"}) +
                                        row("q", {"1.00", "2.00", "-3.00"}, "  Pump")) +
      nodeTable(" at 100:30:00 hrs:", row("A", {"4.00", "5.00", "6.00"})) +
      "\f\n  Page 2    Node Results at 100:30:00 hrs:\n   \n" +
      nodeTable(" at 100:30:00 hrs: (continued)",
                row("R", {"-1.17e+06", "-506836.75", "9.00"}, "  Reservoir"));
  const Report report(text);
  ASSERT_EQ(report.periods().size(), 2U);
  EXPECT_EQ(report.periods()[1].name, "100:30:00");
  EXPECT_EQ(report.periods()[1].seconds, 361800);
  EXPECT_FALSE(report.isCut());
  const PeriodValues first = report.values(0), last = report.values(1);
  EXPECT_EQ(show(first.nodes, "A"), "1 2 -0 -");
  EXPECT_EQ(show(first.links, "p"), "1 2 3 -");
  EXPECT_EQ(show(first.links, "q"), "1 2 -3 - !");
  EXPECT_EQ(show(last.nodes, "A"), "4 5 6 -");
  EXPECT_EQ(show(last.nodes, "R"), "-1170000 -506836.75 9 -");
  EXPECT_TRUE(last.hasNodes);
  EXPECT_FALSE(last.hasLinks);
  EXPECT_EQ(last.nodes.rows().size(), 2U);
}

TEST(Report, RowsWhoseColumnsTouch) {
  const Report report(
      linkTable(":",
                "  PIPE-OF-IDIS-15-248794.91      0.64      0.13\n"
                "  PIPE-OF-IDIS--16 128794.41      0.33      0.04\n"
                "  PIPE-OF-CHARS31-0123456789ABCDE-749999.88      1.92      1.00  FCV\n" +
                    row("a b", {"1.00", "2.00", "3.00"}) + row("nœud", {"1.00", "2.00", "4.00"})));
  const PeriodValues values = report.values(0);
  EXPECT_TRUE(values.unreadableLines.empty());
  EXPECT_EQ(show(values.links, "PIPE-OF-IDIS-15"), "-248794.91 0.64 0.13 -");
  EXPECT_EQ(show(values.links, "PIPE-OF-IDIS--16"), "128794.41 0.33 0.04 -");
  EXPECT_EQ(show(values.links, "PIPE-OF-CHARS31-0123456789ABCDE"), "-749999.88 1.92 1 - !");
  EXPECT_EQ(show(values.links, "a b"), "1 2 3 -");
  EXPECT_EQ(show(values.links, "nœud"), "1 2 4 -");
}

// Six decimals: the rows where a number is not wider than its column tell how many there are.
TEST(Report, NumbersWiderThanTheirColumns) {
  const Report report(nodeTable(":",
                                "  10               0.0000001004.347412       128\n"
                                "  11             150.000000985.230347       119\n"
                                "  9              -1866.175781800.000000         0  Reservoir\n"));
  const PeriodValues values = report.values(0);
  EXPECT_EQ(show(values.nodes, "10"), "0 1004.347412 128 -");
  EXPECT_EQ(show(values.nodes, "11"), "150 985.230347 119 -");
  EXPECT_EQ(show(values.nodes, "9"), "-1866.175781 800 0 -");

  // Where nothing tells, the row is named and not guessed at.
  const Report doubtful(nodeTable(":", "  11             150.1111111985.2303471       119\n"));
  const PeriodValues none = doubtful.values(0);
  EXPECT_EQ(none.nodes.rows().size(), 0U);
  EXPECT_EQ(none.unreadableLines, std::vector<std::uint64_t>{6});
}

// An id of more than its places ends where the number's own digits can begin: numbers have no zero
// in front, and none above a million is written without an exponent.
TEST(Report, LongIdsThatEndInDigits) {
  const Report report(
      nodeTable(":", row("A", {"1.000", "2.0000", "3.00"}) +
                         row("NODE-OF-LENGTH-17", {"248794.912", "4.0000", "5.00"}) +
                         row("NODE-OF-LENGTH-10", {"48794.912", "6.0000", "7.00"})));
  const PeriodValues values = report.values(0);
  EXPECT_EQ(show(values.nodes, "NODE-OF-LENGTH-17"), "248794.912 4 5 -");
  EXPECT_EQ(show(values.nodes, "NODE-OF-LENGTH-10"), "48794.912 6 7 -");
  const Report fine(nodeTable(":", row("A", {"1.0000", "2.00", "3.00"}) +
                                       row("NODE-OF-LENGTH-10", {"48794.9125", "4.00", "5.00"})));
  EXPECT_EQ(show(fine.values(0).nodes, "NODE-OF-LENGTH-10"), "48794.9125 4 5 -");
}

TEST(Report, WhatStandsBetweenRowsIsNoRow) {
  std::string text =
      nodeTable(":", row("A", {"1.00", "2.00", "3.00"}) +
                         "  WARNING: Negative pressures at 1:00:00 hrs.\n" +
                         row("A", {"7.00", "8.00", "9.00"}) + row("B", {"4.00", "5.00", "6.00"})) +
      "  WARNING: later\n";
  for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos; at += 2) {
    text.insert(at, 1, '\r');
  }
  const Report report(text);
  const PeriodValues values = report.values(0);
  EXPECT_TRUE(values.unreadableLines.empty());
  EXPECT_EQ(show(values.nodes, "A"), "1 2 3 -");  // the first of a name
  EXPECT_EQ(show(values.nodes, "B"), "4 5 6 -");
  EXPECT_EQ(values.units.pressure, "PSI");
  ASSERT_EQ(report.messages().size(), 2U);
  EXPECT_EQ(report.messages()[0].line, 7U);
  EXPECT_EQ(report.messages()[1].line, 11U);
}

// A run can trace a node of any name.
TEST(Report, QualityUnderTheNameOfAnotherColumn) {
  const Report report("  Node Results:\n" + rule(4) +
                      "                     Demand      Head  Pressure      Head\n"
                      "  Node                  gpm        ft       PSI    % from\n" +
                      rule(4) + row("A", {"1.00", "2.00", "3.00", "4.00"}) + "   \n");
  EXPECT_EQ(show(report.values(0).nodes, "A"), "1 2 3 4");
}

TEST(Report, ColumnsAreKnownByTheirNamesAndWidths) {
  const Report report("  AVERAGE Node Results:\n" + rule(4) +
                      "                  Elevation    Demand      Head    a Tank\n"
                      "  Node                    m       L/s         m    % from\n" +
                      rule(4) + row("n", {"7.00", "8.00", "9.00", "10.00"}, "  Tank") +
                      "   \n"
                      "  AVERAGE Link Results:\n" +
                      rule(5) +
                      "                       Flow  Headloss     State   Setting  F-Factor\n"
                      "  Link                  L/s    /1000m                              \n" +
                      rule(5) + row("v", {"1.00", "2.00", "active", "3.00", "0.032"}, "  PRV"));
  ASSERT_EQ(report.periods().size(), 1U);
  EXPECT_EQ(report.periods()[0].name, "AVERAGE");
  EXPECT_EQ(report.periods()[0].seconds, -1);
  ASSERT_NE(report.nodeHead(0), nullptr);
  EXPECT_EQ(report.nodeHead(0)->columns[3].unit, "% from");
  const PeriodValues values = report.values(0);
  EXPECT_EQ(show(values.links, "v"), "1 - 2 active !");
  EXPECT_EQ(show(values.links.find("v")->setting), "3");
  EXPECT_EQ(values.units.velocity, "");
  EXPECT_EQ(values.units.headloss, "/1000m");
}

TEST(Report, TheWindowsProgramsDialect) {
  const std::string head = "  Link Results at 0:00 Hrs:\n" + kWindowsRule +
                           "  Link                  Flow  VelocityUnit Headloss    Status\n"
                           "  ID                     GPM       fps    ft/Kft\n" +
                           kWindowsRule;
  const Report report(
      "  Node Results at 0:00 Hrs:\n" + kWindowsRule +
      "  Node                Demand      Head  Pressure   Quality\n"
      "  ID                     GPM        ft       psi      mg/L\n" +
      kWindowsRule +
      "  9                 -1866.18    800.00      0.00      1.00 Reservoir\n"
      "  2                     0.00-1169618.00-506836.90      0.97 Tank\n"
      "  3                     #N/A      1.00      2.00      0.00\n  \n" +
      head + "  9                  1866.18      0.00   -204.35      Open Pump\n  \n\f\n  Page 2\n" +
      head.substr(0, 27) + " (continued)" + head.substr(27) +
      "  1                 19940.007.052377E143.862212E35      Open\n"
      "  V_                   40.81      0.46      0.32    Active Valve\n  \n");
  const PeriodValues values = report.values(0);
  EXPECT_TRUE(values.unreadableLines.empty());
  EXPECT_EQ(report.periods()[0].seconds, 0);
  EXPECT_EQ(show(values.nodes, "9"), "-1866.18 800 0 1");
  EXPECT_EQ(show(values.nodes, "2"), "0 -1169618 -506836.9 0.97");
  EXPECT_EQ(show(values.nodes, "3"), "- 1 2 0");
  EXPECT_EQ(show(values.links, "9"), "1866.18 0 -204.35 open !");
  EXPECT_EQ(show(values.links, "1"), "19940 7.052377e+14 3.862212e+35 open");
  EXPECT_EQ(show(values.links, "V_"), "40.81 0.46 0.32 active !");
  EXPECT_EQ(values.units.velocity + values.units.headloss, "fpsft/Kft");
}

TEST(Report, WhatTheSolverSays) {
  const Report report(
      "  WARNING: Node n 2 disconnected at 8:00:00 hrs\n"
      "  WARNING: PRV V1 open but cannot deliver pressure at 9:30:00 hrs.\n"
      "  Input Error 202: illegal numeric value X in [PIPES] section:\n   P1 A B X\n\n"
      "  Error 200: one or more errors in input file");
  ASSERT_EQ(report.messages().size(), 4U);
  EXPECT_EQ(report.messages()[1].time, "9:30:00");
  EXPECT_EQ(report.messages()[1].elementKind + report.messages()[1].element, "PRVV1");
  EXPECT_EQ(report.messages()[1].words, "PRV V1 open but cannot deliver pressure");
  EXPECT_EQ(report.messages()[2].code, 202);
  EXPECT_EQ(report.messages()[2].row, "P1 A B X");
  EXPECT_EQ(report.messages()[3].line, 6U);
  EXPECT_TRUE(report.messages()[3].isError);
  EXPECT_TRUE(report.periods().empty());
}

TEST(Report, OneThatIsCutShortSaysSo) {
  const std::string whole =
      nodeTable(":", row("A", {"1.00", "2.00", "3.00"}) + row("B", {"1.00", "2.00", "3.00"}));
  const std::size_t rows = whole.find("  A "), lastRow = whole.find("  B ");
  for (std::size_t size = whole.find("  Node  "); size + 1 < rows; ++size) {
    EXPECT_TRUE(Report(whole.substr(0, size)).isCut()) << size;
  }
  for (std::size_t size = rows + 3; size < lastRow; ++size) {
    const Report report(whole.substr(0, size));
    EXPECT_TRUE(report.isCut() && report.values(0).endsOpen) << size;
  }
  // At the end of a row nothing is missing but the line that ends tables.
  const Report open(whole.substr(0, lastRow));
  EXPECT_TRUE(!open.isCut() && open.values(0).endsOpen);
  const Report links(whole + linkTable(":", row("p", {"1.00", "2.00", "3.00"})));
  EXPECT_TRUE(!links.isCut() && !links.values(0).endsOpen);
  const std::string rest = linkTable(":", row("p", {"1.00", "2.00", "3.00"}));
  EXPECT_TRUE(Report(whole + rest.substr(0, rest.size() - 4)).values(0).endsOpen);
  EXPECT_FALSE(Report(whole).isCut());
}

TEST(Results, ConvertedToTheUnitsOfDrawings) {
  Report report(nodeTable(":", row("A", {"448.83", "10.00", "1.00"})) +
                linkTable(":", row("p", {"448.83", "10.00", "3.00"}) +
                                   row("v", {"0.00", "0.00", "10.00"}, "  PRV")));
  PeriodValues values = report.values(0);
  EXPECT_EQ(convertToDrawing(values), "");
  EXPECT_EQ(show(values.nodes, "A"), "28.31693691 3.048 0.7034387261 -");
  EXPECT_EQ(show(values.links, "p"), "28.31693691 3.048 3 -");
  EXPECT_EQ(show(values.links, "v"), "0 0 3.048 - !");
  EXPECT_EQ(values.units.pressure, "m");

  Report odd(nodeTable(":", row("A", {"1.00", "2.00", "3.00"}), "gpm        ft      inHg"));
  PeriodValues stays = odd.values(0);
  EXPECT_EQ(convertToDrawing(stays), "inHg");
  EXPECT_EQ(show(stays.nodes, "A"), "1 2 3 -");
}

TEST(Results, TimesOfPeriods) {
  for (const char* bad : {"", "7", ":", "7:", "7:60", "1:00:60", "1:2:3:4", "1:00 AM", "-1:00"}) {
    EXPECT_EQ(secondsOf(bad), -1) << bad;
  }
  EXPECT_EQ(secondsOf("7:00"), 25200);
  EXPECT_EQ(timeText(secondsOf("100:30:07")), "100:30:07");
}

}  // namespace
}  // namespace epanet
