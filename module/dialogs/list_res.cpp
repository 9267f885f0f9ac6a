#include "module/dialogs/list_res.h"

#include <utility>

#include "module/dialogs/filtra_mat.h"
#include "module/network/materials.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

namespace {

constexpr ui::Colour kYellow{255, 255, 0}, kWhite{255, 255, 255};

ui::ReportList::Row shownRow(const QueryRow& row) {
  return {row.id, row.values[0], row.values[1], row.values[2], row.values[3]};
}

void show(ui::ReportList& list, const std::vector<QueryRow>& rows) {
  std::vector<ui::ReportList::Row> shown;
  shown.reserve(rows.size());
  for (const QueryRow& row : rows) shown.push_back(shownRow(row));
  list.setRows(std::move(shown));
}

void show(ui::ReportList& list, const std::vector<QueryRow>& rows, const QueryFilter& filter) {
  std::vector<ui::ReportList::Row> shown;
  shown.reserve(filter.size());
  for (const std::uint32_t i : filter) shown.push_back(shownRow(rows[i]));
  list.setRows(std::move(shown));
  list.setBackground(kYellow);
}

void fillList(ui::ReportList& list, const std::vector<QueryRow>& rows, const QueryFilter& filter) {
  if (filter.empty()) {
    show(list, rows);
    list.setEnabled(!rows.empty());
  } else {
    show(list, rows, filter);
  }
}

void appendCsv(std::string& out, const ui::ReportList& list) {
  for (int row = 0; row < list.count(); ++row) {
    for (int column = 0; column < 5; ++column) {
      platform::appendNarrow(out, list.cell(row, column));
      out += ';';
    }
    out += '\n';
  }
}

}  // namespace

void DlgListRes::onInit() {
  ModuleDialog::onInit();
  query_.action = QueryAction::showDrawing;
  filterMaterial.setEnabled(!query_.legacyNetwork);
  if (query_.stale) {
    message = TraduciTesto(u"La rete è cambiata da quando i risultati sono stati calcolati");
  }
  nodeColor.select(nodeColorBy_);
  linkColor.select(linkColorBy_);
  fillList(nodes, query_.nodes, query_.filteredNodes);
  fillList(links, query_.links, query_.filteredLinks);
}

// --- how it ends ---------------------------------------------------------------------------------

bool DlgListRes::takeFields() {
  if (!updateData()) return false;
  nodeColorBy_ = nodeColor.selected();
  linkColorBy_ = linkColor.selected();
  query_.colorFiltered = colorFiltered.value();
  query_.resetColors = resetColors.value();
  return true;
}

void DlgListRes::finish(QueryAction action) {
  if (!takeFields()) return;
  query_.action = action;
  end(ui::Outcome::ok);
}

void DlgListRes::onOk() {
  if (!takeFields()) return;
  query_.classCount = classes.value() == 1 ? 10 : 5;
  query_.nodeColorBy = nodeColorBy_;
  query_.linkColorBy = linkColorBy_;
  query_.action = QueryAction::finish;
  end(ui::Outcome::ok);
}

void DlgListRes::onCancel() { end(ui::Outcome::cancel); }

void DlgListRes::zoomToNode() {
  query_.nodeId = nodes.shown();
  finish(QueryAction::zoomNode);
}

void DlgListRes::zoomToLink() {
  query_.linkId = links.shown();
  finish(QueryAction::zoomLink);
}

// --- filters -------------------------------------------------------------------------------------

// Two zeros are no filter. What is shown changes only when a row passes.
void DlgListRes::filter(Quantity quantity, const ui::Real& above, const ui::Real& below) {
  if (!takeFields()) return;
  const bool ofNodes = isOfNodes(quantity);
  const std::vector<QueryRow>& rows = ofNodes ? query_.nodes : query_.links;
  QueryFilter& passed = ofNodes ? query_.filteredNodes : query_.filteredLinks;
  passed.clear();
  if (above.value() == 0 && below.value() == 0) return;
  passed = rowsBetween(rows, quantity, above.value(), below.value());
  if (!passed.empty()) show(ofNodes ? nodes : links, rows, passed);
}

// A view of its own: what the range filters have left is not touched.
void DlgListRes::onFilterMaterial() {
  if (!ReadMaterials(materials) || materials.empty()) return;
  DlgFiltraMat dialog(materials);
  if (!dialog.doModal()) return;
  if (query_.pipeMaterials.empty()) {
    links.clear();
    return;
  }
  std::vector<ui::ReportList::Row> rows;
  for (const EpaPipeMaterial& pipe : query_.pipeMaterials) {
    if (pipe.material != dialog.chosen()) continue;
    rows.push_back({pipe.id.str(), u"-", u"-", u"-", pipe.material.str()});
  }
  links.setRows(std::move(rows));
  links.setBackground(kYellow);
}

void DlgListRes::onReset() {
  query_.filteredNodes.clear();
  query_.filteredLinks.clear();
  fillList(nodes, query_.nodes, {});
  fillList(links, query_.links, {});
  nodes.setBackground(kWhite);
  links.setBackground(kWhite);
}

// --- file ----------------------------------------------------------------------------------------

void DlgListRes::onExport() {
  const auto path = frontend().askFile({.mode = ui::FileQuestion::Mode::save,
                                        .title = {},
                                        .name = u"Results.csv",
                                        .filter = u"CSV Files (*.csv)|*.csv|"});
  if (!path) return;
  std::string text;
  const auto line = [&text](const char16_t* words) {
    platform::appendNarrow(text, TraduciTesto(words));
  };
  // One heading word is English in the files that users already have.
  line(u"RISULTATI NODI;\n");
  line(u"Nodo;Portata [l/s];Carico [m];Pressione [m];Quality [mg/l];\n");
  appendCsv(text, nodes);
  text += ";\n";
  line(u"RISULTATI RAMI;\n");
  line(u"Ramo;Portata [l/s];Velocità [m/s];Perdita [m/Km];Stato;\n");
  appendCsv(text, links);
  if (platform::writeFile(platform::nativePath(*path), text)) return;
  acutPrintf(platform::format(TraduciTesto(u"\nImpossibile aprire il file %s"), *path));
  end(ui::Outcome::cancel);
}

}  // namespace vessora
