// The command that draws a longitudinal profile along links that the user picks.
#include "module/results/profile.h"

#include "module/dialogs/elenco_reti.h"
#include "module/host/tell.h"

namespace vessora {

namespace {

const char16_t* complaintAbout(LinkVerdict verdict) {
  switch (verdict) {
    case LinkVerdict::notOfNetwork:
      return u"\nL'entità selezionata non e' un ramo/valvola/pompa valido o non appartiene alla "
             u"rete selezionata.";
    case LinkVerdict::notImported:
      return u"\nIl ramo/valvola/pompa non appartiene ad una rete epanet.";
    case LinkVerdict::noResults:
      return u"\nIl ramo/valvola/pompa non appartiene ad una rete epanet elaborata.";
    case LinkVerdict::nodesNotFound:
      return u"\nI nodi associati al ramo non sono stati trovati";
    case LinkVerdict::misplaced:
      return u"\nCoordinate ramo e nodi errate ";
    case LinkVerdict::notConsecutive:
      return u"\nIl ramo selezionato non è consecutivo al profilo corrente.";
    case LinkVerdict::valid:
      break;
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
    if (const char16_t* complaint = complaintAbout(builder.take(id))) {
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

bool askWish(ProfileRequest& wish) {
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
  if (terrain == u"S" || terrain == u"s") {
    double& offset = wish.terrainOffset.emplace(kMissing);
    if (acedGetReal(TraduciTesto(u"\nInserire l'offset dal progetto: "), offset) != RTNORM) {
      return false;
    }
  }
  AcGePoint3d point;
  if (acedGetPoint(nullptr, TraduciTesto(u"Punto di inserimento del cartiglio..."), point) ==
      RTNORM) {
    wish.place = point;
  }
  return true;
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

  ProfileRequest wish;
  if (!askWish(wish)) return kAbandoned;
  drawProfile(chain, wish);
  return kRan;
}

}  // namespace vessora
