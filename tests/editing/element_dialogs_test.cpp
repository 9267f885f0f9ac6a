// What the lists and checks of the element dialogs do that nobody would expect.
#include "module/dialogs/element_dialogs.h"

#include <gtest/gtest.h>

#include "cad/ui/script_frontend.h"
#include "platform/text.h"

namespace vessora {
namespace {

// How a dialog ends under a script, or the script's complaint.
std::string played(ui::Dialog& dialog, const std::string& script) {
  ui::ScriptFrontend frontend(script, "s");
  const ui::Outcome outcome = dialog.run(frontend);
  if (!frontend.finish()) return frontend.error();
  return outcome == ui::Outcome::ok ? "ok" : "annulla";
}

std::vector<EpaPattern> patternsNamed(std::initializer_list<const char16_t*> names) {
  std::vector<EpaPattern> patterns;
  for (const char16_t* name : names) patterns.emplace_back().id = name;
  return patterns;
}
std::vector<EpaCurve> curvesNamed(
    std::initializer_list<std::pair<const char16_t*, const char16_t*>> rows) {
  std::vector<EpaCurve> curves;
  for (const auto& [name, kind] : rows) {
    curves.emplace_back().id = name;
    curves.back().kind = kind;
  }
  return curves;
}
std::vector<EpaMaterial> sampleTable() {
  std::vector<EpaMaterial> table(3);
  table[0].name = u"PEAD 100";
  table[0].roughness = 0.0015;
  table[1].name = u"Ghisa";
  table[2].name = u"";
  table[2].roughness = 0.001;
  return table;
}

// The stored position is taken for a line of the sorted list, blank line included.
TEST(ElementDialogs, PatternListsOpenOnTheStoredPosition) {
  const auto patterns = patternsNamed({u"notte", u"Giorno", u"estate", u"giorno"});
  Dlgjunc junction(patterns);
  junction.pattern = u"giorno";
  junction.name = u"N1";
  EXPECT_EQ(played(junction,
                   "[Nodo]\nPattern di domanda ? (voci) | estate | Giorno | giorno | notte\n"
                   "Pattern di domanda ? giorno\nOK"),
            "ok");
  EXPECT_EQ(junction.oldName, u"N1");
  junction.pattern = u"notte";
  EXPECT_EQ(played(junction, "[Nodo]\nPattern di domanda ?\nOK"), "ok") << "first: the blank line";
  EXPECT_EQ(junction.pattern.value(), u"");

  Dlgresv reservoir(patterns);
  reservoir.pattern = u"estate";
  reservoir.name = u"S1";
  EXPECT_EQ(played(reservoir, "[Serbatoio]\nPattern di Carico ? Giorno\nOK"), "ok");
  EXPECT_EQ(reservoir.pattern.value(), u"Giorno");
  reservoir.newElement = true;
  reservoir.name = u"S2";
  EXPECT_EQ(played(reservoir, "[Serbatoio]\nPattern di Carico ?\nOK"), "ok");
  EXPECT_EQ(reservoir.oldName, u"S1") << "a new element has no name to be renamed from";
}

TEST(ElementDialogs, OnlyVolumeCurvesBeforeAnyOtherKindAreShown) {
  const auto mixed = curvesNamed(
      {{u"Vasca", u"VOLUME"}, {u"vascone", u"VOLUME"}, {u"Pompa", u"PUMP"}, {u"lost", u"VOLUME"}});
  Dlgtank tank(mixed);
  tank.curve = u"vasco";
  EXPECT_EQ(played(tank,
                   "[Tank]\nCurva Volume ? (voci) | Vasca | vascone\nCurva Volume ? vascone\n"
                   "Livello iniziale [m] = 9\nLivello massimo [m] = 1\nDiametro [m] = 0\nOK\n"
                   "!~ 0.0001\nDiametro [m] = 4\nOK"),
            "ok");
  EXPECT_EQ(tank.curve.value(), u"vascone");
  tank.curve = u"lost";
  EXPECT_EQ(played(tank, "[Tank]\nCurva Volume ?\nAnnulla"), "annulla");
  for (const char16_t* other : {u"PUMP", u"EFFICIENCY", u"HEADLOSS", u"Volume", u""}) {
    const auto otherFirst = curvesNamed({{u"P", other}, {u"V", u"VOLUME"}});
    Dlgtank none(otherFirst);
    EXPECT_EQ(played(none, "[Tank]\nCurva Volume ? (righe) 1\n<esc>"), "annulla");
  }
}

TEST(ElementDialogs, MaterialsCanBeChosenUnderOneFormulaAlone) {
  const auto table = sampleTable();
  std::u16string chosen;
  Dlgpipe pipe(chosen, table);
  pipe.newElement = true;
  pipe.length = 12.5;
  EXPECT_EQ(played(pipe,
                   "[Ramo]\nMateriale ? Nessun Materiale\nMateriale = PEAD 100\n"
                   "Materiale ? Nessun Materiale\nScabrezza ? 0.02\nScabrezza ? (attivo)\nOK"),
            "ok");
  EXPECT_EQ(chosen, u"Nessun Materiale");
  pipe.headloss = u"D-W";
  EXPECT_EQ(played(pipe,
                   "[Ramo]\nScabrezza = tre\nMateriale = PEAD 100\n!~ numero\nScabrezza ? 1.5\n"
                   "Scabrezza ? (disattivato)\nMateriale = Ghisa\nMateriale ? Nessun Materiale\n"
                   "Scabrezza ? 0.02\nMateriale = #4\nScabrezza ? 1\nMateriale = #1\n"
                   "Scabrezza ? (attivo)\nMateriale = PEAD 100\nOK"),
            "ok");
  EXPECT_EQ(pipe.roughness.value(), 1.5);
  EXPECT_EQ(chosen, u"PEAD 100");
  // New again: the values stay, the list does not.
  EXPECT_EQ(played(pipe,
                   "[Ramo]\nMateriale ? Nessun Materiale\nScabrezza ? 1.5\nScabrezza ? (attivo)\n"
                   "Annulla"),
            "annulla");
  EXPECT_EQ(chosen, u"PEAD 100") << "a refused dialog chooses nothing";
  pipe.newElement = false;
  chosen = u"pead";
  EXPECT_EQ(played(pipe, "[Ramo]\nMateriale ? PEAD 100\nScabrezza ? (attivo)\nOK"), "ok");
  chosen = u"PVC";
  EXPECT_EQ(played(pipe, "[Ramo]\nMateriale ? Nessun Materiale\nOK"), "ok");
}

TEST(ElementDialogs, TheLengthIsCheckedAlsoWhereItCannotBeTyped) {
  const auto table = sampleTable();
  std::u16string chosen;
  Dlgpipe pipe(chosen, table);
  pipe.status = u"Closed";
  EXPECT_EQ(played(pipe,
                   "[Ramo]\nLunghezza [m] ? (disattivato)\nStato ? Open\nOK\n!~ 0.0001\n"
                   "Abilita = sì\nLunghezza [m] = 5\nAbilita = no\nLunghezza [m] ? (disattivato)\n"
                   "Stato = Close\nOK"),
            "ok");
  EXPECT_EQ(pipe.length.value(), 5);
  EXPECT_EQ(pipe.status.value(), u"Close");
  EXPECT_EQ(played(pipe,
                   "[Ramo]\nAbilita ? no\nLunghezza [m] ? (disattivato)\nStato ? Close\n"
                   "Perdita concentrata = -1\nOK\n!~ 0\n<esc>"),
            "annulla");
}

TEST(ElementDialogs, UnknownTypesAndStatusesSelectNoLine) {
  Dlgvalv valve;
  valve.type = u"XYZ";
  valve.status = u"closed";
  EXPECT_EQ(played(valve,
                   "[Valvola]\nTipo ?\nStato ?\nSetting = quanto basta\nPerdita concentrata = -3\n"
                   "OK"),
            "ok");
  EXPECT_EQ(valve.type.value() + valve.status.value(), u"");
  EXPECT_EQ(valve.setting.value(), u"quanto basta");
  valve.newElement = true;
  EXPECT_EQ(played(valve,
                   "[Valvola]\nTipo ? PRV\nStato ? None\nDiametro [mm] = 0\nOK\n!~ 0.0001\n"
                   "<esc>"),
            "annulla");

  const auto curves =
      curvesNamed({{u"C10", u"PUMP"}, {u"E1", u"EFFICIENCY"}, {u"c1", u"PUMP"}, {u"V", u"VOLUME"}});
  const auto patterns = patternsNamed({u"b", u"a"});
  Dlgpump pump(curves, patterns);
  pump.status = u"CV";
  pump.headCurve = u"C1";
  pump.efficiencyCurve = u"E2";
  pump.pricePattern = u"a";
  EXPECT_EQ(played(pump,
                   "[Pompa]\nStato ?\nCurva ? (voci) | C10 | c1\nCurva ? C10\n"
                   "Curva efficienza ?\nPattern prezzo ? (voci) | b | a\nPattern prezzo ? a\n"
                   "Velocità [m/s] = svelta\nPotenza [KWatt] = 3\nOK"),
            "ok")
      << "the first line that begins with the name, not the one that is it";
  EXPECT_EQ(pump.headCurve.value(), u"C10");
  EXPECT_EQ(pump.power.value(), u"3") << "beside a curve";
  pump.newElement = true;
  EXPECT_EQ(played(pump, "[Pompa]\nStato ? Open\nCurva ?\nPattern prezzo ?\nOK"), "ok");
}

TEST(ElementDialogs, AStoredValueOutOfRangeHoldsUpOkUntilItIsMended) {
  const std::vector<EpaPattern> none;
  Dlgjunc junction(none);
  junction.emitter = -1;
  EXPECT_EQ(played(junction, "[Nodo]\nOK\n!~ 0\nCoef. di Emitter = 0\nOK"), "ok");
}

}  // namespace
}  // namespace vessora
