#include <cmath>

#include "module/results/profile.h"
#include "tests/results_draw/draw_testing.h"
#include "tests/tools/check_drawing.h"

namespace vessora {
namespace {

class Profile : public CalculatedNetwork {
 protected:
  void SetUp() override {
    CalculatedNetwork::SetUp();
    junc(u"A", {0, 0, 10}, -12.5, 50);
    junc(u"B", {100, 0, 20}, 2.5, 48);
    junc(u"C", {103, 4, 20}, 0, 60);
    junc(u"D", {203, 4, 15});  // not in the report
    pipe(u"P1", u"A", u"B", u"110", {{0, 0, 10}, {100, 0, 20}});
    pump(u"PU", u"B", u"C", {101.5, 2, 20});
    pipe(u"P2", u"D", u"C", u"105", {{203, 4, 15}, {103, 4, 20}});
  }

  void draw(const std::string& answers) {
    script(answers);
    EpaCommands commands;
    result_ = commands.epaProf();
    expectScriptDone();
  }
  static AcDbObjectId titleBlock() {
    for (const AcDbObjectId id : onLayer(u"HN-PROFILO")) {
      if (Opened<AcDbEntity>(id)->hasXData(u"HN-TERVANE-HN-RR")) return id;
    }
    return {};
  }
  static std::vector<AcDbPolyline::Vertex> light(const std::u16string& layer) {
    const auto lines = onLayer(layer);
    return lines.size() == 1 ? Opened<AcDbPolyline>(lines[0])->vertices()
                             : std::vector<AcDbPolyline::Vertex>();
  }
  // Data of each vertex of a 3D polyline.
  std::vector<std::string> vertexData(AcDbObjectId id) const {
    std::vector<std::string> all;
    const Opened<AcDb3dPolyline> line(id);
    const std::unique_ptr<AcDbObjectIterator> it(line->vertexIterator());
    for (; !it->done(); it->step()) all.push_back(data(it->objectId(), u"HN-TERVANE-HN-AQ"));
    return all;
  }
  int result_ = -1;
};

TEST_F(Profile, LinesStandInPlainUnitsAboveTheOrigin) {
  draw("=P1\n=PU\n=P2\n<invio>\nprova\n1000\nS\n2\n10,20\n");
  EXPECT_EQ(result_, kRan);
  const GestioneOggetto profile(titleBlock());
  EXPECT_EQ(profile.GetNome1(), u"Rete");
  EXPECT_EQ(profile.GetNome2(), u"prova");
  const AcGePoint3d origin = profile.GetOrigin();
  const auto terrain = light(u"TERRENO"), heads = light(u"PIEZOMETRICA");
  ASSERT_EQ(terrain.size(), 4u);
  const double x[] = {1000, 1110, 1115, 1220}, z[] = {10, 20, 20, 15}, h[] = {50, 48, 60};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(terrain[i].point.x, origin.x + x[i], 1e-9);
    EXPECT_NEAR(terrain[i].point.y, origin.y + z[i] + 2, 1e-9);
    if (i < 3) {
      EXPECT_NEAR(heads[i].point.y, origin.y + h[i], 1e-9);
    }
  }
  // A node without results draws a spike to the drawing's origin.
  EXPECT_EQ(heads[3].point.x, 0);
  EXPECT_EQ(heads[3].point.y, 0);
  EXPECT_EQ(checking::checkDrawing(bytes()), std::vector<std::string>());
}

TEST_F(Profile, TheDesignLineTellsItsSegmentsAndStopsAtAPump) {
  draw("=P1\n=PU\n=P2\n<invio>\nprova\n0\nN\n0,0\n");
  const auto lines = onLayer(u"PROGETTO");
  ASSERT_EQ(lines.size(), 2u);
  const std::string missing = "2.2250738585072014e-308";
  EXPECT_EQ(vertexData(lines[0]),
            (std::vector<std::string>{
                "230|HN-ACQ-TUBAZIONE|-12.5|2.5|110.0|150.0|130.0|0.0|12.5|0.7|0.0|4.0|0.0|P1|A",
                "230|HN-ACQ-TUBAZIONE|2.5|0.0|0.0|0.0|0.0|0.0|12.5|0.0|0.0|-30.0|0.0||B"}));
  EXPECT_EQ(vertexData(lines[1])[1], "230|HN-ACQ-TUBAZIONE|" + missing + "|" + missing + "|" +
                                         missing + "|" + missing + "|" + missing + "|0.0|" +
                                         missing + "|" + missing + "|0.0|" + missing + "|0.0||D");
  // Degenerate, and drawn all the same.
  ASSERT_EQ(light(u"TERRENO").size(), 4u);
  EXPECT_EQ(light(u"TERRENO")[3].point.y, 0);
}

TEST_F(Profile, AChainThatEndsInAPumpLosesItsEnd) {
  draw("=P1\n=PU\n<invio>\nprova\n0\nN\n0,0\n");
  const auto lines = onLayer(u"PROGETTO");
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(heights(lines[0]).size(), 2u);
}

TEST_F(Profile, OfEqualNamesTheFirstCountsAndAPipeMayRunAgainstItsNodes) {
  junc(u"A", {0, 0, 77}, 9, 99);
  pipe(u"P1", u"A", u"B", u"999", {{0, 0, 10}, {100, 0, 20}});
  Opened<AcDbEntity>(onLayer(u"PIPE-Rete").back(), AcDb::kForWrite)
      ->setXData(linkResult(1, 1, 1).get());
  pipe(u"P3", u"A", u"B", u"70", {{100, 0, 20}, {50, 50, 0}, {0, 0, 10}});
  pipe(u"P4", u"A", u"B", u"70", {{100, 0, 20}, {0, 0, 10.5}});
  for (const auto& [name, segment] :
       {std::pair(u"P1", "-12.5|2.5|110.0|150.0|130.0|0.0|12.5|0.7|0.0|4.0|0.0|P1|A"),
        std::pair(u"P3", "-12.5|2.5|70.0|150.0|130.0|0.0|12.5|0.7|0.0|4.0|0.0|P3|A")}) {
    EXPECT_EQ(drawProfile(u"Rete", {{name}, u"prova", 0, {}, {}}).verdict, LinkVerdict::valid);
    ASSERT_FALSE(onLayer(u"PROGETTO").empty());
    const AcDbObjectId line = onLayer(u"PROGETTO").back();
    EXPECT_EQ(vertexData(line)[0], std::string("230|HN-ACQ-TUBAZIONE|") + segment);
    AcGePoint3dArray points;
    ReadVertices(Opened<AcDb3dPolyline>(line).get(), points);
    EXPECT_EQ(points[0].y, 10);
  }
  EXPECT_EQ(drawProfile(u"Rete", {{u"P4"}, u"prova", 0, {}, {}}).verdict, LinkVerdict::misplaced);
}

TEST_F(Profile, LayersComeFromTheSettingsFile) {
  std::ofstream(root_ / "DEFAULTSETTINGS.INI") << "[LAYER]\nTERRENO=Campagna\nPROGETTO=Asse\n";
  draw("=P1\n<invio>\nprova\n0\nS\n1\n0,0\n");
  EXPECT_EQ(onLayer(u"Campagna").size(), 1u);
  EXPECT_EQ(onLayer(u"PIEZOMETRICA").size(), 1u);
  EXPECT_EQ(onLayer(u"Asse").size(), 1u);
}

TEST_F(Profile, UsefulHeightKeepsItsOddBounds) {
  ProfileChain chain;
  double lowest = 0;
  EXPECT_FALSE(std::isfinite(ComputeUsefulHeight(chain, kMissing, lowest)));  // no node at all
  EXPECT_EQ(lowest, std::numeric_limits<double>::max());
  chain.nodes.resize(2);
  chain.nodes[0].point.z = -40;
  chain.nodes[1].point.z = -60;
  EXPECT_DOUBLE_EQ(ComputeUsefulHeight(chain, kMissing, lowest), 63);  // up to sea level
  EXPECT_DOUBLE_EQ(ComputeUsefulHeight(chain, 50, lowest), 126);
  EXPECT_EQ(lowest, -110);
  EXPECT_EQ(ComputeUsefulWidth(chain), 2);
}

TEST_F(Profile, SurvivesSavingWithItsManholes) {
  draw("=P1\n=PU\n=P2\n<invio>\nprova\n500\nN\n10,20\n");
  pozzetto manhole;
  manhole.prog = 30;
  manhole.nome = u"Z1";
  manhole.codice = u"c";
  manhole.descrizione = u"d";
  manhole.quota = 12.5;
  AcGePoint3d origin, end;
  {
    GestioneOggetto profile(titleBlock());
    EXPECT_EQ(profile.GetListaPozzetti(), nullptr);
    EXPECT_TRUE(profile.AddPozzetto(manhole));
    manhole.nome = u"Z2";
    EXPECT_TRUE(profile.AddPozzetto(manhole));
    origin = profile.GetOrigin();
    end = profile.GetPInsFINOBJ();
  }
  saveAndReload();
  const Chain title(Opened<AcDbEntity>(titleBlock())->xData(u"HN-TERVANE-HN-RR"));
  ASSERT_TRUE(title);
  EXPECT_EQ(title.item(1)->restype, 1005);  // the frame's handle
  AcDbObjectId frame;
  EXPECT_EQ(acdbHostApplicationServices()->workingDatabase()->getAcDbObjectId(
                frame, std::strtoull(platform::narrow(title.text(1)).c_str(), nullptr, 16)),
            Acad::eOk);
  GestioneOggetto profile(titleBlock());
  EXPECT_EQ(data(titleBlock(), u"HN-RR_PROFILO_EPA"), "P1|PU|P2");
  const Chain names(profile.GetXdataProfEpa());
  EXPECT_EQ(names.text(3), u"P2");
  EXPECT_EQ(profile.GetOBJ3Prog(), u"500.000000");
  EXPECT_EQ(profile.GetOrigin().y, origin.y);
  EXPECT_EQ(profile.GetPInsFINOBJ().x, end.x);
  const pozzetto* first = profile.GetListaPozzetti();
  ASSERT_TRUE(first && first->next);
  EXPECT_EQ(first->nome, u"Z1");
  EXPECT_EQ(first->quota, 12.5);
  EXPECT_EQ(first->descrizione, u"d");
  EXPECT_EQ(first->codice, u"c");
  EXPECT_EQ(first->next->next, nullptr);
  // Erasing a symbol takes the manhole off the list.
  const AcDbObjectId symbol = onLayer(u"HN-PROFILO-POZZETTI")[0];
  EXPECT_NEAR(position(symbol).x, origin.x + 530, 1e-9);
  Opened<AcDbEntity>(symbol, AcDb::kForWrite)->erase();
  ASSERT_TRUE(profile.GetListaPozzetti());
  EXPECT_EQ(profile.GetListaPozzetti()->nome, u"Z2");
  EXPECT_EQ(profile.GetListaPozzetti()->next, nullptr);
  EXPECT_EQ(checking::checkDrawing(bytes()), std::vector<std::string>());
}

TEST_F(Profile, NeitherAnUndrawnProfileNorAnotherBlockIsOne) {
  GestioneOggetto undrawn(3);
  EXPECT_FALSE(undrawn.UpdateXdata());
  EXPECT_FALSE(undrawn.AddPozzetto({}));
  undrawn.SetAltezzaLarghezzaUtile(-std::numeric_limits<double>::infinity(), 2);
  EXPECT_FALSE(undrawn.Disegna_HNPX_HNRR(nullptr));
  GestioneOggetto other(onLayer(u"JUNC-Rete")[0]);
  EXPECT_EQ(other.GetNome1(), u"");
  EXPECT_FALSE(Chain(other.GetXdataProfEpa()));
  EXPECT_EQ(other.GetListaPozzetti(), nullptr);
  EXPECT_EQ(other.GetOrigin().x, 0);
}

TEST_F(Profile, PathsOfPolylines) {
  const AcDbObjectId line = addPolyline(u"X", {{0, 0, 0}, {3, 4, 12}, {3, 4, 13}});
  ads_name name;
  acdbGetAdsName(name, line);
  datipoli* path = nullptr;
  ASSERT_EQ(LeggiDATIPOLI(name, path), 1);  // in plan
  EXPECT_EQ(path->next->prog, 5);
  EXPECT_EQ(path->next->next->prog, 5);
  HNGeometry::LiberaDATIPOLI(path);
  listadatipoli* list =
      AllocaLISTADATIPOLI(line, 1, 0, 0, 0, 0, 0, nullptr, nullptr, 0);  // in space
  ASSERT_TRUE(list);
  EXPECT_EQ(list->numvertici, 3);
  EXPECT_EQ(list->lunghezza, 14);
  EXPECT_EQ(list->dati3d->next->prog, 13);
  LiberaLISTADATIPOLI(list);
  acdbGetAdsName(name, onLayer(u"JUNC-Rete")[0]);
  EXPECT_EQ(LeggiDATIPOLI(name, path), 0);
}

}  // namespace
}  // namespace vessora
