// The command that draws a longitudinal profile along links that the user picks.
#include "module/results/profile.h"

#include "module/dialogs/elenco_reti.h"
#include "module/host/tell.h"
#include "platform/format.h"

namespace vessora {

namespace {

constexpr char16_t kProfileData[] = u"HN-RR_PROFILO_EPA";
constexpr int kPressureProfile = 3;

const char16_t* complaintAbout(LinkVerdict verdict) {
  switch (verdict) {
    case LinkVerdict::notOfNetwork:
      return u"\nL'entità selezionata non e' un ramo/valvola/pompa valido o non appartiene alla "
             u"rete selezionata.";
    case LinkVerdict::notImported:
      return u"\nIl ramo/valvola/pompa non appartiene ad una rete epanet.";
    case LinkVerdict::noResults:
      return u"\nIl ramo/valvola/pompa non appartiene ad una rete epanet elaborata.";
    case LinkVerdict::valid:
      break;
  }
  return nullptr;
}

// Takes a picked entity into the chain; what is wrong with it, or null.
const char16_t* takeLink(ProfileChain& chain, ChainBuilder& builder, AcDbObjectId id) {
  ProfileLink link;
  link.objectId = id;
  if (const char16_t* complaint = complaintAbout(ClassifyLink(chain, link))) return complaint;
  ProfileNode nodeA, nodeB;
  if (!FindLinkNodes(chain, link, nodeA, nodeB)) {
    return u"\nI nodi associati al ramo non sono stati trovati";
  }
  if (!CheckLinkCoordinates(link, nodeA, nodeB)) return u"\nCoordinate ramo e nodi errate ";
  if (!builder.add(link, nodeA, nodeB)) {
    return u"\nIl ramo selezionato non è consecutivo al profilo corrente.";
  }
  return nullptr;
}

void pickLinks(ProfileChain& chain) {
  ChainBuilder builder(chain);
  ads_name name;
  AcGePoint3d point;
  while (acedEntSel(TraduciTesto(u"\nSelezionare il ramo, la valvola o la pompa:"), name, point) ==
         RTNORM) {
    AcDbObjectId id;
    if (acdbGetObjectId(id, name) != RTNORM) continue;
    if (const char16_t* complaint = takeLink(chain, builder, id)) {
      acutPrintf(TraduciTesto(complaint));
    } else if (const Opened<AcDbEntity> entity(id); entity) {
      entity->highlight();
    }
  }
  builder.finish();
  for (const ProfileLink& link : chain.links) {
    if (const Opened<AcDbEntity> entity(link.objectId); entity) entity->unhighlight();
  }
}

// What the user is asked once the chain stands.
struct ProfileWish {
  std::u16string name;
  double start = 0;          // chainage of the first node
  double offset = kMissing;  // of the terrain above the design line
};

bool askWish(ProfileWish& wish) {
  if (KsrAcadMgr::ksr_acedGetString(true, TraduciTesto(u"Nome del profilo: "), wish.name) !=
      RTNORM) {
    return false;
  }
  if (acedGetReal(TraduciTesto(u"\nProgressiva iniziale (0.0): "), wish.start) != RTNORM &&
      wish.start != 0) {
    return false;
  }
  acedInitGet(1, u"S N s n");
  std::u16string terrain;
  if (KsrAcadMgr::ksr_acedGetKword(TraduciTesto(u"\nQuotare anche il terreno(S/N)? "), terrain) !=
      RTNORM) {
    return false;
  }
  if (terrain != u"S" && terrain != u"s") return true;
  return acedGetReal(TraduciTesto(u"\nInserire l'offset dal progetto: "), wish.offset) == RTNORM;
}

void drawFrame(const ProfileChain& chain, const ProfileWish& wish, const AcGePoint3d& point,
               GestioneOggetto& profile) {
  double lowest;
  const double height = ComputeUsefulHeight(chain, wish.offset, lowest);
  const double width = ComputeUsefulWidth(chain);
  profile.SetOBJ1Nome1(chain.name);
  profile.SetOBJ2Nome2(wish.name);
  profile.SetOBJ3Prog(platform::format(u"%lf", wish.start));
  profile.SetOBJ4QRif(platform::format(u"%.3lf", lowest));
  profile.SetOBJ5ScX(u"1000");
  profile.SetOBJ6ScY(u"100");
  profile.SetPInsCART(point);
  profile.SetAltezzaLarghezzaUtile(height, width);
  profile.Disegna_HNPX_HNRR(nullptr);
}

}  // namespace

int EpaCommands::epaProf() {
  if (!readInstallPath(installPath)) return kAbandoned;
  acdbRegApp(kProfileData);
  if (!chooseNetwork(AqueductNetworks::accepted)) return kAbandoned;
  networkNames.clear();
  ProfileChain chain;
  Notices notices;
  collectProfileNetwork(currentNetwork, chain, notices);
  tell(notices);
  pickLinks(chain);

  ProfileWish wish;
  if (!askWish(wish)) return kAbandoned;
  GestioneOggetto profile(kPressureProfile);
  AcGePoint3d point;
  // Without a point the lines are drawn all the same, about the drawing's origin.
  if (acedGetPoint(nullptr, TraduciTesto(u"Punto di inserimento del cartiglio..."), point) ==
      RTNORM) {
    drawFrame(chain, wish, point, profile);
  }
  XDataBuilder names(kProfileData);
  for (const ProfileLink& link : chain.links) names.text(link.id);
  profile.SetXdataProfSewer(names.take().get());
  profile.UpdateXdata();
  BuildProfileRows(chain, wish.offset, profile);
  return kRan;
}

}  // namespace vessora
