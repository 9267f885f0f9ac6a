// Drawn profiles laid out anew for a sheet of paper: texts for its scale, and what is needed to
// draw heights larger than lengths.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cad/drawing/drawing.h"
#include "cad/family/profile.h"

namespace cad {

struct DrawnProfile {
  AcDbObjectId titleBlock;
  ProfileTitle title;
};
// In drawing order.
CAD_API std::vector<DrawnProfile> drawnProfiles(Drawing& drawing);

// The size of a profile on paper at a scale of lengths, heights being so many times larger, mm.
struct ProfileSize {
  double width = 0, height = 0;
};
CAD_API ProfileSize profileSize(const ProfileTitle& title, double scale, double heights);

// What is to be shown of a laid out profile, and where, in the drawing: what stands right of `left`
// and above `datum` belongs to the elevations.
struct ProfileSheet {
  std::set<std::uint32_t> entities;
  double left = 0, datum = 0;
  // The drawing area, with the level at its foot, and the height of texts.
  double areaLeft = 0, areaRight = 0, areaTop = 0, referenceLevel = 0, unit = 0;
};
// Changes the drawing, which is not to be saved then: frame and title are drawn for the scale, and
// the lines go to where the new frame wants them. Nothing when the profile cannot be drawn.
CAD_API std::optional<ProfileSheet> layOutProfile(Drawing& drawing, const DrawnProfile& profile,
                                                  double scale, double heights);

}  // namespace cad
