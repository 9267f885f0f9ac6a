// Questions on the command line: keywords and their beginnings, numbers, points, texts, refusals.
#include "cad/ui/journal.h"
#include "tests/editor/editor_testing.h"

namespace {

class PromptTest : public EditorTest {
 protected:
  // The keyword that an answer is taken for, or "?" when it was refused and Esc followed.
  std::u16string keyword(const char16_t* answer, const char16_t* keywords) {
    ui.answers = {answer, u"<esc>"};
    acedInitGet(0, keywords);
    std::u16string out;
    const int result = acedGetKword(u"\nOpzione: ", out);
    return result == RTNORM ? out : result == RTNONE ? u"<none>" : u"?";
  }
};

TEST_F(PromptTest, KeywordsAreTakenByTheirBeginnings) {
  const char16_t* const words = u"Nodo NodoVecchio Serbatoio sTazione Città";
  EXPECT_EQ(keyword(u"Serbatoio", words), u"Serbatoio");
  EXPECT_EQ(keyword(u"SERB", words), u"Serbatoio");
  EXPECT_EQ(keyword(u"s", words), u"?") << "begins two of them";
  EXPECT_EQ(keyword(u"st", words), u"sTazione");
  EXPECT_EQ(keyword(u"Nodo", words), u"Nodo") << "the whole word goes before a longer one";
  EXPECT_EQ(keyword(u"nodo", words), u"Nodo");
  EXPECT_EQ(keyword(u"nodov", words), u"NodoVecchio");
  EXPECT_EQ(keyword(u"CITTÀ", words), u"Città");
  EXPECT_EQ(keyword(u"Serbatoi o", words), u"?");
  EXPECT_EQ(keyword(u"Serbatoioo", words), u"?");
  EXPECT_EQ(keyword(u"<invio>", words), u"<none>");
  EXPECT_EQ(keyword(u"qualsiasi", u""), u"qualsiasi") << "without keywords any text is one";
  EXPECT_EQ(keyword(u"qualsiasi", nullptr), u"qualsiasi");
}

TEST_F(PromptTest, RulesHoldForOneQuestion) {
  std::u16string text;
  double number = 0;
  acedInitGet(1, u"Fine");
  ui.answers = {u"<invio>", u"2,5"};
  EXPECT_EQ(acedGetReal(u"\nNumero: ", number), RTNORM);
  EXPECT_EQ(number, 2.5);
  EXPECT_EQ(ui.complaints, (std::vector<std::u16string>{u"È richiesta una risposta."}));
  ui.answers = {u"<invio>"};
  EXPECT_EQ(acedGetReal(u"\nNumero: ", number), RTNONE);
  ui.complaints.clear();
  ui.answers = {u"fine", u"<esc>"};
  EXPECT_EQ(acedGetReal(u"\nNumero: ", number), RTCAN) << "the keyword was of the question before";
  EXPECT_EQ(ui.complaints.size(), 1u);
  acedInitGet(0, u"Fine");
  ui.answers = {u"f"};
  EXPECT_EQ(acedGetReal(u"\nNumero: ", number), RTKWORD);
  acedInitGet(1, u"Fine");
  addCommand(u"DOMANDA", [&] { EXPECT_EQ(acedGetKword(u"", text), RTNONE); });
  run(u"DOMANDA", {u"<invio>"});
  acedInitGet(0, u"Fine");
  AcGePoint3d point;
  ui.answers = {u"fi"};
  EXPECT_EQ(acedGetPoint(nullptr, u"", point), RTKWORD);
  EXPECT_EQ(number, 2.5) << "what was not answered stays";
}

TEST_F(PromptTest, PointsNumbersAndTexts) {
  AcGePoint3d point, base(10, 20, 30);
  const auto ask = [&](const char16_t* answer, const AcGePoint3d* from) {
    ui.answers = {answer, u"<esc>"};
    return acedGetPoint(from, u"\nPunto: ", point) == RTNORM
               ? platform::narrow(platform::format(u"%g %g %g", point.x, point.y, point.z))
               : std::string("?");
  };
  EXPECT_EQ(ask(u"1,2", nullptr), "1 2 0");
  EXPECT_EQ(ask(u"-1.5,2e3,.25", nullptr), "-1.5 2000 0.25");
  EXPECT_EQ(ask(u"@1,2,3", &base), "11 22 33");
  EXPECT_EQ(ask(u"@1,2", nullptr), "1 2 0");
  EXPECT_EQ(ask(u"1,2", &base), "1 2 0");
  for (const char16_t* wrong : {u"1", u"1,", u",2", u"1,2,3,4", u"1;2", u"a,b", u"1,2,", u"@"}) {
    EXPECT_EQ(ask(wrong, &base), "?");
  }
  std::u16string text = u"prima";
  ui.answers = {u"con blanks"};
  EXPECT_EQ(acedGetString(true, u"\nNome: ", text), RTNORM);
  EXPECT_EQ(text, u"con blanks");
  ui.answers = {u"<invio>"};
  EXPECT_EQ(acedGetString(true, u"\nNome: ", text), RTNORM);
  EXPECT_EQ(text, u"");
  text = u"prima";
  ui.answers = {u"<esc>"};
  EXPECT_EQ(acedGetString(true, u"\nNome: ", text), RTCAN);
  ui.answers = {};
  EXPECT_EQ(acedGetString(true, u"\nNome: ", text), RTCAN) << "the end of input cancels";
  EXPECT_EQ(text, u"prima");
}

TEST_F(PromptTest, CommandsGivenAsData) {
  const auto cmd = [](resbuf* chain) {
    const cad::Chain owner(chain);
    return acedCmd(chain);
  };
  const AcGePoint3d a(5, 9, 0), b(1, 2, 0);
  EXPECT_EQ(cmd(acutBuildList(RTSTR, u"_.zoom", RTSTR, u"_w", RTPOINT, a, RTPOINT, b, RTNONE)),
            RTNORM);
  EXPECT_EQ(session.view.low.x, 1);
  EXPECT_EQ(session.view.high.y, 9);
  EXPECT_EQ(cmd(acutBuildList(RTSTR, u"ZOOM", RTSTR, u"_e", RTNONE)), RTERROR);
  EXPECT_EQ(cmd(acutBuildList(RTSTR, u"_REGENALL", RTNONE)), RTNORM);
  EXPECT_EQ(cmd(acutBuildList(RTSTR, u"NESSUNO", RTNONE)), RTERROR);
  EXPECT_EQ(cmd(acutBuildList(RTREAL, 1.0, RTNONE)), RTERROR);
  EXPECT_EQ(cmd(nullptr), RTERROR);
  ui.answers = {u"n", u"Dal comando"};
  EXPECT_EQ(cmd(acutBuildList(RTSTR, u"LAYER", RTNONE)), RTNORM);
  EXPECT_NE(drawing().structure().layerNamed(u"DAL COMANDO", false), 0u);
}

TEST_F(PromptTest, AScreenAnswersWithPlacesAndObjects) {
  const cad::Drawing& d = drawing();
  drawLine({0, 0, 0}, {1, 0, 0});
  drawLine({0, 9, 0}, {1, 9, 0});
  const std::vector<std::uint32_t> lines = d.index().allInSpace();
  const std::uint64_t first = d.record(lines[0]).handle, second = d.record(lines[1]).handle;
  const double third = 1.0 / 3;  // no text of a few digits says it

  std::vector<std::u16string> journalled;
  cad::ui::Journal journal([&](std::u16string_view line) { journalled.emplace_back(line); });
  ui.setJournal(&journal);
  ui.pointed = {{.place = {{third, 2, -0.5}}}};
  const AcGePoint3d base(5, 6, 7);
  AcGePoint3d point;
  ASSERT_EQ(acedGetPoint(&base, u"\nPunto: ", point), RTNORM);
  EXPECT_EQ(point.x, third);
  EXPECT_EQ(point.z, -0.5);
  ASSERT_TRUE(ui.prompts.back().base) << "for the line that a screen draws to the cursor";
  EXPECT_EQ(ui.prompts.back().base->y, 6);
  ui.pointed = {{.text = u"a text of it", .place = {{0.5, 8, 0}}, .objects = {second}}};
  ads_name entity;
  AcDbObjectId id;
  ASSERT_EQ(acedEntSel(u"\nOggetto: ", entity, point), RTNORM);
  ASSERT_EQ(acdbGetObjectId(id, entity), RTNORM);
  EXPECT_EQ(id.index(), lines[1]);
  EXPECT_EQ(point.y, 8);
  EXPECT_FALSE(ui.prompts.back().base);
  ui.pointed = {{.objects = {second, first, 0xFFFF}}};
  ui.answers = {u"<invio>"};
  ads_name set;
  ASSERT_EQ(acedSSGet(nullptr, nullptr, nullptr, nullptr, set), RTNORM);
  std::int32_t length = 0;
  acedSSLength(set, &length);
  EXPECT_EQ(length, 2);
  acedSSFree(set);
  ui.setJournal(nullptr);
  journal.flush();
  ASSERT_GE(journalled.size(), 3u);
  EXPECT_EQ(journalled[0], u"0.33333333333333331,2,-0.5");
  EXPECT_EQ(journalled[1], u"a text of it");
  EXPECT_EQ(journalled[2], platform::format(u"\"#%llX\"", second));
}

}  // namespace
