// Results of a run, shown on the canvas in time. Nothing is written into the drawing.
#pragma once

#include <QObject>
#include <optional>
#include <unordered_map>

#include "apps/desktop/results/clock.h"
#include "apps/desktop/results/overlay.h"
#include "apps/desktop/results/result_set.h"
#include "apps/desktop/results/series.h"

class QBoxLayout;
class QDockWidget;
class QMainWindow;

namespace desktop {

class Canvas;

class ResultsView : public QObject {
  Q_OBJECT

 public:
  // The bar comes last in `column`, which holds the canvas; the dock of the series into the window.
  // All of them must outlive this.
  ResultsView(Canvas& canvas, QBoxLayout& column, QMainWindow& window);
  ~ResultsView() override;

  // Shows a report or binary results file of a network of the open drawing, in place of what is
  // shown; why not, else empty: what is shown stays then. The file is not needed afterwards.
  QString open(const QString& path, std::u16string_view network);
  // The drawing is shown as it is again.
  void close();
  // The drawing has changed, or is another one (by its number), which closes the results.
  void follow(std::uint32_t drawing);

  bool isOpen() const { return set_.has_value(); }
  // While they are open.
  const ResultSet& results() const { return *set_; }
  Clock& clock() { return *clock_; }
  Series& series() { return *series_; }
  QDockWidget& dock() { return *dock_; }
  const ResultOverlay& overlay() const { return overlay_; }
  // Name and values of an entity's element in the present period, in lines; empty for others.
  QString tipOf(std::uint32_t record) const;

 private:
  struct Number {
    bool isNode = false;
    std::size_t at = 0;
  };

  void showPeriod();
  void showSelection();
  void numberElements();

  Canvas& canvas_;
  Clock* clock_;
  Series* series_;
  QDockWidget* dock_;
  std::optional<ResultSet> set_;
  std::optional<Colours> colours_;
  ResultOverlay overlay_;
  std::unordered_map<std::uint32_t, Number> numbers_;  // by record
  std::uint32_t drawing_ = 0;
};

}  // namespace desktop
