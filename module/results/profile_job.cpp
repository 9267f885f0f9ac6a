// The profile of a chain: what the command and the job draw.
#include "module/results/profile.h"
#include "platform/format.h"

namespace vessora {

namespace {

constexpr int kPressureProfile = 3;

void drawFrame(const ProfileChain& chain, const ProfileRequest& request, double offset,
               GestioneOggetto& profile) {
  double lowest;
  const double height = ComputeUsefulHeight(chain, offset, lowest);
  const double width = ComputeUsefulWidth(chain);
  profile.SetOBJ1Nome1(chain.name);
  profile.SetOBJ2Nome2(request.name);
  profile.SetOBJ3Prog(platform::format(u"%lf", request.start));
  profile.SetOBJ4QRif(platform::format(u"%.3lf", lowest));
  profile.SetOBJ5ScX(u"1000");
  profile.SetOBJ6ScY(u"100");
  profile.SetPInsCART(*request.place);
  profile.SetAltezzaLarghezzaUtile(height, width);
  profile.Disegna_HNPX_HNRR(nullptr);
}

}  // namespace

void drawProfile(const ProfileChain& chain, const ProfileRequest& request) {
  const double offset = request.terrainOffset.value_or(kMissing);
  GestioneOggetto profile(kPressureProfile);
  if (request.place) drawFrame(chain, request, offset, profile);
  XDataBuilder names(kProfileData);
  for (const ProfileLink& link : chain.links) names.text(link.id);
  profile.SetXdataProfSewer(names.take().get());
  profile.UpdateXdata();
  BuildProfileRows(chain, offset, profile);
  // The ground stands in the drawing by now: the band gets its levels.
  if (request.place && request.terrainOffset) profile.UpdateXdata();
}

ProfileResult drawProfile(std::u16string_view network, const ProfileRequest& request) {
  ProfileResult result;
  ProfileChain chain;
  collectProfileNetwork(network, chain, result.notices);
  ChainBuilder builder(chain);
  for (; result.refused < request.links.size(); ++result.refused) {
    result.verdict = builder.take(findLink(chain, request.links[result.refused]));
    if (result.verdict != LinkVerdict::valid) return result;
  }
  builder.finish();
  acdbRegApp(kProfileData);
  drawProfile(chain, request);
  return result;
}

}  // namespace vessora
