// What the chosen things are, to read and to edit.
#pragma once

#include <QAbstractTableModel>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QWidget>

#include "apps/desktop/docks/property_sheet.h"

class QLabel;
class QStackedLayout;

namespace desktop {

class PropertyModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { label, value, kColumns };
  explicit PropertyModel(const Networks& networks, QObject* parent = nullptr);

  void setSheet(PropertySheet sheet);
  const PropertySheet& sheet() const { return sheet_; }
  const Property& at(int row) const { return sheet_.rows[static_cast<std::size_t>(row)]; }
  // The row of a field; -1 when it is not shown.
  int rowOf(schema::Field field) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // Examines the text and asks for the edit; the value is shown once the drawing has it.
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

 Q_SIGNALS:
  void editWanted(const PropertyEdit& edit);
  void refused(const QString& why);

 private:
  QVariant headingData(const Property& property, int column, int role) const;
  QVariant valueData(const Property& property, int role) const;

  const Networks& networks_;
  PropertySheet sheet_;
};

class PropertyDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
};

class Properties : public QWidget {
  Q_OBJECT

 public:
  explicit Properties(const Networks& networks, QWidget* parent = nullptr);

  void show(const cad::Drawing* drawing, const std::vector<std::uint32_t>& records);
  PropertyModel& model() { return model_; }
  QTableView& view() { return *view_; }
  // Why the last edit was refused; empty when it was not.
  QString fault() const;

 Q_SIGNALS:
  void editWanted(const std::vector<ElementPlace>& elements, const PropertyEdit& edit);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void sizeColumns();
  void span();

  const Networks& networks_;
  PropertyModel model_;
  QStackedLayout* stack_;
  QLabel* title_;
  QTableView* view_;
  QLabel* fault_;
};

}  // namespace desktop
