// A scene shows what a picture of the drawing shows, also after the drawing has changed; and what a
// cursor means on it.
#include "cad/view/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "cad/api/entities.h"
#include "cad/api/owners.h"
#include "cad/view/picture.h"
#include "cad/view/snap.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cad::view {
namespace {

// Two nodes as symbols with a name, a pipe with a bend between them, a lone line, a nested block,
// an array, a frozen layer.
constexpr char kDrawing[] =
    "0 SECTION|2 TABLES|0 TABLE|2 LAYER|70 3|0 LAYER|2 0|70 0|62 7|6 CONTINUOUS|0 LAYER|2 ROSSO|70 "
    "0|"
    "62 1|6 CONTINUOUS|0 LAYER|2 FERMO|70 1|62 3|6 CONTINUOUS|0 ENDTAB|0 ENDSEC|0 SECTION|2 BLOCKS|"
    "0 BLOCK|8 0|2 NODO|70 2|10 0|20 0|30 0|0 CIRCLE|8 0|62 0|10 0|20 0|30 0|40 2|0 ENDBLK|8 0|"
    "0 BLOCK|8 0|2 DOPPIO|70 0|10 1|20 0|30 0|0 INSERT|8 0|2 NODO|10 4|20 2|30 0|50 30|41 2|0 "
    "LINE|8 ROSSO|10 0|20 0|11 1|21 1|0 ENDBLK|8 0|0 ENDSEC|0 SECTION|2 ENTITIES|"
    "0 INSERT|8 ROSSO|66 1|2 NODO|10 0|20 0|30 5|0 ATTRIB|8 0|10 3|20 3|40 2|1 N1|2 ID|70 0|0 "
    "SEQEND|8 0|"
    "0 INSERT|8 ROSSO|2 NODO|10 100|20 40|30 9|41 2|42 2|43 2|"
    "0 POLYLINE|8 0|66 1|70 8|10 0|20 0|30 0|0 VERTEX|8 0|70 32|10 0|20 0|30 5|0 VERTEX|8 0|70 32|"
    "10 60|20 0|30 7|0 VERTEX|8 0|70 32|10 100|20 40|30 9|0 SEQEND|8 0|"
    "0 LINE|8 0|62 5|10 200|20 10|11 240|21 10|0 INSERT|8 0|62 2|2 DOPPIO|10 300|20 0|50 90|"
    "0 INSERT|8 0|2 NODO|10 0|20 100|70 3|71 2|44 10|45 10|0 LINE|8 FERMO|10 0|20 0|11 9|21 9|"
    "0 TEXT|8 0|10 150|20 80|40 5|1 scritta|0 ENDSEC|0 EOF";

class SceneTest : public testing::Test {
 protected:
  SceneTest() {
    std::string text;
    for (const char* c = kDrawing; *c; ++c) text += *c == '|' ? '\n' : *c;
    std::string lines;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find('\n', at), text.size());
      std::string tag = text.substr(at, end - at);
      tag[tag.find(' ')] = '\n';
      lines += tag + "\n";
      at = end + 1;
    }
    Block bytes(lines.size());
    std::memcpy(bytes.data(), lines.data(), lines.size());
    std::vector<std::string> warnings;
    const auto loaded = drawing().loadBytes(std::move(bytes), lines.size(), "prova", warnings);
    EXPECT_TRUE(loaded) << loaded.error();
    EXPECT_TRUE(scene_.update(drawing()));
    camera_.resize(800, 600);
    camera_.fit({0, 0, 0}, {300, 120, 0});
  }
  Drawing& drawing() { return database_.drawing(); }

  // Everything that is shown, each shape in a line: kind, pen, points.
  static std::string lineOf(Kind kind, const Pen& pen, const std::vector<AcGePoint3d>& points) {
    std::string line = std::to_string(static_cast<int>(kind)) + " " + std::to_string(pen.index);
    for (const AcGePoint3d& p : points) {
      // Without a minus before zero.
      line += platform::narrow(
          platform::format(u" %.4f,%.4f,%.4f", p.x + 1e-9, p.y + 1e-9, p.z + 1e-9));
    }
    return line;
  }
  std::multiset<std::string> ofPicture() {
    std::multiset<std::string> all;
    const Picture picture = takePicture(drawing());
    for (const Item& item : picture.items) {
      const auto first = picture.points.begin() + item.first;
      all.insert(lineOf(item.kind, item.pen, {first, first + item.count}));
    }
    return all;
  }
  std::multiset<std::string> ofScene(Scene& scene) {
    std::multiset<std::string> all;
    const auto add = [&](const ItemRange& range, const AcGeMatrix3d* m) {
      for (std::uint32_t i = range.begin; i < range.end; ++i) {
        const SceneItem item = scene.items()[i];
        const auto first = scene.points().begin() + item.first;
        std::vector<AcGePoint3d> points(first, first + item.count);
        if (m) std::for_each(points.begin(), points.end(), [&](AcGePoint3d& p) { p = *m * p; });
        all.insert(lineOf(item.kind, scene.pens()[item.pen], points));
      }
    };
    for (std::uint32_t i = 0; i < scene.things().size(); ++i) {
      const SceneThing thing = scene.things()[i];
      if (thing.record == 0) continue;
      add(thing.items, nullptr);
      if (thing.symbol == SceneThing::kNone) continue;
      add(scene.symbols()[thing.symbol].items, &scene.matrices()[thing.matrix]);
      if (thing.labels) add(scene.labelsOf(i, drawing()), nullptr);
    }
    return all;
  }
  // What one has and the other has not.
  static std::string difference(const std::multiset<std::string>& a,
                                const std::multiset<std::string>& b) {
    std::vector<std::string> lines;
    std::set_symmetric_difference(a.begin(), a.end(), b.begin(), b.end(),
                                  std::back_inserter(lines));
    std::string text;
    for (const std::string& line : lines) text += line.substr(0, 60) + "\n";
    return text;
  }
  // The entities of the space, in their order.
  std::vector<std::uint32_t> entities() { return drawing().index().allInSpace(); }
  Pixel at(double x, double y, double z = 0) const { return camera_.pixelOf({x, y, z}); }

  AcDbDatabase database_{false};
  Scene scene_;
  Camera camera_;
};

TEST_F(SceneTest, ShowsWhatAPictureShows) {
  EXPECT_EQ(difference(ofScene(scene_), ofPicture()), "");
  EXPECT_GT(ofScene(scene_).size(), 12U);
}

TEST_F(SceneTest, FollowsChangesOneByOne) {
  const auto before = entities();
  EXPECT_FALSE(scene_.update(drawing()));
  const auto holds = [&](const char* what) {
    EXPECT_TRUE(scene_.update(drawing())) << what;
    EXPECT_EQ(difference(ofScene(scene_), ofPicture()), "") << what;
    Scene fresh;
    fresh.update(drawing());
    EXPECT_EQ(difference(ofScene(fresh), ofScene(scene_)), "") << what;
    EXPECT_EQ(fresh.index().size(), scene_.index().size()) << what;
  };
  drawing().beginCommand(u"PROVA");
  {
    const Opened<AcDbBlockReference> node(drawing().idOf(before[0]), AcDb::kForWrite);
    node->setPosition({20, 20, 0});
  }
  holds("a moved symbol");
  {
    const Opened<AcDbEntity> line(drawing().idOf(before[3]), AcDb::kForWrite);
    line->setColorIndex(3);
  }
  holds("a recoloured line");
  drawing().erase(before[1], true);
  holds("an erased symbol");
  {
    auto* const line = new AcDbLine(AcGePoint3d(1, 1, 0), AcGePoint3d(7, 3, 0));
    ASSERT_EQ(drawing().append(drawing().structure().modelSpace(), *line), Acad::eOk);
    line->close();
  }
  holds("a new line");
  drawing().endCommand();
  drawing().undo();
  holds("all taken back");
  drawing().redo();
  holds("and brought back");
}

TEST_F(SceneTest, SnapsByRankAndPicksSymbolsFirst) {
  const auto hit = snapAt(scene_, camera_, at(101, 40.5));
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->kind, SnapKind::node);
  EXPECT_EQ(hit->point.z, 9) << "with its height";
  SnapRules ends;
  ends.kinds = 1U << static_cast<unsigned>(SnapKind::end);
  EXPECT_EQ(snapAt(scene_, camera_, at(101, 40.5), ends)->kind, SnapKind::end);
  EXPECT_EQ(snapAt(scene_, camera_, at(60, 1))->kind, SnapKind::vertex);
  EXPECT_EQ(snapAt(scene_, camera_, at(30, 1))->kind, SnapKind::middle);
  const auto near = snapAt(scene_, camera_, at(45, 1));
  ASSERT_TRUE(near && near->kind == SnapKind::nearest);
  EXPECT_NEAR(near->point.x, 45, 0.01);
  EXPECT_NEAR(near->point.z, 6.5, 0.01);
  EXPECT_FALSE(snapAt(scene_, camera_, at(45, 60)));

  const auto record = [&](std::uint32_t thing) { return scene_.things()[thing].record; };
  const auto over = thingsAt(scene_, camera_, at(100, 40), 5);
  ASSERT_EQ(over.size(), 2U);
  EXPECT_EQ(record(over[0]), entities()[1]);
  EXPECT_EQ(record(over[1]), entities()[2]);
  // The pipe leaves the window: crossing it takes it, holding it does not.
  const Pixel a = at(-10, -10), b = at(70, 15);
  EXPECT_EQ(thingsIn(scene_, camera_, a, b, false).size(), 1U);
  EXPECT_EQ(thingsIn(scene_, camera_, a, b, true).size(), 2U);
}

}  // namespace
}  // namespace cad::view
