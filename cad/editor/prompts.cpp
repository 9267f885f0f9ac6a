// The editor's functions over the session: selection sets, input and symbols.
#include <algorithm>
#include <ctime>
#include <utility>

#include "cad/api/editor.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/select.h"
#include "cad/editor/pick.h"
#include "cad/editor/session.h"
#include "cad/shape/hit.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/words.h"

using cad::Session;
using cad::ui::Answer;
using cad::ui::Prompt;

namespace {

constexpr std::uint64_t kEntity = 1, kSet = 2;

cad::Drawing* drawing() {
  AcDbDatabase* db = Session::instance().database();
  if (!db) db = acdbHostApplicationServices()->workingDatabase();
  return db ? &db->drawing() : nullptr;
}

double aperture() {
  const auto& vars = Session::instance().variables;
  const auto it = vars.find(u"APERTURE");
  return it == vars.end() ? 5.0 : std::max(0.0, platform::wtof(it->second));
}

// The place of the keyword that the text is, in full or as an unambiguous beginning.
std::optional<std::size_t> placeOf(std::u16string_view text,
                                   const std::vector<std::u16string>& keywords) {
  std::optional<std::size_t> found;
  bool ambiguous = false;
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    const std::u16string& k = keywords[i];
    if (platform::equalNoCase(k, text)) return i;
    if (text.empty() || !platform::equalNoCase(k.substr(0, text.size()), text)) continue;
    ambiguous = ambiguous || found;
    found = i;
  }
  return ambiguous ? std::nullopt : found;
}

// The rules of acedInitGet hold for one call.
struct InputRules {
  InputRules()
      : bits(std::exchange(Session::instance().initBits, 0)),
        keywords(std::exchange(Session::instance().initKeywords, {})),
        globals(std::exchange(Session::instance().initGlobals, {})) {}
  int bits;
  std::vector<std::u16string> keywords, globals;
  // The keyword that the text is, as the command knows it.
  std::optional<std::u16string> keyword(std::u16string_view text) const {
    if (const auto i = placeOf(text, keywords))
      return *i < globals.size() ? globals[*i] : keywords[*i];
    if (text.starts_with(u'_')) text.remove_prefix(1);
    const auto i = placeOf(text, globals);
    return i ? std::optional(globals[*i]) : std::nullopt;
  }
};

Prompt promptOf(Prompt::Kind kind, std::u16string_view text, const InputRules& rules) {
  Prompt p;
  p.kind = kind;
  p.text = text;
  p.keywords = rules.keywords;
  return p;
}

// As a user types a handle.
std::u16string handleText(std::uint64_t handle) { return platform::format(u"#%llX", handle); }

AcGePoint3d pointOf(const cad::ui::Place3d& p) { return {p.x, p.y, p.z}; }

// Asks until the answer can be used. `take` returns true when it has taken the text.
template <class Take>
int ask(const Prompt& prompt, const InputRules& rules, std::u16string_view complaint, Take&& take) {
  cad::ui::Frontend& ui = Session::instance().frontend();
  for (;;) {
    const Answer a = ui.ask(prompt);
    switch (a.status) {
      case Answer::Status::cancel:
      case Answer::Status::end:
        return RTCAN;
      case Answer::Status::none:
        if (rules.bits & 1) {
          ui.invalid(platform::words(u"È richiesta una risposta."));
          continue;
        }
        return RTNONE;
      case Answer::Status::ok:
        break;
    }
    const int result = take(a);
    if (result != 0) return result;
    ui.invalid(complaint);
  }
}

void addUnique(std::vector<std::uint32_t>& picked, std::vector<bool>& have, std::uint32_t e) {
  if (e >= have.size()) have.resize(e + 1, false);
  if (have[e]) return;
  have[e] = true;
  picked.push_back(e);
}

// One answer to a selection prompt: everything, a window, a crossing window, or one entity.
bool takeSelection(cad::Drawing& d, std::u16string_view text, std::vector<std::uint32_t>& picked,
                   std::vector<bool>& have, std::u16string& complaint) {
  platform::Tokens tokens(text, u" \t");
  const auto first = tokens.next();
  const std::u16string word = first ? platform::upper(*first) : u"";
  if (word == u"TUTTO" || word == u"ALL" || word == u"*") {
    for (const std::uint32_t e : cad::seenEntities(d)) addUnique(picked, have, e);
    return true;
  }
  if (word == u"F" || word == u"W" || word == u"I" || word == u"C") {
    const auto a = tokens.next(), b = tokens.next();
    const auto p = a ? cad::parsePoint(*a) : std::nullopt,
               q = b ? cad::parsePoint(*b) : std::nullopt;
    if (!p || !q) {
      complaint = platform::words(u"Una finestra si indica con due punti: F x1,y1 x2,y2");
      return false;
    }
    const cad::shape::PlanWindow window(*p, *q);
    const bool crossing = word == u"I" || word == u"C";
    for (const std::uint32_t e : cad::seenEntities(d)) {
      if (crossing ? cad::shape::touches(d, e, window) : cad::shape::liesInside(d, e, window)) {
        addUnique(picked, have, e);
      }
    }
    return true;
  }
  const cad::Pick pick = cad::pickEntity(d, text, aperture());
  if (!pick.record) {
    complaint = pick.problem;
    return false;
  }
  addUnique(picked, have, pick.record);
  return true;
}

int pickSelection(cad::Drawing& d, const cad::Filter& filter, std::vector<AcDbObjectId>& ids) {
  cad::ui::Frontend& ui = Session::instance().frontend();
  std::vector<std::uint32_t> picked;
  std::vector<bool> have;
  for (;;) {
    Prompt prompt;
    prompt.kind = Prompt::Kind::selection;
    prompt.text = platform::words(u"\nSelezionare oggetti: ");
    if (platform::isItalian()) {
      prompt.keywords = {u"Tutto", u"F", u"I"};
    } else {
      prompt.keywords = {u"All", u"W", u"C"};
    }
    prompt.allowBlanks = true;
    const Answer a = ui.ask(prompt);
    if (a.status == Answer::Status::cancel) return RTCAN;
    if (a.status != Answer::Status::ok) break;
    std::u16string complaint;
    for (const std::uint64_t handle : a.objects) {
      if (const std::uint32_t e = cad::entityOfHandle(d, handle)) addUnique(picked, have, e);
    }
    if (a.objects.empty() && !takeSelection(d, a.text, picked, have, complaint)) {
      ui.invalid(complaint);
    }
  }
  std::sort(picked.begin(), picked.end());
  for (const std::uint32_t e : filter.passing(d, picked)) ids.push_back(d.idOf(e));
  return ids.empty() ? RTERROR : RTNORM;
}

}  // namespace

int acdbGetObjectId(AcDbObjectId& id, const ads_name& name) {
  id.setNull();
  if (name.value[1] != kEntity) return RTERROR;
  id = AcDbObjectId(static_cast<std::uint32_t>(name.value[0] >> 32),
                    static_cast<std::uint32_t>(name.value[0]));
  return id.isValid() ? RTNORM : RTERROR;
}

int acdbGetAdsName(ads_name& name, AcDbObjectId id) {
  name.value[0] = (static_cast<std::uint64_t>(id.databaseIndex()) << 32) | id.index();
  name.value[1] = kEntity;
  return id.isValid() ? RTNORM : RTERROR;
}

void acedPrintText(std::u16string_view text) { Session::instance().frontend().print(text); }
int acedPrompt(std::u16string_view text) {
  acedPrintText(text);
  return RTNORM;
}

int acedSSGet(const char16_t* mode, const void*, const void*, const resbuf* filterChain,
              ads_name& set) {
  set = ads_name();
  cad::Drawing* d = drawing();
  if (!d) return RTERROR;
  const cad::Filter filter(filterChain);
  if (!filter.valid()) return RTREJ;
  std::vector<AcDbObjectId> ids;
  if (mode && (platform::equalNoCase(mode, u"_X") || platform::equalNoCase(mode, u"X"))) {
    for (const std::uint32_t e : filter.select(*d)) ids.push_back(d->idOf(e));
    if (ids.empty()) return RTERROR;
  } else if (!mode || !*mode) {
    if (const int answer = pickSelection(*d, filter, ids); answer != RTNORM) return answer;
  } else {
    return RTREJ;
  }
  set.value[0] = Session::instance().storeSelection(std::move(ids));
  set.value[1] = kSet;
  return RTNORM;
}

int acedSSLength(const ads_name& set, std::int32_t* length) {
  const auto* ids = set.value[1] == kSet ? Session::instance().selection(set.value[0]) : nullptr;
  *length = ids ? static_cast<std::int32_t>(ids->size()) : 0;
  return ids ? RTNORM : RTERROR;
}

int acedSSName(const ads_name& set, std::int32_t index, ads_name& entity) {
  const auto* ids = set.value[1] == kSet ? Session::instance().selection(set.value[0]) : nullptr;
  if (!ids || index < 0 || static_cast<std::size_t>(index) >= ids->size()) return RTERROR;
  return acdbGetAdsName(entity, (*ids)[static_cast<std::size_t>(index)]);
}

int acedSSFree(const ads_name& set) {
  return set.value[1] == kSet && Session::instance().freeSelection(set.value[0]) ? RTNORM : RTERROR;
}

// --- input ---------------------------------------------------------------------------------------

int acedInitGet(int bits, const char16_t* keywords) {
  Session& s = Session::instance();
  s.initBits = bits;
  s.initKeywords.clear();
  s.initGlobals.clear();
  auto* names = &s.initKeywords;
  platform::Tokens tokens(keywords ? std::u16string_view(keywords) : std::u16string_view(), u" ");
  while (const auto t = tokens.next()) {
    if (*t == u"_") {
      names = &s.initGlobals;
    } else {
      names->emplace_back(*t);
    }
  }
  return RTNORM;
}

int acedEntSel(std::u16string_view text, ads_name& entity, AcGePoint3d& point) {
  entity = ads_name();
  cad::Drawing* d = drawing();
  if (!d) return RTERROR;
  const InputRules rules;
  cad::ui::Frontend& ui = Session::instance().frontend();
  const Answer a = ui.ask(promptOf(
      Prompt::Kind::entity,
      text.empty() ? platform::words(u"\nSelezionare un oggetto: ") : std::u16string(text), rules));
  if (a.status == Answer::Status::none) return RTNONE;
  if (a.status != Answer::Status::ok) return RTCAN;
  // What was pointed at goes before what is said of it.
  const cad::Pick pick =
      cad::pickEntity(*d, a.objects.empty() ? a.text : handleText(a.objects.front()), aperture());
  if (!pick.record) {
    ui.invalid(pick.problem);
    return RTERROR;
  }
  point = a.place ? pointOf(*a.place) : pick.point;
  return acdbGetAdsName(entity, d->idOf(pick.record));
}

int acedGetPoint(const AcGePoint3d* base, std::u16string_view text, AcGePoint3d& point) {
  const InputRules rules;
  Prompt prompt = promptOf(Prompt::Kind::point, text, rules);
  if (base) prompt.base = {base->x, base->y, base->z};
  return ask(prompt, rules, platform::words(u"Indicare un punto: x,y oppure x,y,z"),
             [&](const Answer& answer) {
               const auto p = answer.place ? std::optional(pointOf(*answer.place))
                                           : cad::parsePoint(answer.text, base);
               if (p) point = *p;
               return p ? RTNORM : rules.keyword(answer.text) ? RTKWORD : 0;
             });
}

int acedGetReal(std::u16string_view text, double& value) {
  const InputRules rules;
  return ask(promptOf(Prompt::Kind::real, text, rules), rules,
             platform::words(u"Immettere un numero."), [&](const Answer& answer) {
               const auto v = platform::parseReal(answer.text);
               if (v) value = *v;
               return v ? RTNORM : rules.keyword(answer.text) ? RTKWORD : 0;
             });
}

int acedGetString(bool blanks, std::u16string_view text, std::u16string& value) {
  const InputRules rules;
  Prompt p = promptOf(Prompt::Kind::string, text, rules);
  p.allowBlanks = blanks;
  const int result = ask(p, rules, u"", [&](const Answer& answer) {
    value = answer.text;
    return RTNORM;
  });
  if (result != RTNONE) return result;
  value.clear();  // Enter alone is an empty text
  return RTNORM;
}

int acedGetKword(std::u16string_view text, std::u16string& keyword) {
  const InputRules rules;
  return ask(promptOf(Prompt::Kind::keyword, text, rules), rules,
             platform::words(u"Opzione non valida."), [&](const Answer& answer) {
               if (rules.keywords.empty()) {
                 keyword = answer.text;
                 return RTNORM;
               }
               const auto k = rules.keyword(answer.text);
               if (k) keyword = *k;
               return k ? RTNORM : 0;
             });
}

// --- symbols -------------------------------------------------------------------------------------

int acedGetSym(std::u16string_view name, resbuf** chain) {
  const auto& symbols = Session::instance().symbols;
  const auto it = symbols.find(platform::upper(name));
  if (it == symbols.end()) {
    *chain = nullptr;
    return RTERROR;
  }
  *chain = acutNewRb(RTSTR);
  acutSetText(*chain, it->second);
  return RTNORM;
}

int acedPutSym(std::u16string_view name, const resbuf* chain) {
  Session& s = Session::instance();
  if (!chain || acutKindOf(chain->restype) != RbKind::text) {
    s.symbols.erase(platform::upper(name));
    return chain ? RTERROR : RTNORM;
  }
  s.setSymbol(name, chain->resval.rstring);
  return RTNORM;
}

// --- coordinates, window, module -----------------------------------------------------------------

int acedTrans(const AcGePoint3d& from, const resbuf* fromSystem, const resbuf* toSystem,
              bool displacement, AcGePoint3d& result) {
  if (!fromSystem || !toSystem) return RTERROR;
  const cad::Drawing* d = drawing();
  if (!d) return RTERROR;
  const int source = fromSystem->resval.rint, target = toSystem->resval.rint;
  AcGePoint3d world = from;
  const AcGeMatrix3d& user = d->header().userSystem();
  if (source == 1) {
    if (displacement) {
      const AcGeVector3d v = user * AcGeVector3d(from.x, from.y, from.z);
      world = {v.x, v.y, v.z};
    } else {
      world = user * from;
    }
  }
  result = world;
  if (target == 1) {
    const AcGeVector3d v(world.x - (displacement ? 0 : user.entry[0][3]),
                         world.y - (displacement ? 0 : user.entry[1][3]),
                         world.z - (displacement ? 0 : user.entry[2][3]));
    const auto& e = user.entry;  // axes of unit length: the inverse is the transpose
    result = {e[0][0] * v.x + e[1][0] * v.y + e[2][0] * v.z,
              e[0][1] * v.x + e[1][1] * v.y + e[2][1] * v.z,
              e[0][2] * v.x + e[1][2] * v.y + e[2][2] * v.z};
  }
  return RTNORM;
}

bool acdbUcs2Wcs(const AcGePoint3d& from, AcGePoint3d& result, bool vector) {
  resbuf user, world;
  user.restype = world.restype = RTSHORT;
  user.resval.rint = 1;
  world.resval.rint = 0;
  return acedTrans(from, &user, &world, vector, result) == RTNORM;
}

const char16_t* acedGetAppName() { return Session::instance().runningModule().c_str(); }
void* adsw_acadMainWnd() { return nullptr; }

int acedPostCommand(std::u16string_view line) {
  Session::instance().post(line);
  return RTNORM;
}

void acedMessageBox(std::u16string_view text, std::u16string_view title, AcEdIcon icon) {
  cad::ui::Message message;
  message.text = text;
  message.title = title;
  switch (icon) {
    case AcEdIcon::none:
      message.icon = cad::ui::Icon::none;
      break;
    case AcEdIcon::stop:
      message.icon = cad::ui::Icon::stop;
      break;
    case AcEdIcon::warning:
      message.icon = cad::ui::Icon::warning;
      break;
    case AcEdIcon::information:
      message.icon = cad::ui::Icon::information;
      break;
  }
  acedFrontend().messageBox(message);
}

cad::ui::Frontend& acedFrontend() { return Session::instance().frontend(); }
