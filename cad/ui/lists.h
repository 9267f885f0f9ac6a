// The controls that hold items: drop-down list, list box, radio group.
//
// The rules of lists live here once. Items count from 0 and -1 says "none". A sorted list places
// what is added by its text, without case; a positional one at the end. Insertion at a position
// never sorts and is refused past the end. Searches begin behind a given item and come round to the
// start, without case; an empty text is found nowhere by prefix.
#pragma once

#include <vector>

#include "cad/ui/control.h"

namespace cad::ui {

enum class Order { positional, sorted };

class CAD_UI_API ListControl : public Control {
 public:
  ListControl(Place place, std::u16string_view label, Face face, Order order,
              std::vector<std::u16string> items, bool translate);

  Order order() const { return order_; }
  int count() const { return static_cast<int>(items_.size()); }
  // An item's text; empty for an item that does not exist.
  const std::u16string& item(int index) const;

  // Adds by the list's order and returns the new item's index.
  int add(std::u16string_view text);
  // Inserts before an item, or at the end with index == count() or -1. Returns the index, or -1
  // when the position lies past the end.
  int insert(int index, std::u16string_view text);
  // False for an item that does not exist. Removing the selected item leaves none selected.
  bool remove(int index);
  void clear();
  // Replaces all items at once: for long lists.
  void setItems(const std::vector<std::u16string>& items);

  // First item whose text begins with (is equal to) `text`, searched behind item `after`, or -1.
  int find(std::u16string_view text, int after = -1) const;
  int findExact(std::u16string_view text, int after = -1) const;
  // The item that is the text to the letter, case too, or -1; the first of several.
  int findSame(std::u16string_view text) const;

  int selected() const { return selected_; }
  // Selects an item; one that does not exist means none.
  virtual void select(int index);
  std::u16string shown() const override { return item(selected_); }

 protected:
  void resetFace() override;
  void visitTexts(const TextVisitor& visit) override;
  Gesture wrongItem(std::u16string_view asked) const;

 private:
  struct Item {
    std::u16string text, key;  // key: upper case, what searches and sorting compare
  };
  void put(int index, std::u16string_view text);
  int search(std::u16string_view text, int after, bool whole) const;

  Order order_;
  bool translate_;
  std::vector<Item> items_;
  std::vector<std::u16string> declared_;

 protected:
  int selected_ = -1;
};

struct ChoiceOptions {
  std::u16string name{};
  std::vector<std::u16string> items{};
  int initial = -1;  // index among `items` as the list orders them
  Order order = Order::positional;
  bool freeText = false;  // the user may type what is not in the list
  bool translate = true;  // false: the items are data, no translator touches them
  bool enabled = true;
  bool visible = true;
};

// A drop-down list. Its value is a text; opening shows the value as show() does.
class CAD_UI_API Choice : public ListControl {
 public:
  // `chosen` fires when the user takes an item, the same one again included, or types.
  Choice(Place place, std::u16string_view label, ChoiceOptions options = {}, Handler chosen = {});

  bool freeText() const { return freeText_; }
  // The text that stands in the box now, and the one at the last field exchange or assignment.
  std::u16string text() const { return shown(); }
  const std::u16string& value() const { return value_; }
  Choice& operator=(std::u16string_view value);
  // The field exchange's way: selects the item that is the text, or else the first one that begins
  // with it; without one, a list with free text shows the text itself and a closed list stays as it
  // is.
  void show(std::u16string_view text);
  void select(int index) override;
  // The box's own text, nothing selected. Closed lists ignore it.
  void setText(std::u16string_view text);

  std::u16string shown() const override;
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  Gesture onEnter(std::u16string_view text) override;
  Gesture onChoose(int item) override;
  std::optional<std::u16string> store() override;
  void load() override;
  void resetFace() override;

 private:
  int initial_;
  bool freeText_;
  std::u16string typed_, value_;
  Handler chosen_;
};

struct ListBoxOptions {
  std::u16string name{};
  std::vector<std::u16string> items{};
  int initial = -1;
  Order order = Order::positional;
  bool translate = true;
  bool enabled = true;
  bool visible = true;
};

// A list with one selected line.
class CAD_UI_API ListBox : public ListControl {
 public:
  ListBox(Place place, std::u16string_view label, ListBoxOptions options = {}, Handler chosen = {},
          Handler doubleClicked = {});
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  Gesture onEnter(std::u16string_view text) override;
  Gesture onChoose(int item) override;
  Gesture onDoubleClick(int row) override;
  void resetFace() override;

 private:
  int initial_;
  Handler chosen_, doubleClicked_;
};

struct RadioOptions {
  std::u16string name{};
  std::vector<std::u16string> items{};
  std::vector<std::u16string> pictures{};  // one an item, or none
  int initial = 0;                         // -1: none
  bool enabled = true;
  bool visible = true;
};

// Radio buttons of which at most one is on.
class CAD_UI_API RadioGroup : public Control {
 public:
  RadioGroup(Place place, std::u16string_view label, RadioOptions options, Handler clicked = {});
  int count() const { return static_cast<int>(items_.size()); }
  const std::u16string& item(int index) const;  // empty for an item that does not exist
  // Name of the picture beside an item, or empty.
  std::u16string picture(int index) const;
  // The button that is on now, and at the last field exchange or assignment; -1 for none.
  int selected() const { return selected_; }
  int value() const { return value_; }
  void select(int index);
  RadioGroup& operator=(int value);
  std::u16string shown() const override;
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  Gesture onEnter(std::u16string_view text) override;
  Gesture onChoose(int item) override;
  std::optional<std::u16string> store() override;
  void load() override { selected_ = value_; }
  void resetFace() override;
  void visitTexts(const TextVisitor& visit) override;

 private:
  std::vector<std::u16string> items_, declared_, pictures_;
  int value_, selected_;
  Handler clicked_;
};

}  // namespace cad::ui
