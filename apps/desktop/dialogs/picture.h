// The pictures of the product's dialogs: drawings in lines, painted anew at whatever size and
// resolution they are shown.
#pragma once

#include <QIcon>
#include <QSvgRenderer>
#include <QWidget>

namespace desktop {

// The file of a picture by its name.
QString pictureFile(const QString& name);
// As an icon, for buttons.
QIcon pictureIcon(const QString& name);

class PictureView : public QWidget {
 public:
  explicit PictureView(QWidget* parent);
  void setPicture(const QString& name);
  const QString& picture() const { return name_; }
  QSize sizeHint() const override { return {80, 80}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString name_;
  QSvgRenderer drawing_;
};

}  // namespace desktop
