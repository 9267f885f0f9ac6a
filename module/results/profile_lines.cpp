#include <algorithm>

#include "module/results/profile.h"
#include "platform/files.h"
#include "platform/ini.h"
#include "platform/text.h"

namespace vessora {

namespace {

constexpr char16_t kPipeline[] = u"HN-TERVANE-HN-AQ";
constexpr int kPipelineKind = 230;
constexpr char16_t kPipelineName[] = u"HN-ACQ-TUBAZIONE";

// The layer of a line, by its key in the settings file, made with its colour.
std::u16string lineLayer(std::u16string_view key, int color) {
  std::u16string root;
  readInstallPath(root);
  const std::string file = platform::nativePath(root + u"DEFAULTSETTINGS.INI");
  std::u16string name = platform::iniValue(file, u"LAYER", key, key, 255);
  HNGeometry::createNewLayer(name, nullptr, nullptr, color);
  return name;
}

void drawLine(const std::vector<ProfileRow>& rows, AcGePoint3d ProfileRow::*point,
              std::u16string_view layer) {
  AcGePoint3dArray points;
  for (const ProfileRow& row : rows) points.push_back(row.*point);
  HNGeometry::Create2Dpoly(points, nullptr, nullptr, 256, layer);
}

double demandAt(const ProfileChain& chain, const ProfileNode& node) {
  const auto at = chain.nodeResults.find(node.id);
  return at == chain.nodeResults.end() ? kMissing : at->second.demand;
}

// What the water module of the family reads off a vertex of the design line: the segment that
// begins there. The last vertex begins none.
Chain segmentData(const ProfileChain& chain, std::size_t i) {
  XDataBuilder data(kPipeline);
  data.integer(kPipelineKind);
  data.text(kPipelineName);
  data.real(demandAt(chain, chain.nodes[i]));
  if (i >= chain.links.size()) {
    for (int item = 5; item <= 8; ++item) data.real(kMissing);
    data.real(0);
    for (const double value : {kMissing, kMissing, 0.0, kMissing, 0.0}) data.real(value);
    data.text(u"");
    data.text(chain.nodes[i].id);
    return data.take();
  }
  const ProfileLink& link = chain.links[i];
  const EpaPipe* pipe = link.kind == LinkKind::pipe
                            ? &chain.network.pipes[static_cast<std::size_t>(link.index)]
                            : nullptr;
  const auto number = [](const wide50& text) { return platform::wtof(text.view()); };
  data.real(demandAt(chain, chain.nodes[i + 1]));
  data.real(pipe ? number(pipe->length) : 0);
  data.real(pipe ? number(pipe->diameter) : 0);
  data.real(pipe ? number(pipe->roughness) : 0);
  data.real(0);
  const auto at = chain.linkResults.find(link.id);
  const ProfileLinkResult result = at == chain.linkResults.end() ? ProfileLinkResult() : at->second;
  data.real(result.flow);
  data.real(result.velocity);
  data.real(0);
  data.real(result.headloss);
  data.real(0);
  data.text(pipe ? std::u16string_view(pipe->id) : std::u16string_view());
  data.text(chain.nodes[i].id);
  return data.take();
}

// Gathers vertices of the design line and draws them when a stretch ends.
class DesignLine {
 public:
  explicit DesignLine(std::u16string layer) : layer_(std::move(layer)) {}
  void add(const AcGePoint3d& point, Chain data) {
    points_.push_back(point);
    data_.push_back(std::move(data));
  }
  void draw() {
    ResbufArray chains;
    for (const Chain& data : data_) chains.push_back(data.get());
    HNGeometry::Create3Dpoly(points_, 256, layer_, 0, nullptr, nullptr, nullptr, &chains);
  }
  std::size_t size() const { return points_.size(); }
  void clear() {
    points_.clear();
    data_.clear();
  }

 private:
  std::u16string layer_;
  AcGePoint3dArray points_;
  std::vector<Chain> data_;
};

}  // namespace

double ComputeUsefulHeight(const ProfileChain& chain, double offset, double& lowest) {
  // The search for the highest begins just above zero, so a profile below sea level reaches up to
  // it.
  double low = std::numeric_limits<double>::max(), high = kMissing;
  const auto enter = [&](double lower, double upper) {
    low = std::min(low, lower);
    high = std::max(high, upper);
  };
  for (const ProfileNode& node : chain.nodes) {
    enter(node.point.z, node.point.z);
    if (offset != kMissing) enter(node.point.z - offset, node.point.z + offset);
    double head;
    if (chain.hasResults && NodeHead(chain, node.id, head)) enter(head, head);
  }
  lowest = low;
  return (high - low) + (high - low) * 0.05;
}

double ComputeUsefulWidth(const ProfileChain& chain) {
  double width = 0;
  for (const ProfileLink& link : chain.links) {
    double length = 0;
    if (LinkLength(chain, link.id, link.kind, length)) width += length;
  }
  return width + 2.0;
}

void BuildProfileRows(const ProfileChain& chain, double offset, const GestioneOggetto& profile) {
  const AcGePoint3d origin = profile.GetOrigin();
  double x = origin.x + platform::wtof(profile.GetOBJ3Prog());
  std::vector<ProfileRow> rows;
  for (std::size_t i = 0; i < chain.nodes.size(); ++i) {
    const ProfileNode& node = chain.nodes[i];
    double length = 0;
    if (i > 0 && !LinkLength(chain, chain.links[i - 1].id, chain.links[i - 1].kind, length)) return;
    x += length;
    ProfileRow& row = rows.emplace_back();
    row.design = {x, origin.y + node.point.z, 0};
    const ProfileLink& link = chain.links[std::min(i, chain.links.size() - 1)];
    row.isPipe = link.kind == LinkKind::pipe;
    if (offset != kMissing) row.terrain = row.design + AcGeVector3d(0, offset, 0);
    double head;
    if (NodeHead(chain, node.id, head)) row.piezometric = {x, origin.y + head, row.design.z};
  }
  DrawProfileLines(chain, rows);
}

void DrawProfileLines(const ProfileChain& chain, const std::vector<ProfileRow>& rows) {
  drawLine(rows, &ProfileRow::terrain, lineLayer(u"TERRENO", 3));
  drawLine(rows, &ProfileRow::piezometric, lineLayer(u"PIEZOMETRICA", 4));
  HNGeometry::RegApplicazione(kPipeline, nullptr);
  DesignLine line(lineLayer(u"PROGETTO", 1));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    line.add(rows[i].design, segmentData(chain, i));
    if (rows[i].isPipe) continue;
    // A pump or valve interrupts the line between its two nodes.
    if (line.size() > 1) line.draw();
    line.clear();
  }
  if (!rows.empty() && rows.back().isPipe) line.draw();
}

}  // namespace vessora
