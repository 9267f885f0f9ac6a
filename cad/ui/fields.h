// The controls that hold one value: typed texts and numbers, check box, time, buttons, labels,
// pictures.
#pragma once

#include <cstdint>
#include <limits>

#include "cad/ui/control.h"

namespace cad::ui {

// A real as fields show it: at most 15 significant digits, no trailing zeros, a point as decimal
// mark, plain digits from 1e-10 up to below 1e15 and an exponent elsewhere.
CAD_UI_API std::u16string showReal(double value);

// A typed text on its way to a value. The three typed kinds share it.
class CAD_UI_API Field : public Control {
 public:
  Field(Place place, std::u16string_view label, Face face, std::size_t capacity, Handler typed)
      : Control(place, label, std::move(face)), typed_(std::move(typed)), capacity_(capacity) {}
  std::u16string shown() const override { return shown_; }
  // Longest text in UTF-16 units that can be typed; what is beyond it is dropped.
  std::size_t capacity() const { return capacity_; }
  // Changes what stands in the box and leaves the value to the next field exchange.
  void setShown(std::u16string_view text);
  // Why the next field exchange would refuse what stands in the box; nothing where it would not.
  virtual std::optional<std::u16string> complaint() const { return std::nullopt; }

 protected:
  Gesture onEnter(std::u16string_view text) override;
  std::u16string shown_;

 private:
  Handler typed_;
  std::size_t capacity_;
};

struct TextOptions {
  std::u16string name{};
  std::size_t capacity = 255;
  std::u16string initial{};
  bool enabled = true;
  bool visible = true;
};

class CAD_UI_API Text : public Field {
 public:
  // `typed` fires on each change of the text by the user.
  Text(Place place, std::u16string_view label, TextOptions options = {}, Handler typed = {});
  const std::u16string& value() const { return value_; }
  Text& operator=(std::u16string_view value);
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  std::optional<std::u16string> store() override;
  void load() override { shown_ = value_; }

 private:
  std::u16string value_;
};

struct RealOptions {
  std::u16string name{};
  double initial = 0;
  std::optional<double> min{}, max{};  // bounds included
  bool enabled = true;
  bool visible = true;
};

class CAD_UI_API Real : public Field {
 public:
  Real(Place place, std::u16string_view label, RealOptions options = {}, Handler typed = {});
  double value() const { return value_; }
  Real& operator=(double value);
  std::optional<double> min() const { return min_; }
  std::optional<double> max() const { return max_; }
  // Takes a bound back as far as the value that is there already, so that who leaves the field
  // alone can close the dialog.
  void admitValue();
  std::optional<std::u16string> complaint() const override;
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  std::optional<std::u16string> store() override;
  void load() override { shown_ = showReal(value_); }

 private:
  std::optional<double> typed() const;
  double value_;
  std::optional<double> min_, max_;
};

struct IntegerOptions {
  std::u16string name{};
  std::int32_t initial = 0;
  std::optional<std::int32_t> min{}, max{};
  bool enabled = true;
  bool visible = true;
};

class CAD_UI_API Integer : public Field {
 public:
  Integer(Place place, std::u16string_view label, IntegerOptions options = {}, Handler typed = {});
  std::int32_t value() const { return value_; }
  Integer& operator=(std::int32_t value);
  std::optional<std::int32_t> min() const { return min_; }
  std::optional<std::int32_t> max() const { return max_; }
  std::optional<std::u16string> complaint() const override;
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  std::optional<std::u16string> store() override;
  void load() override;

 private:
  std::optional<std::int32_t> typed() const;
  std::int32_t value_;
  std::optional<std::int32_t> min_, max_;
};

struct CheckOptions {
  std::u16string name{};
  bool initial = false;
  bool enabled = true;
  bool visible = true;
};

// enter() takes "sì", "si", "no"; press() flips.
class CAD_UI_API Check : public Control {
 public:
  Check(Place place, std::u16string_view label, CheckOptions options = {}, Handler clicked = {});
  // The state on the screen, and the state at the last field exchange or assignment.
  bool checked() const { return checked_; }
  bool value() const { return value_; }
  // Changes the screen alone.
  void setChecked(bool checked);
  Check& operator=(bool value);
  std::u16string shown() const override { return checked_ ? u"sì" : u"no"; }
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  Gesture onEnter(std::u16string_view text) override;
  Gesture onPress() override;
  std::optional<std::u16string> store() override;
  void load() override { checked_ = value_; }

 private:
  bool value_, checked_;
  Handler clicked_;
};

struct TimeOfDay {
  int hour = 0;    // 0..23
  int minute = 0;  // 0..59
  friend bool operator==(const TimeOfDay&, const TimeOfDay&) = default;
};

struct TimeOptions {
  std::u16string name{};
  TimeOfDay initial{};
  bool enabled = true;
  bool visible = true;
};

// Hour and minute with spin arrows, no date. enter() takes "h:m".
class CAD_UI_API TimePicker : public Control {
 public:
  enum class Part { hour, minute };
  TimePicker(Place place, std::u16string_view label, TimeOptions options = {},
             Handler changed = {});
  TimeOfDay value() const { return value_; }
  TimeOfDay time() const { return time_; }  // on the screen
  // False, and nothing changed, for an hour or a minute that does not exist.
  bool set(TimeOfDay value);
  std::u16string shown() const override;  // "hh:mm"
  void accept(Visitor& visitor) override { visitor.visit(*this); }
  // The arrows: goes round within its part.
  Gesture spin(Part part, int steps);

 protected:
  Gesture onEnter(std::u16string_view text) override;
  std::optional<std::u16string> store() override;
  void load() override { time_ = value_; }

 private:
  TimeOfDay value_, time_;
  Handler changed_;
};

enum class Role { plain, ok, cancel, help };

struct ButtonOptions {
  std::u16string name{};
  Role role = Role::plain;
  bool isDefault = false;  // Enter presses it; without a default button, the OK button is it
  bool enabled = true;
  bool visible = true;
};

class CAD_UI_API Button : public Control {
 public:
  // Without a handler the roles do what they say: Dialog::onOk, onCancel, onHelp.
  Button(Place place, std::u16string_view label, ButtonOptions options = {}, Handler pressed = {});
  Button(Place place, std::u16string_view label, Handler pressed)
      : Button(place, label, ButtonOptions{}, std::move(pressed)) {}
  Role role() const { return role_; }
  bool isDefault() const { return default_; }
  std::u16string shown() const override { return label(); }
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  Gesture onPress() override;

 private:
  Role role_;
  bool default_;
  Handler pressed_;
};

struct LabelOptions {
  std::u16string name{};
  bool enabled = true;
  bool visible = true;
};

// A text line; its label is what it says.
class CAD_UI_API Label : public Control {
 public:
  Label(Place place, std::u16string_view text, LabelOptions options = {});
  Label& operator=(std::u16string_view text);
  std::u16string shown() const override { return label(); }
  void accept(Visitor& visitor) override { visitor.visit(*this); }
};

// A picture of the product's assets, by the name of its file without extension.
class CAD_UI_API Picture : public Control {
 public:
  Picture(Place place, std::u16string_view picture);
  const std::u16string& picture() const { return picture_; }
  void setPicture(std::u16string_view picture);
  std::u16string shown() const override { return picture_; }
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 private:
  std::u16string picture_;
};

}  // namespace cad::ui
