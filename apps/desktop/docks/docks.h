// The docks beside the drawing - networks, layers, properties - and what goes between them, the
// drawing and its canvas.
#pragma once

#include <QMainWindow>
#include <QTimer>

#include "apps/desktop/command_runner.h"
#include "apps/desktop/docks/browser.h"
#include "apps/desktop/docks/layers.h"
#include "apps/desktop/docks/properties.h"

namespace desktop {

class Canvas;

class Docks : public QObject {
  Q_OBJECT

 public:
  Docks(Canvas& canvas, CommandRunner& runner, QMainWindow& window);

  // The session may have another drawing, the drawing may have changed.
  void follow();

  Layers& layers() { return *layers_; }
  Browser& browser() { return *browser_; }
  Properties& properties() { return *properties_; }

 Q_SIGNALS:
  // For the command line.
  void said(const QString& line);

 protected:
  // Keys in a list that are meant for the drawing, and one that is not.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QDockWidget* add(QMainWindow& window, const char* name, const QString& title, QWidget* widget);
  void list();
  void changeLayers(const QStringList& names, const cad::LayerChange& change);
  void makeCurrent(const QString& name);
  void edit(const std::vector<ElementPlace>& elements, const PropertyEdit& edit);
  void showThings(const std::vector<std::uint32_t>& records);
  void selectionChanged();
  // Runs work as one undo step of that name; what it changed is taken back when it says no.
  void change(const char16_t* name, std::function<bool(cad::Drawing&)> work);

  Canvas& canvas_;
  CommandRunner& runner_;
  Networks networks_;
  Layers* layers_;
  Browser* browser_;
  Properties* properties_;
  QTimer rest_;
  std::uint64_t revision_ = 0;
  std::uint32_t number_ = 0;
  bool fromBrowser_ = false;
};

}  // namespace desktop
