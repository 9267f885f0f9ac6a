// Entities moved, turned, scaled and copied: what they show must be where the transformation puts
// what they showed, for every kind, also in planes that are not the world's.
#include "cad/editor/transform.h"

#include <algorithm>
#include <cstring>

#include "cad/shape/reference.h"
#include "tests/editor/editor_testing.h"

namespace {

using cad::Similarity;

std::string section(const char* name, std::string_view lines) {
  std::string text = "0\nSECTION\n2\n" + std::string(name) + "\n";
  for (std::size_t at = 0; at < lines.size();) {
    const std::size_t end = std::min(lines.find('|', at), lines.size());
    std::string tag(lines.substr(at, end - at));
    tag[tag.find(' ')] = '\n';
    text += tag + "\n";
    at = end + 1;
  }
  return text + "0\nENDSEC\n";
}

constexpr char kBlocks[] =
    "0 BLOCK|8 0|2 SEGNO|70 0|10 1|20 1|30 0|0 LINE|8 0|10 0|20 0|30 0|11 3|21 1|31 0|0 ENDBLK|8 0|"
    "0 BLOCK|8 0|2 DOPPIO|70 0|10 0|20 0|30 0|0 INSERT|8 0|2 SEGNO|10 4|20 2|30 0|50 30|41 2|"
    "0 ENDBLK|8 0";

// One entity of each kind and form.
const char* const kEntities[] = {
    "0 LINE|8 0|10 1|20 2|30 3|11 4|21 6|31 5",
    "0 POINT|8 0|10 1|20 2|30 3",
    "0 ARC|8 0|10 1|20 2|30 0|40 3|50 350|51 40",
    "0 ARC|8 0|10 1|20 2|30 5|40 3|50 20|51 100|210 0|220 0|230 -1",
    "0 ARC|8 0|10 1|20 2|30 5|40 3|50 20|51 100|210 0.6|220 0|230 0.8",
    "0 ELLIPSE|8 0|10 1|20 2|30 3|11 4|21 1|31 0|40 0.5|41 0|42 2.5",
    "0 ELLIPSE|8 0|10 1|20 2|30 3|11 4|21 0|31 3|40 0.5|41 0|42 2.5|210 -0.6|220 0|230 0.8",
    "0 SPLINE|8 0|71 2|40 0|40 0|40 0|40 1|40 1|40 1|10 0|20 0|30 1|10 2|20 4|30 0|10 5|20 0|30 0",
    "0 TEXT|8 0|10 1|20 2|30 0|40 2.5|1 quota",
    "0 TEXT|8 0|10 1|20 2|30 0|40 2.5|1 quota|50 40|72 1|11 3|21 2|31 0|73 2",
    "0 TEXT|8 0|10 1|20 2|30 0|40 2.5|1 quota|50 40|210 0|220 0|230 -1",
    "0 MTEXT|8 0|10 1|20 2|30 0|40 2|41 20|71 5|1 due\\Prighe",
    "0 MTEXT|8 0|10 1|20 2|30 0|40 2|41 20|71 1|1 due\\Prighe|11 0.6|21 0.8|31 0",
    "0 MTEXT|8 0|10 1|20 2|30 0|40 2|41 20|71 1|1 righe|50 25",
    "0 LWPOLYLINE|8 0|90 3|70 0|10 0|20 0|42 0.5|10 3|20 1|42 0|10 5|20 4",
    "0 LWPOLYLINE|8 0|90 2|70 0|38 7|10 1|20 0|10 3|20 1|210 0.6|220 0|230 0.8",
    "0 POLYLINE|8 0|66 1|70 0|10 0|20 0|30 4|0 VERTEX|8 0|10 0|20 0|30 4|42 1|0 VERTEX|8 0|10 2|20 "
    "0|30 4|0 SEQEND|8 0",
    "0 POLYLINE|8 0|66 1|70 8|10 0|20 0|30 0|0 VERTEX|8 0|70 32|10 0|20 1|30 4|0 VERTEX|8 0|70 "
    "32|10 2|20 0|30 5|0 SEQEND|8 0",
    "0 INSERT|8 0|2 SEGNO|10 5|20 6|30 0",
    "0 INSERT|8 0|2 DOPPIO|10 5|20 6|30 1|41 2|42 3|50 75|70 2|71 3|44 4|45 5",
    "0 INSERT|8 0|2 SEGNO|10 5|20 6|30 1|50 20|210 0|220 0.6|230 0.8",
    "0 INSERT|8 0|2 SEGNO|66 1|10 5|20 6|30 0|0 ATTRIB|8 0|10 6|20 6|30 0|40 2|1 N7|2 ID|70 0|0 "
    "SEQEND|8 0",
    "0 SOLID|8 0|10 0|20 0|30 0|11 2|21 0|31 0|12 0|22 2|32 0|13 2|23 2|33 0",
    "0 TRACE|8 0|10 0|20 0|30 1|11 2|21 0|31 1|12 0|22 2|32 1|13 2|23 2|33 1|210 0|220 1|230 0",
    "0 3DFACE|8 0|10 0|20 0|30 0|11 2|21 0|31 1|12 2|22 2|32 0|13 0|23 2|33 0",
    "0 XLINE|8 0|10 1|20 2|30 0|11 0.6|21 0.8|31 0",
    "0 LEADER|8 0|10 0|20 0|30 0|10 3|20 4|30 0|40 2",
};

class TransformTest : public EditorTest {
 protected:
  void open(const std::string& entities) {
    openBytes(section("BLOCKS", kBlocks) + section("ENTITIES", entities) + "0\nEOF\n");
  }
  std::uint32_t first() {
    return drawing().structure().firstEntity(drawing().structure().modelSpace());
  }
  std::vector<AcGePoint3d> shown(std::uint32_t entity) {
    std::vector<AcGePoint3d> points;
    cad::shape::expand(drawing(), entity, cad::shape::Arrays::whole,
                       [&](cad::shape::Primitive&& p) {
                         points.insert(points.end(), p.points.begin(), p.points.end());
                       });
    return points;
  }
  // The texts of all entities, which are their state.
  std::string state() {
    std::string all;
    for (std::uint32_t e = first(); e;
         e = drawing().structure().nextEntity(drawing().structure().modelSpace(), e)) {
      all += drawing().record(e).text();
      for (std::uint32_t p = drawing().structure().firstPart(e); p;
           p = drawing().structure().nextPart(e, p)) {
        all += drawing().record(p).text();
      }
    }
    return all;
  }
  static void expectNear(const AcGePoint3d& wanted, const AcGePoint3d& got, double size,
                         const char* what) {
    EXPECT_LT(wanted.distanceTo(got), 1e-9 * (1 + size)) << what;
  }
};

const Similarity kChanges[] = {
    Similarity::move({10, -20, 0}),        Similarity::move({1, 2, 3}),
    Similarity::scaleAbout({3, 1, 0}, 2),  Similarity::scaleAbout({3, 1, 2}, 0.25),
    Similarity::turnAbout({3, 1, 0}, 90),  Similarity::turnAbout({-5, 2, 0}, 37),
    Similarity::turnAbout({0, 0, 0}, -200)};

TEST_F(TransformTest, WhatIsShownGoesWhereTheTransformationSays) {
  for (const char* const text : kEntities) {
    open(text);
    const std::vector<AcGePoint3d> before = shown(first());
    ASSERT_FALSE(before.empty()) << text;
    for (const Similarity& how : kChanges) {
      // An endless line is shown as far whatever its scale.
      if (how.scale != 1 && std::strstr(text, "XLINE")) continue;
      open(text);
      // The copy first, from the original as it is.
      ASSERT_TRUE(cad::copyEntity(drawing(), first(), how)) << text;
      const std::uint32_t copy =
          drawing().structure().nextEntity(drawing().structure().modelSpace(), first());
      ASSERT_NE(copy, 0U) << text;
      ASSERT_TRUE(cad::transformEntity(drawing(), first(), how)) << text;
      const std::vector<AcGePoint3d> after = shown(first()), copied = shown(copy);
      ASSERT_EQ(after.size(), before.size()) << text;
      ASSERT_EQ(copied.size(), before.size()) << text;
      for (std::size_t i = 0; i < before.size(); ++i) {
        const AcGePoint3d wanted = how.matrix * before[i];
        const double size = wanted.distanceTo({});
        expectNear(wanted, after[i], size, text);
        expectNear(wanted, copied[i], size, text);
      }
    }
  }
}

TEST_F(TransformTest, ACircleKeepsItsRoundness) {
  open("0 CIRCLE|8 0|10 1|20 2|30 0|40 3|39 2");
  ASSERT_TRUE(cad::transformEntity(drawing(), first(), Similarity::scaleAbout({0, 0, 0}, 2)));
  ASSERT_TRUE(cad::transformEntity(drawing(), first(), Similarity::turnAbout({0, 0, 0}, 90)));
  EXPECT_EQ(drawing().record(first()).text(),
            "0\nCIRCLE\n8\n0\n 10\n-4.0\n 20\n2.0\n30\n0\n 40\n6.0\n 39\n4.0\n");
}

TEST_F(TransformTest, ACopyIsAnEntityOfItsOwnWithItsParts) {
  session.newDrawing();
  run(u"LAYER", {u"Nuovo", u"A"});
  drawLine({0, 0, 0}, {1, 0, 0});
  const std::uint64_t handle = drawing().record(first()).handle;
  run(u"COPIA", {u"0.5,0", u"<invio>", u"0,0", u"0,5", u"@0,7", u"<invio>"});
  std::vector<std::uint64_t> handles;
  std::vector<double> heights;
  for (std::uint32_t e = first(); e;
       e = drawing().structure().nextEntity(drawing().structure().modelSpace(), e)) {
    const cad::Opened<AcDbLine> line(drawing().idOf(e));
    handles.push_back(line->handle());
    heights.push_back(line->startPoint().y);
  }
  EXPECT_EQ(heights, (std::vector<double>{0, 5, 7}));
  EXPECT_EQ(handles.front(), handle);
  std::sort(handles.begin(), handles.end());
  EXPECT_EQ(std::adjacent_find(handles.begin(), handles.end()), handles.end());
  // One step of undo for both.
  run(u"U");
  EXPECT_EQ(drawing().structure().nextEntity(drawing().structure().modelSpace(), first()), 0U);
}

TEST_F(TransformTest, WhatCannotBeChangedIsToldAndLeftWhole) {
  const std::string kinds =
      "0 LINE|8 0|10 1|20 2|30 3|11 4|21 6|31 5|0 HATCHLIKE|8 0|10 1|20 1|30 0|"
      "0 DIMENSION|8 0|10 0|20 0|30 0|70 0|"
      "0 INSERT|8 0|2 SEGNO|66 1|10 5|20 6|30 0|0 STRANO|8 0|10 1|0 SEQEND|8 0";
  open(kinds);
  const std::string before = state();
  // A scale that throws everything beyond all numbers changes nothing either.
  run(u"SCALA", {u"tutto", u"<invio>", u"0,0", u"1e200"});
  EXPECT_EQ(state(), before);
  const std::u16string said = run(u"SPOSTA", {u"#0", u"tutto", u"<invio>", u"1,1", u"<invio>"});
  EXPECT_NE(said.find(u"Oggetti spostati: "), std::u16string::npos);
  EXPECT_NE(said.find(u"DIMENSION, che il comando non tratta"), std::u16string::npos)
      << platform::narrow(said);
  run(u"U");
  EXPECT_EQ(state(), before);
  run(u"REDO");
  EXPECT_NE(state(), before);
}

TEST_F(TransformTest, CommandsAskAsDraughtsmenKnow) {
  session.newDrawing();
  drawLine({10, 0, 0}, {20, 0, 0});
  const auto ends = [&] {
    const cad::Opened<AcDbLine> line(drawing().idOf(first()));
    return std::vector<double>{line->startPoint().x, line->startPoint().y, line->endPoint().x,
                               line->endPoint().y};
  };
  const auto near = [&](std::vector<double> wanted) {
    const std::vector<double> got = ends();
    for (std::size_t i = 0; i < 4; ++i) {
      if (std::fabs(wanted[i] - got[i]) > 1e-12) return false;
    }
    return true;
  };
  run(u"SPOSTA", {u"15,0", u"<invio>", u"10,0", u"@5,1"});
  EXPECT_TRUE(near({15, 1, 25, 1}));
  run(u"MOVE", {u"15,1", u"<invio>", u"-5,-1", u"<invio>"});  // the base point as the way
  EXPECT_TRUE(near({10, 0, 20, 0}));
  run(u"SCALA", {u"15,0", u"<invio>", u"10,0", u"0", u"-1", u"x", u"0.5"});
  EXPECT_EQ(ui.complaints.size(), 3U);
  EXPECT_TRUE(near({10, 0, 15, 0}));
  run(u"SCALE", {u"12,0", u"<invio>", u"10,0", u"r", u"5", u"20"});
  EXPECT_TRUE(near({10, 0, 30, 0}));
  run(u"RUOTA", {u"12,0", u"<invio>", u"10,0", u"90"});
  EXPECT_TRUE(near({10, 0, 10, 20}));
  run(u"ROTATE", {u"10,3", u"<invio>", u"10,0", u"Rif", u"90", u"180"});
  EXPECT_TRUE(near({10, 0, -10, 0}));
  // Given up half way, or nothing chosen: nothing happens, and there is nothing to undo of it.
  const std::vector<double> before = ends();
  run(u"SPOSTA", {u"<invio>"});
  run(u"SPOSTA", {u"5,0", u"<invio>", u"0,0", u"<esc>"});
  run(u"RUOTA", {u"5,0", u"<invio>", u"0,0", u"<esc>"});
  EXPECT_EQ(ends(), before);
  EXPECT_EQ(run(u"MISURA", {u"1,1", u"@3,4,12"}),
            u"\nDistanza = 13.000, in pianta = 5.000, angolo in pianta = 53.13°"
            u"\nDelta X = 3.000, delta Y = 4.000, delta Z = 12.000");
  // On a locked layer.
  {
    const cad::Opened<AcDbEntity> line(drawing().idOf(first()), AcDb::kForWrite);
    line->setLayer(u"CHIUSO");
  }
  cad::TagList t;
  const std::uint32_t layer = drawing().structure().tableEntry(cad::Type::layer, u"CHIUSO");
  drawing().parse(layer, t);
  t.putInteger(70, 4, t.subclass("AcDbLayerTableRecord"));
  drawing().writer().rewrite(layer, t);
  EXPECT_EQ(run(u"SPOSTA", {u"5,0", u"<invio>"}),
            u"\nOggetti su layer bloccati, lasciati come sono: 1.");
  EXPECT_EQ(ends(), before);
}

}  // namespace
