// The networks of a drawing as a tree: networks, under each its kinds of elements with how many
// there are, under these the elements; besides what is wrong, and what differs from the file that
// the network came from.
#pragma once

#include <QAbstractItemModel>
#include <vector>

#include "apps/desktop/docks/networks.h"

namespace desktop {

// What a row says about an element.
struct Remark {
  QString text;
  std::vector<std::uint32_t> elements;  // that it is about, by number; none for the whole network
  friend bool operator==(const Remark&, const Remark&) = default;
};

class BrowserModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  // A group of rows under a network: the six kinds, then these.
  enum Group { problems = 6, changes, kGroups };

  explicit BrowserModel(const Networks& networks, QObject* parent = nullptr);

  // The networks have been read anew.
  void follow();
  // What is only known after a longer look.
  void setRemarks(std::size_t network, Group group, std::vector<Remark> remarks);
  void setFilter(const QString& filter);
  const QString& filter() const { return filter_; }

  QModelIndex indexOf(ElementPlace place) const;
  // The entities of a row: of an element or remark, of all elements of a kind.
  std::vector<std::uint32_t> recordsOf(const QModelIndex& index) const;
  // Of a row of a network or group, a text that stays the same when the rows change; else empty.
  QString keyOf(const QModelIndex& index) const;

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& index) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  struct Rows {
    Group group;
    std::vector<std::uint32_t> shown;  // numbers of elements or remarks
    std::size_t all = 0;               // how many there are without the filter
  };
  struct Branch {
    std::vector<Remark> remarks[2];  // problems, changes
    std::vector<Rows> groups;        // those that have rows
  };
  void fill();
  Rows rowsOf(std::size_t network, Group group) const;
  // The row of a group under its network; -1 when it is not shown.
  int rowOf(std::size_t network, int group) const;
  const Rows* rowsAt(const QModelIndex& index) const;
  const std::vector<Remark>& remarksOf(std::size_t network, Group group) const {
    return branches_[network].remarks[group - problems];
  }
  QVariant networkData(const ShownNetwork& network, int role) const;
  QVariant groupData(const Rows& rows, int role) const;
  QVariant elementData(std::size_t network, const Rows& rows, int row, int role) const;
  void addRecords(std::size_t network, const Rows& rows, std::size_t row,
                  std::vector<std::uint32_t>& records) const;

  const Networks& networks_;
  std::vector<Branch> branches_;
  QString filter_;
};

// What the kinds are called, of many.
QString titleOf(BrowserModel::Group group);

}  // namespace desktop
