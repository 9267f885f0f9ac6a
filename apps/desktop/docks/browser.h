// The networks of the drawing as a tree to look for elements in: a click chooses and shows what it
// stands for, and what is chosen in the drawing is chosen here.
#pragma once

#include <QSet>
#include <QTimer>
#include <QTreeView>
#include <QWidget>
#include <functional>

#include "apps/desktop/docks/browser_model.h"

class QLabel;
class QStackedLayout;

namespace desktop {

class FilterLine;

class Browser : public QWidget {
  Q_OBJECT

 public:
  explicit Browser(const Networks& networks, QWidget* parent = nullptr);

  // The networks have been read anew. What takes a longer look follows when nothing has changed
  // for a while.
  void follow();
  // Chooses the rows of these entities.
  void choose(const std::vector<std::uint32_t>& records);
  // Whether the time for a longer look has come; asked before it.
  void setIdle(std::function<bool()> idle) { idle_ = std::move(idle); }

  BrowserModel& model() { return model_; }
  QTreeView& view() { return *view_; }
  FilterLine& filter() { return *filter_; }

 Q_SIGNALS:
  // The user has chosen what these entities are; `shown` when he wants to see them.
  void chosen(const std::vector<std::uint32_t>& records, bool shown);

 private:
  void look();
  void report();
  void keepOpen(const QModelIndex& index, bool open);
  void openAgain();
  std::vector<Remark> problemsOf(const ShownNetwork& network) const;

  const Networks& networks_;
  BrowserModel model_;
  FilterLine* filter_;
  QTreeView* view_;
  QStackedLayout* stack_;
  QTimer rest_;
  std::function<bool()> idle_;
  QSet<QString> open_;  // keys of groups
  bool following_ = false;
};

}  // namespace desktop
