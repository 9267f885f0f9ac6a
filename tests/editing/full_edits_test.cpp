// Networks that were imported in full, after random sequences of edits by jobs: the exported file
// says what a model says, in the file's units, and rows that no edit concerns are the same bytes.
#include <map>
#include <random>
#include <sstream>

#include "cad/editor/variables.h"
#include "module/editing/add_jobs.h"
#include "module/editing/change_jobs.h"
#include "module/editing/mend_jobs.h"
#include "module/editing/table_jobs.h"
#include "module/host/command_span.h"
#include "module/inp/full_export.h"
#include "module/inp/full_import.h"
#include "module/network/element_data.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

using schema::Field;

// %s: the units of the flow. Ranges in [STATUS], categories, controls and rules.
constexpr char kFile[] =
    "[TITLE]\r\nA network with ranges\r\n[JUNCTIONS]\r\n"
    " 1 100 5 day\r\n 2\t98.5\t0\r\n 3 97 2\r\n 4 96 1.5 night ; last\r\n"
    "[RESERVOIRS]\r\n L 150 day\r\n[TANKS]\r\n T 140 5 1 9 30 0\r\n"
    "[PIPES]\r\n 1 L 1 900 12 120 0 Open\r\n 2 1 2 800 10 110\r\n 3 2 3 700 8 100 0.5 CV\r\n"
    " 9 3 4 650 8 100\r\n 10 4 T 1000 6 90 0 Closed\r\n"
    "[PUMPS]\r\n U L 2 HEAD c SPEED 1.1 PATTERN night\r\n"
    "[VALVES]\r\n V 1 3 6 PRV 40 0\r\n W 2 4 6 FCV 12 0.1\r\n"
    "[DEMANDS]\r\n 3 1 day ;a\r\n 3 2 night ;b\r\n[STATUS]\r\n 9 10 Closed\r\n U 0.9\r\n V 35\r\n"
    "[PATTERNS]\r\n day 1 1.2\r\n day 0.8\r\n night 0.5\r\n[CURVES]\r\n c 100 50\r\n"
    "[CONTROLS]\r\nLINK 2 CLOSED IF NODE 3 ABOVE 60\r\nLINK V 30 AT TIME 5\r\n"
    "[RULES]\r\nRULE r\r\nIF TANK T LEVEL > 5\r\nTHEN PUMP U STATUS IS CLOSED\r\n"
    "AND VALVE W SETTING IS 9\r\n"
    "[OPTIONS]\r\n Units %s\r\n Headloss H-W\r\n Pattern day\r\n"
    "[COORDINATES]\r\n 1 0 0\r\n 2 100 0\r\n 3 100 100\r\n 4 0 100\r\n L -50 0\r\n T 0 200\r\n"
    "[VERTICES]\r\n 2 50 10\r\n[END]\r\n";

struct Thing {
  AcDbObjectId id;
  bool node = false;
  std::string kept;  // empty: not of the text
  std::u16string name;
  std::map<Field, double> values;
  std::string ends[2];  // kept names of its nodes
  bool gone = false;
};

class FullEdits : public DrawnNetwork, public ::testing::WithParamInterface<unsigned> {
 protected:
  void SetUp() override {
    DrawnNetwork::SetUp();
    cad::Session::instance().setSymbol(u"hn-cpath", VESSORA_ROOT_DIRECTORY u"/");
    cad::setVariable(u"VSINPMODE", u"FULL");
    constexpr const char* kUnits[] = {"GPM", "LPS", "CMH", "IMGD"};
    char text[2000];
    std::snprintf(text, sizeof text, kFile, kUnits[GetParam() % 4]);
    text_ = text;
    const FullFile file(text_);
    ASSERT_TRUE(file.network.problems.empty());
    const CommandSpan span;
    ASSERT_EQ(drawFullFile(file, u"Rete", 1).drawn(), 14);
    takeModel(FullForm(file.network));
  }
  void TearDown() override {
    cad::setVariable(u"VSINPMODE", u"CLASSIC");
    DrawnNetwork::TearDown();
  }

  // --- the model
  template <class Record>
  void addThing(const Record& record, bool node, std::string_view kept) {
    Thing thing;
    thing.node = node;
    thing.kept = kept;
    thing.name = record.id.str();
    for (const schema::Row& row : kindOf<Record>().data.rows) {
      const auto number = platform::parseReal(textOf(record, row.field));
      if (isQuantity(row.field) && number) thing.values[row.field] = *number;
    }
    things_.push_back(thing);
  }
  static bool isQuantity(Field field) {
    for (const Field own : {Field::elevation, Field::head, Field::demand, Field::diameter,
                            Field::length, Field::roughness, Field::setting, Field::speed}) {
      if (field == own) return true;
    }
    return false;
  }
  // Calls visit(record) with the record of an element of a file.
  template <class Visit>
  static void withRecord(const FullForm& form, bool node, std::uint32_t index, Visit visit) {
    const auto fill = [&](auto record) {
      form.fill(index, record);
      visit(record);
    };
    if (node) {
      switch (form.network().nodes[index].kind) {
        case epanet::NodeKind::junction:
          return fill(EpaJunc());
        case epanet::NodeKind::reservoir:
          return fill(EpaResv());
        default:
          return fill(EpaTank());
      }
    }
    switch (form.network().links[index].kind) {
      case epanet::LinkKind::pipe:
        return fill(EpaPipe());
      case epanet::LinkKind::pump:
        return fill(EpaPump());
      default:
        return fill(EpaValv());
    }
  }
  void takeModel(const FullForm& form) {
    const epanet::Network& n = form.network();
    for (std::uint32_t i = 0; i < n.nodes.size(); ++i) {
      withRecord(form, true, i, [&](const auto& r) { addThing(r, true, n.nodes[i].id); });
    }
    for (std::uint32_t i = 0; i < n.links.size(); ++i) {
      withRecord(form, false, i, [&](const auto& r) { addThing(r, false, n.links[i].id); });
      things_.back().ends[0] = n.nodes[n.links[i].node1.index].id;
      things_.back().ends[1] = n.nodes[n.links[i].node2.index].id;
    }
    for (const epanet::Pattern& pattern : n.patterns) {
      std::vector<double>& values = patterns_[platform::widen(pattern.id)];
      for (const epanet::Number& value : pattern.multipliers) values.push_back(value.value);
    }
    for (const AcDbObjectId id : SelectionSet(u"_X", acutBuildList(1001, app::kKept, RTNONE))) {
      const auto element = readElement(u"Rete", id);
      if (!element) continue;  // settings, courses
      const bool node = element->record.index() < 3;
      const std::u16string name =
          std::visit([](const auto& r) { return r.id.str(); }, element->record);
      for (Thing& thing : things_) {
        if (thing.node == node && thing.name == name && !name.empty()) thing.id = id;
      }
    }
  }

  const Thing& thing(bool node, std::string_view kept) const {
    return *std::find_if(things_.begin(), things_.end(),
                         [&](const Thing& own) { return own.node == node && own.kept == kept; });
  }

  // --- edits
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  double number() { return (1 + below(900000)) / 1000.0 + below(1000) * 1e-9; }
  Thing* pick(bool links) {
    for (;;) {
      Thing& thing = things_[static_cast<std::size_t>(below(static_cast<int>(things_.size())))];
      if (!thing.gone && !(links && thing.node)) return &thing;
    }
  }
  std::u16string freshName() { return u"Q" + platform::widen(std::to_string(++counter_)); }
  void touch(const Thing& thing) { touched_.push_back(thing.kept); }

  // Sets a field of a record, which the record has.
  static void put(DrawnElement& element, Field field, const wide50& text) {
    if (auto* junc = std::get_if<EpaJunc>(&element.record)) {
      (field == Field::elevation ? junc->elev : junc->demand) = text;
    } else if (auto* resv = std::get_if<EpaResv>(&element.record)) {
      resv->head = text;
    } else if (auto* tank = std::get_if<EpaTank>(&element.record)) {
      (field == Field::elevation ? tank->elev : tank->diameter) = text;
    } else if (auto* pipe = std::get_if<EpaPipe>(&element.record)) {
      (field == Field::length     ? pipe->length
       : field == Field::diameter ? pipe->diameter
                                  : pipe->roughness) = text;
    } else if (auto* pump = std::get_if<EpaPump>(&element.record)) {
      pump->speed = text;
    } else if (auto* valve = std::get_if<EpaValv>(&element.record)) {
      (field == Field::diameter ? valve->diameter : valve->setting) = text;
    }
  }

  void changeValue() {
    Thing& thing = *pick(false);
    auto at = thing.values.begin();
    std::advance(at, below(static_cast<int>(thing.values.size())));
    auto element = readElement(u"Rete", thing.id);
    ASSERT_TRUE(element);
    at->second = number();
    put(*element, at->first, shortest(at->second));
    EXPECT_TRUE(modifyElement(u"Rete", thing.id, *element).done());
    touch(thing);
  }
  void rename() {
    Thing& thing = *pick(false);
    auto element = readElement(u"Rete", thing.id);
    ASSERT_TRUE(element);
    // Now and then back to what the text has.
    const std::u16string back = platform::widen(thing.kept);
    thing.name = thing.kept.empty() || below(4) != 0 ? freshName() : back;
    std::visit([&](auto& record) { record.id = thing.name; }, element->record);
    EXPECT_TRUE(modifyElement(u"Rete", thing.id, *element).done());
    touch(thing);
  }
  void erase() {
    Thing& thing = *pick(true);
    EXPECT_TRUE(deleteElement(u"Rete", thing.id).done());
    thing.gone = true;
    touch(thing);
  }
  void add() {
    ElementNames names = namesOfNetwork(u"Rete");
    Thing thing;
    thing.node = true;
    EpaJunc junction;
    thing.name = freshName();
    junction.id = thing.name;
    junction.elev = shortest(thing.values[Field::elevation] = number());
    junction.demand = shortest(thing.values[Field::demand] = number());
    thing.id = addJunction(u"Rete", {number(), number(), 0}, junction, names).id;
    things_.push_back(thing);
  }
  void changePattern() {
    auto at = patterns_.begin();
    std::advance(at, below(static_cast<int>(patterns_.size())));
    EpaPattern pattern;
    const std::u16string old = at->first;
    std::vector<double> values = at->second;
    values[static_cast<std::size_t>(below(static_cast<int>(values.size())))] = number();
    pattern.id = below(2) != 0 ? old : freshName();
    pattern.multipliers = values;
    replacePattern(u"Rete", pattern, old);
    patterns_.erase(old);
    patterns_[pattern.id.str()] = values;
    touched_.insert(touched_.end(), {"day", "night"});
  }
  // Handles that were given stay given.
  std::string stateNow() const {
    std::string text = bytes();
    const std::size_t at = text.find("$HANDSEED");
    return text.erase(at, text.find("$", at + 1) - at);
  }
  void edit() {
    const auto things = things_;
    const auto patterns = patterns_;
    const auto touched = touched_;
    const bool undone = below(8) == 0;
    const std::string before = undone ? stateNow() : std::string();
    drawing().beginCommand(u"EDIT");
    const int what = below(100);
    what < 45   ? changeValue()
    : what < 70 ? rename()
    : what < 75 ? erase()
    : what < 82 ? add()
                : changePattern();
    drawing().endCommand();
    if (!undone || stateNow() == before) return;
    drawing().undo();
    EXPECT_EQ(stateNow(), before);
    things_ = things;
    patterns_ = patterns;
    touched_ = touched;
  }

  // --- the file
  static std::string exported(std::u16string_view network = u"Rete") {
    ExportRequest request;
    request.network = network;
    ExportResult result;
    return fullText(request, result).value_or("");
  }

  void compare(const std::string& text) {
    const FullFile file(text);
    for (const epanet::Problem& problem : file.network.problems) {
      // As nodes are when they are new, or their links gone; a curve loses its pump.
      if (problem.fault == epanet::Fault::unconnectedNode) continue;
      if (problem.fault == epanet::Fault::unusedCurve) continue;
      ADD_FAILURE() << "line " << problem.line << " of\n" << text;
      return;
    }
    const FullForm form(file.network);
    std::size_t nodes = 0, links = 0;
    for (const Thing& thing : things_) {
      if (thing.gone) continue;
      ++(thing.node ? nodes : links);
      compare(form, thing);
    }
    EXPECT_EQ(file.network.nodes.size(), nodes);
    EXPECT_EQ(file.network.links.size(), links);
    EXPECT_EQ(file.network.patterns.size(), patterns_.size());
    for (const auto& [name, values] : patterns_) {
      const std::uint32_t index = file.network.findPattern(platform::narrow(name));
      ASSERT_NE(index, epanet::kNone) << platform::narrow(name);
      EXPECT_EQ(form.pattern(index).multipliers, values) << platform::narrow(name);
    }
    compareRows(text);
  }

  void compare(const FullForm& form, const Thing& thing) {
    SCOPED_TRACE(platform::narrow(thing.name));
    const std::string id = platform::narrow(thing.name);
    const std::uint32_t index =
        thing.node ? form.network().findNode(id) : form.network().findLink(id);
    ASSERT_NE(index, epanet::kNone);
    withRecord(form, thing.node, index, [&](const auto& record) {
      for (const auto& [field, value] : thing.values) {
        const double now = platform::wtof(textOf(record, field));
        EXPECT_NEAR(now, value, 1e-8 * value) << "field " << static_cast<int>(field);
      }
    });
    if (thing.node) return;
    const epanet::Link& link = form.network().links[index];
    EXPECT_EQ(link.node1.index, form.nodeKeptAs(nameOf(thing.ends[0])));
    EXPECT_EQ(link.node2.index, form.nodeKeptAs(nameOf(thing.ends[1])));
  }
  std::u16string nameOf(const std::string& kept) const {
    for (const Thing& thing : things_) {
      if (thing.node && thing.kept == kept) return thing.name;
    }
    return {};
  }

  // Rows without a word of what was edited.
  void compareRows(const std::string& text) const {
    std::istringstream rows(text_);
    for (std::string row; std::getline(rows, row);) {
      std::istringstream words(row);
      bool touched = false;
      for (std::string word; words >> word;) {
        touched |= std::find(touched_.begin(), touched_.end(), word) != touched_.end();
      }
      if (!touched) {
        EXPECT_NE(text.find(row + "\n"), text.npos) << row;
      }
    }
  }

  std::mt19937 random_{GetParam()};
  std::string text_;
  int counter_ = 0;
  std::vector<Thing> things_;
  std::map<std::u16string, std::vector<double>> patterns_;
  std::vector<std::string> touched_;  // ids and patterns of the text
};

TEST_P(FullEdits, TheFileSaysWhatWasEditedAndIsTheSameElsewhere) {
  SCOPED_TRACE("seed " + std::to_string(GetParam()));
  EXPECT_EQ(exported(), text_);
  for (int i = 0; i < 60; ++i) {
    edit();
    compare(exported());
    if (HasFailure()) FAIL() << "edit " << i;
  }
  const std::string before = exported();
  EXPECT_TRUE(mendNames(u"Rete").copies.empty());
  EXPECT_EQ(exported(), before) << "there is nothing to mend";
  saveAndReload();
  EXPECT_EQ(exported(), before);
}

class FullEditing : public FullEdits {};

// A junction and the pipe to it, copied by hand beside their originals, names and ties included.
TEST_P(FullEditing, CopiesGetTheNamesThatTheFileGivesThem) {
  const EpaJunc junction = std::get<EpaJunc>(readElement(u"Rete", thing(true, "2").id)->record);
  const AcDbObjectId node = addBlock(u"Junc", u"JUNC-Rete", {300, 0, 0},
                                     {{u"ID", u"2"}, {u"EL", junction.elev.str()}, {u"BD", u"0"}},
                                     withTie(juncData(u"2", 0, u""), u"2"));
  EpaPipe pipe = std::get<EpaPipe>(readElement(u"Rete", thing(false, "2").id)->record);
  const AcDbObjectId link = addPolyline(u"PIPE-Rete", {{0, 0, 0}, {250, 10, 0}, {300, 0, 0}},
                                        withTie(pipeData(pipe), u"2"));
  const std::string file = exported();
  const MendResult mended = mendNames(u"Rete");
  ASSERT_EQ(mended.copies.size(), 2U);
  EXPECT_EQ(attribute(node, u"ID"), u"2-2");
  pipe = std::get<EpaPipe>(readElement(u"Rete", link)->record);
  EXPECT_EQ(pipe.id.str() + pipe.node1.str() + pipe.node2.str(), u"2-212-2");
  EXPECT_EQ(exported(), file) << "the drawing has what the file had";
  EXPECT_TRUE(mendNames(u"Rete").copies.empty());
  EXPECT_NE(file.find("\n 2-2 1"), file.npos) << file;
}

// A copy that is renamed by the command is no rename of its original.
TEST_P(FullEditing, RenamingACopyLeavesTheOriginalAlone) {
  const AcDbObjectId node =
      addBlock(u"Junc", u"JUNC-Rete", {300, 0, 0}, {{u"ID", u"2"}, {u"EL", u"7"}, {u"BD", u"0"}},
               withTie(juncData(u"2", 0, u""), u"2"));
  auto element = readElement(u"Rete", node);
  std::get<EpaJunc>(element->record).id = u"copia";
  EXPECT_TRUE(modifyElement(u"Rete", node, *element).done());
  const std::string file = exported();
  for (const char* row : {"\n 2\t98.5\t0\r", "\n 2 1 2 800 10 110\r", "\n copia "}) {
    EXPECT_NE(file.find(row), file.npos) << row << file;
  }
}

// A status comes back in the words of the solver, whatever the dialogs call it.
TEST_P(FullEditing, StatusGoesRound) {
  for (const char16_t* status : {u"Close", u"Open", u"CV", u"Closed"}) {
    auto element = readElement(u"Rete", thing(false, "1").id);
    std::get<EpaPipe>(element->record).status = status;
    EXPECT_TRUE(modifyElement(u"Rete", thing(false, "1").id, *element).done());
    const FullFile file(exported());
    EpaPipe pipe;
    FullForm(file.network).fill(file.network.findLink("1"), pipe);
    EXPECT_EQ(pipe.status.str(), status == std::u16string(u"Close") ? u"Closed" : status);
  }
  for (const char16_t* status : {u"Closed", u"Open", u"None"}) {
    auto element = readElement(u"Rete", thing(false, "V").id);
    std::get<EpaValv>(element->record).status = status;
    EXPECT_TRUE(modifyElement(u"Rete", thing(false, "V").id, *element).done());
    const FullFile file(exported());
    EpaValv valve;
    FullForm(file.network).fill(file.network.findLink("V"), valve);
    EXPECT_EQ(valve.status.str(), status);
  }
}

TEST_P(FullEditing, ARenameReachesWhoNamesTheNodeAndNobodyElse) {
  // Pipe 3 does not lie on node 3 any more; a node of its own stands on node 3, with a pipe.
  {
    const Opened<AcDb3dPolyline> pipe(thing(false, "3").id, AcDb::kForWrite);
    RewritePolyline({{100, 0, 0}, {130, 100, 0}}, pipe.get(), 256, u"", nullptr);
  }
  ElementNames names = namesOfNetwork(u"Rete");
  EpaJunc twin;
  twin.id = u"twin";
  addJunction(u"Rete", {100, 100, 0}, twin, names);
  EpaPipe own;
  own.id = u"own";
  own.node1 = u"1";
  own.node2 = u"twin";
  const AcDbObjectId other = addPipe(u"Rete", {{0, 0, 0}, {100, 100, 0}}, own, u"", names).id;
  auto element = readElement(u"Rete", thing(true, "3").id);
  std::get<EpaJunc>(element->record).id = u"tre";
  EXPECT_TRUE(modifyElement(u"Rete", thing(true, "3").id, *element).warnings.empty());
  const auto endOf = [](AcDbObjectId id) {
    return std::get<EpaPipe>(readElement(u"Rete", id)->record).node2.str();
  };
  EXPECT_EQ(endOf(thing(false, "3").id), u"tre");
  EXPECT_EQ(endOf(other), u"twin");
  EXPECT_NE(exported().find("\nLINK 2 CLOSED IF NODE tre ABOVE"), std::string::npos);
}

TEST_P(FullEditing, PatternsAndCurvesOfAnotherNetworkStay) {
  {
    const CommandSpan span;
    drawFullFile(FullFile(text_), u"Altra", 1);
  }
  EpaPattern pattern;
  pattern.id = u"giorno";
  pattern.multipliers = {1, 2};
  EXPECT_TRUE(replacePattern(u"Rete", pattern, u"day").warnings.empty());
  EXPECT_EQ(deletePattern(u"Rete", u"night").warnings.size(), 1U) << "who names it";
  EXPECT_EQ(deleteCurve(u"Rete", u"c").warnings.size(), 1U);
  EXPECT_EQ(exported(u"Altra"), text_);
  const std::string file = exported();
  for (const char* row :
       {"\n L 150 giorno\r", "\n giorno 1 2\r", "\n Pattern giorno\r", "\n 3 1 giorno ;a\r"}) {
    EXPECT_NE(file.find(row), file.npos) << row << file;
  }
  for (const char* gone : {"day", "night", "\n c 100"}) {
    EXPECT_EQ(file.find(gone), file.npos) << gone << file;
  }
  // What has the name of a deleted one afterwards is new.
  pattern.id = u"night";
  replacePattern(u"Rete", pattern, u"giorno");
  EXPECT_NE(exported().find("\n L 150 night\r"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Units, FullEditing, ::testing::Values(4U, 5U));
INSTANTIATE_TEST_SUITE_P(Seeds, FullEdits, ::testing::Range(1U, 13U));

}  // namespace
}  // namespace vessora
