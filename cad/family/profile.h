// What a longitudinal profile shows: the chain of a network's links that it runs along, read from
// the drawing, and the frame, band and title block that are drawn for it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cad/drawing/drawing.h"

namespace cad {

// A node of the chain.
struct ProfileStation {
  std::u16string name;
  AcGePoint3d point;
  double chainage = 0;  // from the first node
  bool hasResults = false;
  double head = 0, pressure = 0;
  double ground = 0;  // level of the ground, where the chain has it
};

// A link between two stations.
struct ProfileReach {
  std::u16string name;
  double length = 0;
  double diameter = 0;  // mm, 0 where it has none
};

struct ProfileChainData {
  std::vector<ProfileStation> stations;  // one more than there are reaches
  std::vector<ProfileReach> reaches;
  bool hasGround = false;
};

// The chain of the named links of a network, in order; the course is found by the nodes that
// following links share. Empty when a link or a node is not in the drawing, or two links do not
// join.
ProfileChainData readProfileChain(Drawing& drawing, std::u16string_view network,
                                  const std::vector<std::u16string>& links);

// The texts of a title block and the size of the drawing area.
struct ProfileTitle {
  std::u16string network, name, start, datum, scaleX, scaleY;
  double height = 0, width = 0;
};

// Where things stand, from the lower left corner of the title block, in drawing units.
struct ProfileLayout {
  // With a row for the levels of the ground the band reaches a row further down; what stands above
  // it stays where it is.
  explicit ProfileLayout(const ProfileTitle& title, bool ground = false);

  bool ground;
  double unit;         // height of the band's texts
  double titleWidth;   // the title block's column
  double bandTop;      // upper edge of the band
  double left, right;  // the drawing area
  double datum;        // its lower edge, which stands at the reference level
  double top;
  double firstStation;  // X of the first node
  double referenceLevel, start;

  double y(double elevation) const { return datum + elevation - referenceLevel; }
};

// Attributes of the title block.
namespace profile_tag {
inline constexpr char16_t kNetwork[] = u"NOME1";
inline constexpr char16_t kName[] = u"NOME2";
inline constexpr char16_t kStart[] = u"PROG";
inline constexpr char16_t kDatum[] = u"QRIF";
inline constexpr char16_t kScaleX[] = u"SCX";
inline constexpr char16_t kScaleY[] = u"SCY";
}  // namespace profile_tag

// Fill a block definition, which must be empty. The attributes of the title have its texts as their
// defaults, as wide as there is room for them.
void drawProfileTitle(Drawing& drawing, const BlockInfo& block, const ProfileLayout& layout,
                      const ProfileTitle& title);
void drawProfileFrame(Drawing& drawing, const BlockInfo& block, const ProfileLayout& layout,
                      const ProfileChainData& chain);
// The symbol of a manhole, for a text height of 1.
void drawManhole(Drawing& drawing, const BlockInfo& block);

}  // namespace cad
