// The command that manages the networks of a drawing and adds one element to the default one.
#include "module/editing/add_element.h"

#include "module/editing/element_names.h"
#include "module/host/module.h"
#include "module/host/tell.h"
#include "module/host/translate.h"
#include "module/host/warnings.h"
#include "module/inp/full_export.h"
#include "module/network/kept_text.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

std::int32_t nextNodeNumber = 1, nextLinkNumber = 1;

void tellAdded(const AddedElement& added) {
  tell(added.notices);
  warn(added.warnings);
}

std::u16string proposed(std::int32_t number) { return platform::format(u"%d", number); }

namespace {

constexpr std::int16_t kWorld = 0, kUser = 1;

AcGePoint3d converted(const AcGePoint3d& point, std::int16_t from, std::int16_t to) {
  resbuf source, target;
  source.restype = target.restype = RTSHORT;
  source.resval.rint = from;
  target.resval.rint = to;
  AcGePoint3d result = point;
  return acedTrans(point, &source, &target, false, result) == RTNORM ? result : point;
}

// The kind's letter, or 0 when the user gives up.
char16_t askForKind() {
  acedInitGet(0, u"N n S s T t R r V v P p");
  std::u16string answer;
  const int status = acedGetKword(
      TraduciTesto(u"\nScegliere un elemento da inserire: Nodo<N>, Serbatoio<S>, Tank<T>, Ramo<R>, "
                   u"Valvola<V>, Pompa<P>: "),
      answer);
  return status == RTNORM && !answer.empty() ? answer[0] : char16_t{0};
}

void proposeNames(const ElementNames& names) {
  if (!names.nodes.empty()) nextNodeNumber = static_cast<std::int32_t>(names.nodes.size()) + 1;
  if (!names.links.empty()) nextLinkNumber = static_cast<std::int32_t>(names.links.size()) + 1;
}

// In full a proposal is neither the name of what is drawn nor that of what the kept text has.
void proposeFreeNames(const ElementNames& names) {
  Notices notices;
  if (!inpIsFull() || !hasKeptText(currentNetwork)) return;
  const auto kept = keptFile(currentNetwork, false, notices);
  if (!kept) return;
  const auto isTaken = [](std::int32_t number, const std::vector<std::u16string>& drawn,
                          auto isKept) {
    return LinkNameExists(proposed(number), drawn) || isKept(std::to_string(number));
  };
  const epanet::Network& text = kept->network;
  while (isTaken(nextNodeNumber, names.nodes,
                 [&](const std::string& id) { return text.findNode(id) != epanet::kNone; })) {
    ++nextNodeNumber;
  }
  while (isTaken(nextLinkNumber, names.links,
                 [&](const std::string& id) { return text.findLink(id) != epanet::kNone; })) {
    ++nextLinkNumber;
  }
}

}  // namespace

AcGePoint3d toWorld(const AcGePoint3d& point) { return converted(point, kUser, kWorld); }
AcGePoint3d toUser(const AcGePoint3d& point) { return converted(point, kWorld, kUser); }

int EpaCommands::hnaddepa() {
  if (!readInstallPath(installPath)) return kAbandoned;
  for (const char16_t* application :
       {app::kSettings, app::kImport, app::kMaterial, app::kPattern, app::kCurve}) {
    acdbRegApp(application);
  }
  roughness = 0.002;
  diameter = 200.0;
  const NetworkStep step = settleNetwork();
  networkNames.clear();
  if (step != NetworkStep::goOn) return step == NetworkStep::ran ? kRan : kAbandoned;
  ElementNames names = namesOfNetwork(currentNetwork);
  tell(names.notices);
  proposeNames(names);
  proposeFreeNames(names);
  switch (platform::upper(askForKind())) {
    case u'N':
      addJunctionAtPoint(names);
      return kRan;
    case u'S':
      addReservoirAtPoint(names);
      return kRan;
    case u'T':
      addTankAtPoint(names);
      return kRan;
    case u'R':
      AddPipe(names);
      return kRan;
    case u'V':
      AddValve(names);
      return kRan;
    case u'P':
      AddPump(names);
      return kRan;
    default:
      return kAbandoned;
  }
}

}  // namespace vessora
