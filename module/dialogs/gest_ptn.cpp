#include "module/dialogs/gest_ptn.h"

#include <algorithm>

#include "module/dialogs/pattern.h"
#include "module/host/messages.h"
#include "module/network/pattern_curve_store.h"

namespace vessora {

namespace {

struct Words {
  const char16_t *taken, *none, *remove;
};
constexpr Words kPatternWords{kPatternTaken, u"Non esiste alcun pattern!",
                              u"Cancellare il pattern?"};
constexpr Words kCurveWords{kCurveTaken, u"Non esiste alcuna curva!", u"Cancellare la curva?"};

// One half of the manager, of either kind.
template <class Record>
class Half {
 public:
  Half(ui::Choice& names, RecordStore<Record>& store, const Words& words)
      : names_(names), store_(store), words_(words) {}

  void fill() {
    for (const Record& record : store_.records) names_.add(record.id);
    names_.select(0);
  }

  void create() {
    Record record;
    bool accepted = true;
    DlgPattern dialog(record, store_.records, true, accepted);
    for (;;) {
      if (!dialog.doModal()) return;
      if (NameIsFree(record.id, store_.records)) break;
      showMessage(TraduciTesto(words_.taken));
    }
    names_.add(record.id);
    names_.select(0);
    store_.add(record);
    store_.records.push_back(record);
  }

  // The record of the list is changed on OK alone: an edit that was given up leaves nothing behind.
  void edit() {
    Record* const chosen = shown();
    if (!chosen) return;
    Record record = *chosen;
    bool accepted = true;
    DlgPattern dialog(record, store_.records, false, accepted);
    if (!dialog.doModal()) return;
    const std::u16string oldName = chosen->id.str();
    *chosen = record;
    store_.replace(record, oldName);
    names_.remove(names_.findSame(oldName));
    names_.add(record.id);
    names_.select(0);
  }

  void erase() {
    const Record* const chosen = shown();
    if (!chosen) return;
    const ui::Pressed answer =
        names_.dialog().say(TraduciTesto(words_.remove), ui::Icon::question, ui::Buttons::yesNo);
    if (answer != ui::Pressed::yes) return;
    names_.remove(names_.selected());
    names_.select(0);
    store_.remove(chosen->id);
  }

 private:
  // The record of the list's text; null after telling the user that there is none, as when all have
  // been deleted.
  Record* shown() {
    const auto at = std::find_if(store_.records.begin(), store_.records.end(),
                                 [&](const Record& r) { return r.id == names_.shown(); });
    if (at != store_.records.end()) return &*at;
    showMessage(TraduciTesto(words_.none));
    return nullptr;
  }

  ui::Choice& names_;
  RecordStore<Record>& store_;
  const Words& words_;
};

}  // namespace

void DlgGest_PTN::onInit() {
  ModuleDialog::onInit();
  Half(patternNames, patterns_, kPatternWords).fill();
  Half(curveNames, curves_, kCurveWords).fill();
}

void DlgGest_PTN::onNewPattern() { Half(patternNames, patterns_, kPatternWords).create(); }
void DlgGest_PTN::onEditPattern() { Half(patternNames, patterns_, kPatternWords).edit(); }
void DlgGest_PTN::onDeletePattern() { Half(patternNames, patterns_, kPatternWords).erase(); }
void DlgGest_PTN::onNewCurve() { Half(curveNames, curves_, kCurveWords).create(); }
void DlgGest_PTN::onEditCurve() { Half(curveNames, curves_, kCurveWords).edit(); }
void DlgGest_PTN::onDeleteCurve() { Half(curveNames, curves_, kCurveWords).erase(); }

}  // namespace vessora
