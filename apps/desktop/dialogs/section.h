// One column of a dialog: rows of labels and fields, lists, boxes, from above.
#pragma once

#include <QString>
#include <vector>

class QBoxLayout;
class QGridLayout;
class QLayout;
class QVBoxLayout;
class QWidget;

namespace desktop {

class Projection;
class RadioProjection;

class Section {
 public:
  explicit Section(QVBoxLayout* column) : column_(column) {}

  void addField(Projection& field);
  // Behind the field of the last row.
  void addBeside(Projection& control);
  // In front of the label of the row to come.
  void leadWith(Projection& control) { lead_ = &control; }
  // Buttons: beside the only field of its run, else below what stands there.
  void addButton(Projection& button);
  void addLine(Projection& line);
  void addChecks(const std::vector<Projection*>& checks);
  void addRadio(RadioProjection& radio);
  // Each button with the field that belongs to it.
  void addRadioFields(RadioProjection& radio, const std::vector<Projection*>& fields);
  void addList(Projection& list);
  // Anything else, over the whole width.
  void add(QWidget* widget, int stretch);
  void add(QLayout* layout);
  // Nothing comes any more: what is left of the height stays below.
  void close();

 private:
  QGridLayout& rows();
  void endRows();
  QBoxLayout* cell(Projection& control);
  void remark(Projection& control);
  void pictures(RadioProjection& radio);

  QVBoxLayout* column_;
  QGridLayout* rows_ = nullptr;
  int row_ = 0;
  int fields_ = 0;              // in this run
  QBoxLayout* last_ = nullptr;  // what buttons stand in
  bool afterButton_ = false;
  bool tall_ = false;  // something takes the height that is left
  Projection* lead_ = nullptr;
};

}  // namespace desktop
