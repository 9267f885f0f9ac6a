#include "module/inp/inp_reader.h"

#include <fstream>

#include "tests/inp/inp_testing.h"

namespace vessora {
namespace {

// --- lines, headers, sections --------------------------------------------------------------------

TEST(InpReader, headersStandAloneOnTheirLine) {
  const Parsed p(
      "[JUNCTIONS] \n;ID\nlost 1\n\n"
      " [JUNCTIONS]\n;ID\nlost 2\n\n"
      "[junctions]\n;ID\nlost 3\n\n"
      "[JUNCTIONS];\n;ID\nlost 4\n\n"
      "[JUNCTIONS]\n;ID\nkept 5\n\n"
      "[JUNCTIONS]\nits first row goes for the column line\nkept 6\n");
  ASSERT_EQ(p.network.juncs.size(), 2u);
  EXPECT_EQ(p.network.juncs[0].id, u"kept");
  EXPECT_EQ(p.network.juncs[1].elev, u"6\n");
}

TEST(InpReader, onlyABlankLineOrAKnownHeaderEndsASection) {
  const Parsed p(
      "[JUNCTIONS]\n;ID\nJ1 1 ;\n;comment here ;\n \n[TAGS]\n NODE J1 x\n[PIPES]\n;ID\nP1 J1 J2\n"
      "\n[TAGS]\nno row of anything\n\nnor this\n");
  ASSERT_EQ(p.network.juncs.size(), 5u);
  EXPECT_EQ(p.network.juncs[1].id, u"comment");
  EXPECT_EQ(p.network.juncs[2].id, u"\n");  // a line of a blank
  EXPECT_EQ(p.network.juncs[3].id, u"[TAGS]\n");
  EXPECT_EQ(p.network.juncs[4].id, u"NODE");
  ASSERT_EQ(p.network.pipes.size(), 1u);
}

TEST(InpReader, aLineWithoutTokensIsARecordAllTheSame) {
  const Parsed p("[VALVES]\n;ID\n ;\t[\n;; ;");  // at end of file there is not even a line feed
  ASSERT_EQ(p.network.valves.size(), 2u);
  EXPECT_TRUE(p.network.valves[1].id.empty());
  EXPECT_EQ(p.network.valves[1].status, u"None");
  const Parsed pump("[PUMPS]\n;ID\n ");
  ASSERT_EQ(pump.network.pumps.size(), 1u);
  EXPECT_EQ(pump.network.pumps[0].status, u"Open");
}

TEST(InpReader, lineEndsAndEncodings) {
  const std::string lines = "[JUNCTIONS]\n;ID\n Citt\xC3\xA0\t12\t0\t\t;\n\n[OPTIONS]\n Trials 7\n";
  std::string crlf = "\xEF\xBB\xBF";
  for (char c : lines) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  for (const std::string& text : {lines, crlf}) {
    const Parsed p(text);
    ASSERT_EQ(p.network.juncs.size(), 1u);
    EXPECT_EQ(p.network.juncs[0].id, u"Città");
    EXPECT_TRUE(p.network.juncs[0].pattern.empty());
    EXPECT_EQ(p.settings.trials, 7);
  }
  const Parsed p("[JUNCTIONS]\n;ID\nCitt\xE0 1\n\x1A\nJ2 2\n");  // Windows-1252, ends at Ctrl-Z
  ASSERT_EQ(p.network.juncs.size(), 1u);
  EXPECT_EQ(p.network.juncs[0].id, u"Città");
}

TEST(InpReader, longLinesComeInPiecesAndLongTokensAreCut) {
  const std::string id(300, 'i');
  const Parsed p("[JUNCTIONS]\n;ID\n" + id + " " + std::string(60, '7') + std::string(638, ' ') +
                 "tail 5\n");
  ASSERT_EQ(p.network.juncs.size(), 2u);
  EXPECT_EQ(p.network.juncs[0].id.view(), std::u16string(255, u'i'));
  EXPECT_EQ(p.network.juncs[0].elev.view(), std::u16string(49, u'7'));
  EXPECT_EQ(p.network.juncs[1].id, u"tail");
}

TEST(InpReader, fieldsEndExactlyAtTheirCapacity) {
  for (const std::size_t n : {254u, 255u, 256u}) {
    const std::string id(n, 'i'), value(n / 5 - 1, '7');            // 49, 50, 50
    const std::string wide = "\xC3\xA0" + std::string(n - 1, 'i');  // as many characters
    const Parsed p("[PIPES]\n;\n" + id + " " + wide + " B " + value + " ;\n");
    const EpaPipe& pipe = p.network.pipes.at(0);
    EXPECT_EQ(pipe.id.size(), std::min<std::size_t>(n, 255));
    EXPECT_EQ(pipe.node1.size(), std::min<std::size_t>(n, 255));
    EXPECT_EQ(pipe.length.size(), std::min<std::size_t>(n / 5 - 1, 49));
    EXPECT_EQ(pipe.node2, u"B");
  }
}

// A zero character ends the text of its line, the line feed with it.
TEST(InpReader, zeroCharacters) {
  const std::string zero(1, '\0');
  const Parsed p("[JUNCTIONS]\n;ID\nJ1 1" + zero + "23\n" + zero + "\nJ3 3\n[JUNCTIONS]" + zero +
                 "\n");
  ASSERT_EQ(p.network.juncs.size(), 4u);
  EXPECT_EQ(p.network.juncs[0].elev, u"1");
  EXPECT_TRUE(p.network.juncs[1].id.empty());
  EXPECT_EQ(p.network.juncs[3].id, u"[JUNCTIONS]");
}

// --- element rows --------------------------------------------------------------------------------

TEST(InpReader, elementRows) {
  const Parsed p(
      "[JUNCTIONS]\n;\n J1\t12.5\t0.1\tday\t;c\n J2 1 2 ;\n J3 1 2\n"
      "[RESERVOIRS]\n;\n R1\t99\tpat\t;\n"
      "[TANKS]\n;\n T1 80 2 0.5 4 10 1 vol more ;\n T2 80 2 0.5 4 10 1 ;\n"
      "[PIPES]\n;\n P1 J1 J2 100 150 130 0.2 CV ;\n P2 J1 J2 100 150 130 0.2 Open\n"
      "[VALVES]\n;\n V1 J1 J2 100 PRV 35 0.1 ;\n"
      "[COORDINATES]\n;\n J1 1.5 -2.5 \n"
      "[VERTICES]\n;\nP1;7;8;\nP1 9\n");
  const EpaNetwork& n = p.network;
  ASSERT_EQ(n.juncs.size(), 3u);
  EXPECT_EQ(n.juncs[0].pattern, u"day");
  EXPECT_TRUE(n.juncs[1].pattern.empty());  // behind ";" the line feed is a token: no pattern
  EXPECT_EQ(n.juncs[2].demand, u"2\n");     // without ";" it stays on the last value
  EXPECT_TRUE(n.resvs[0].pattern.empty());
  EXPECT_EQ(n.resvs[0].head, u"99");
  EXPECT_EQ(n.tanks[0].minVol, u"1");
  EXPECT_EQ(n.tanks[0].volCurve, u"vol");
  EXPECT_EQ(n.tanks[1].volCurve, u"\n");
  EXPECT_EQ(n.pipes[0].minorLoss, u"0.2");
  EXPECT_EQ(n.pipes[0].status, u"CV");
  EXPECT_EQ(n.pipes[1].status, u"Open\n");
  EXPECT_EQ(n.valves[0].setting, u"35");
  EXPECT_EQ(n.valves[0].minorLoss, u"0.1");
  EXPECT_EQ(n.valves[0].status, u"None");
  EXPECT_EQ(n.coords[0].y, u"-2.5");
  ASSERT_EQ(n.vertices.size(), 2u);
  EXPECT_EQ(n.vertices[0].x, u"7");
  EXPECT_EQ(n.vertices[1].x, u"9\n");
  EXPECT_TRUE(n.vertices[1].y.empty());
}

TEST(InpReader, pumpKeywordsCountAtTheirPlacesOnly) {
  struct Case {
    const char* parameters;
    const char16_t *curve, *power, *speed, *pattern;
  };
  const Case cases[] = {
      {"HEAD c ;", u"c", u"", u"", u""},
      {"POWER 5 ;", u"", u"5", u"", u""},
      {"head c ;", u"c", u"", u"", u""},  // any word but POWER means a curve
      {"POWER ;", u"", u"\n", u"", u""},
      {"POWER\n", u"", u"", u"", u""},
      {"HEAD c SPEED 1.2 PATTERN p ;", u"c", u"", u"1.2", u"p"},
      {"POWER 5 SPEED 1.2 PATTERN p ;", u"", u"5", u"1.2", u"p"},
      {"HEAD c SPEED 1.2 PATTER p ;", u"c", u"", u"1.2", u""},
      {"HEAD c PATTERN p ;", u"c", u"", u"", u""},
      {"HEAD c PATTERN p SPEED 1.2 ;", u"c", u"", u"", u""},
      {"HEAD c Speed 1.2 PATTERN p ;", u"c", u"", u"", u"p"},
      {"SPEED 1.2 HEAD c ;", u"1.2", u"", u"", u""},
  };
  for (const Case& c : cases) {
    const Parsed p(std::string("[PUMPS]\n;\n PU J1 J2 ") + c.parameters + "\n");
    const EpaPump& pump = p.network.pumps.at(0);
    EXPECT_EQ(pump.headCurve, c.curve) << c.parameters;
    EXPECT_EQ(pump.power, c.power) << c.parameters;
    EXPECT_EQ(pump.speed, c.speed) << c.parameters;
    EXPECT_EQ(pump.speedPattern, c.pattern) << c.parameters;
    EXPECT_EQ(pump.status, u"Open");
  }
}

// --- rows that name elements ---------------------------------------------------------------------

TEST(InpReader, statusGoesToEveryPumpAndValveReadSoFar) {
  const Parsed p(
      "[PUMPS]\n;\nA x\nB x\nA x\n[VALVES]\n;\nA x\n[PIPES]\n;\nP a b 1 2 3 4 Open ;\n"
      "[STATUS]\n;\n A\tClosed\nnobody Open\nP Closed\nB\n"
      "[PUMPS]\n;\nA x\n\n[STATUS]\n;\nB 1.5 ;\n");
  const EpaNetwork& n = p.network;
  ASSERT_EQ(n.pumps.size(), 4u);
  EXPECT_EQ(n.pumps[0].status, u"Closed");
  EXPECT_EQ(n.pumps[1].status, u"1.5");
  EXPECT_EQ(n.pumps[2].status, u"Closed");
  EXPECT_EQ(n.pumps[3].status, u"Open");  // came after the row
  EXPECT_EQ(n.valves[0].status, u"Closed");
  EXPECT_EQ(n.pipes[0].status, u"Open");
}

TEST(InpReader, laterStatusRowsOverrideAndReachLaterRecords) {
  std::string text;
  for (int round = 0; round < 40; ++round) {  // the index grows several times between the questions
    text += "[VALVES]\n;\nsame x\nv" + std::to_string(round) + " x\n[STATUS]\n;\nsame s" +
            std::to_string(round) + "\nv" + std::to_string(round / 2) + " half\n";
  }
  const Parsed p(text);
  ASSERT_EQ(p.network.valves.size(), 80u);
  for (int round = 0; round < 40; ++round) {
    EXPECT_EQ(p.network.valves[2 * round].status, u"s39") << round;
    EXPECT_EQ(p.network.valves[2 * round + 1].status == u"half", round < 20) << round;
  }
}

TEST(InpReader, emitterGoesToTheFirstAndEnergyToTheLastOfAnId) {
  const Parsed p(
      "[JUNCTIONS]\n;\nJ 1\nJ 2\n[PUMPS]\n;\nA x\nA x\n"
      "[EMITTERS]\n;\n J 0.50 ;\nK 3\nJ\n\n"
      "[ENERGY]\n Pump A Efficiency e1\n Pump A Price 0.10\n Pump A Pattern pp\n Pump Z Price 9\n"
      " Pump A Price\n pump A Price 7\n");
  EXPECT_EQ(p.network.juncs[0].emitter, u"0.50");
  EXPECT_TRUE(p.network.juncs[1].emitter.empty());
  EXPECT_TRUE(p.network.pumps[0].price.empty());
  EXPECT_EQ(p.network.pumps[1].effCurve, u"e1");
  EXPECT_EQ(p.network.pumps[1].price, u"0.10");
  EXPECT_EQ(p.network.pumps[1].pricePattern, u"pp");
  EXPECT_EQ(p.settings.globalPrice, 0.0);  // "pump" is not "Pump", and "A" no keyword
}

// --- patterns and curves -------------------------------------------------------------------------

TEST(InpReader, patternsAreDividedByCommentLines) {
  const Parsed p(
      "[PATTERNS]\n;ID\n;\n a 1 2\n a 3\n;second\nb 4 ;\nc x\n;\n;\n\n"
      "[PATTERNS]\n;ID\nnot a comment: no section\nlost 1\n\n"
      "[PATTERNS]\n;ID\n;\nlast 5");
  const auto& patterns = p.network.patterns;
  ASSERT_EQ(patterns.size(), 4u);
  EXPECT_EQ(patterns[0].id, u"a");
  EXPECT_EQ(patterns[0].multipliers, (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(patterns[1].id, u"c");
  EXPECT_EQ(patterns[1].multipliers, (std::vector<double>{4, 0, 0}));  // ";" and "x" read as 0
  EXPECT_EQ(patterns[2].id, u"c");  // a second comment line: the previous id, no multipliers
  EXPECT_TRUE(patterns[2].multipliers.empty());
  EXPECT_EQ(patterns[3].id, u"last");
  EXPECT_EQ(patterns[3].multipliers, (std::vector<double>{5}));
}

TEST(InpReader, patternRowsSwallowHeaders) {
  const Parsed p("[PATTERNS]\n;ID\n;\na 1\n[CURVES]\n2 3\n\n[JUNCTIONS]\n;\nJ 1\n");
  ASSERT_EQ(p.network.patterns.size(), 1u);
  EXPECT_EQ(p.network.patterns[0].id, u"2");
  EXPECT_EQ(p.network.patterns[0].multipliers, (std::vector<double>{1, 3}));
  EXPECT_EQ(p.network.juncs.size(), 1u);
}

TEST(InpReader, curvesAreDividedByKind) {
  const Parsed p(
      "[CURVES]\n;ID\n;PUMP: one\n;PUzzle\n c1 10 20\n;ID again\n c2 30\n;VOLUME:\n v 1 2;\n"
      ";EFF\n e 3 4\n;HEADLOSS:\n   ;\n;any other\nh 9 9\n\n"
      "[CURVES]\n;ID\n no kind 5 6\n\n[CURVES]\n;ID\n;PUMP:\n\n[CURVES]\n;ID\n\n"
      "[CURVES]\n;ID\n;EFF\n x 1 2");
  const auto& curves = p.network.curves;
  ASSERT_EQ(curves.size(), 7u);
  EXPECT_EQ(curves[0].id, u"c2");
  EXPECT_EQ(curves[0].kind, u"PUMP");
  ASSERT_EQ(curves[0].points.size(), 2u);
  EXPECT_EQ(curves[0].points[0].y, 20);
  EXPECT_EQ(curves[0].points[1].y, 0);
  EXPECT_EQ(curves[1].kind, u"VOLUME");
  EXPECT_EQ(curves[1].points[0].y, 2);
  EXPECT_EQ(curves[2].kind, u"EFFICIENCY");
  EXPECT_EQ(curves[3].kind, u"HEADLOSS");
  EXPECT_EQ(curves[3].points.size(), 1u);  // the row without numbers; "any other" ends the section
  EXPECT_EQ(curves[3].points[0].x, 0);
  EXPECT_TRUE(curves[4].kind.empty());
  EXPECT_EQ(curves[5].kind, u"PUMP");  // a kind and no row: an empty curve
  EXPECT_TRUE(curves[5].points.empty());
  EXPECT_EQ(curves[6].id, u"x");  // at end of file
}

// --- settings ------------------------------------------------------------------------------------

TEST(InpReader, options) {
  const Parsed p(
      "[OPTIONS]\n Units GPM\n Headloss\tC-M\n Specific Gravity 1.5\n Viscosity 0.9\n Trials 12x\n"
      " Accuracy 1e-2\n Unbalanced Stop 10\n Pattern day\n Demand Multiplier 2\n"
      " Emitter Exponent .7\n Quality Trace J9\n Diffusivity 3 ;c\n Tolerance 0.25\n HEADLOSS D-W\n"
      " Headloss\n[TIMES]\n Viscosity 0.8\n \t\n Trials\n\n Viscosity 99\n");
  const EpaSettings& s = p.settings;
  EXPECT_EQ(s.flowUnits, u"LPS");
  EXPECT_EQ(s.headloss, u"C-M");
  EXPECT_EQ(s.specificGravity, 1.5);
  EXPECT_EQ(s.trials, 12);
  EXPECT_EQ(s.accuracy, 0.01);
  EXPECT_EQ(s.unbalanced, u"Stop");
  EXPECT_EQ(s.defaultPattern, 0);  // a name is no number
  EXPECT_EQ(s.demandMultiplier, 2);
  EXPECT_EQ(s.emitterExponent, 0.7);
  EXPECT_EQ(s.qualityParam, u"Trace");
  EXPECT_EQ(s.diffusivity, 3);
  EXPECT_EQ(s.tolerance, 0.25);
  // A header does not end these sections and a blank line interrupts them only.
  EXPECT_EQ(s.viscosity, 99);
}

TEST(InpReader, onlyTheSecondReactionsSectionHoldsValues) {
  const Parsed p(
      "[REACTIONS]\n Order Bulk 5\n\n[REACTIONS]\n Order Bulk 2\n Order Tank 3\n Order Wall 1\n"
      " Global Bulk -0.5\n Global Wall -1\n Limiting Potential 4\n Roughness Correlation 6\n");
  const EpaSettings& s = p.settings;
  EXPECT_EQ(s.bulkOrder, 2);
  EXPECT_EQ(s.wallOrder, u"1");
  EXPECT_EQ(s.globalBulk, -0.5);
  EXPECT_EQ(s.globalWall, -1);
  EXPECT_EQ(s.limitingPotential, 4);
  EXPECT_EQ(s.roughnessCorrelation, 6);
  // The first header does not leave the section in which it stands.
  const Parsed inside("[JUNCTIONS]\n;\nJ 1\n[REACTIONS]\nBulk P1 1\n");
  EXPECT_EQ(inside.network.juncs.size(), 2u);
}

TEST(InpReader, timesAndEnergy) {
  const Parsed p(
      "[TIMES]\n Duration 24\n Hydraulic Timestep 1:00\n Quality Timestep 0:05\n"
      " Pattern Timestep 12:00:00\n Pattern Start\n Report Timestep 100:00\n Report Start 7\n"
      " Start ClockTime 12:00 am\n Statistic MAXIMUM\n\n"
      "[ENERGY]\n Global Efficiency 80\n Global Price 0.2\n Global Pattern night\n"
      " Demand Charge 3\n");
  const EpaSettings& s = p.settings;
  EXPECT_EQ(s.duration, u"24:00:00");
  EXPECT_EQ(s.hydraulicStep, u"01:00:00");
  EXPECT_EQ(s.qualityStep, u"00:05:00");
  EXPECT_EQ(s.patternStep, u"");  // eight characters are no case
  EXPECT_EQ(s.patternStart, u"00:00:00");
  EXPECT_EQ(s.reportStep, u"100:00:00");
  EXPECT_EQ(s.reportStart, u"07:00:00");
  EXPECT_EQ(s.startClock, u"12:00:00");
  EXPECT_EQ(s.statistic, u"None");
  EXPECT_EQ(s.globalEfficiency, 80);
  EXPECT_EQ(s.globalPrice, 0.2);
  EXPECT_EQ(s.energyPattern, u"night");
  EXPECT_EQ(s.demandCharge, 3);
}

TEST(InpReader, timesByTheirLength) {
  EXPECT_EQ(NormalizeTime(u""), u"");
  EXPECT_EQ(NormalizeTime(u"6"), u"06:00:00");
  EXPECT_EQ(NormalizeTime(u"100"), u"100:00:00");
  EXPECT_EQ(NormalizeTime(u"1:30"), u"01:30:00");
  EXPECT_EQ(NormalizeTime(u"12:00"), u"12:00:00");
  EXPECT_EQ(NormalizeTime(u"1:00:00"), u"");
  EXPECT_EQ(NormalizeTime(u"100:00:00"), u"100:00:00");
  EXPECT_EQ(NormalizeTime(u"1000:00:00"), u"");
}

// --- files ---------------------------------------------------------------------------------------

TEST_F(NetworkFiles, readsAFileAndKeepsSettingsThatItLacks) {
  std::ofstream(file("a.inp"), std::ios::binary) << "[TANKS]\r\n;\r\nT 1 ;\r\n\r\n"
                                                    "[OPTIONS]\r\nTrials 3\r\n";
  std::ofstream(file("empty.inp"), std::ios::binary);
  EpaNetwork n;
  EpaSettings s;
  s.name = u"kept";
  s.viscosity = 7;
  ReadInp(path("a.inp"), n, s, notices);
  ReadInp(path("empty.inp"), n, s, notices);
  ASSERT_EQ(n.tanks.size(), 1u);
  EXPECT_EQ(n.tanks[0].initLevel, u"\n");
  EXPECT_EQ(s.name, u"kept");
  EXPECT_EQ(s.trials, 3);
  EXPECT_EQ(s.viscosity, 7);
}

}  // namespace
}  // namespace vessora
