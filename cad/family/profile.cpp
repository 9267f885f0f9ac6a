#include "cad/family/profile.h"

#include <algorithm>
#include <cmath>

#include "cad/drawing/block_pen.h"
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
enum Row { kNames, kLevels, kHeads, kPressures, kReachLengths, kChainages, kReachNames, kRowCount };
constexpr const char16_t* kRowLabels[kRowCount] = {
    u"NODI",
    u"QUOTE NODI [m]",
    u"CARICHI PIEZOMETRICI [m]",
    u"PRESSIONI [m]",
    u"DISTANZE PARZIALI [m]",
    u"DISTANZE PROGRESSIVE [m]",
    u"RAMI - DIAMETRI [mm]",
};

double rowHeight(int row) { return row == kNames ? kNameRow : kNumberRow; }
// Upper edge of a row, in text heights above the band's foot.
double rowTop(int row) {
  double y = 0;
  for (int r = kRowCount - 1; r >= row; --r) y += rowHeight(r);
  return y;
}

double positiveOr(std::u16string_view text, double fallback) {
  const double value = platform::wtof(text);
  return value > 0 ? value : fallback;
}

std::u16string number(double value) { return platform::format(u"%.3lf", value); }

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
      : pen_(drawing, block), at_(layout), chain_(chain), u_(layout.unit) {
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
    const double step = niceStep(2.5 * u_);
    const double low = at_.referenceLevel, high = low + at_.top - at_.datum;
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
      pen_.line(at_.titleWidth, rowTop(row) * u_, right_, rowTop(row) * u_);
    }
    pen_.line(at_.titleWidth, 0, right_, 0);
    pen_.line(right_, 0, right_, at_.bandTop);
    for (std::size_t i = 0; i < x_.size(); ++i) {
      const ProfileStation& s = chain_.stations[i];
      upright(kNames, i, s.name);
      upright(kLevels, i, number(s.point.z));
      if (s.hasResults) {
        upright(kHeads, i, number(s.head));
        upright(kPressures, i, number(s.pressure));
      }
      upright(kChainages, i, number(at_.start + s.chainage));
    }
  }

  void upright(int row, std::size_t station, std::u16string_view text) {
    PenText label;
    label.at = {text_[station], (rowTop(row) - rowHeight(row) / 2) * u_, 0};
    label.text = text;
    label.height = u_;
    label.rotation = 90;
    label.width = (rowHeight(row) - 0.6) * u_;
    pen_.text(label);
  }

  // What belongs between two stations stands between two short lines.
  void reaches() {
    for (std::size_t i = 0; i < text_.size(); ++i) {
      for (const int row : {kReachLengths, kReachNames}) {
        pen_.color(0);
        pen_.line(text_[i], rowTop(row) * u_, text_[i], (rowTop(row) - rowHeight(row)) * u_);
      }
    }
    for (std::size_t i = 0; i < chain_.reaches.size(); ++i) {
      const ProfileReach& reach = chain_.reaches[i];
      between(kReachLengths, i, number(reach.length), {});
      between(kReachNames, i, reach.name,
              reach.diameter > 0 ? platform::format(u"DN %.6g", reach.diameter) : std::u16string());
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
    label.width = along ? room - 0.6 * u_ : (rowHeight(row) - 0.6) * u_;
    const double x = (text_[reach] + text_[reach + 1]) / 2;
    const double y = (rowTop(row) - rowHeight(row) / 2) * u_;
    std::u16string both;
    if (!along && !second.empty() && room < 2.8 * u_) {  // not even two upright lines
      both = std::u16string(first) + u" " + std::u16string(second);
      first = both;
      second = {};
    }
    const double shift = second.empty() ? 0 : apart / 2;
    label.text = first;
    label.at = along ? AcGePoint3d(x, y + shift, 0) : AcGePoint3d(x - shift, y, 0);
    pen_.text(label);
    if (second.empty()) return;
    label.text = second;
    label.at = along ? AcGePoint3d(x, y - shift, 0) : AcGePoint3d(x + shift, y, 0);
    pen_.text(label);
  }

  BlockPen pen_;
  const ProfileLayout& at_;
  const ProfileChainData& chain_;
  const double u_;
  std::vector<double> x_, text_;  // of the stations: where they are, where their texts are
  double right_;                  // of the band
};

}  // namespace

ProfileLayout::ProfileLayout(const ProfileTitle& title)
    : unit(std::min(kTextOnPaper * positiveOr(title.scaleX, 1000) / 1000,
                    std::max(title.width, title.height) / 12)),
      titleWidth(kTitleWidth * unit),
      bandTop(rowTop(0) * unit),
      left(titleWidth + kAxisWidth * unit),
      right(left + title.width),
      datum(bandTop + kFan * unit),
      top(datum + std::max(title.height, 4 * unit)),
      firstStation(left + std::min(1.0, title.width / 2)),
      referenceLevel(platform::wtof(title.datum)),
      start(platform::wtof(title.start)) {}

void drawProfileTitle(Drawing& drawing, const BlockInfo& block, const ProfileLayout& layout) {
  BlockPen pen(drawing, block);
  const double u = layout.unit, w = layout.titleWidth;
  const auto text = [&](double x, double y, std::u16string_view what, double height, double width) {
    PenText t;
    t.at = {x, y, 0};
    t.text = what;
    t.height = height;
    t.across = PenText::left;
    t.width = width;
    return t;
  };
  for (int row = 0; row < kRowCount; ++row) {
    pen.line(0, rowTop(row) * u, w, rowTop(row) * u);
    pen.text(text(u, (rowTop(row) - rowHeight(row) / 2) * u, kRowLabels[row], u, w - 2 * u));
  }
  struct Line {
    const char16_t *label, *tag, *prompt;
  };
  constexpr Line kLines[] = {
      {u"SCALA ALTEZZE 1:", profile_tag::kScaleY, u"Scala delle altezze"},
      {u"SCALA LUNGHEZZE 1:", profile_tag::kScaleX, u"Scala delle lunghezze"},
      {u"QUOTA DI RIFERIMENTO [m]", profile_tag::kDatum, u"Quota di riferimento"},
      {u"PROGRESSIVA INIZIALE [m]", profile_tag::kStart, u"Progressiva iniziale"},
      {u"PROFILO", profile_tag::kName, u"Nome del profilo"},
      {u"RETE", profile_tag::kNetwork, u"Nome della rete"},
  };
  double y = layout.bandTop;
  for (const Line& line : kLines) {
    y += kTitleLine * u;
    const bool name = line.tag == profile_tag::kName || line.tag == profile_tag::kNetwork;
    const double labelWidth = name ? 8 * u : 17 * u;
    pen.text(text(u, y - kTitleLine / 2 * u, line.label, 0.9 * u, labelWidth));
    pen.attribute(
        line.tag, line.prompt,
        text(labelWidth + 1.5 * u, y - kTitleLine / 2 * u, u"", u, w - labelWidth - 2 * u));
    pen.line(0, y, w, y);
  }
  y += 1.6 * kTitleLine * u;
  pen.text(text(u, y - 0.8 * kTitleLine * u, u"PROFILO LONGITUDINALE", 1.4 * u, w - 2 * u));
  pen.rectangle(0, 0, w, y);
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
