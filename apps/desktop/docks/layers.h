// The layers of the drawing: what is shown, frozen or locked, and in which colour.
#pragma once

#include <QAbstractTableModel>
#include <QTableView>
#include <QWidget>
#include <functional>
#include <vector>

#include "cad/editor/layers.h"

class QLabel;

namespace desktop {

class FilterLine;

class LayerModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { name, on, frozen, locked, colour, kColumns };
  using QAbstractTableModel::QAbstractTableModel;

  // Rows stay where they are while the layers are the same ones.
  void setLayers(std::vector<cad::LayerInfo> layers);
  void setFilter(const QString& filter);
  void setDarkGround(bool dark);
  bool isDarkGround() const { return darkGround_; }
  const cad::LayerInfo& at(int row) const { return layers_[shown_[static_cast<std::size_t>(row)]]; }
  std::size_t layerCount() const { return layers_.size(); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // Changes nothing here: the drawing does, and then the rows follow.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 Q_SIGNALS:
  void wanted(int row, const cad::LayerChange& change);

 private:
  std::vector<std::size_t> filtered() const;
  QVariant stateOf(const cad::LayerInfo& layer, int column) const;

  std::vector<cad::LayerInfo> layers_;  // by name
  std::vector<std::size_t> shown_;
  QString filter_;
  bool darkGround_ = true;
};

class Layers : public QWidget {
  Q_OBJECT

 public:
  explicit Layers(QWidget* parent = nullptr);

  // Null for no drawing.
  void show(const cad::Drawing* drawing);
  void setDarkGround(bool dark) { model_.setDarkGround(dark); }
  LayerModel& model() { return model_; }
  QTableView& view() { return *view_; }

 Q_SIGNALS:
  // Of all these layers, as one change.
  void changeWanted(const QStringList& names, const cad::LayerChange& change);
  void currentWanted(const QString& name);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  // A change in a chosen row is meant for all that are chosen.
  QStringList meant(int row) const;
  void clicked(const QModelIndex& index);
  void sizeColumns();

  LayerModel model_;
  FilterLine* filter_;
  QTableView* view_;
};

}  // namespace desktop
