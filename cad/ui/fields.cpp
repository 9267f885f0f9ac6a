#include "cad/ui/fields.h"

#include <charconv>
#include <cmath>

#include "cad/ui/dialog.h"
#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cad::ui {

std::u16string showReal(double value) {
  char text[64];
  double size = std::fabs(value);
  bool plain = size == 0 || (size >= 1e-10 && size < 1e15);
  // 15 digits in scientific form tell the decimal exponent after rounding; in plain form the digits
  // behind the point follow from it.
  auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, 14).ptr;
  std::string_view digits(text, static_cast<std::size_t>(end - text));
  std::size_t e = digits.find('e');
  if (e == digits.npos) return platform::widen(digits);  // not a finite number
  std::string tail(digits.substr(e));
  std::string out;
  if (plain) {
    int exponent = 0;
    std::from_chars(text + e + (text[e + 1] == '+' ? 2 : 1), end, exponent);
    end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed,
                        exponent < 14 ? 14 - exponent : 0)
              .ptr;
    out.assign(text, end);
    tail.clear();
  } else {
    out = digits.substr(0, e);
  }
  if (out.find('.') != out.npos) {
    out.erase(out.find_last_not_of('0') + 1);
    if (out.back() == '.') out.pop_back();
  }
  if (out == "-0") out = "0";
  return platform::widen(out + tail);
}

// --- typed texts -------------------------------------------------------------------------------

static std::u16string_view cut(std::u16string_view text, std::size_t capacity) {
  if (text.size() <= capacity) return text;
  bool splitsPair = capacity > 0 && (text[capacity - 1] & 0xFC00) == 0xD800;
  return text.substr(0, splitsPair ? capacity - 1 : capacity);
}

void Field::setShown(std::u16string_view text) {
  shown_ = cut(text, capacity_);
  refresh();
}

Gesture Field::onEnter(std::u16string_view text) {
  shown_ = cut(text, capacity_);
  done(u" = " + quoted(shown_), typed_);
  return {};
}

Text::Text(Place place, std::u16string_view label, TextOptions o, Handler typed)
    : Field(place, label, {o.name, o.enabled, o.visible}, o.capacity, std::move(typed)),
      value_(cut(o.initial, o.capacity)) {
  shown_ = value_;
}

Text& Text::operator=(std::u16string_view value) {
  value_ = cut(value, capacity());
  shown_ = value_;
  refresh();
  return *this;
}

std::optional<std::u16string> Text::store() {
  value_ = shown_;
  return std::nullopt;
}

// The complaint about a number outside its bounds; the templates are translated before they are
// filled.
static std::u16string outOfRange(Dialog& dialog, const std::u16string& min,
                                 const std::u16string& max, bool whole) {
  auto say = [&](std::u16string_view pattern, const auto&... bounds) {
    return platform::format(dialog.translate(pattern), bounds...);
  };
  if (min.empty())
    return whole ? say(u"Immettere un numero intero minore o uguale a %s.", max)
                 : say(u"Immettere un numero minore o uguale a %s.", max);
  if (max.empty())
    return whole ? say(u"Immettere un numero intero maggiore o uguale a %s.", min)
                 : say(u"Immettere un numero maggiore o uguale a %s.", min);
  return whole ? say(u"Immettere un numero intero compreso tra %s e %s.", min, max)
               : say(u"Immettere un numero compreso tra %s e %s.", min, max);
}

// The largest double as a bound says "no bound", and is not worth showing.
static std::optional<double> realBound(std::optional<double> bound) {
  if (bound && std::fabs(*bound) >= std::numeric_limits<double>::max()) return std::nullopt;
  return bound;
}

static constexpr std::size_t numberCapacity = 64;

Real::Real(Place place, std::u16string_view label, RealOptions o, Handler typed)
    : Field(place, label, {o.name, o.enabled, o.visible}, numberCapacity, std::move(typed)),
      value_(o.initial),
      min_(realBound(o.min)),
      max_(realBound(o.max)) {
  shown_ = showReal(value_);
}

Real& Real::operator=(double value) {
  value_ = value;
  shown_ = showReal(value);
  refresh();
  return *this;
}

void Real::admitValue() {
  if (min_ && value_ < *min_) min_ = value_;
  if (max_ && value_ > *max_) max_ = value_;
}

// The text that the value itself is shown as carries 15 digits; taking it for a change would lose
// the others on each pass.
std::optional<double> Real::typed() const {
  const std::optional<double> number =
      shown_ == showReal(value_) ? value_ : platform::parseReal(shown_);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<std::u16string> Real::complaint() const {
  const auto number = typed();
  if (!number) return dialog().translate(u"Immettere un numero.");
  if ((min_ && *number < *min_) || (max_ && *number > *max_))
    return outOfRange(dialog(), min_ ? showReal(*min_) : u"", max_ ? showReal(*max_) : u"", false);
  return std::nullopt;
}

std::optional<std::u16string> Real::store() {
  if (auto refused = complaint()) return refused;
  value_ = *typed();
  return std::nullopt;
}

static std::u16string showInteger(std::int32_t value) {
  return platform::widen(std::to_string(value));
}

Integer::Integer(Place place, std::u16string_view label, IntegerOptions o, Handler typed)
    : Field(place, label, {o.name, o.enabled, o.visible}, numberCapacity, std::move(typed)),
      value_(o.initial),
      min_(o.min),
      max_(o.max) {
  shown_ = showInteger(value_);
}

Integer& Integer::operator=(std::int32_t value) {
  value_ = value;
  load();
  refresh();
  return *this;
}

void Integer::load() { shown_ = showInteger(value_); }

std::optional<std::int32_t> Integer::typed() const {
  const auto number = platform::parseInteger(shown_);
  using Limits = std::numeric_limits<std::int32_t>;
  if (!number || *number < Limits::min() || *number > Limits::max()) return std::nullopt;
  return static_cast<std::int32_t>(*number);
}

std::optional<std::u16string> Integer::complaint() const {
  const auto number = typed();
  if (!number) return dialog().translate(u"Immettere un numero intero.");
  if ((min_ && *number < *min_) || (max_ && *number > *max_))
    return outOfRange(dialog(), min_ ? showInteger(*min_) : u"", max_ ? showInteger(*max_) : u"",
                      true);
  return std::nullopt;
}

std::optional<std::u16string> Integer::store() {
  if (auto refused = complaint()) return refused;
  value_ = *typed();
  return std::nullopt;
}

// --- check box -----------------------------------------------------------------------------------

Check::Check(Place place, std::u16string_view label, CheckOptions o, Handler clicked)
    : Control(place, label, {o.name, o.enabled, o.visible}),
      value_(o.initial),
      checked_(o.initial),
      clicked_(std::move(clicked)) {}

void Check::setChecked(bool checked) {
  checked_ = checked;
  refresh();
}

Check& Check::operator=(bool value) {
  value_ = checked_ = value;
  refresh();
  return *this;
}

Gesture Check::onEnter(std::u16string_view text) {
  bool yes = platform::equalNoCase(text, u"sì") || platform::equalNoCase(text, u"si") ||
             platform::equalNoCase(text, u"yes");
  if (!yes && !platform::equalNoCase(text, u"no"))
    return platform::Error{"Rispondere sì oppure no."};
  // Asking for the state that stands already is no click.
  if (yes == checked_) return {};
  return onPress();
}

Gesture Check::onPress() {
  checked_ = !checked_;
  done(u" = " + shown(), clicked_);
  return {};
}

std::optional<std::u16string> Check::store() {
  value_ = checked_;
  return std::nullopt;
}

// --- time ----------------------------------------------------------------------------------------

static bool exists(TimeOfDay t) {
  return t.hour >= 0 && t.hour <= 23 && t.minute >= 0 && t.minute <= 59;
}

TimePicker::TimePicker(Place place, std::u16string_view label, TimeOptions o, Handler changed)
    : Control(place, label, {o.name, o.enabled, o.visible}),
      value_(exists(o.initial) ? o.initial : TimeOfDay{}),
      time_(value_),
      changed_(std::move(changed)) {}

bool TimePicker::set(TimeOfDay value) {
  if (!exists(value)) return false;
  value_ = time_ = value;
  refresh();
  return true;
}

std::u16string TimePicker::shown() const {
  return platform::format(u"%02d:%02d", time_.hour, time_.minute);
}

Gesture TimePicker::onEnter(std::u16string_view text) {
  std::size_t colon = text.find(u':');
  auto hour = platform::parseInteger(text.substr(0, colon));
  auto minute = colon == text.npos ? std::optional<std::int64_t>(0)
                                   : platform::parseInteger(text.substr(colon + 1));
  if (!hour || !minute || *hour < 0 || *hour > 23 || *minute < 0 || *minute > 59)
    return platform::Error{"Immettere un'ora da 00:00 a 23:59."};
  time_ = {static_cast<int>(*hour), static_cast<int>(*minute)};
  done(u" = " + shown(), changed_);
  return {};
}

Gesture TimePicker::spin(Part part, int steps) {
  if (auto able = ready(); !able) return able;
  auto turn = [steps](int from, int size) { return ((from + steps % size) % size + size) % size; };
  if (part == Part::hour)
    time_.hour = turn(time_.hour, 24);
  else
    time_.minute = turn(time_.minute, 60);
  done(u" = " + shown(), changed_);
  return {};
}

std::optional<std::u16string> TimePicker::store() {
  value_ = time_;
  return std::nullopt;
}

// --- buttons, labels, pictures -------------------------------------------------------------------

Button::Button(Place place, std::u16string_view label, ButtonOptions o, Handler pressed)
    : Control(place, label, {o.name, o.enabled, o.visible}),
      role_(o.role),
      default_(o.isDefault),
      pressed_(std::move(pressed)) {}

Gesture Button::onPress() {
  if (pressed_ || role_ == Role::plain) {
    done(u"", pressed_);
    return {};
  }
  Role role = role_;
  done(u"", Handler([this, role] {
         if (role == Role::ok) dialog().onOk();
         if (role == Role::cancel) dialog().onCancel();
         if (role == Role::help) dialog().onHelp();
       }));
  return {};
}

Label::Label(Place place, std::u16string_view text, LabelOptions o)
    : Control(place, text, {o.name, o.enabled, o.visible}) {}

Label& Label::operator=(std::u16string_view text) {
  setLabel(text);
  return *this;
}

Picture::Picture(Place place, std::u16string_view picture)
    : Control(place, u"", {}), picture_(picture) {}

void Picture::setPicture(std::u16string_view picture) {
  picture_ = picture;
  refresh();
}

}  // namespace cad::ui
