// Names and positions of links and nodes, after random sequences of edits.
//
// A model keeps what must be true of every element. Links and nodes are tied by position alone: a
// node that changes takes the ends that lie on it, whatever they name, if its symbol stands at its
// stored height. So nodes that stand on each other share their links, an end beside a node keeps
// its name, a height that was edited by hand leaves the links behind once, and what the user erases
// leaves names that nobody has. After every edit the drawing must agree with the model.
#include <algorithm>
#include <random>

#include "module/editing/change_jobs.h"
#include "module/inp/collection.h"
#include "module/network/element_data.h"
#include "platform/format.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

using schema::Field;

struct NodeModel {
  AcDbObjectId id;
  std::u16string name;
  AcGePoint3d at;     // of the symbol
  double height = 0;  // of the attribute
  bool erased = false;
};

struct LinkModel {
  const schema::Kind* kind = nullptr;
  AcDbObjectId course, block;
  std::u16string name, ends[2];  // as the data have them: a pipe's course, else the block
  AcGePoint3dArray points;
  AcGePoint3d blockAt;
  int color = 256;
  bool courseErased = false, blockErased = false;
};

bool near(const AcGePoint3d& a, const AcGePoint3d& b) { return samePlanPoint(a, b, 0.0001); }
double planDistance(const AcGePoint3d& a, const AcGePoint3d& b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}
AcGePoint3d middle(const AcGePoint3dArray& p) {
  const std::size_t i = p.size() == 2 ? 0 : 1;
  return {(p[i].x + p[i + 1].x) / 2, (p[i].y + p[i + 1].y) / 2, (p[i].z + p[i + 1].z) / 2};
}
double meters(std::u16string_view text) { return platform::wtof(text); }

class Consistency : public DrawnNetwork, public ::testing::WithParamInterface<unsigned> {
 protected:
  // --- random choices
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  bool chance(int percent) { return below(100) < percent; }
  double height() { return below(800000) / 1000.0; }
  // In a square of some kilometres on a grid of metres, three decimals.
  AcGePoint3d place() {
    return {1684000 + below(4000000) / 1000.0, 4850000 + below(4000000) / 1000.0, 0};
  }
  std::u16string freshName(const char16_t* prefix) {
    return prefix + platform::widen(std::to_string(++counter_));
  }
  template <class List>
  auto* pick(List& list) {
    return &list[static_cast<std::size_t>(below(static_cast<int>(list.size())))];
  }

  // --- edits, each on the drawing and on the model
  void addNode() {
    NodeModel node;
    node.name = chance(5) && !nodes_.empty() ? pick(nodes_)->name : freshName(u"N");
    // Now and then onto another node, or so near that its links do not notice.
    node.at = chance(10) && !nodes_.empty() ? pick(nodes_)->at : place();
    if (chance(5)) node.at.x += 0.0003;
    node.height = node.at.z = height();
    const std::u16string text = platform::format(u"%.3lf", node.height);
    switch (below(3)) {
      case 0:
        node.id = addBlock(u"Junc", u"JUNC-Rete", node.at,
                           {{u"ID", node.name}, {u"EL", text}, {u"BD", u"1"}},
                           juncData(node.name, 0, u""));
        break;
      case 1:
        node.id = addBlock(u"Resv", u"RESV-Rete", node.at, {{u"ID", node.name}, {u"TH", text}},
                           resvData(node.name, u""));
        break;
      default:
        node.id =
            addBlock(u"Tank", u"TANK-Rete", node.at,
                     {{u"ID", node.name}, {u"EL", text}, {u"D", u"5"}}, tankData(node.name, u""));
    }
    nodes_.push_back(node);
  }

  void addLink() {
    const NodeModel *a = pick(nodes_), *b = pick(nodes_);
    LinkModel link;
    const schema::Kind* const kinds[] = {&schema::kPipe, &schema::kPipe, &schema::kValv,
                                         &schema::kPump};
    link.kind = kinds[below(4)];
    link.name = freshName(u"L");
    link.ends[0] = a->name;
    link.ends[1] = chance(5) ? u"altro" : b->name;
    link.points = {a->at, b->at};
    if (chance(5)) link.points[0].y += chance(50) ? 0.00005 : 0.00015;
    for (int inner = below(4); inner > 0; --inner) {
      link.points.insert(link.points.end() - 1, place());
    }
    const std::u16string layer = schema::layerName(link.kind->layer, u"Rete");
    if (link.kind == &schema::kPipe) {
      EpaPipe pipe;
      pipe.id = link.name;
      pipe.node1 = link.ends[0];
      pipe.node2 = link.ends[1];
      link.course = addPolyline(layer, link.points, pipeData(pipe));
    } else {
      link.course = addPolyline(layer, link.points, idData(link.name));
      link.blockAt = middle(link.points);
      link.block = addSymbol(link, layer);
    }
    links_.push_back(link);
  }

  AcDbObjectId addSymbol(const LinkModel& link, const std::u16string& layer) {
    if (link.kind == &schema::kValv) {
      EpaValv valv;
      valv.id = link.name;
      valv.node1 = link.ends[0];
      valv.node2 = link.ends[1];
      return addBlock(u"Valv", layer, link.blockAt, {{u"ID", link.name}}, valvData(valv, 1, 2));
    }
    EpaPump pump;
    pump.id = link.name;
    pump.node1 = link.ends[0];
    pump.node2 = link.ends[1];
    return addBlock(u"Pump", layer, link.blockAt, {{u"ID", link.name}}, pumpData(pump));
  }

  // As the command writes: all fields, the height with three decimals. Or a name or height alone.
  void changeNode() {
    NodeModel& node = *pick(nodes_);
    if (node.erased) return;
    const bool rename = chance(60), rise = chance(60);
    const std::u16string name = !rename      ? node.name
                                : chance(10) ? pick(nodes_)->name
                                             : freshName(u"R");
    const std::u16string text = platform::format(u"%.3lf", rise ? height() : node.height);
    auto element = readElement(u"Rete", node.id);
    ASSERT_TRUE(element);
    std::visit([&](auto& record) { record.id = name; }, element->record);
    FieldSet some{Field::id, Field::elevation, Field::head};
    if (!rise) some = {Field::id};
    if (auto* junc = std::get_if<EpaJunc>(&element->record)) junc->elev = text;
    if (auto* resv = std::get_if<EpaResv>(&element->record)) resv->head = text;
    if (auto* tank = std::get_if<EpaTank>(&element->record)) tank->elev = text;
    const bool all = chance(70);
    EXPECT_TRUE(modifyElement(u"Rete", node.id, *element, all ? FieldSet::all() : some).done());
    const bool heights = all || rise;
    drag(
        node,
        [&](LinkModel& link, int end) {
          if (heights) link.points[end ? link.points.size() - 1 : 0].z = meters(text);
          nameEnd(link, end, name);
        },
        heights);
    node.name = name;
    if (heights) node.height = node.at.z = meters(text);
  }

  void moveNodeTo(const AcGePoint3d& to) {
    NodeModel& node = *pick(nodes_);
    if (node.erased) return;
    EXPECT_TRUE(moveNode(u"Rete", node.id, to.x, to.y).done());
    drag(
        node,
        [&](LinkModel& link, int end) {
          AcGePoint3d& point = link.points[end ? link.points.size() - 1 : 0];
          point = {to.x, to.y, point.z};
        },
        true);
    node.at = {to.x, to.y, node.at.z};
  }

  // The user types another height over the attribute.
  void editHeightByHand() {
    NodeModel& node = *pick(nodes_);
    if (node.erased) return;
    const Opened<AcDbBlockReference> block(node.id, AcDb::kForWrite);
    node.height += 5;
    const std::u16string text = platform::format(u"%.3lf", node.height);
    for (const char16_t* tag : {u"EL", u"TH"}) WriteAttribute(block.get(), tag, text);
  }

  void renameLink() {
    LinkModel& link = *pick(links_);
    const bool pipe = link.kind == &schema::kPipe;
    if (pipe ? link.courseErased : link.blockErased) return;
    const AcDbObjectId id = pipe ? link.course : link.block;
    auto element = readElement(u"Rete", id);
    ASSERT_TRUE(element);
    link.name = freshName(u"Q");
    std::visit([&](auto& record) { record.id = link.name; }, element->record);
    EXPECT_TRUE(modifyElement(u"Rete", id, *element).done());
  }

  void eraseByHost() {
    if (chance(40)) {
      NodeModel& node = *pick(nodes_);
      if (!node.erased) erase(node.id);
      node.erased = true;
      return;
    }
    LinkModel& link = *pick(links_);
    const bool course = link.kind == &schema::kPipe || chance(50);
    bool& erased = course ? link.courseErased : link.blockErased;
    if (!erased) erase(course ? link.course : link.block);
    erased = true;
  }
  static void erase(AcDbObjectId id) { Opened<AcDbEntity>(id, AcDb::kForWrite)->erase(); }

  // --- the rules
  // Calls change(link, end) for the ends on a node, when the node may drag any.
  template <class Change>
  void drag(const NodeModel& node, Change change, bool moves) {
    if (std::fabs(node.at.z - node.height) >= 0.0001) return;
    for (LinkModel& link : links_) {
      if (link.courseErased) continue;
      const bool ends[] = {near(link.points.front(), node.at), near(link.points.back(), node.at)};
      if (!ends[0] && !ends[1]) continue;
      for (const int end : {0, 1}) {
        if (ends[end]) change(link, end);
      }
      link.color = 3;
      if (moves) followEnds(link);
    }
  }

  static void followEnds(LinkModel& link) {
    AcGePoint3dArray& p = link.points;
    const double whole = planDistance(p.front(), p.back());
    for (std::size_t i = 1; i + 1 < p.size(); ++i) {
      p[i].z = whole < 1e-300 ? p.front().z
                              : p.front().z + (p.back().z - p.front().z) *
                                                  planDistance(p.front(), p[i]) / whole;
    }
    if (link.kind != &schema::kPipe && !link.blockErased) link.blockAt = middle(p);
  }

  static void nameEnd(LinkModel& link, int end, const std::u16string& name) {
    if (!link.blockErased) link.ends[end] = name;
  }

  // --- the drawing
  void compare() {
    for (const NodeModel& node : nodes_) {
      if (node.erased) continue;
      EXPECT_TRUE(samePoint(position(node.id), node.at, 1e-6)) << platform::narrow(node.name);
      EXPECT_EQ(attribute(node.id, u"ID"), node.name);
      EXPECT_EQ(Chain(Opened<AcDbEntity>(node.id)->xData(kImported)).text(1), node.name);
    }
    for (const LinkModel& link : links_) compare(link);
    expectNothingHeld();
  }

  void compare(const LinkModel& link) {
    SCOPED_TRACE(platform::narrow(link.name));
    const bool pipe = link.kind == &schema::kPipe;
    if (!link.courseErased) {
      AcGePoint3dArray points;
      ReadVertices(Opened<AcDb3dPolyline>(link.course).get(), points);
      ASSERT_EQ(points.size(), link.points.size());
      for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_TRUE(samePoint(points[i], link.points[i], 1e-6)) << "vertex " << i;
      }
      EXPECT_EQ(color(link.course), link.color);
      if (pipe || !link.blockErased) {
        EXPECT_EQ(Chain(Opened<AcDbEntity>(link.course)->xData(kImported)).text(1), link.name);
      }
    }
    if (pipe ? link.courseErased : link.blockErased) return;
    const Chain data(Opened<AcDbEntity>(pipe ? link.course : link.block)->xData(kImported));
    EXPECT_EQ(textAt(data, link.kind->data, Field::node1), link.ends[0]);
    EXPECT_EQ(textAt(data, link.kind->data, Field::node2), link.ends[1]);
    if (!pipe) {
      EXPECT_TRUE(samePoint(position(link.block), link.blockAt, 1e-6));
    }
  }

  // What a user sees as consistent: ends that lie on a node name it and have its height. Nothing
  // else may be true of them once the node has been written by a command and stands alone.
  int agreeing() const {
    int count = 0;
    for (const NodeModel& node : nodes_) {
      if (node.erased) continue;
      for (const LinkModel& link : links_) {
        if (link.courseErased || link.blockErased) continue;
        for (const int end : {0, 1}) {
          const AcGePoint3d& point = end ? link.points.back() : link.points.front();
          count += near(point, node.at) && std::fabs(point.z - node.at.z) < 0.0001 &&
                   link.ends[end] == node.name;
        }
      }
    }
    return count;
  }

  void edit() {
    const int what = below(100);
    if (what < 12) return addNode();
    if (what < 30) return addLink();
    // Now and then the user takes it back.
    const bool undone = chance(10);
    const auto nodes = nodes_;
    const auto links = links_;
    const std::string before = undone ? bytes() : std::string();
    drawing().beginCommand(u"EDIT");
    change(what);
    drawing().endCommand();
    if (!undone) return;
    if (bytes() != before) drawing().undo();
    EXPECT_EQ(bytes(), before);
    nodes_ = nodes;
    links_ = links;
  }

  void change(int what) {
    if (what < 60) return changeNode();
    if (what < 80) return moveNodeTo(place());
    if (what < 86) return editHeightByHand();
    if (what < 94) return renameLink();
    eraseByHost();
  }

  std::mt19937 random_{GetParam()};
  int counter_ = 0;
  std::vector<NodeModel> nodes_;
  std::vector<LinkModel> links_;
};

TEST_P(Consistency, LinksAndNodesAgreeAfterEveryEdit) {
  for (int i = 0; i < 12; ++i) addNode();
  for (int i = 0; i < 20; ++i) addLink();
  for (int i = 0; i < 250; ++i) {
    edit();
    compare();
    if (HasFailure()) FAIL() << "edit " << i;
  }
  EXPECT_GT(agreeing(), 20);

  // And so it comes back from a file, into what export reads.
  saveAndReload();
  EpaNetwork network;
  Notices notices;
  CollectNetwork(u"Rete", network, notices);
  std::vector<std::u16string> collected, expected;
  const auto row = [](const auto& link) {
    return link.id.str() + u" " + link.node1.str() + u" " + link.node2.str();
  };
  for (const EpaPipe& pipe : network.pipes) collected.push_back(row(pipe));
  for (const EpaValv& valv : network.valves) collected.push_back(row(valv));
  for (const EpaPump& pump : network.pumps) collected.push_back(row(pump));
  for (const LinkModel& link : links_) {
    if (link.kind == &schema::kPipe ? link.courseErased : link.blockErased) continue;
    expected.push_back(link.name + u" " + link.ends[0] + u" " + link.ends[1]);
  }
  std::sort(collected.begin(), collected.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(collected, expected);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Consistency, ::testing::Range(1U, 9U));

}  // namespace
}  // namespace vessora
