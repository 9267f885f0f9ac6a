// A file imported in full, edited as other programs edit drawings, and exported again.
#pragma once

#include <map>
#include <sstream>

#include "epanet/units.h"
#include "module/host/command_span.h"
#include "module/inp/full_compare.h"
#include "module/inp/full_export.h"
#include "module/inp/full_import.h"
#include "module/network/element_data.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/settings_store.h"
#include "tests/network/network_testing.h"

namespace vessora {

// A network that has every kind of row, values in more than one place, and what names them.
inline constexpr const char* kTown = R"([TITLE]
Town

[JUNCTIONS]
;ID	Elev	Demand	Pattern
 J1	100	50	day	;
 J2	90	20
 J3	80	0
 J4	70

[RESERVOIRS]
 R1	200	head

[TANKS]
 T1	150	10	5	20	50	0	vol
 T2	150	10	5	20	50

[PIPES]
 P1	J1	J2	1000	12	120	0.5	Open
 P2	J2	J3	500	8	110	CV
 P3	J3	J4
 P4	J4	T1	100	6	100	0	Closed
 P5	T2	J4	100	6	100	Open

[PUMPS]
 U1	R1	J1	HEAD lift SPEED 1.2 PATTERN day
 U2	R1	J2	POWER 20
 U3	R1	J3	HEAD lift

[VALVES]
 V1	J1	J3	6	PRV	60	1
 V2	J2	J4	6	FCV	100
 V3	J1	J4	6	GPV	loss
 V4	J3	J2	6	TCV	10	0

[DEMANDS]
 J2	30	day
 J2	10	head
 J3	0

[STATUS]
 P5	Closed
 U3	0.9
 V2	200
 V4	Closed
 U1	U2	Open

[PATTERNS]
 day	1	2	3
 day	4
 head	1	1.1

[CURVES]
 lift	100	50
 vol	0	0
 vol	20	40000
 loss	10	1.23456789012
 loss	100	5
 eff	100	70

[CONTROLS]
 LINK P1 CLOSED IF NODE T1 ABOVE 18

[RULES]
RULE 1
IF TANK T2 LEVEL BELOW 6
THEN PUMP U2 STATUS IS OPEN

[EMITTERS]
 J3	1.5

[QUALITY]
 J1	0.5
 J2	J4	0.3

[SOURCES]
 J4	CONCEN	1.2	day

[MIXING]
 T1	2COMP	0.5

[REACTIONS]
 Wall	P1	-0.5

[ENERGY]
 Global Efficiency	75
 Pump	U1	Efficiency	eff
 Pump	U1	Price	0.12

[TAGS]
 NODE	J4	far

[REPORT]
 Nodes	J1 J4
 Links	P4

[TIMES]
 Duration	24:00

[OPTIONS]
 Units	GPM
 Headloss	H-W
 Quality	Trace R1
 Pattern	day

[COORDINATES]
 J1	0	0
 J2	100	0
 J3	100	100
 J4	0	100
 R1	-100	0
 T1	0	200

[VERTICES]
 P1	50	10
 P1	60	10

[LABELS]
 1	2	"a label"	J4

[END]
)";

// Pairs of lines that come and go, blanks squeezed: "-P1 J1\n+P1 J2\n".
inline std::string changedLines(const std::string& before, const std::string& after) {
  const auto lines = [](const std::string& text) {
    std::vector<std::string> all(1);
    for (const char c : text) {
      if (c == '\n') {
        all.emplace_back();
      } else if (c == '\t' || c == ' ') {
        if (!all.back().empty() && all.back().back() != ' ') all.back() += ' ';
      } else if (c != '\r') {
        all.back() += c;
      }
    }
    return all;
  };
  const std::vector<std::string> a = lines(before), b = lines(after);
  std::vector<std::vector<int>> same(a.size() + 1, std::vector<int>(b.size() + 1));
  for (std::size_t i = a.size(); i-- > 0;) {
    for (std::size_t j = b.size(); j-- > 0;) {
      same[i][j] = a[i] == b[j] ? same[i + 1][j + 1] + 1 : std::max(same[i + 1][j], same[i][j + 1]);
    }
  }
  std::string out;
  for (std::size_t i = 0, j = 0; i < a.size() || j < b.size();) {
    if (i < a.size() && j < b.size() && a[i] == b[j]) {
      ++i, ++j;
    } else if (i < a.size() && (j == b.size() || same[i + 1][j] >= same[i][j + 1])) {
      out += "-" + a[i++] + "\n";
    } else {
      out += "+" + b[j++] + "\n";
    }
  }
  return out;
}

class FullNetwork : public DrawnNetwork {
 protected:
  void SetUp() override {
    DrawnNetwork::SetUp();
    cad::Session::instance().setSymbol(u"hn-cpath",
                                       platform::widen(VESSORA_ROOT_DIRECTORY) + u"\\");
  }

  void import(const std::string& text) {
    const CommandSpan span;
    const FullFile file(text);
    const ImportResult result = drawFullFile(file, u"Rete", 1);
    for (const DrawnKind& kind : result.kinds) EXPECT_TRUE(kind.notices.empty());
  }
  // The drawing's text; what it says beside stands in `said` as "code subject other; ".
  std::string exported(bool rewrite = false) {
    const CommandSpan span;
    ExportResult result;
    ExportRequest request{.network = u"Rete", .path = {}, .csvPath = {}};
    request.rewrite = rewrite;
    const auto text = fullText(request, result);
    said.clear();
    for (const Notice& n : result.notices) {
      said += wordOf(n.code) + " " + platform::narrow(n.subject) + " " + platform::narrow(n.other) +
              "; ";
    }
    return text.value_or("nothing");
  }
  // What the drawing says otherwise than a text, elements known by their names: how many things.
  static std::string otherwise(const std::string& text) {
    const KeptFile file(text);
    const Comparison found = compareNetwork(u"Rete", file.network, Match::byName);
    std::string all;
    for (const ChangedElement& element : found.changed) {
      const bool node = element.place || element.kind->layer[0] == u'J' ||
                        element.kind->layer[0] == u'R' || element.kind->layer[0] == u'T';
      all += node ? file.network.nodes[element.index].id : file.network.links[element.index].id;
      for (const ChangedField& field : element.fields) {
        all += " " + platform::narrow(field.was) + ">" + platform::narrow(field.now);
      }
      all += element.place || element.vertices ? " place; " : "; ";
    }
    for (const NewElement& element : found.added) all += "new " + platform::narrow(element.name);
    for (const auto& pattern : found.patterns) all += pattern.now ? "pattern; " : "no pattern; ";
    for (const auto& curve : found.curves) all += curve.now ? "curve; " : "no curve; ";
    for (const ChangedSetting& own : found.settings) all += settingName(own.option) + "; ";
    return all + std::string(found.goneNodes.size() + found.goneLinks.size(), '-');
  }

  // --- edits: "J1 elevation=12", "J1 at=1,2", "P1 course=1,2 3,4", "J1 erased", "J1 copied=5,5",
  // "J1 called=J9", "J1 untied", "day values=1 2", "lift points=1,2", "lift last=1,2", "option
  // duration=48:00". "data:" or "attribute:" before a field changes one of two copies alone.
  // Several edits divided by ";".
  void edit(const std::string& edits) {
    const CommandSpan span;
    std::istringstream all(edits);
    for (std::string one; std::getline(all, one, ';');) {
      const std::size_t from = one.find_first_not_of(' '), blank = one.find(' ', from);
      const std::size_t equals = one.find('=');
      const std::string what = one.substr(blank + 1, equals - blank - 1);
      const std::string value = equals == one.npos ? "" : one.substr(equals + 1);
      editOne(one.substr(from, blank - from), what, value);
    }
  }
  std::string said;

 private:
  static std::string wordOf(NoticeCode code) {
    switch (code) {
      case NoticeCode::elementGone:
        return "gone";
      case NoticeCode::actionGone:
        return "comment";
      case NoticeCode::endUnknown:
        return "end";
      case NoticeCode::demandScaled:
        return "scaled";
      case NoticeCode::elementCopied:
        return "copied";
      case NoticeCode::nameByHand:
        return "by hand";
      case NoticeCode::seriesGone:
        return "series gone";
      case NoticeCode::patternInUse:
      case NoticeCode::curveInUse:
        return "in use";
      case NoticeCode::courseGone:
        return "course gone";
      case NoticeCode::nothingLeft:
        return "nothing left";
      case NoticeCode::notNumber:
        return "no number";
      case NoticeCode::nameNotInEncoding:
        return "letters";
      default:
        return "notice " + std::to_string(static_cast<int>(code));
    }
  }
  static schema::Field fieldOf(const std::string& name) {
    using schema::Field;
    const std::map<std::string, Field> fields = {{"elevation", Field::elevation},
                                                 {"head", Field::head},
                                                 {"demand", Field::demand},
                                                 {"emitter", Field::emitter},
                                                 {"pattern", Field::pattern},
                                                 {"init", Field::initLevel},
                                                 {"min", Field::minLevel},
                                                 {"max", Field::maxLevel},
                                                 {"diameter", Field::diameter},
                                                 {"minvol", Field::minVolume},
                                                 {"volcurve", Field::volumeCurve},
                                                 {"length", Field::length},
                                                 {"roughness", Field::roughness},
                                                 {"loss", Field::minorLoss},
                                                 {"status", Field::status},
                                                 {"type", Field::type},
                                                 {"setting", Field::setting},
                                                 {"headcurve", Field::headCurve},
                                                 {"power", Field::power},
                                                 {"speed", Field::speed},
                                                 {"speedpattern", Field::speedPattern},
                                                 {"efficiency", Field::efficiencyCurve},
                                                 {"price", Field::price},
                                                 {"pricepattern", Field::pricePattern},
                                                 {"node1", Field::node1},
                                                 {"node2", Field::node2},
                                                 {"id", Field::id}};
    EXPECT_TRUE(fields.contains(name)) << name;
    return fields.at(name);
  }

  struct Found {
    AcDbObjectId id;
    const schema::Kind* kind = nullptr;
    AcDbObjectId course;  // of a pump or valve
  };
  static Found find(const std::string& name) {
    Found found;
    DrawnEntities(u"Rete").visitBeside([&](const DrawnEntity& entity) {
      if (!entity.tie || *entity.tie != platform::widen(name)) return;
      (entity.isCourse ? found.course : found.id) = entity.id;
      if (!entity.isCourse) found.kind = entity.kind;
    });
    EXPECT_NE(found.kind, nullptr) << name;
    return found;
  }

  static std::vector<double> numbers(std::string text) {
    for (char& c : text) c = c == ',' ? ' ' : c;
    std::istringstream in(text);
    std::vector<double> all;
    for (double x = 0; in >> x;) all.push_back(x);
    return all;
  }

  void editOne(const std::string& name, const std::string& what, const std::string& value) {
    const std::u16string id = platform::widen(name);
    const std::vector<double> n = numbers(value);
    if (name == "option") return setOption(what, platform::widen(value));
    if (what == "values") {
      DeletePattern(id, u"Rete");
      EpaPattern pattern;
      pattern.id = id;
      pattern.multipliers = n;
      AddPattern(pattern, u"Rete");
    } else if (what == "points") {
      setCurve(id, n);
    } else if (what == "last") {
      setCurve(id, n, true);
    } else if (what == "no pattern") {
      DeletePattern(id, u"Rete");
    } else if (what == "erased") {
      const Found found = find(name);
      for (const AcDbObjectId part : {found.id, found.course}) {
        if (!part.isNull()) Opened<AcDbEntity>(part, AcDb::kForWrite)->erase(true);
      }
    } else if (what == "untied") {
      const Found found = find(name);
      for (const AcDbObjectId part : {found.id, found.course}) {
        if (!part.isNull()) ClearXData(Opened<AcDbEntity>(part, AcDb::kForWrite).get(), app::kKept);
      }
    } else if (what == "at") {
      const Opened<AcDbBlockReference> block(find(name).id, AcDb::kForWrite);
      block->setPosition({n[0], n[1], n.size() > 2 ? n[2] : block->position().z});
    } else if (what == "course") {
      bend(find(name), n);
    } else if (what == "copied") {
      copy(find(name), n[0], n[1]);
    } else if (what == "called") {
      call(id, platform::widen(value));
    } else {
      setField(find(name), what, platform::widen(value));
    }
  }

  static void setField(const Found& found, std::string what, const std::u16string& value) {
    const bool data = !what.starts_with("attribute:"), attribute = !what.starts_with("data:");
    if (const std::size_t colon = what.find(':'); colon != what.npos) what = what.substr(colon + 1);
    const schema::Field field = fieldOf(what);
    const Opened<AcDbEntity> entity(found.id, AcDb::kForWrite);
    const Chain chain(entity->xData(app::kImport));
    resbuf* const item = chain.item(schema::placeOf(found.kind->data, field));
    if (data && schema::placeOf(found.kind->data, field) != 0) {
      if (acutKindOf(item->restype) == RbKind::text) {
        setTextItem(item, value);
      } else {
        item->resval.rreal = platform::wtof(value);
      }
      entity->setXData(chain.get());
    }
    const std::u16string_view tag = schema::tagOf(*found.kind, field);
    if (attribute && !tag.empty()) WriteAttribute(entity.as<AcDbBlockReference>(), tag, value);
  }

  void bend(const Found& found, const std::vector<double>& n) {
    const AcDbObjectId id = found.course.isNull() ? found.id : found.course;
    AcGePoint3dArray points;
    {
      const Opened<AcDb3dPolyline> line(id);
      ReadVertices(line.get(), points);
    }
    AcGePoint3dArray bent{points.front()};
    for (std::size_t i = 0; i + 1 < n.size(); i += 2) bent.emplace_back(n[i], n[i + 1], 0);
    bent.push_back(points.back());
    duplicate(id, bent);
    Opened<AcDbEntity>(id, AcDb::kForWrite)->erase(true);
  }
  void duplicate(AcDbObjectId id, const AcGePoint3dArray& points) {
    const Opened<AcDbEntity> line(id);
    const Chain data = withTie(Chain(line->xData(app::kImport)),
                               Chain(line->xData(app::kKept)).text(schema::kKeptPlace));
    addPolyline(line->layer(), points, data);
  }
  void copy(const Found& found, double dx, double dy) {
    for (const AcDbObjectId id : {found.id, found.course}) {
      if (id.isNull()) continue;
      AcGePoint3dArray points;
      if (const Opened<AcDb3dPolyline> line(id); line) ReadVertices(line.get(), points);
      for (AcGePoint3d& p : points) p = {p.x + dx, p.y + dy, p.z};
      if (!points.empty()) {
        duplicate(id, points);
        continue;
      }
      const Opened<AcDbBlockReference> block(id);
      Attributes attributes;
      for (const schema::Row& row : found.kind->data.rows) {
        std::u16string text;
        if (row.tag.empty()) continue;
        ReadAttribute(block.get(), row.tag, text);
        attributes.emplace_back(row.tag, text);
      }
      const AcGePoint3d at = block->position();
      const Chain data = withTie(Chain(block->xData(app::kImport)),
                                 Chain(block->xData(app::kKept)).text(schema::kKeptPlace));
      addBlock(found.kind->block, block->layer(), {at.x + dx, at.y + dy, at.z}, attributes, data);
    }
  }
  // As commands rename: at every place in the drawing, and beside the text.
  void call(const std::u16string& id, const std::u16string& name) {
    const Found found = find(platform::narrow(id));
    const bool link = found.kind == &schema::kPipe || found.kind == &schema::kPump ||
                      found.kind == &schema::kValv;
    addRename(u"Rete", link ? RenamedKind::link : RenamedKind::node, id, name);
    setField(found, "id", name);
    if (link) return;
    std::vector<std::pair<Found, std::string>> ends;
    DrawnEntities(u"Rete").visitBeside([&](const DrawnEntity& entity) {
      if (entity.isNode() || entity.isCourse) return;
      if (entity.text(schema::Field::node1) == id) {
        ends.push_back({{entity.id, entity.kind, {}}, "node1"});
      }
      if (entity.text(schema::Field::node2) == id) {
        ends.push_back({{entity.id, entity.kind, {}}, "node2"});
      }
    });
    for (const auto& [end, field] : ends) setField(end, field, name);
  }
  static void setCurve(const std::u16string& id, const std::vector<double>& n, bool last = false) {
    std::vector<EpaCurve> curves;
    LoadCurves(curves, u"Rete");
    EpaCurve curve;
    curve.id = id;
    curve.kind = u"PUMP";
    for (const EpaCurve& own : curves) {
      if (own.id == id) curve = own;
    }
    curve.points.resize(last ? curve.points.size() - 1 : 0);
    for (std::size_t i = 0; i + 1 < n.size(); i += 2) curve.points.push_back({n[i], n[i + 1]});
    ReplaceCurve(curve, id, u"Rete");
  }
  static void setOption(const std::string& name, const std::u16string& value) {
    EpaSettings settings;
    ASSERT_TRUE(LoadSettings(settings, u"Rete"));
    const double number = platform::wtof(value);
    if (name == "duration") settings.duration = value;
    if (name == "headloss") settings.headloss = value;
    if (name == "exponent") settings.emitterExponent = number;
    if (name == "quality") settings.qualityParam = value;
    if (name == "trials") settings.trials = static_cast<std::int32_t>(number);
    if (name == "viscosity") settings.viscosity = number;
    if (name == "efficiency") settings.globalEfficiency = number;
    SaveSettings(settings, false);
  }
};

}  // namespace vessora
