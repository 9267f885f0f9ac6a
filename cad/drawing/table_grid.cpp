#include "cad/drawing/table_grid.h"

#include <utility>

namespace cad {
namespace {

constexpr int kHeightOverride = 0x20;  // bit of a cell's flags: it has a text height of its own
constexpr std::size_t kPiece = 250;    // characters of a text in one tag

std::u16string pieces(const TagList& t, TagRange range, int piece, int last) {
  std::u16string text;
  for (int i = range.begin; i < range.end; ++i) {
    if (t[i].code == piece || t[i].code == last) text += t.text(i);
    if (t[i].code == last) break;
  }
  return text;
}

Cell readCell(const TagList& t, TagRange range, int base) {
  Cell c;
  c.from = range.begin - base;
  c.to = range.end - base;
  c.kind = static_cast<int>(t.integerOr(171, kTextCell, range));
  c.covered = t.integerOr(173, 0, range) != 0;
  c.columns = static_cast<int>(std::max<std::int64_t>(1, t.integerOr(175, 1, range)));
  c.rows = static_cast<int>(std::max<std::int64_t>(1, t.integerOr(176, 1, range)));
  c.height = t.realOr(140, 0, range);
  c.alignment = static_cast<int>(t.integerOr(170, 0, range));
  if (c.kind == kBlockCell) {
    if (const int i = t.find(340, range); i >= 0) c.block = t.handle(i);
    c.blockScale = t.realOr(144, 1, range);
  } else {
    c.text = t.find(302, range) >= 0 ? pieces(t, range, 303, 302) : pieces(t, range, 2, 1);
  }
  return c;
}

void addPieces(TagList& out, int piece, int last, std::u16string_view text) {
  for (; text.size() > kPiece; text.remove_prefix(kPiece))
    out.addText(piece, text.substr(0, kPiece));
  out.addText(last, text);
}

void addValue(TagList& out, std::u16string_view text, int version) {
  if (version < 1021) {
    addPieces(out, 2, 1, text);
    return;
  }
  out.addInteger(92, 0);
  out.addAscii(301, "CELL_VALUE");
  out.addInteger(93, text.empty() ? 3 : 2);
  if (text.empty()) {
    out.addInteger(90, 0);
    out.addInteger(91, 0);
  } else {
    out.addInteger(90, 4);
    addPieces(out, 2, 1, text);
  }
  out.addInteger(94, 0);
  out.addAscii(300, "");
  addPieces(out, 303, 302, text);
  out.addAscii(304, "ACVALUE_END");
}

void addNewCell(TagList& out, const Cell& c, int version) {
  out.addInteger(171, kTextCell);
  out.addInteger(172, 0);
  out.addInteger(173, c.covered ? 1 : 0);
  out.addInteger(174, 0);
  out.addInteger(175, c.columns);
  out.addInteger(176, c.rows);
  out.addInteger(91, c.height > 0 ? kHeightOverride : 0);
  out.addInteger(178, 0);
  out.addReal(145, 0);
  if (c.height > 0) out.addReal(140, c.height);
  addValue(out, c.text, version);
}

// What of a cell's tags is its value, not its look.
bool isValue(int code) {
  switch (code) {
    case 1:
    case 2:
    case 11:
    case 90:
    case 92:
    case 93:
    case 94:
    case 144:
    case 179:
    case 340:
    case 344:
    case 331:
      return true;
    default:
      return code >= 300 && code <= 304;
  }
}

// A cell from the file with what has changed of it; everything else stays.
void addChangedCell(TagList& out, const TagList& in, TagRange range, const Cell& c, int version) {
  bool inValue = false, heightDone = !c.heightChanged, flagsDone = false;
  const auto height = [&] {
    if (!heightDone && c.height > 0) out.addReal(140, c.height);
    heightDone = true;
  };
  for (int i = range.begin; i < range.end; ++i) {
    const int code = in[i].code;
    if (isValue(code)) {
      height();
      inValue = true;
    }
    if (c.textChanged && (isValue(code) || (inValue && code == 91))) continue;
    if (inValue) {
      out.insertCopy(out.size(), in, i);
    } else if (code == 91 && !flagsDone) {
      const std::int64_t flags = in.integer(i);
      out.addInteger(91, c.heightChanged ? flags | kHeightOverride : flags);
      flagsDone = true;
    } else if (code == 140 && c.heightChanged) {
      height();
    } else if (code == 171 && c.textChanged) {
      out.addInteger(171, kTextCell);
    } else if (code == 173 && c.spanChanged) {
      out.addInteger(173, c.covered ? 1 : 0);
    } else if ((code == 175 || code == 176) && c.spanChanged) {
      out.addInteger(code, code == 175 ? c.columns : c.rows);
    } else {
      out.insertCopy(out.size(), in, i);
    }
  }
  height();
  if (c.textChanged) addValue(out, c.text, version);
}

}  // namespace

void TableGrid::read(const TagList& t, const Drawing* d) {
  fresh = false;
  const TagRange own = t.subclass("AcDbTable");
  std::vector<int> starts;
  for (int i = own.begin; i < own.end; ++i) {
    if (t[i].code == 141 && starts.empty()) rowHeights.push_back(t.real(i));
    if (t[i].code == 142 && starts.empty()) columnWidths.push_back(t.real(i));
    if (t[i].code == 171) starts.push_back(i);
  }
  starts.push_back(own.end);
  const TagRange head{own.begin, starts.front()};
  if (const int i = t.find(342, head); i >= 0 && d) style = d->idOf(d->byHandle(t.handle(i)));
  // A file may claim any size; the cells that are there decide.
  const std::size_t count = starts.size() - 1;
  const auto claimed = [&](int code) {
    return std::min(
        count, static_cast<std::size_t>(std::max<std::int64_t>(0, t.integerOr(code, 0, head))));
  };
  const std::size_t columnCount = claimed(92);
  const std::size_t rowCount = columnCount ? std::min(claimed(91), count / columnCount) : 0;
  rowHeights.resize(rowCount, rowHeights.empty() ? 1 : rowHeights.back());
  columnWidths.resize(columnCount, columnWidths.empty() ? 1 : columnWidths.back());
  for (std::size_t i = 0; i < rowCount * columnCount; ++i) {
    cells.push_back(readCell(t, {starts[i], starts[i + 1]}, own.begin));
  }
}

// Replaces the table's own tags, keeping those of the file that still hold.
void TableGrid::write(TagList& t, std::uint64_t block, int version) const {
  TagList out;
  out.create(t.format(), "ACAD_TABLE");
  const TagRange own = t.subclass("AcDbTable");
  for (int i = 1; i < own.begin; ++i) out.insertCopy(out.size(), t, i);
  int at = own.begin;
  if (own.empty()) {
    const Drawing* d = drawingNumbered(style.databaseIndex());
    out.addHandle(342, d ? d->record(style.index()).handle : 0);
    out.addHandle(343, block);
    out.addPoint(11, {1, 0, 0});
    out.addInteger(90, 22);
    out.addInteger(91, rows());
    out.addInteger(92, columns());
    for (int code = 93; code <= 96; ++code) out.addInteger(code, 0);
  } else {
    for (; at < own.end && t[at].code != 141 && t[at].code != 142 && t[at].code != 171; ++at) {
      if (t[at].code == 342) {
        const Drawing* d = drawingNumbered(style.databaseIndex());
        out.addHandle(342, d ? d->record(style.index()).handle : t.handle(at));
      } else if (t[at].code == 343) {
        out.addHandle(343, block);
      } else if (t[at].code == 91 || t[at].code == 92) {
        out.addInteger(t[at].code, t[at].code == 91 ? rows() : columns());
      } else {
        out.insertCopy(out.size(), t, at);
      }
    }
    while (at < own.end && (t[at].code == 141 || t[at].code == 142)) ++at;
  }
  for (const double h : rowHeights) out.addReal(141, h);
  for (const double w : columnWidths) out.addReal(142, w);
  for (; at < own.end && t[at].code != 171; ++at) out.insertCopy(out.size(), t, at);
  for (const Cell& c : cells) {
    if (c.from < 0) {
      addNewCell(out, c, version);
    } else {
      addChangedCell(out, t, {own.begin + c.from, own.begin + c.to}, c, version);
    }
  }
  for (int i = own.end; i < t.size(); ++i) out.insertCopy(out.size(), t, i);
  std::swap(t, out);
}

TablePicture TableGrid::picture(const Drawing& d) const {
  TablePicture p;
  p.rowHeights = rowHeights;
  p.columnWidths = columnWidths;
  p.look = look();
  for (int r = 0; r < rows(); ++r) {
    for (int c = 0; c < columns(); ++c) {
      const Cell& from = cell(r, c);
      if (from.covered) continue;
      PictureCell& to = p.cells.emplace_back();
      to.row = r;
      to.column = c;
      to.rows = from.rows;
      to.columns = from.columns;
      to.text = from.text;
      to.textHeight = from.height > 0 ? from.height : p.look.ofRow(r).textHeight;
      to.alignment = from.alignment > 0 ? from.alignment : p.look.ofRow(r).alignment;
      if (const std::uint32_t block = from.block ? d.byHandle(from.block) : 0) {
        to.block = d.names().text(d.record(block).name);
        to.blockScale = from.blockScale;
      }
    }
  }
  return p;
}

}  // namespace cad
