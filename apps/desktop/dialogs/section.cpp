#include "apps/desktop/dialogs/section.h"

#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

#include "apps/desktop/dialogs/projection.h"
#include "apps/desktop/dialogs/radio_projection.h"

namespace desktop {

namespace {

// A row within another layout, which hands no spacing on.
QHBoxLayout* newRow() {
  auto* const row = new QHBoxLayout;
  row->setSpacing(8);
  return row;
}

bool hasOwnLabel(const Projection& p) { return !labelOf(p.control().label()).isEmpty(); }

}  // namespace

QGridLayout& Section::rows() {
  if (!rows_) {
    rows_ = new QGridLayout;
    rows_->setColumnStretch(1, 1);
    rows_->setHorizontalSpacing(10);
    rows_->setVerticalSpacing(6);
    column_->addLayout(rows_);
    row_ = fields_ = 0;
    last_ = nullptr;
    afterButton_ = false;
  }
  return *rows_;
}

void Section::endRows() {
  rows_ = nullptr;
  last_ = nullptr;
  afterButton_ = false;
}

QBoxLayout* Section::cell(Projection& control) {
  auto* const cell = newRow();
  cell->addWidget(control.widget(), 1);
  return cell;
}

void Section::remark(Projection& control) {
  if (control.remark()) rows().addWidget(control.remark(), row_++, 1);
}

void Section::addField(Projection& field) {
  QGridLayout& grid = rows();
  QBoxLayout* const beside = cell(field);
  if (lead_) {
    auto* const head = newRow();
    head->addWidget(std::exchange(lead_, nullptr)->widget());
    if (field.label()) head->addWidget(field.label(), 1);
    grid.addLayout(head, row_, 0);
  } else if (field.label()) {
    grid.addWidget(field.label(), row_, 0);
  }
  grid.addLayout(beside, row_++, 1);
  remark(field);
  ++fields_;
  last_ = beside;
  afterButton_ = false;
}

void Section::addBeside(Projection& control) { last_->addWidget(control.widget()); }

void Section::addButton(Projection& button) {
  const bool beside = rows_ && last_ && (afterButton_ || fields_ == 1);
  if (!beside && !(afterButton_ && last_)) {
    auto* const below = newRow();
    below->addStretch(1);
    if (rows_) {
      rows().addLayout(below, row_++, 1);
    } else {
      column_->addLayout(below);
    }
    last_ = below;
  }
  last_->addWidget(button.widget());
  afterButton_ = true;
}

void Section::addLine(Projection& line) {
  rows().addWidget(line.widget(), row_++, 0, 1, 2);
  last_ = nullptr;
  afterButton_ = false;
}

void Section::addChecks(const std::vector<Projection*>& checks) {
  constexpr std::size_t few = 4;
  if (checks.size() < few) {
    for (Projection* check : checks) rows().addWidget(check->widget(), row_++, 0, 1, 2);
  } else {
    auto* const grid = new QGridLayout;
    grid->setHorizontalSpacing(24);
    for (std::size_t i = 0; i < checks.size(); ++i)
      grid->addWidget(checks[i]->widget(), static_cast<int>(i / 2), static_cast<int>(i % 2));
    rows().addLayout(grid, row_++, 0, 1, 2);
  }
  last_ = nullptr;
  afterButton_ = false;
}

void Section::pictures(RadioProjection& radio) {
  constexpr int across = 4;
  auto* const grid = new QGridLayout;
  grid->setHorizontalSpacing(20);
  grid->setVerticalSpacing(12);
  int i = 0;
  for (QRadioButton* button : radio.buttons()) {
    grid->addWidget(button, i / across, i % across);
    ++i;
  }
  rows().addLayout(grid, row_++, 0, 1, 2);
}

void Section::addRadio(RadioProjection& radio) {
  if (radio.hasPictures()) {
    pictures(radio);
  } else if (radio.label()) {
    auto* const across = newRow();
    for (QRadioButton* button : radio.buttons()) across->addWidget(button);
    across->addStretch(1);
    rows().addWidget(radio.label(), row_, 0);
    rows().addLayout(across, row_++, 1);
  } else {
    for (QRadioButton* button : radio.buttons()) rows().addWidget(button, row_++, 0, 1, 2);
  }
  last_ = nullptr;
  afterButton_ = false;
}

void Section::addRadioFields(RadioProjection& radio, const std::vector<Projection*>& fields) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    Projection& field = *fields[i];
    const bool list = field.shape() == Projection::Shape::list;
    QGridLayout& grid = rows();
    field.dropLabel();
    grid.addWidget(radio.buttons()[i], row_, 0, list ? Qt::AlignTop : Qt::Alignment());
    QBoxLayout* const beside = cell(field);
    if (QLabel* const tail = radio.makeTail(static_cast<int>(i), column_->parentWidget()))
      beside->addWidget(tail);
    if (list) grid.setRowStretch(row_, 1);
    tall_ = tall_ || list;
    grid.addLayout(beside, row_++, 1);
    remark(field);
    ++fields_;
  }
  if (tall_) column_->setStretchFactor(rows_, 1);
  last_ = nullptr;
  afterButton_ = false;
}

void Section::addList(Projection& list) {
  endRows();
  if (list.label() && hasOwnLabel(list)) {
    column_->addWidget(list.label());
  } else {
    list.dropLabel();
  }
  column_->addWidget(list.widget(), 1);
  tall_ = true;
}

void Section::add(QWidget* widget, int stretch) {
  endRows();
  column_->addWidget(widget, stretch);
  tall_ = tall_ || stretch > 0;
}

void Section::add(QLayout* layout) {
  endRows();
  column_->addLayout(layout);
}

void Section::close() {
  endRows();
  if (!tall_) column_->addStretch(1);
}

}  // namespace desktop
