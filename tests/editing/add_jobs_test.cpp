// The jobs that add networks and elements: what they answer, and what no list of a command shows.
#include "module/editing/add_jobs.h"

#include "module/host/command_span.h"
#include "module/network/settings_store.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class AddJobs : public DrawnNetwork {
 protected:
  // The symbols' definitions, without attributes; that of pumps is to be found nowhere.
  void defineSymbols() {
    for (const char16_t* name : {u"Junc", u"Resv", u"Tank", u"Valv", u"Q_OUT"}) {
      addBlock(name, u"0", {0, 0, 0}, {});
    }
    cad::Session::instance().setSymbol(u"hn-cpath", u"/nowhere\\");
  }
  static std::string told(const Notices& notices) {
    std::string all;
    for (const Notice& notice : notices) {
      all += std::to_string(static_cast<int>(notice.code)) + ':' + platform::narrow(notice.subject);
      all += '/' + platform::narrow(notice.other) + ' ';
    }
    return all;
  }
  static std::string one(NoticeCode code, const char* subject, const char* other = "") {
    return std::to_string(static_cast<int>(code)) + ':' + subject + '/' + other + ' ';
  }
  static std::string flags() {
    std::vector<std::u16string> names;
    wide256 last;
    ListNetworks(names, last);
    std::string all;
    for (const std::u16string& name : names) {
      EpaSettings settings;
      LoadSettings(settings, name);
      all += platform::narrow(name) + std::to_string(settings.isDefault) + ' ';
    }
    return all + platform::narrow(last);
  }

  ElementNames names_;
  const CommandSpan span_;
};

// Whoever confirms a default network has asked for no other change.
TEST_F(AddJobs, ConfirmingANetworkRewritesFlagsAndNothingElse) {
  EXPECT_EQ(told(createNetwork(u"Alta")), "");
  EXPECT_EQ(told(createNetwork(u"Bassa")), "");
  EXPECT_EQ(flags(), "Alta1 Bassa1 Bassa");
  EpaSettings settings;
  LoadSettings(settings, u"Alta");
  settings.headloss = u"D-W";
  settings.duration = u"72:00";
  settings.trials = 7;
  SaveSettings(settings, false);
  confirmDefaultNetwork(u"Alta");
  EXPECT_EQ(flags(), "Alta1 Bassa0 Alta");
  const std::string before = bytes();
  confirmDefaultNetwork(u"Alta");
  EXPECT_EQ(bytes(), before);
  EpaSettings after;
  LoadSettings(after, u"Alta");
  EXPECT_EQ(after.headloss, u"D-W");
  EXPECT_EQ(after.duration, u"72:00");
  EXPECT_EQ(after.trials, 7);
  confirmDefaultNetwork(u"alta");
  EXPECT_EQ(flags(), "Alta0 Bassa0 ");
  EXPECT_EQ(told(createNetwork(u"ALTA")), one(NoticeCode::networkNameTwice, "ALTA", "Alta"));
  EXPECT_EQ(told(createNetwork(u"a|b")), one(NoticeCode::networkNameUnusable, "a|b", "|"));
}

// Reals that the drawing keeps are whole where attributes have three decimals.
TEST_F(AddJobs, NodesStandAtTheHeightOfTheirRecord) {
  defineSymbols();
  EpaJunc junction;
  junction.id = u"N1";
  junction.elev = u"123.456789012345";
  junction.demand = u"0.0004";
  junction.emitter = u"0.123456789";
  const AddedElement added = addJunction(u"Rete", {4123456.789, 5012345.678, 99}, junction, names_);
  EXPECT_EQ(told(added.notices) + told(added.warnings), "");
  const AcGePoint3d at = position(added.id);
  EXPECT_EQ(at.x, 4123456.789);
  EXPECT_EQ(at.z, 123.456789012345);
  EXPECT_EQ(data(added.id), "N1|0.123456789|");
  EXPECT_EQ(color(added.id), 1);
  EXPECT_TRUE(onLayer(u"Q-OUT-Rete").empty()) << "the demand that is shown is none";
  // The same name again, in another kind; a network of its own for the arrow.
  EpaTank tank;
  tank.id = u"N1";
  tank.volCurve = u"V";
  EXPECT_EQ(told(addTank(u"Rete", {1, 2, 3}, tank, names_).warnings),
            one(NoticeCode::nodeNameTwice, "N1"));
  junction.id = u"";
  junction.demand = u"2";
  ElementNames others;
  EXPECT_EQ(told(addJunction(u"Altra", {0, 0, 0}, junction, others).warnings),
            one(NoticeCode::nameEmpty, "JUNC-Altra"));
  EXPECT_EQ(onLayer(u"Q-OUT-Altra").size(), 1u);
  EXPECT_EQ(names_.nodes, (std::vector<std::u16string>{u"N1", u"N1"}));
}

TEST_F(AddJobs, LinksWarnOfWhatNoSolverAccepts) {
  defineSymbols();
  names_.nodes = {u"A", u"B"};
  EpaPipe pipe;
  pipe.id = u"L";
  pipe.node1 = u"A";
  pipe.node2 = u"B";
  pipe.length = u"10";
  pipe.roughness = u"0.0000015";
  pipe.status = u"Close";
  const AddedElement drawn = addPipe(u"Rete", {{0, 0, 1}, {6, 8, 1}}, pipe, u"Rame", names_);
  EXPECT_EQ(told(drawn.notices) + told(drawn.warnings),
            one(NoticeCode::pipeStatusUnknown, "L", "Close"));
  EXPECT_EQ(drawn.id, drawn.course);
  EXPECT_EQ(data(drawn.id), "L|10.0|0.0|1.5e-06|0.0|Close|A|B");
  EXPECT_EQ(data(drawn.id, app::kMaterial), "Rame");
  EXPECT_EQ(color(drawn.id), 256);

  EpaValv valve;
  valve.id = u"L";
  valve.node1 = u"C";
  valve.diameter = u"80.12345";
  const AddedElement odd = addValve(u"Rete", {{0, 0, 0}}, valve, names_);
  EXPECT_EQ(told(odd.warnings),
            one(NoticeCode::linkNameTwice, "L") + one(NoticeCode::linkWithoutNode, "L", "C") +
                one(NoticeCode::linkEndUnnamed, "L") + one(NoticeCode::courseOfOneVertex, "L"));
  EXPECT_TRUE(odd.id.isNull());
  EXPECT_EQ(data(odd.course), "L");

  // The symbol of pumps cannot be read: the course is there, and it is told.
  EpaPump pump;
  pump.id = u"P";
  pump.node1 = u"A";
  pump.node2 = u"B";
  const AddedElement bare = addPump(u"Rete", {{0, 0, 0}, {4, 4, 4}}, pump, names_);
  EXPECT_EQ(told(bare.notices), one(NoticeCode::blockUnreadable, "/nowhere\\vessora\\Pump.dwg"));
  EXPECT_EQ(told(bare.warnings), one(NoticeCode::pumpWithoutDrive, "P"));
  EXPECT_TRUE(bare.id.isNull());
  EXPECT_EQ(names_.links, (std::vector<std::u16string>{u"L", u"L", u"P"}));
}

// The file gives a name 19 columns, of which the last parts it from the value behind.
TEST_F(AddJobs, NamesAndLevelsThatNoSolverReadsAreTold) {
  defineSymbols();
  const auto warned = [this](const char16_t* name, const char16_t* initial) {
    EpaTank tank;
    tank.id = name;
    tank.minLevel = u"1";
    tank.maxLevel = u"3.5";
    tank.initLevel = initial;
    return told(addTank(u"Rete", {0, 0, 0}, tank, names_).warnings);
  };
  EXPECT_EQ(warned(u"abcdefghijklmnopqr", u"1"), "");
  EXPECT_EQ(warned(u"l'[altra],\u00e8\"", u"3.5"), "");
  EXPECT_EQ(warned(u"abcdefghijklmnopqrs", u"2"),
            one(NoticeCode::nameUnreadable, "abcdefghijklmnopqrs"));
  EXPECT_EQ(warned(u"la vasca", u"2"), one(NoticeCode::nameUnreadable, "la vasca"));
  EXPECT_EQ(warned(u"[A", u"2"), one(NoticeCode::nameUnreadable, "[A"));
  EXPECT_EQ(warned(u"A;", u"0.999"),
            one(NoticeCode::nameUnreadable, "A;") + one(NoticeCode::tankLevelsDisordered, "A;"));
  EXPECT_EQ(warned(u"B", u"3.501"), one(NoticeCode::tankLevelsDisordered, "B"));
}

TEST_F(AddJobs, WhatNoLayerCanHoldLeavesTheDrawingAsItWas) {
  defineSymbols();
  acdbRegApp(app::kMaterial);
  const std::string before = bytes();
  EpaPipe pipe;
  pipe.id = u"L";
  EXPECT_EQ(told(addPipe(u"a*b", {{0, 0, 0}, {1, 1, 1}}, pipe, u"", names_).warnings),
            one(NoticeCode::elementNotDrawn, "L"));
  EpaResv reservoir;
  reservoir.id = u"S";
  EXPECT_EQ(told(addReservoir(u"a*b", {0, 0, 0}, reservoir, names_).warnings),
            one(NoticeCode::elementNotDrawn, "S"));
  EXPECT_TRUE(names_.nodes.empty() && names_.links.empty());
  saveAndReload();
  EXPECT_EQ(bytes().size(), before.size()) << "but for the next free handle";
}

}  // namespace
}  // namespace vessora
