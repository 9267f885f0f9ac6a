// Networks drawn in memory, for the tests of what reads and changes them.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"
#include "cad/editor/session.h"
#include "cad/ui/script_frontend.h"
#include "module/host/host_drawing.h"
#include "module/network/schema.h"
#include "platform/text.h"

namespace vessora {

inline void PrintTo(const wide50& text, std::ostream* out) { *out << platform::narrow(text); }
inline void PrintTo(const wide256& text, std::ostream* out) { *out << platform::narrow(text); }

// --- the stored lists as drawings have them, stated here on their own
inline constexpr char16_t kImported[] = u"HN-C_EPAHNIMPORT";
inline Chain juncData(std::u16string_view id, double emitter, std::u16string_view pattern) {
  return Chain(acutBuildList(1001, kImported, 1000, id, 1040, emitter, 1000, pattern, RTNONE));
}
inline Chain resvData(std::u16string_view id, std::u16string_view pattern) {
  return Chain(acutBuildList(1001, kImported, 1000, id, 1040, 0.0, 1000, pattern, RTNONE));
}
inline Chain tankData(std::u16string_view id, std::u16string_view volCurve) {
  return Chain(acutBuildList(1001, kImported, 1000, id, 1000, volCurve, RTNONE));
}
inline Chain pipeData(const EpaPipe& p) {
  using platform::wtof;
  return Chain(acutBuildList(1001, kImported, 1000, p.id, 1040, wtof(p.length), 1040,
                             wtof(p.diameter), 1040, wtof(p.roughness), 1040, wtof(p.minorLoss),
                             1000, p.status, 1000, p.node1, 1000, p.node2, RTNONE));
}
inline Chain valvData(const EpaValv& v, double diameter, double minorLoss) {
  return Chain(acutBuildList(1001, kImported, 1000, v.id, 1040, diameter, 1000, v.type, 1000,
                             v.status, 1000, v.setting, 1040, minorLoss, 1000, v.node1, 1000,
                             v.node2, RTNONE));
}
inline Chain pumpData(const EpaPump& p) {
  using platform::wtof;
  return Chain(acutBuildList(1001, kImported, 1000, p.id, 1000, p.node1, 1000, p.node2, 1000,
                             p.headCurve, 1040, wtof(p.power), 1040, wtof(p.speed), 1000,
                             p.speedPattern, 1000, p.effCurve, 1040, wtof(p.price), 1000,
                             p.pricePattern, RTNONE));
}
// Of the companion polyline of a valve or a pump.
inline Chain idData(std::u16string_view id) {
  return Chain(acutBuildList(1001, kImported, 1000, id, RTNONE));
}

using Attributes = std::vector<std::pair<std::u16string, std::u16string>>;

class DrawnNetwork : public ::testing::Test {
 protected:
  void SetUp() override {
    open(std::make_unique<AcDbDatabase>());
    for (const char16_t* application :
         {app::kImport, app::kMaterial, app::kNodeResult, app::kLinkResult, app::kSettings,
          app::kPattern, app::kCurve}) {
      acdbRegApp(application);
    }
    currentNetwork = u"Rete";
    script("");
  }
  void TearDown() override {
    expectNothingHeld();
    expectScriptDone();
    cad::Session::instance().setFrontend(nullptr);
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  }

  // What every operation owes its host when it is done.
  void expectNothingHeld() const {
    EXPECT_EQ(drawing().openCount(), 0);
    EXPECT_EQ(acutLiveNodes(), 0);
    EXPECT_EQ(cad::Session::instance().liveSelections(), 0);
  }

  // The message boxes to come, in the language of scripts.
  void script(const std::string& text) {
    frontend_ = std::make_unique<cad::ui::ScriptFrontend>(text, "test");
    cad::Session::instance().setFrontend(frontend_.get());
  }
  void expectScriptDone() {
    const auto result = frontend_->finish();
    EXPECT_TRUE(result) << result.error();
  }

  cad::Drawing& drawing() const { return database_->drawing(); }
  // What a file would hold, with one time for all that the header has, so that drawings which are
  // compared may have been made in different seconds.
  std::string bytes() const {
    std::string text = drawing().toBytes();
    for (std::size_t at = 0; (at = text.find("\n$TD", at)) != text.npos; ++at) {
      const std::size_t value = text.find('\n', text.find('\n', at + 1) + 1) + 1;
      text.replace(value, text.find('\n', value) - value, "2460000.5");
    }
    return text;
  }
  // Goes on with what a saved file would hold. Ids of the drawing before are of no use afterwards.
  void saveAndReload() { reopen(bytes()); }
  // Goes on with the drawing of a file.
  void reopen(const std::string& text) {
    auto database = std::make_unique<AcDbDatabase>(false);
    cad::Block block(text.size() + 1);
    std::memcpy(block.data(), text.data(), text.size());
    std::vector<std::string> warnings;
    const auto loaded =
        database->drawing().loadBytes(std::move(block), text.size(), "saved", warnings);
    ASSERT_TRUE(loaded) << loaded.error();
    EXPECT_EQ(warnings, std::vector<std::string>());
    open(std::move(database));
  }

  AcDbObjectId addBlock(const char16_t* name, const std::u16string& layer, const AcGePoint3d& at,
                        const Attributes& attributes, const Chain& data = {}) {
    auto* block = new AcDbBlockReference(at, definition(name));
    block->setLayer(layer);
    if (data) block->setXData(data.get());
    const AcDbObjectId id = append(block);
    for (const auto& [tag, text] : attributes) {
      auto* attribute = new AcDbAttribute;
      cad::TagList& tags = cad::Inside::tagsForWrite(*attribute);
      tags.putText(2, tag, tags.subclass("AcDbAttribute"));
      attribute->setTextString(text);
      attribute->setPosition(at);
      AcDbObjectId part;
      EXPECT_EQ(block->appendAttribute(part, attribute), Acad::eOk);
      attribute->close();
    }
    block->close();
    return id;
  }
  AcDbObjectId addPolyline(const std::u16string& layer, const AcGePoint3dArray& points,
                           const Chain& data = {}) {
    return HNGeometry::Create3Dpoly(points, 256, layer, 0, data.get());
  }

  // --- what stands in the drawing
  static std::u16string attribute(AcDbObjectId id, const char16_t* tag) {
    const Opened<AcDbBlockReference> block(id);
    std::u16string text;
    ReadAttribute(block.get(), tag, text);
    return text;
  }
  static AcGePoint3d position(AcDbObjectId id) {
    return Opened<AcDbBlockReference>(id)->position();
  }
  static std::vector<double> heights(AcDbObjectId id) {
    AcGePoint3dArray points;
    ReadVertices(Opened<AcDb3dPolyline>(id).get(), points);
    std::vector<double> z;
    for (const AcGePoint3d& p : points) z.push_back(p.z);
    return z;
  }
  // Items behind the header as "text|3.5|...".
  static std::string data(AcDbObjectId id, const char16_t* application = app::kImport) {
    const Chain chain(Opened<AcDbEntity>(id)->xData(application));
    std::string out;
    for (int i = 1; const resbuf* item = chain.item(i); ++i) {
      if (i > 1) out += '|';
      switch (acutKindOf(item->restype)) {
        case RbKind::text:
          out += platform::narrow(item->resval.rstring);
          break;
        case RbKind::real: {
          char digits[32];
          out.append(digits, platform::writeReal(digits, item->resval.rreal));
          break;
        }
        default:
          out += std::to_string(item->resval.rint);
      }
    }
    return out;
  }
  static int color(AcDbObjectId id) { return Opened<AcDbEntity>(id)->colorIndex(); }
  static std::vector<AcDbObjectId> onLayer(const std::u16string& layer) {
    std::vector<AcDbObjectId> ids;
    for (const AcDbObjectId id : SelectionSet(u"_X", acutBuildList(8, layer, RTNONE))) {
      ids.push_back(id);
    }
    return ids;
  }

 private:
  void open(std::unique_ptr<AcDbDatabase> database) {
    acdbHostApplicationServices()->setWorkingDatabase(database.get());
    database_ = std::move(database);
  }
  AcDbObjectId definition(std::u16string_view name) {
    const std::uint32_t known = drawing().structure().blockByName(drawing().names().find(name));
    return drawing().idOf(known ? known : drawing().structure().addBlock(name, {}).id);
  }
  AcDbObjectId append(AcDbEntity* entity) {
    const Opened<AcDbBlockTableRecord> space(drawing().idOf(drawing().structure().modelSpace()),
                                             AcDb::kForWrite);
    AcDbObjectId id;
    EXPECT_EQ(space->appendAcDbEntity(id, entity), Acad::eOk);
    return id;
  }

  std::unique_ptr<AcDbDatabase> database_;
  std::unique_ptr<cad::ui::ScriptFrontend> frontend_;
};

}  // namespace vessora
