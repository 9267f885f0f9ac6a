// Every dialog of the module as a card: title, labels, kinds, bounds, first values, order, buttons.
// The golden cards are what is reviewed when a dialog changes, and the sheet that translators work
// from. UPDATE_GOLDEN=1 rewrites them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "cad/ui/card.h"
#include "module/dialogs/element_dialogs.h"
#include "module/dialogs/elenco_reti.h"
#include "module/dialogs/epa_calc.h"
#include "module/dialogs/filtra_mat.h"
#include "module/dialogs/gest_ptn.h"
#include "module/dialogs/inp_files.h"
#include "module/dialogs/list_res.h"
#include "module/dialogs/materiali.h"
#include "module/dialogs/pattern.h"
#include "module/dialogs/pzz_pmod.h"
#include "module/dialogs/rpt_files.h"
#include "module/dialogs/scale.h"
#include "module/dialogs/sel_ins_rete.h"
#include "module/dialogs/sel_rete_mod.h"
#include "module/dialogs/set_mat.h"
#include "module/dialogs/tables.h"
#include "platform/files.h"
#include "platform/text.h"

namespace vessora {
namespace {

// Calls visit(class name, dialog) for one dialog of each class.
template <class Visit>
void forEachDialog(Visit visit) {
  const auto show = [&](const char* name, ui::Dialog&& dialog) { visit(name, dialog); };
  std::vector<EpaPattern> patterns;
  std::vector<EpaCurve> curves;
  std::vector<EpaMaterial> table(1);
  std::u16string material;
  show("CDlgElencoReti", CDlgElencoReti());
  show("CDlgimpinp", CDlgimpinp());
  show("DlgEpaCalc", [] {
    static EpaSettings defaults;
    return DlgEpaCalc(defaults);
  }());
  show("DlgExpInp", DlgExpInp());
  show("DlgFiltraMat", DlgFiltraMat(table));
  RecordStore<EpaPattern> patternStore;
  RecordStore<EpaCurve> curveStore;
  show("DlgGest_PTN", DlgGest_PTN(patternStore, curveStore));
  NetworkQuery query;
  show("DlgListRes", DlgListRes(query));
  show("DlgMateriali", DlgMateriali(table));
  EpaPattern pattern;
  EpaCurve curve;
  bool accepted = true;
  show("DlgPattern (pattern)", DlgPattern(pattern, patterns, true, accepted));
  show("DlgPattern (curve)", DlgPattern(curve, curves, true, accepted));
  show("DlgRptMult", DlgRptMult({u"0:00:00", u"1:00:00"}));
  show("DlgScale", DlgScale());
  show("DlgSelInsRete", DlgSelInsRete());
  show("DlgSelReteMod", DlgSelReteMod());
  show("DlgSetMat", DlgSetMat(table, {}));
  show("DlgTables", DlgTables());
  show("Dlgimprpt", Dlgimprpt());
  show("Dlgjunc", Dlgjunc(patterns));
  show("Dlgpipe", Dlgpipe(material, table));
  show("Dlgpump", Dlgpump(curves, patterns));
  show("Dlgpzzpmod", Dlgpzzpmod());
  show("Dlgresv", Dlgresv(patterns));
  show("Dlgtank", Dlgtank(curves));
  show("Dlgvalv", Dlgvalv());
}

TEST(Dialogs, SayAndTakeWhatTheirCardsSay) {
  std::string cards;
  forEachDialog([&](const char* name, ui::Dialog& dialog) {
    cards += std::string("# ") + name + "\n" + ui::dialogCard(dialog) + "\n";
  });
  const std::string path = VESSORA_TESTS_DIR "/dialogs/cards.txt";
  if (std::getenv("UPDATE_GOLDEN")) std::ofstream(path) << cards;
  std::ifstream file(path);
  std::ostringstream golden;
  golden << file.rdbuf();
  EXPECT_EQ(cards, golden.str()) << "where that is meant: UPDATE_GOLDEN=1, and review the diff";
}

// The names of the pictures that a dialog shows.
class Pictures : public ui::Visitor {
 public:
  std::vector<std::u16string> names;
  void visit(ui::Text&) override {}
  void visit(ui::Real&) override {}
  void visit(ui::Integer&) override {}
  void visit(ui::Choice&) override {}
  void visit(ui::ListBox&) override {}
  void visit(ui::ReportList&) override {}
  void visit(ui::RadioGroup& c) override {
    for (int i = 0; i < c.count(); ++i) {
      if (!c.picture(i).empty()) names.push_back(c.picture(i));
    }
  }
  void visit(ui::Check&) override {}
  void visit(ui::TimePicker&) override {}
  void visit(ui::Button&) override {}
  void visit(ui::Label&) override {}
  void visit(ui::Grid&) override {}
  void visit(ui::Picture& c) override { names.push_back(c.picture()); }
};

TEST(Dialogs, HaveTheirPicturesInTheProduct) {
  Pictures pictures;
  forEachDialog([&](const char*, ui::Dialog& dialog) {
    for (ui::Control* control : dialog.controls()) control->accept(pictures);
  });
  EXPECT_EQ(pictures.names.size(), 6u + 8u);
  for (const std::u16string& name : pictures.names) {
    const auto svg = platform::readFile(std::string(VESSORA_ROOT_DIRECTORY) + "/immagini/" +
                                        platform::narrow(name) + ".svg");
    ASSERT_TRUE(svg) << svg.error();
    EXPECT_NE(svg->find("<path"), std::string::npos) << "an empty picture";
  }
}

}  // namespace
}  // namespace vessora
