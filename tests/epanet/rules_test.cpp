// After one error the solver reads no more rules, so that each of these is a file of its own: what
// it said of each stands beside it, 0 where it took the rule.
#include <gtest/gtest.h>

#include "epanet/network.h"

namespace {

using namespace epanet;

const std::string kNetwork =
    "[JUNCTIONS]\nA 1\nB 1\n[RESERVOIRS]\nR 9\n[PIPES]\np R A 1 1 1\nq A B 1 1 1 1 CV\n"
    "[PUMPS]\nu A B POWER 1\n[VALVES]\ng A B 10 GPV H\nk A B 10 TCV 3\n[CURVES]\nH 1 1\n[RULES]\n";
const std::string kIf = "RULE 1\nIF NODE A PRESSURE > 1\n";
const std::string kThen = kIf + "THEN PIPE p STATUS IS OPEN\n";

int errorOf(const std::string& rules) {
  const Document document(kNetwork + rules);
  const Network network(document);
  for (const Problem& problem : network.problems) {
    if (problem.section == Section::rules && isError(problem.fault)) {
      return solverCode(problem.fault);
    }
  }
  return 0;
}

struct Case {
  std::string rules;
  int code;
};

TEST(Rules, PremisesAreRefusedAsTheSolverDoes) {
  const Case cases[] = {
      {"FOO NODE A PRESSURE > 1", 201},     {"IF FOO A PRESSURE > 1", 201},
      {"IF NODE A FOO > 1", 201},           {"IF NODE A PRESSURE FOO 1", 201},
      {"IF NODE A PRESSURE NO 1", 201},     {"IF NODE A PRESSURE > x", 202},
      {"IF NODE A PRESSURE", 201},          {"IF NODE A PRESSURE > 1 2", 201},
      {"IF NODE nobody PRESSURE > 1", 203}, {"IF NODE PRESSURE > 1", 201},
      {"IF NODE A FLOW > 1", 201},          {"IF PIPE p PRESSURE > 1", 201},
      {"IF PIPE p STATUS > 1", 0},          {"IF PIPE p STATUS IS FOO", 202},
      {"IF SYSTEM FOO > 1", 201},           {"IF SYSTEM PRESSURE > 1", 201},
      {"IF SYSTEM TIME > x", 202},          {"IF SYSTEM TIME > 1 FOO", 202},
      {"IF SYSTEM TIME > 1 2 3", 201},      {"IF SYSTEM DEMAND > 1 2", 0},
      {"IF SYSTEM CLOCKTIME > 14 PM", 202}, {"IF TANK A FILLTIME > 1", 201},
      {"IF NODE R LEVEL > 1", 0},           {"IF NODE A LEVEL > 1", 0},
      {"IF NODE A SETTING > 1", 201},       {"IF NODE A TIME > 1", 201},
      {"IF NODE A POWER > 1", 201},         {"IF NODE A PRESSURE =< 1", 0},
      {"IF NODE A PRESSURE > OPEN", 0},
  };
  for (const Case& c : cases) EXPECT_EQ(errorOf("RULE 1\n" + c.rules + "\n"), c.code) << c.rules;
}

TEST(Rules, ActionsAreRefusedAsTheSolverDoes) {
  const Case cases[] = {
      {"THEN FOO p STATUS IS OPEN", 0},      {"THEN NODE p STATUS IS OPEN", 0},
      {"THEN PIPE p FOO IS OPEN", 0},        {"THEN PIPE p STATUS FOO OPEN", 0},
      {"THEN PIPE p STATUS IS ACTIVE", 0},   {"THEN PIPE p STATUS IS", 201},
      {"THEN PIPE p STATUS IS OPEN 1", 201}, {"THEN PIPE p STATUS IS OPEN DISABLED", 201},
      {"THEN PIPE p STATUS IS 3", 0},        {"THEN PIPE p STATUS IS -3", 202},
      {"THEN PIPE q STATUS IS OPEN", 207},   {"THEN VALVE g SETTING IS 1", 202},
      {"THEN PIPE nobody STATUS IS 1", 204},
  };
  for (const Case& c : cases) EXPECT_EQ(errorOf(kIf + c.rules + "\n"), c.code) << c.rules;
}

TEST(Rules, ClausesHaveTheirOrder) {
  const Case cases[] = {
      {"RULE 1\nTHEN PIPE p STATUS IS OPEN", 221},
      {"RULE 1\nAND NODE A PRESSURE > 1", 221},
      {"RULE 1\nOR NODE A PRESSURE > 1", 221},
      {"RULE 1\nELSE PIPE p STATUS IS OPEN", 221},
      {"RULE 1\nPRIORITY 1", 221},
      {"RULE 1\nDISABLED", 221},
      {"RULE 1 2", 201},
      {"RULE 1\nRULE 1\nRULE 2", 0},
      {"PRIORITY 1", 221},
      {"FOO", 201},
      {kIf + "IF NODE A PRESSURE > 1", 221},
      {kIf + "ELSE PIPE p STATUS IS OPEN", 221},
      {kIf + "PRIORITY 1", 221},
      {kIf + "DISABLED", 221},
      {kThen + "OR PIPE p STATUS IS OPEN", 221},
      {kThen + "THEN PIPE p STATUS IS OPEN", 221},
      {kThen + "ELSE PIPE p STATUS IS OPEN\nELSE PIPE p STATUS IS OPEN", 221},
      {kThen + "ELSE PIPE p STATUS IS OPEN\nTHEN PIPE p STATUS IS OPEN", 221},
      {kThen + "PRIORITY", 0},
      {kThen + "PRIORITY 1 2", 0},
      {kThen + "PRIORITY x", 202},
      {kThen + "PRIORITY 1\nAND PIPE p STATUS IS OPEN", 221},
      {kThen + "PRIORITY 1\nELSE PIPE p STATUS IS OPEN", 221},
      {kThen + "PRIORITY 1\nPRIORITY 2", 221},
      {kThen + "DISABLED\nAND PIPE p STATUS IS OPEN", 0},
  };
  for (const Case& c : cases) EXPECT_EQ(errorOf(c.rules + "\n"), c.code) << c.rules;
}

}  // namespace
