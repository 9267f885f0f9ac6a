#include "cad/family/profile.h"

#include <algorithm>
#include <cmath>

#include "cad/drawing/block_pen.h"
#include "platform/decimals.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cad {
namespace {

constexpr int kGrey = 8;
constexpr double kTextOnPaper = 2.0;  // height of the band's texts on the sheet, mm

// Sizes in text heights.
constexpr double kTitleWidth = 26, kAxisWidth = 10, kFan = 4, kNameRow = 9, kNumberRow = 8;
constexpr double kStationGap = 1.6;  // texts of neighbouring stations
constexpr double kTitleLine = 2.4;

// The rows of the band from above, with the texts of the title block's column.
enum Row {
  kNames,
  kLevels,
  kGround,
  kHeads,
  kPressures,
  kReachLengths,
  kChainages,
  kReachNames,
  kRowCount
};
constexpr const char16_t* kRowLabels[kRowCount] = {
    u"NODI",
    u"QUOTE NODI [m]",
    u"QUOTE TERRENO [m]",
    u"CARICHI PIEZOMETRICI [m]",
    u"PRESSIONI [m]",
    u"DISTANZE PARZIALI [m]",
    u"DISTANZE PROGRESSIVE [m]",
    u"RAMI - DIAMETRI [mm]",
};

// The rows of a band, in text heights above the lower left corner of the title block.
class Band {
 public:
  explicit Band(bool ground) : ground_(ground) {}
  bool has(int row) const { return ground_ || row != kGround; }
  double foot() const { return ground_ ? -kNumberRow : 0; }
  double height(int row) const { return row == kNames ? kNameRow : has(row) ? kNumberRow : 0; }
  double top(int row) const {
    double y = foot();
    for (int r = kRowCount - 1; r >= row; --r) y += height(r);
    return y;
  }
  double middle(int row) const { return top(row) - height(row) / 2; }

 private:
  bool ground_;
};

// A text that cannot be condensed to its width is smaller.
PenText fitted(PenText text) {
  constexpr double kNarrowest = 0.36;  // mean width of a character, in heights
  const double least = kNarrowest * static_cast<double>(text.text.size());
  if (text.width > 0 && least * text.height > text.width) text.height = text.width / least;
  return text;
}

double positiveOr(std::u16string_view text, double fallback) {
  const double value = platform::wtof(text);
  return value > 0 ? value : fallback;
}

std::u16string number(double value) { return platform::threeDecimals(value); }

// The smallest of 1, 2, 5, 10, 20... that is not below `least`.
double niceStep(double least) {
  double step = std::pow(10, std::floor(std::log10(least)));
  for (const double f : {1.0, 2.0, 5.0, 10.0}) {
    if (step * f >= least * (1 - 1e-9)) return step * f;
  }
  return step * 10;
}

// Places for texts that want to stand at `wanted` (ascending) but need `gap` between each other:
// each crowd spreads evenly about the middle of where it wants to stand, within [low, high] where
// there is room.
std::vector<double> spread(const std::vector<double>& wanted, double gap, double low, double high) {
  struct Crowd {
    double sum;  // of wanted places, each less its gaps
    int count;
    double place() const { return sum / count; }
  };
  std::vector<Crowd> crowds;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    crowds.push_back({wanted[i] - gap * static_cast<double>(i), 1});
    while (crowds.size() > 1 && crowds[crowds.size() - 2].place() > crowds.back().place()) {
      const Crowd last = crowds.back();
      crowds.pop_back();
      crowds.back().sum += last.sum;
      crowds.back().count += last.count;
    }
  }
  std::vector<double> places;
  for (const Crowd& c : crowds) {
    for (int k = 0; k < c.count; ++k)
      places.push_back(c.place() + gap * static_cast<double>(places.size()));
  }
  double limit = high;
  for (std::size_t i = places.size(); i-- > 0; limit = places[i] - gap) {
    places[i] = std::min(places[i], limit);
  }
  limit = low;
  for (double& p : places) {
    p = std::max(p, limit);
    limit = p + gap;
  }
  return places;
}

class FramePainter {
 public:
  FramePainter(Drawing& drawing, const BlockInfo& block, const ProfileLayout& layout,
               const ProfileChainData& chain)
      : pen_(drawing, block), at_(layout), band_(layout.ground), chain_(chain), u_(layout.unit) {
    for (const ProfileStation& s : chain.stations) x_.push_back(layout.firstStation + s.chainage);
    text_ = spread(x_, kStationGap * u_, layout.left + u_, layout.right - u_);
    right_ = std::max(layout.right, text_.empty() ? 0 : text_.back() + u_);
  }

  void paint() {
    elevations();
    stations();
    band();
    reaches();
    pen_.color(0);
    pen_.rectangle(at_.left, at_.datum, at_.right, at_.top);
  }

 private:
  // Scale of elevations at the left, with a light line across at each mark.
  void elevations() {
    // A network without water may have heads thousands of kilometres below ground.
    constexpr double kMostMarks = 200;
    const double height = at_.top - at_.datum;
    const double step = niceStep(std::max(2.5 * u_, height / kMostMarks));
    const double low = at_.referenceLevel, high = low + height;
    pen_.color(0);
    pen_.line(at_.left - u_, at_.datum, at_.left, at_.datum);
    mark(low, at_.datum);
    for (double k = std::floor(low / step) + 1; k * step <= high; ++k) {
      const double y = at_.y(k * step);
      pen_.color(kGrey);
      pen_.line(at_.left, y, at_.right, y);
      pen_.color(0);
      pen_.line(at_.left - u_, y, at_.left, y);
      if (y - at_.datum >= 1.4 * u_) mark(k * step, y);
    }
  }

  void mark(double elevation, double y) {
    const std::u16string text = number(elevation);
    PenText label;
    label.at = {at_.left - 1.5 * u_, y, 0};
    label.text = text;
    label.height = u_;
    label.across = PenText::right;
    label.width = (kAxisWidth - 2) * u_;
    pen_.text(label);
  }

  // From each node a line down to the datum, and from there to where its texts stand in the band.
  void stations() {
    pen_.color(kGrey);
    for (std::size_t i = 0; i < x_.size(); ++i) {
      const double y = std::clamp(at_.y(chain_.stations[i].point.z), at_.datum, at_.top);
      if (y > at_.datum) pen_.line(x_[i], at_.datum, x_[i], y);
      const double bend = at_.datum - 0.25 * (at_.datum - at_.bandTop);
      pen_.line(x_[i], at_.datum, x_[i], bend);
      pen_.line(x_[i], bend, text_[i], at_.bandTop);
    }
  }

  void band() {
    pen_.color(0);
    for (int row = 0; row < kRowCount; ++row) {
      if (band_.has(row))
        pen_.line(at_.titleWidth, band_.top(row) * u_, right_, band_.top(row) * u_);
    }
    const double foot = band_.foot() * u_;
    pen_.line(at_.titleWidth, foot, right_, foot);
    pen_.line(right_, foot, right_, at_.bandTop);
    for (std::size_t i = 0; i < x_.size(); ++i) {
      const ProfileStation& s = chain_.stations[i];
      upright(kNames, i, s.name);
      upright(kLevels, i, number(s.point.z));
      if (at_.ground) upright(kGround, i, number(s.ground));
      if (s.hasResults) {
        upright(kHeads, i, number(s.head));
        upright(kPressures, i, number(s.pressure));
      }
      upright(kChainages, i, number(at_.start + s.chainage));
    }
  }

  void upright(int row, std::size_t station, std::u16string_view text) {
    PenText label;
    label.at = {text_[station], band_.middle(row) * u_, 0};
    label.text = text;
    label.height = u_;
    label.rotation = 90;
    label.width = (band_.height(row) - 0.6) * u_;
    pen_.text(fitted(label));
  }

  // What belongs between two stations stands between two short lines.
  void reaches() {
    for (std::size_t i = 0; i < text_.size(); ++i) {
      for (const int row : {kReachLengths, kReachNames}) {
        pen_.color(0);
        pen_.line(text_[i], band_.top(row) * u_, text_[i],
                  (band_.top(row) - band_.height(row)) * u_);
      }
    }
    for (std::size_t i = 0; i < chain_.reaches.size(); ++i) {
      const ProfileReach& reach = chain_.reaches[i];
      between(kReachLengths, i, number(reach.length), {});
      between(kReachNames, i, reach.name,
              reach.diameter > 0 ? platform::format(u"D %.6g", reach.diameter) : std::u16string());
    }
  }

  // One or two lines of text along the band, or upright where the stations are too near.
  void between(int row, std::size_t reach, std::u16string_view first, std::u16string_view second) {
    const double room = text_[reach + 1] - text_[reach];
    const double needed = 0.9 * u_ * static_cast<double>(std::max(first.size(), second.size()));
    const bool along = 0.6 * needed <= room - 0.6 * u_;
    const double apart = second.empty() ? 0 : 1.5 * u_;
    PenText label;
    label.height = u_;
    label.rotation = along ? 0 : 90;
    label.width = along ? room - 0.6 * u_ : (band_.height(row) - 0.6) * u_;
    const double x = (text_[reach] + text_[reach + 1]) / 2;
    const double y = band_.middle(row) * u_;
    std::u16string both;
    if (!along && !second.empty() && room < 2.8 * u_) {  // not even two upright lines
      both = std::u16string(first) + u" " + std::u16string(second);
      first = both;
      second = {};
    }
    const double shift = second.empty() ? 0 : apart / 2;
    label.text = first;
    label.at = along ? AcGePoint3d(x, y + shift, 0) : AcGePoint3d(x - shift, y, 0);
    pen_.text(fitted(label));
    if (second.empty()) return;
    label.text = second;
    label.at = along ? AcGePoint3d(x, y - shift, 0) : AcGePoint3d(x + shift, y, 0);
    pen_.text(fitted(label));
  }

  BlockPen pen_;
  const ProfileLayout& at_;
  const Band band_;
  const ProfileChainData& chain_;
  const double u_;
  std::vector<double> x_, text_;  // of the stations: where they are, where their texts are
  double right_;                  // of the band
};

}  // namespace

ProfileLayout::ProfileLayout(const ProfileTitle& title, bool withGround)
    : ground(withGround),
      unit(std::min(kTextOnPaper * positiveOr(title.scaleX, 1000) / 1000,
                    std::max(title.width, title.height) / 12)),
      titleWidth(kTitleWidth * unit),
      bandTop(Band(withGround).top(0) * unit),
      left(titleWidth + kAxisWidth * unit),
      right(left + title.width),
      datum(bandTop + kFan * unit),
      top(datum + std::max(title.height, 4 * unit)),
      firstStation(left + std::min(1.0, title.width / 2)),
      referenceLevel(platform::wtof(title.datum)),
      start(platform::wtof(title.start)) {}

namespace {

class TitlePainter {
 public:
  TitlePainter(Drawing& drawing, const BlockInfo& block, const ProfileLayout& layout,
               const ProfileTitle& title)
      : pen_(drawing, block), at_(layout), title_(title), u_(layout.unit), w_(layout.titleWidth) {}

  void paint() {
    const Band band(at_.ground);
    for (int row = 0; row < kRowCount; ++row) {
      if (!band.has(row)) continue;
      pen_.line(0, band.top(row) * u_, w_, band.top(row) * u_);
      text(u_, band.middle(row) * u_, kRowLabels[row], u_, w_ - 2 * u_);
    }
    double y = values(at_.bandTop);
    y = lineNames(y);
    y += 1.6 * kTitleLine * u_;
    text(u_, y - 0.8 * kTitleLine * u_, u"PROFILO LONGITUDINALE", 1.4 * u_, w_ - 2 * u_);
    pen_.rectangle(0, band.foot() * u_, w_, y);
  }

 private:
  // What the title says, a line each from below; the upper edge of the last.
  double values(double y) {
    struct Line {
      const char16_t *label, *tag, *prompt;
      std::u16string text;
      double labelWidth;
    };
    // Heights are drawn as lengths are, whatever scale the title has for them: it says so.
    const bool differs = positiveOr(title_.scaleX, 0) != positiveOr(title_.scaleY, 0);
    const auto meters = [](const std::u16string& text) { return number(platform::wtof(text)); };
    const Line lines[] = {
        {u"SCALA ALTEZZE 1:", profile_tag::kScaleY, u"Scala delle altezze", title_.scaleY,
         differs ? 10 : 17.0},
        {u"SCALA LUNGHEZZE 1:", profile_tag::kScaleX, u"Scala delle lunghezze", title_.scaleX, 17},
        {u"QUOTA DI RIFERIMENTO [m]", profile_tag::kDatum, u"Quota di riferimento",
         meters(title_.datum), 17},
        {u"PROGRESSIVA INIZIALE [m]", profile_tag::kStart, u"Progressiva iniziale",
         meters(title_.start), 17},
        {u"PROFILO", profile_tag::kName, u"Nome del profilo", title_.name, 8},
        {u"RETE", profile_tag::kNetwork, u"Nome della rete", title_.network, 8},
    };
    for (const Line& line : lines) {
      const double middle = y + kTitleLine / 2 * u_, from = line.labelWidth + 1.5;
      const bool noted = differs && line.tag == profile_tag::kScaleY;
      text(u_, middle, line.label, 0.9 * u_, line.labelWidth * u_);
      pen_.attribute(
          line.tag, line.prompt,
          at(from * u_, middle, line.text, u_, (noted ? 3 : kTitleWidth - from - 0.5) * u_));
      if (noted) {
        text((from + 3.2) * u_, middle, u"(disegnate 1:" + title_.scaleX + u")", 0.8 * u_,
             (kTitleWidth - from - 3.7) * u_);
      }
      y += kTitleLine * u_;
      pen_.line(0, y, w_, y);
    }
    return y;
  }

  // The lines that stand in the frame, in the colours of their layers; the upper edge.
  double lineNames(double y) {
    struct Line {
      const char16_t* name;
      int color;
      double room;
    };
    constexpr Line kLines[] = {
        {u"TERRENO", 3, 7}, {u"PIEZOMETRICA", 4, 10.6}, {u"PROGETTO", 1, 7.4}};
    const double middle = y + kTitleLine / 2 * u_;
    double x = 0.6 * u_;
    for (const Line& line : kLines) {
      if (line.color == 3 && !at_.ground) continue;
      pen_.color(line.color);
      pen_.line(x, middle, x + 1.5 * u_, middle);
      pen_.color(0);
      text(x + 1.9 * u_, middle, line.name, 0.8 * u_, (line.room - 2.3) * u_);
      x += line.room * u_;
    }
    y += kTitleLine * u_;
    pen_.line(0, y, w_, y);
    return y;
  }

  static PenText at(double x, double y, std::u16string_view what, double height, double width) {
    PenText t;
    t.at = {x, y, 0};
    t.text = what;
    t.height = height;
    t.across = PenText::left;
    t.width = width;
    return fitted(t);
  }
  void text(double x, double y, std::u16string_view what, double height, double width) {
    pen_.text(at(x, y, what, height, width));
  }

  BlockPen pen_;
  const ProfileLayout& at_;
  const ProfileTitle& title_;
  const double u_, w_;
};

}  // namespace

void drawProfileTitle(Drawing& drawing, const BlockInfo& block, const ProfileLayout& layout,
                      const ProfileTitle& title) {
  TitlePainter(drawing, block, layout, title).paint();
}

void drawProfileFrame(Drawing& drawing, const BlockInfo& block, const ProfileLayout& layout,
                      const ProfileChainData& chain) {
  FramePainter(drawing, block, layout, chain).paint();
}

void drawManhole(Drawing& drawing, const BlockInfo& block) {
  BlockPen pen(drawing, block);
  pen.rectangle(-0.6, -1.2, 0.6, 0);
  pen.line(-1, 0, 1, 0);
  pen.line(-0.6, -1.2, 0.6, 0);
  pen.line(-0.6, 0, 0.6, -1.2);
  PenText text;
  text.at = {0, 0.6, 0};
  text.height = 1;
  text.across = PenText::left;
  text.rotation = 90;
  pen.attribute(u"NOME", u"Nome", text);
  text.at = {0, 0, 0};
  pen.attribute(u"CODICE", u"Codice", text, true);
  pen.attribute(u"DESCRIZIONE", u"Descrizione", text, true);
}

}  // namespace cad
