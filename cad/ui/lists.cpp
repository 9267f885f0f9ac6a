#include "cad/ui/lists.h"

#include <algorithm>

#include "cad/ui/dialog.h"
#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::ui {

ListControl::ListControl(Place place, std::u16string_view label, Face face, Order order,
                         std::vector<std::u16string> items, bool translate)
    : Control(place, label, std::move(face)),
      order_(order),
      translate_(translate),
      declared_(std::move(items)) {
  setItems(declared_);
}

const std::u16string& ListControl::item(int index) const {
  static const std::u16string none;
  return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].text : none;
}

void ListControl::put(int index, std::u16string_view text) {
  items_.insert(items_.begin() + index, Item{std::u16string(text), platform::upper(text)});
  if (selected_ >= index) ++selected_;
  refresh();
}

int ListControl::add(std::u16string_view text) {
  int index = count();
  if (order_ == Order::sorted) {
    auto at = std::upper_bound(
        items_.begin(), items_.end(), platform::upper(text),
        [](const std::u16string& key, const Item& item) { return key < item.key; });
    index = static_cast<int>(at - items_.begin());
  }
  put(index, text);
  return index;
}

int ListControl::insert(int index, std::u16string_view text) {
  if (index == -1) index = count();
  if (index < 0 || index > count()) return -1;
  put(index, text);
  return index;
}

bool ListControl::remove(int index) {
  if (index < 0 || index >= count()) return false;
  items_.erase(items_.begin() + index);
  int selection = selected_ == index ? -1 : selected_ > index ? selected_ - 1 : selected_;
  if (selection != selected_) {
    if (selection < 0)
      select(-1);
    else
      selected_ = selection;
  }
  refresh();
  return true;
}

void ListControl::clear() { setItems({}); }

void ListControl::setItems(const std::vector<std::u16string>& items) {
  items_.clear();
  for (const auto& text : items) items_.push_back({text, platform::upper(text)});
  if (order_ == Order::sorted)
    std::stable_sort(items_.begin(), items_.end(),
                     [](const Item& a, const Item& b) { return a.key < b.key; });
  select(-1);
}

int ListControl::search(std::u16string_view text, int after, bool whole) const {
  if (text.empty() && !whole) return -1;
  std::u16string key = platform::upper(text);
  int n = count();
  int start = after >= 0 && after < n ? after + 1 : 0;
  for (int k = 0; k < n; ++k) {
    int i = (start + k) % n;
    const std::u16string& candidate = items_[static_cast<std::size_t>(i)].key;
    if (whole ? candidate == key : candidate.starts_with(key)) return i;
  }
  return -1;
}

int ListControl::find(std::u16string_view text, int after) const {
  return search(text, after, false);
}

int ListControl::findExact(std::u16string_view text, int after) const {
  return search(text, after, true);
}

int ListControl::findSame(std::u16string_view text) const {
  const auto at =
      std::find_if(items_.begin(), items_.end(), [text](const Item& i) { return i.text == text; });
  return at == items_.end() ? -1 : static_cast<int>(at - items_.begin());
}

void ListControl::select(int index) {
  selected_ = index >= 0 && index < count() ? index : -1;
  refresh();
}

void ListControl::resetFace() {
  Control::resetFace();
  setItems(declared_);
}

void ListControl::visitTexts(const TextVisitor& visit) {
  Control::visitTexts(visit);
  if (!translate_ || items_.empty()) return;
  std::vector<std::u16string> texts;
  for (const Item& item : items_) texts.push_back(item.text);
  auto before = texts;
  for (auto& text : texts) visit(text);
  if (texts == before) return;
  int selection = selected_;
  std::u16string shownBefore = selection < 0 ? u"" : texts[static_cast<std::size_t>(selection)];
  setItems(texts);
  if (selection >= 0) select(order_ == Order::sorted ? findExact(shownBefore) : selection);
}

// The position or text of an item that was asked for and is not there; says what is.
Gesture ListControl::wrongItem(std::u16string_view asked) const {
  std::vector<std::u16string> texts;
  for (const Item& item : items_) texts.push_back(item.text);
  return platform::Error{platform::narrow(platform::format(
      platform::words(u"La voce %s non è nell'elenco, che ha: %s."), asked, enumerated(texts)))};
}

static std::u16string position(int item) { return platform::format(u"#%d", item + 1); }

// --- drop-down list
// --------------------------------------------------------------------------------

Choice::Choice(Place place, std::u16string_view label, ChoiceOptions o, Handler chosen)
    : ListControl(place, label, {o.name, o.enabled, o.visible}, o.order, std::move(o.items),
                  o.translate),
      initial_(o.initial),
      freeText_(o.freeText),
      chosen_(std::move(chosen)) {
  ListControl::select(initial_);
  value_ = Choice::shown();
}

std::u16string Choice::shown() const { return selected_ >= 0 ? item(selected_) : typed_; }

Choice& Choice::operator=(std::u16string_view value) {
  value_ = value;
  show(value);
  return *this;
}

void Choice::show(std::u16string_view text) {
  int found = text.empty() ? -1 : findExact(text);
  if (found < 0) found = find(text);
  if (found >= 0)
    select(found);
  else
    setText(text);
}

void Choice::select(int index) {
  typed_.clear();
  ListControl::select(index);
}

void Choice::setText(std::u16string_view text) {
  if (!freeText_) return;
  selected_ = -1;
  typed_ = text;
  refresh();
}

Gesture Choice::onEnter(std::u16string_view text) {
  // An item's exact spelling goes before one that differs in case only.
  int found = findSame(text);
  if (found < 0) found = findExact(text);
  if (found >= 0) return onChoose(found);
  if (!freeText_) return wrongItem(quoted(text));
  typed_ = text;
  selected_ = -1;
  done(u" = " + quoted(text), chosen_);
  return {};
}

Gesture Choice::onChoose(int index) {
  if (index < 0 || index >= count()) return wrongItem(position(index));
  typed_.clear();
  selected_ = index;
  // Two equal items can only be told apart by position.
  bool unique = findExact(item(index), index) == index;
  done(u" = " + (unique ? quoted(item(index)) : position(index)), chosen_);
  return {};
}

std::optional<std::u16string> Choice::store() {
  value_ = shown();
  return std::nullopt;
}

void Choice::load() {
  if (!value_.empty()) show(value_);
}

void Choice::resetFace() {
  ListControl::resetFace();
  select(initial_);
}

// --- list box
// ----------------------------------------------------------------------------------------

ListBox::ListBox(Place place, std::u16string_view label, ListBoxOptions o, Handler chosen,
                 Handler doubleClicked)
    : ListControl(place, label, {o.name, o.enabled, o.visible}, o.order, std::move(o.items),
                  o.translate),
      initial_(o.initial),
      chosen_(std::move(chosen)),
      doubleClicked_(std::move(doubleClicked)) {
  ListControl::select(initial_);
}

Gesture ListBox::onEnter(std::u16string_view text) {
  int found = findExact(text);
  for (int i = 0; i < count(); ++i)
    if (item(i) == text) {
      found = i;
      break;
    }
  return found >= 0 ? onChoose(found) : wrongItem(quoted(text));
}

Gesture ListBox::onChoose(int index) {
  if (index < 0 || index >= count()) return wrongItem(position(index));
  selected_ = index;
  bool unique = findExact(item(index), index) == index;
  done(u" = " + (unique ? quoted(item(index)) : position(index)), chosen_);
  return {};
}

Gesture ListBox::onDoubleClick(int row) {
  if (row < 0 || row >= count()) return wrongItem(position(row));
  selected_ = row;
  done(platform::format(u"[%d] **", row + 1), doubleClicked_);
  return {};
}

void ListBox::resetFace() {
  ListControl::resetFace();
  select(initial_);
}

// --- radio buttons
// -----------------------------------------------------------------------------------

RadioGroup::RadioGroup(Place place, std::u16string_view label, RadioOptions o, Handler clicked)
    : Control(place, label, {o.name, o.enabled, o.visible}),
      items_(std::move(o.items)),
      declared_(items_),
      pictures_(std::move(o.pictures)),
      value_(o.initial >= 0 && o.initial < static_cast<int>(items_.size()) ? o.initial : -1),
      selected_(value_),
      clicked_(std::move(clicked)) {}

const std::u16string& RadioGroup::item(int index) const {
  static const std::u16string none;
  return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)] : none;
}

std::u16string RadioGroup::picture(int index) const {
  return index >= 0 && static_cast<std::size_t>(index) < pictures_.size()
             ? pictures_[static_cast<std::size_t>(index)]
             : std::u16string();
}

void RadioGroup::select(int index) {
  selected_ = index >= 0 && index < count() ? index : -1;
  refresh();
}

RadioGroup& RadioGroup::operator=(int value) {
  select(value);
  value_ = selected_;
  return *this;
}

std::u16string RadioGroup::shown() const {
  return selected_ >= 0 ? item(selected_) : std::u16string();
}

Gesture RadioGroup::onEnter(std::u16string_view text) {
  for (int i = 0; i < count(); ++i)
    if (sameName(item(i), text) || sameName(declared_[static_cast<std::size_t>(i)], text))
      return onChoose(i);
  return platform::Error{platform::narrow(platform::format(
      platform::words(u"La voce %s non c'è; ci sono: %s."), quoted(text), enumerated(items_)))};
}

Gesture RadioGroup::onChoose(int index) {
  if (index < 0 || index >= count())
    return platform::Error{
        platform::narrow(platform::format(platform::words(u"La voce %s non c'è; ci sono: %s."),
                                          position(index), enumerated(items_)))};
  selected_ = index;
  const std::u16string& text = item(index);
  done(u" = " + (text.empty() ? position(index) : quoted(text)), clicked_);
  return {};
}

std::optional<std::u16string> RadioGroup::store() {
  value_ = selected_;
  return std::nullopt;
}

void RadioGroup::resetFace() {
  Control::resetFace();
  items_ = declared_;
}

void RadioGroup::visitTexts(const TextVisitor& visit) {
  Control::visitTexts(visit);
  for (auto& item : items_) visit(item);
}

}  // namespace cad::ui
