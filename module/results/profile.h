// What a profile draws inside its frame: the terrain, the piezometric line and the design line, in
// plain units above the frame's origin.
#pragma once

#include <limits>
#include <vector>

#include "module/results/profile_chain.h"

namespace vessora {

// Stands for a value that is not there: an offset that was not given, a quantity that the end of
// the chain does not have.
inline constexpr double kMissing = std::numeric_limits<double>::min();

// One row for each node of the chain. A point that is not known stays at (0, 0, 0), and is drawn
// there.
struct ProfileRow {
  AcGePoint3d terrain, design, piezometric;
  bool isPipe = false;  // the link that begins here; for the last node, the last link
};

// The application whose data on a profile's title block name its links.
inline constexpr char16_t kProfileData[] = u"HN-RR_PROFILO_EPA";

// Draws the profile of a finished chain: its frame, where the request has a place, and its lines.
void drawProfile(const ProfileChain& chain, const ProfileRequest& request);

// Height that the frame has to hold, m: the range of elevations, the terrain's when there is an
// offset, and of heads, with 5 percent more. `lowest` gets the lowest elevation.
double ComputeUsefulHeight(const ProfileChain& chain, double offset, double& lowest);
// Length of the chain and 2 m.
double ComputeUsefulWidth(const ProfileChain& chain);
// The rows, drawn by DrawProfileLines. Nothing is drawn when a link's length cannot be found.
void BuildProfileRows(const ProfileChain& chain, double offset, const GestioneOggetto& profile);
void DrawProfileLines(const ProfileChain& chain, const std::vector<ProfileRow>& rows);

}  // namespace vessora
