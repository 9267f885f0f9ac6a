#include "module/dialogs/pattern.h"

#include "module/host/messages.h"
#include "module/network/pattern_curve_store.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

namespace {

constexpr std::size_t kNewPeriods = 24, kNewPoints = 9;

// In full a value that is left alone has to come back whole.
std::u16string shownValue(double value) {
  if (!inpIsFull()) return platform::format(u"%.3lf", value);
  char digits[40];
  return platform::widen({digits, platform::writeReal(digits, value)});
}

bool isBlank(std::u16string_view cell) { return cell.find_first_not_of(u" \t") == cell.npos; }

}  // namespace

DlgPattern::DlgPattern(EpaPattern& record, const std::vector<EpaPattern>& others, bool isNew,
                       bool& accepted)
    : ModuleDialog(u"Patterns/Curve"),
      pattern_(&record),
      patterns_(&others),
      isNew_(isNew),
      accepted_(accepted),
      oldName_(record.id) {
  name = record.id;
  for (const double multiplier : record.multipliers) rows_.push_back({u"", shownValue(multiplier)});
  rows_.resize(isNew ? kNewPeriods : std::max<std::size_t>(rows_.size(), 1));
}

DlgPattern::DlgPattern(EpaCurve& record, const std::vector<EpaCurve>& others, bool isNew,
                       bool& accepted)
    : ModuleDialog(u"Patterns/Curve"),
      curve_(&record),
      curves_(&others),
      isNew_(isNew),
      accepted_(accepted),
      oldName_(record.id) {
  name = record.id;
  if (isNew) {
    titledKind_ = kind.item(0);
  } else {
    titledKind_ = record.kind;
    const int known = kind.findSame(record.kind);
    kind = kind.item(known >= 0 ? known : kind.count() - 1);
  }
  for (const auto& [x, y] : record.points) rows_.push_back({shownValue(x), shownValue(y)});
  rows_.resize(isNew ? kNewPoints : std::max<std::size_t>(rows_.size(), 1));
}

// --- opening -------------------------------------------------------------------------------------

void DlgPattern::onInit() {
  ModuleDialog::onInit();
  if (isCurve()) name.setLabel(TraduciTesto(u"Nome curva"));
  kind.setEnabled(isCurve());
  grid.setCurve(isCurve());
  setTitles(titledKind_);
  grid.setRowCount(1 + static_cast<int>(rows_.size()));
  int at = 1;
  for (const Row& row : rows_) {
    for (int column = 0; column < 2; ++column) {
      grid.setCell(at, column, row[static_cast<std::size_t>(column)]);
    }
    ++at;
  }
  grid.number(1);
  noteOpened();
}

void DlgPattern::setTitles(std::u16string_view curveKind) {
  if (!isCurve()) return;
  grid.setColumnTitle(0, CurveXLabel(curveKind));
  grid.setColumnTitle(1, CurveYLabel(curveKind));
}

void DlgPattern::keepRows() {
  rows_.clear();
  for (int row = 1; row < grid.rowCount(); ++row) {
    rows_.push_back({grid.cell(row, 0), grid.cell(row, 1)});
  }
  titledKind_ = kind.shown();
}

// --- closing -------------------------------------------------------------------------------------

void DlgPattern::refuse(const char16_t* text) {
  showMessage(TraduciTesto(text));
  setFocus(nullptr);
}

// A name that is taken is told twice over: first so, then as though there were none.
bool DlgPattern::nameAccepted() {
  const std::u16string& typed = name.value();
  accepted_ = isNew_ || (isCurve() ? NameIsFree(typed, *curves_, oldName_)
                                   : NameIsFree(typed, *patterns_, oldName_));
  if (!accepted_) {
    showMessage(TraduciTesto(isCurve() ? kCurveTaken : kPatternTaken));
  }
  if (accepted_ && !typed.empty()) return true;
  // Only one of the two has its exclamation mark.
  refuse(isCurve() ? u"Inserire un nome per la curva" : u"Inserire un nome per il pattern!");
  return false;
}

void DlgPattern::takePoints() {
  curve_->id = name.value();
  if (!inpIsFull() || isNew_ || isTouched(kind)) curve_->kind = kind.value();
  curve_->points.clear();
  for (int row = 1; row < grid.rowCount(); ++row) {
    const std::u16string &x = grid.cell(row, 0), &y = grid.cell(row, 1);
    if (isBlank(x) || isBlank(y)) continue;
    curve_->points.push_back({platform::wtof(x), platform::wtof(y)});
  }
}

bool DlgPattern::hasOpenedWith(const std::u16string& cell) const {
  return std::any_of(rows_.begin(), rows_.end(), [&](const Row& row) { return row[1] == cell; });
}

// Blank periods close up. False, with the record as it was, after telling the user of a value that
// cannot be.
bool DlgPattern::takeMultipliers() {
  std::vector<double> multipliers;
  for (int row = 1; row < grid.rowCount(); ++row) {
    if (isBlank(grid.cell(row, 1))) continue;
    multipliers.push_back(platform::wtof(grid.cell(row, 1)));
    if (multipliers.back() >= 0 || (inpIsFull() && hasOpenedWith(grid.cell(row, 1)))) continue;
    accepted_ = false;
    refuse(u"Inserire un valore numerico positivo!");
    return false;
  }
  pattern_->id = name.value();
  pattern_->multipliers = std::move(multipliers);
  return true;
}

void DlgPattern::onOk() {
  if (!updateData() || !nameAccepted()) return;
  if (isCurve()) {
    takePoints();
  } else if (!takeMultipliers()) {
    return;
  }
  keepRows();
  accepted_ = true;
  end(ui::Outcome::ok);
}

void DlgPattern::onCancel() {
  accepted_ = true;
  end(ui::Outcome::cancel);
}

}  // namespace vessora
