// Adding a pipe, a pump or a valve between two picked nodes.
//
// The three ask for a name in three ways. Users know each, so no two are made one.
#include <optional>

#include "module/dialogs/element_dialogs.h"
#include "module/editing/add_element.h"
#include "module/editing/element_names.h"
#include "module/editing/link_course.h"
#include "module/host/messages.h"
#include "module/network/element_data.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/schema.h"
#include "module/network/settings_store.h"

namespace vessora {

namespace {

// --- the two nodes -------------------------------------------------------------------------------

struct LinkEnd {
  AcGePoint3d point;
  std::u16string node;
};

bool pickEntity(const char16_t* prompt, AcDbObjectId& id) {
  ads_name name;
  AcGePoint3d point;
  return acedEntSel(TraduciTesto(prompt), name, point) == RTNORM &&
         acdbGetObjectId(id, name) == RTNORM;
}

// Takes place and name of a picked block of a network; symbols of valves and pumps pass too. A
// block of nothing is refused; what is no block leaves everything as it was.
void takeEnd(AcDbObjectId id, const char16_t* refusal, bool& valid, LinkEnd& end) {
  {
    const Opened<AcDbEntity> entity(id);
    auto* const block = entity.as<AcDbBlockReference>();
    if (!block) return;
    valid = static_cast<bool>(Chain(block->xData(app::kImport)));
    if (valid) {
      end.point = block->position();
      ReadAttribute(block, schema::kIdTag, end.node);
      return;
    }
  }
  showMessage(TraduciTesto(refusal));
}

// The picks are judged together by what the second one left: a good end makes up for a refused
// start, which then is what it was before.
bool pickEnds(LinkEnd& start, LinkEnd& end) {
  bool valid = false;
  while (!valid) {
    AcDbObjectId first, second;
    if (!pickEntity(u"\nSelezionare il nodo iniziale...", first)) return false;
    if (!pickEntity(u"\nSelezionare il nodo finale...", second)) return false;
    takeEnd(first, u"Nodo iniziale non valido!", valid, start);
    takeEnd(second, u"Nodo finale non valido!", valid, end);
  }
  return true;
}

// --- the course ----------------------------------------------------------------------------------

// Points between the ends, at heights between theirs, until ENTER. Each cancel puts the end there
// once more, and asks on.
void askForVertices(AcDbObjectId course, const AcGePoint3d& start, const AcGePoint3d& end) {
  AcGePoint3d base = toUser(start);
  for (;;) {
    AcGePoint3d picked;
    const int answer = acedGetPoint(
        &base, TraduciTesto(u"Inserire un vertice(ENTER per chiudere la polilinea)..."), picked);
    if (answer == RTNORM) {
      AcGePoint3d vertex = toWorld(picked);
      vertex.z = heightBetween(start, end, vertex);
      extendCourse(course, vertex);
      base = picked;
      continue;
    }
    extendCourse(course, end);
    if (answer == RTNONE) return;
  }
}

struct DrawnLink {
  AcDbObjectId course;
  LinkEnd start, end;
};

// Everything up to the data of the link. Empty when the user gives up a pick: only the layer is
// there then.
std::optional<DrawnLink> drawCourse(const schema::Kind& kind) {
  makeLinkLayer(kind, currentNetwork);
  DrawnLink link;
  if (!pickEnds(link.start, link.end)) return std::nullopt;
  link.course = beginCourse(link.start.point);
  acedInitGet(0, u"N n S s");
  std::u16string answer;
  const int status = acedGetKword(TraduciTesto(u"\nSelezionare vertici?(Si/No)<No>: "), answer);
  const bool typed = status == RTNORM;
  if (typed && (answer == u"S" || answer == u"s")) {
    askForVertices(link.course, link.start.point, link.end.point);
  } else if (!typed || (answer != u"N" && answer != u"n")) {
    // A "no" that is typed adds nothing: the course stays at its start.
    extendCourse(link.course, link.end.point);
  }
  return link;
}

// --- the name ------------------------------------------------------------------------------------

constexpr char16_t kNameless[] = u"Nome assente. Inserire un nome!";

void begin(ElementDialog& dialog) {
  dialog.newElement = true;
  dialog.name = proposed(nextLinkNumber);
}

// The user has given up in the first dialog.
void giveUp(const DrawnLink& link) {
  dropCourse(link.course);
  --nextLinkNumber;
}

bool isTaken(const ElementDialog& dialog, const std::vector<std::u16string>& names) {
  return LinkNameExists(dialog.name.value(), names);
}

// Insists on a free name: giving up counts in the first dialog alone.
bool askForPipe(Dlgpipe& dialog, const std::vector<std::u16string>& names) {
  if (!dialog.doModal()) return false;
  for (;;) {
    if (dialog.name.value().empty()) {
      showMessage(TraduciTesto(kNameless));
      if (!dialog.doModal()) dialog.doModal();
    } else if (isTaken(dialog, names)) {
      showMessage(TraduciTesto(u"Ramo già esistente. Inserire un'altro nome!"));
      dialog.doModal();
    } else {
      return true;
    }
  }
}

// Complains of an empty name and takes it; asks once more for one that is taken, and takes whatever
// stands there then.
bool askForPump(Dlgpump& dialog, const std::vector<std::u16string>& names) {
  if (!dialog.doModal()) return false;
  if (dialog.name.value().empty()) showMessage(TraduciTesto(kNameless));
  if (isTaken(dialog, names)) {
    showMessage(TraduciTesto(u"Pompa già esistente. Inserire un'altro nome!"));
    dialog.doModal();
  }
  return true;
}

enum class ValveAnswer { given, refused, refusedAgain };

// Insists where the name is taken; asks once more where it is empty, and takes what stands there
// then, unless the user gives up.
ValveAnswer askForValve(Dlgvalv& dialog, const std::vector<std::u16string>& names) {
  if (!dialog.doModal()) return ValveAnswer::refused;
  if (dialog.name.value().empty()) {
    showMessage(TraduciTesto(kNameless));
    return dialog.doModal() ? ValveAnswer::given : ValveAnswer::refusedAgain;
  }
  while (isTaken(dialog, names)) {
    showMessage(TraduciTesto(u"Valvola già esistente. Inserire un'altro nome!"));
    dialog.doModal();
  }
  return ValveAnswer::given;
}

// --- the record ----------------------------------------------------------------------------------

template <class Record>
Record recordOf(const DrawnLink& link, const ElementDialog& dialog) {
  Record record;
  record.id = dialog.name.value();
  record.node1 = link.start.node;
  record.node2 = link.end.node;
  return record;
}

EpaPipe recordOf(const DrawnLink& link, const Dlgpipe& dialog) {
  auto pipe = recordOf<EpaPipe>(link, static_cast<const ElementDialog&>(dialog));
  storeExactly(pipe.length, dialog.length.value());
  storeExactly(pipe.diameter, dialog.diameter.value());
  storeExactly(pipe.roughness, dialog.roughness.value());
  storeExactly(pipe.minorLoss, dialog.minorLoss.value());
  pipe.status = dialog.status.value();
  return pipe;
}

EpaPump recordOf(const DrawnLink& link, const Dlgpump& dialog) {
  auto pump = recordOf<EpaPump>(link, static_cast<const ElementDialog&>(dialog));
  pump.status = dialog.status.value();
  pump.headCurve = dialog.headCurve.value();
  pump.effCurve = dialog.efficiencyCurve.value();
  pump.speed = dialog.speed.value();
  pump.speedPattern = dialog.speedPattern.value();
  pump.price = dialog.price.value();
  pump.pricePattern = dialog.pricePattern.value();
  pump.power = dialog.power.value();
  return pump;
}

EpaValv recordOf(const DrawnLink& link, const Dlgvalv& dialog) {
  auto valve = recordOf<EpaValv>(link, static_cast<const ElementDialog&>(dialog));
  storeExactly(valve.diameter, dialog.diameter.value());
  storeExactly(valve.minorLoss, dialog.minorLoss.value());
  valve.setting = dialog.setting.value();
  valve.type = dialog.type.value();
  valve.status = dialog.status.value();
  return valve;
}

}  // namespace

// --- the branches --------------------------------------------------------------------------------

void EpaCommands::AddPipe(ElementNames& names) {
  const std::optional<DrawnLink> link = drawCourse(schema::kPipe);
  if (!link) return;
  EpaSettings settings;
  LoadSettings(settings, currentNetwork);
  material.clear();
  // Without the table no pipe is made, and what has been drawn stays for the user to see.
  if (!ReadMaterials(materials)) return;
  Dlgpipe dialog(material, materials);
  dialog.length = lengthOf(link->course);
  dialog.diameter = diameter;
  dialog.roughness = roughness;
  dialog.headloss = settings.headloss.view();
  begin(dialog);
  if (!askForPipe(dialog, names.links)) return giveUp(*link);
  roughness = dialog.roughness.value();
  diameter = dialog.diameter.value();
  tellAdded(makePipe(currentNetwork, link->course, recordOf(*link, dialog), dialog.material.value(),
                     names));
  materials.clear();
  ++nextLinkNumber;
}

void EpaCommands::AddPump(ElementNames& names) {
  const std::optional<DrawnLink> link = drawCourse(schema::kPump);
  if (!link) return;
  std::vector<EpaCurve> curves;
  std::vector<EpaPattern> patterns;
  LoadCurves(curves, currentNetwork);
  LoadPatterns(patterns, currentNetwork);
  Dlgpump dialog(curves, patterns);
  begin(dialog);
  if (!askForPump(dialog, names.links)) return giveUp(*link);
  tellAdded(makePump(currentNetwork, link->course, recordOf(*link, dialog), names));
  ++nextLinkNumber;
}

void EpaCommands::AddValve(ElementNames& names) {
  const std::optional<DrawnLink> link = drawCourse(schema::kValv);
  if (!link) return;
  Dlgvalv dialog;
  begin(dialog);
  switch (askForValve(dialog, names.links)) {
    case ValveAnswer::refused:
      return giveUp(*link);
    case ValveAnswer::given:
      tellAdded(makeValve(currentNetwork, link->course, recordOf(*link, dialog), names));
      break;
    case ValveAnswer::refusedAgain:
      break;
  }
  ++nextLinkNumber;
}

}  // namespace vessora
