// Manholes from a longitudinal profile into the plan: the job and the command. The blocks are
// drawing content on a layer of their own; no element of the network changes.
#include <algorithm>
#include <optional>
#include <unordered_map>

#include "module/dialogs/pzz_pmod.h"
#include "module/editing/manhole_jobs.h"
#include "module/host/tell.h"
#include "module/inp/symbols.h"
#include "module/network/element_data.h"
#include "module/network/schema.h"

namespace vessora {
namespace {

constexpr char16_t kProfileData[] = u"HN-TERVANE-HN-RR";
constexpr char16_t kManholeLayer[] = u"PZZ-";

// The names of a profile's pipes in the order in which it runs.
std::vector<std::u16string> pipeNamesOf(const GestioneOggetto& profile) {
  std::vector<std::u16string> names;
  const Chain list(profile.GetXdataProfEpa());
  for (XDataReader items(list); !items.done();) names.emplace_back(items.text());
  return names;
}

// The network's pipes by name, the first of each.
using PipesByName = std::unordered_map<std::u16string, AcDbObjectId>;
PipesByName pipesOf(std::u16string_view net) {
  PipesByName pipes;
  for (const AcDbObjectId id :
       SelectionSet(u"_X", elementPolylineFilter(NetworkLayers(net).pipe))) {
    const Opened<AcDb3dPolyline> polyline(id);
    if (!polyline) continue;
    const Chain data(polyline->xData(app::kImport));
    if (data) pipes.try_emplace(std::u16string(data.text(1)), id);
  }
  return pipes;
}

struct PipeNodes {
  std::u16string start, end;
};

std::vector<PipeNodes> nodesOf(const PipesByName& pipes,
                               const std::vector<std::u16string>& pipeNames) {
  std::vector<PipeNodes> nodes;
  for (const std::u16string& name : pipeNames) {
    const auto found = pipes.find(name);
    if (found == pipes.end()) continue;
    const Opened<AcDb3dPolyline> polyline(found->second);
    if (!polyline) continue;
    const Chain data(polyline->xData(app::kImport));
    nodes.push_back({std::u16string(textAt(data, schema::kPipe.data, schema::Field::node1)),
                     std::u16string(textAt(data, schema::kPipe.data, schema::Field::node2))});
  }
  return nodes;
}

// In which sense each pipe runs along the chain: false from its start to its end. Empty, which is
// no answer, for a single pipe, and where a pipe is missing or two that follow share no node.
std::vector<bool> ChainDirections(const PipesByName& pipes,
                                  const std::vector<std::u16string>& pipeNames) {
  const std::vector<PipeNodes> nodes = nodesOf(pipes, pipeNames);
  if (nodes.size() != pipeNames.size() || nodes.size() < 2) return {};
  std::vector<bool> reversed;
  const auto touches = [](const PipeNodes& pipe, const std::u16string& node) {
    return pipe.start == node || pipe.end == node;
  };
  for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
    const bool byEnd = touches(nodes[i + 1], nodes[i].end);
    if (!byEnd && !touches(nodes[i + 1], nodes[i].start)) return {};
    reversed.push_back(!byEnd);
  }
  const PipeNodes& before = nodes[nodes.size() - 2];
  const std::u16string& shared = reversed.back() ? before.start : before.end;
  reversed.push_back(nodes.back().start != shared);
  return reversed;
}

// The pipes as one polyline, without the nodes that two of them share.
AcDbObjectId BuildChainPolyline(const PipesByName& pipes,
                                const std::vector<std::u16string>& pipeNames,
                                const std::vector<bool>& directions) {
  AcGePoint3dArray course;
  for (std::size_t i = 0; i < pipeNames.size(); ++i) {
    AcGePoint3dArray points;
    if (const Opened<AcDb3dPolyline> polyline(pipes.at(pipeNames[i])); polyline) {
      ReadVertices(polyline.get(), points);
    }
    if (directions[i]) std::reverse(points.begin(), points.end());
    if (!course.empty() && !points.empty()) points.erase(points.begin());
    course.insert(course.end(), points.begin(), points.end());
  }
  return HNGeometry::Create3Dpoly(course, 256, u"0", 0, nullptr);
}

// What the transfer of a profile's manholes stands on.
class Transfer {
 public:
  explicit Transfer(AcDbObjectId titleBlock)
      : profile_(titleBlock),
        network_(profile_.GetNome1()),
        pipeNames_(pipeNamesOf(profile_)),
        pipes_(pipesOf(network_)),
        directions_(ChainDirections(pipes_, pipeNames_)) {}

  bool ready() { return profile_.GetListaPozzetti() != nullptr && !directions_.empty(); }

  ManholeResult run(std::u16string_view block, double scale) {
    ManholeResult result;
    const std::u16string layer = schema::layerName(kManholeLayer, network_);
    HNGeometry::createNewLayer(layer);
    const AcDbObjectId course = BuildChainPolyline(pipes_, pipeNames_, directions_);
    ads_name name;
    datipoli* path = nullptr;
    if (acdbGetAdsName(name, course) == RTNORM) LeggiDATIPOLI(name, path);
    for (const pozzetto* p = profile_.GetListaPozzetti(); p; p = p->next) {
      AcGePoint2d at;
      double direction = 0;
      if (!HNGeometry::XYdaProgsuDatiPoli(path, p->prog, at, direction)) continue;
      result.drawn += InsertNamedBlock({at.x, at.y, p->quota}, layer, p->nome, p->codice,
                                       p->descrizione, block, direction, scale, result.notices);
    }
    HNGeometry::LiberaDATIPOLI(path);
    if (const Opened<AcDbEntity> entity(course, AcDb::kForWrite); entity) entity->erase(true);
    return result;
  }

 private:
  GestioneOggetto profile_;
  const std::u16string network_;
  const std::vector<std::u16string> pipeNames_;
  const PipesByName pipes_;
  const std::vector<bool> directions_;
};

}  // namespace

// --- the job -------------------------------------------------------------------------------------

bool hasManholesToTransfer(AcDbObjectId titleBlock) { return Transfer(titleBlock).ready(); }

ManholeResult transferManholes(AcDbObjectId titleBlock, std::u16string_view block, double scale) {
  Transfer transfer(titleBlock);
  return transfer.ready() ? transfer.run(block, scale) : ManholeResult();
}

// --- the command ---------------------------------------------------------------------------------

namespace {

// Whether an entity is the title block of a profile; nothing for one that is none at all.
std::optional<bool> isTitleBlock(AcDbObjectId id) {
  const Opened<AcDbBlockReference> block(id);
  if (!block) return std::nullopt;
  const Chain data(block->xData(kProfileData));
  if (!data) return std::nullopt;
  return XDataReader(data).code() == 1005;
}

// The title block that the user picks; null when he gives up.
AcDbObjectId pickTitleBlock() {
  for (;;) {
    ads_name name;
    AcGePoint3d point;
    AcDbObjectId id;
    if (acedEntSel(TraduciTesto(u"\nSelezionare un cartiglio profilo..."), name, point) != RTNORM)
      return {};
    if (acdbGetObjectId(id, name) != RTNORM) continue;
    const std::optional<bool> title = isTitleBlock(id);
    if (!title) continue;
    if (*title) return id;
    acutPrintf(TraduciTesto(u"\nEntità non valida!"));
  }
}

}  // namespace

int EpaCommands::hnpzzpmod() {
  if (!readInstallPath(installPath)) return kAbandoned;
  const AcDbObjectId titleBlock = pickTitleBlock();
  if (titleBlock.isNull() || !hasManholesToTransfer(titleBlock)) return kAbandoned;
  Dlgpzzpmod dialog;
  if (!dialog.doModal()) return kAbandoned;
  const auto symbol = static_cast<std::size_t>(std::max(0, dialog.symbol.value()));
  tell(transferManholes(titleBlock, schema::kManholeBlocks[symbol], dialog.scale.value()).notices);
  return kRan;
}

}  // namespace vessora
