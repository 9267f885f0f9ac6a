// The command that modifies one element: its dialog with what is stored, and the changes onto the
// same entities.
#include <algorithm>

#include "module/dialogs/element_dialogs.h"
#include "module/dialogs/sel_rete_mod.h"
#include "module/editing/change_jobs.h"
#include "module/host/messages.h"
#include "module/host/tell.h"
#include "module/host/warnings.h"
#include "module/network/element_data.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/settings_store.h"
#include "platform/text.h"

namespace vessora {

namespace {

// --- one element ---------------------------------------------------------------------------------

enum class Pass { written, abandoned };

// What the run holds while it lasts, and the branch of each kind.
class ElementEditor {
 public:
  explicit ElementEditor(std::u16string& material) : material_(material) {
    // The classic way those of the default network, whatever network was chosen.
    const std::u16string_view owner = inpIsFull() ? currentNetwork.view() : defaultNetwork.view();
    LoadPatterns(patterns_, owner);
    LoadCurves(curves_, owner);
    Notices notices;
    CollectNetworkNames(currentNetwork, names_, notices);
    tell(notices);
  }

  Pass edit(AcDbObjectId id, const DrawnElement& element) {
    id_ = id;
    return std::visit([this, &element](auto record) { return branch(record, element.material); },
                      element.record);
  }

 private:
  using Names = std::vector<std::u16string>;

  static double real(const wide50& text) { return platform::wtof(text); }

  // What OK takes over: all that stands in the dialog, in full only what the user has changed.
  static bool isTaken(const ElementDialog& dialog, const ui::Control& control) {
    return !inpIsFull() || dialog.isTouched(control);
  }
  template <class Control>
  static void take(const ElementDialog& dialog, const Control& control, wide50& text) {
    if (isTaken(dialog, control)) text = control.value();
  }
  static void take(const ElementDialog& dialog, const ui::Real& control, wide50& text) {
    if (isTaken(dialog, control)) storeShown(text, control.value());
  }
  // Reals that go into the drawing as the dialog has them, not by way of three decimals.
  static void takeWhole(const ElementDialog& dialog, const ui::Real& control, wide50& text) {
    if (isTaken(dialog, control)) storeExactly(text, control.value());
  }

  Pass branch(EpaJunc& junc, const std::u16string&) {
    Dlgjunc dialog(patterns_);
    dialog.elevation = real(junc.elev);
    dialog.demand = real(junc.demand);
    dialog.emitter = real(junc.emitter);
    dialog.pattern = junc.pattern;
    const auto takeAll = [&] {
      take(dialog, dialog.elevation, junc.elev);
      take(dialog, dialog.demand, junc.demand);
      takeWhole(dialog, dialog.emitter, junc.emitter);
      take(dialog, dialog.pattern, junc.pattern);
    };
    if (!ask(dialog, junc.id, names_.nodes, Clash::warns, takeAll)) return Pass::abandoned;
    return write({junc, {}});
  }

  Pass branch(EpaResv& resv, const std::u16string&) {
    Dlgresv dialog(patterns_);
    dialog.head = real(resv.head);
    dialog.pattern = resv.pattern;
    const auto takeAll = [&] {
      take(dialog, dialog.head, resv.head);
      take(dialog, dialog.pattern, resv.pattern);
    };
    if (!ask(dialog, resv.id, names_.nodes, Clash::warns, takeAll)) return Pass::abandoned;
    return write({resv, {}});
  }

  Pass branch(EpaTank& tank, const std::u16string&) {
    Dlgtank dialog(curves_);
    const std::pair<ui::Real*, wide50*> fields[] = {
        {&dialog.elevation, &tank.elev},      {&dialog.diameter, &tank.diameter},
        {&dialog.initLevel, &tank.initLevel}, {&dialog.minLevel, &tank.minLevel},
        {&dialog.maxLevel, &tank.maxLevel},   {&dialog.minVolume, &tank.minVol}};
    for (const auto& [field, text] : fields) *field = real(*text);
    dialog.curve = tank.volCurve;
    const auto takeAll = [&] {
      for (const auto& [field, text] : fields) take(dialog, *field, *text);
      take(dialog, dialog.curve, tank.volCurve);
    };
    if (!ask(dialog, tank.id, names_.nodes, Clash::warns, takeAll)) return Pass::abandoned;
    return write({tank, {}});
  }

  Pass branch(EpaPipe& pipe, const std::u16string& material) {
    EpaSettings settings;
    LoadSettings(settings, currentNetwork);
    if (!ReadMaterials(materials)) return Pass::abandoned;
    material_ = material;
    Dlgpipe dialog(material_, materials);
    dialog.headloss = settings.headloss;
    const std::pair<ui::Real*, wide50*> fields[] = {{&dialog.length, &pipe.length},
                                                    {&dialog.diameter, &pipe.diameter},
                                                    {&dialog.roughness, &pipe.roughness},
                                                    {&dialog.minorLoss, &pipe.minorLoss}};
    for (const auto& [field, text] : fields) *field = real(*text);
    dialog.status = shownStatus(pipe.status);
    std::u16string chosen = material;
    const auto takeAll = [&] {
      for (const auto& [field, text] : fields) takeWhole(dialog, *field, *text);
      take(dialog, dialog.status, pipe.status);
      if (isTaken(dialog, dialog.material)) chosen = material_;
    };
    if (!ask(dialog, pipe.id, names_.links, Clash::warns, takeAll)) return Pass::abandoned;
    return write({pipe, chosen});
  }

  // The list has its own word for what the solver calls "Closed".
  static std::u16string shownStatus(const wide50& status) {
    const bool closed = inpIsFull() && platform::equalNoCase(status.view(), u"Closed");
    return closed ? u"Close" : status.str();
  }

  Pass branch(EpaValv& valv, const std::u16string&) {
    Dlgvalv dialog;
    dialog.diameter = real(valv.diameter);
    dialog.setting = valv.setting;
    dialog.minorLoss = real(valv.minorLoss);
    dialog.type = valv.type;
    dialog.status = valv.status;
    const auto takeAll = [&] {
      take(dialog, dialog.diameter, valv.diameter);
      take(dialog, dialog.minorLoss, valv.minorLoss);
      take(dialog, dialog.type, valv.type);
      take(dialog, dialog.status, valv.status);
      take(dialog, dialog.setting, valv.setting);
    };
    if (!ask(dialog, valv.id, names_.links, Clash::warns, takeAll)) return Pass::abandoned;
    return write({valv, {}});
  }

  // Of the current network's own lists. The classic way the speed pattern is shown and stays what
  // it was.
  Pass branch(EpaPump& pump, const std::u16string&) {
    std::vector<EpaPattern> patterns;
    std::vector<EpaCurve> curves;
    LoadPatterns(patterns, currentNetwork);
    LoadCurves(curves, currentNetwork);
    Dlgpump dialog(curves, patterns);
    dialog.status = pump.status;
    dialog.headCurve = pump.headCurve;
    dialog.efficiencyCurve = pump.effCurve;
    dialog.speed = pump.speed;
    dialog.speedPattern = pump.speedPattern;
    dialog.price = pump.price;
    dialog.pricePattern = pump.pricePattern;
    dialog.power = pump.power;
    const EpaPump before = pump;
    const auto takeAll = [&] {
      take(dialog, dialog.headCurve, pump.headCurve);
      take(dialog, dialog.efficiencyCurve, pump.effCurve);
      take(dialog, dialog.pricePattern, pump.pricePattern);
      if (inpIsFull()) take(dialog, dialog.speedPattern, pump.speedPattern);
      take(dialog, dialog.status, pump.status);
      take(dialog, dialog.power, pump.power);
      take(dialog, dialog.speed, pump.speed);
      take(dialog, dialog.price, pump.price);
    };
    if (!ask(dialog, pump.id, names_.links, Clash::refuses, takeAll)) return Pass::abandoned;
    const bool same = pump.headCurve == before.headCurve && pump.power == before.power;
    if (!pump.headCurve.empty() && !(inpIsFull() && same)) pump.power.clear();
    return write({pump, {}});
  }

  // What a name that is taken leads to after the box: the change all the same, or the dialog again.
  enum class Clash { warns, refuses };

  // Runs the dialog until a name stands that can be written, into `id`; after each OK takeAll().
  // False for "Annulla".
  template <class Take>
  bool ask(ElementDialog& dialog, wide256& id, const Names& names, Clash clash,
           Take takeAll) const {
    dialog.name = id;
    for (;;) {
      if (!dialog.doModal()) return false;
      takeAll();
      const std::u16string name = dialog.name.value();
      if (name.empty()) {
        showMessage(TraduciTesto(u"Nome assente. Inserire un nome!"));
        continue;
      }
      if (name != dialog.oldName && std::find(names.begin(), names.end(), name) != names.end()) {
        showMessage(&names == &names_.nodes
                        ? TraduciTesto(u"Nodo già esistente. Inserire un'altro nome!")
                        : TraduciTesto(u"Ramo già esistente. Inserire un'altro nome!"));
        if (clash == Clash::refuses) continue;
      }
      id = name;
      return true;
    }
  }

  Pass write(const DrawnElement& element) const {
    const ChangeResult result =
        modifyElement(currentNetwork, id_, element, FieldSet::all(), &names_);
    warn(result.warnings);
    return Pass::written;
  }

  std::u16string& material_;
  std::vector<EpaPattern> patterns_;
  std::vector<EpaCurve> curves_;
  NetworkNames names_;
  AcDbObjectId id_;
};

// Whether the user may have meant an element at all.
bool canBeElement(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id);
  return entity.as<AcDbBlockReference>() || entity.as<AcDb3dPolyline>();
}

int modifyOne(ElementEditor editor) {
  for (;;) {
    ads_name name;
    AcGePoint3d point;
    const std::u16string prompt = TraduciTesto(u"\nSelezionare un elemento della rete: ");
    if (acedEntSel(prompt, name, point) != RTNORM) return kAbandoned;
    AcDbObjectId id;
    acdbGetObjectId(id, name);
    if (!canBeElement(id)) {
      showMessage(TraduciTesto(u"Oggetto non valido!"));
      continue;
    }
    // What lies on another layer is passed over in silence.
    const std::optional<DrawnElement> element = readElement(currentNetwork, id);
    if (!element) continue;
    return editor.edit(id, *element) == Pass::written ? kRan : kAbandoned;
  }
}

}  // namespace

int EpaCommands::hnmodepa() {
  if (!readInstallPath(installPath)) return kAbandoned;
  // In full a dialog that changes nothing leaves nothing: who writes registers.
  for (const char16_t* application : {app::kImport, app::kMaterial, app::kPattern, app::kCurve}) {
    if (!inpIsFull()) acdbRegApp(application);
  }
  const bool chosen = chooseNetworkToModify();
  networkNames.clear();
  return chosen ? modifyOne(ElementEditor(material)) : kAbandoned;
}

}  // namespace vessora
