#include "cad/editor/variables.h"

#include <cmath>

#include "cad/api/editor.h"
#include "cad/drawing/drawing.h"
#include "cad/editor/session.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad {
namespace {

constexpr Variable kVariables[] = {
    {u"ACADVER", u"23.2s", RbKind::text, true, 0, 0, u"", u"versione dell'interfaccia"},
    {u"APERTURE", u"5", RbKind::real, false, 0, 1e9, u"", u"distanza entro cui si sceglie"},
    {u"CMDECHO", u"1", RbKind::int16, false, 0, 1, u"", u"eco dei comandi dei moduli"},
    {u"DWGNAME", u"", RbKind::text, true, 0, 0, u"", u"nome del disegno"},
    {u"DWGPREFIX", u"", RbKind::text, true, 0, 0, u"", u"cartella del disegno"},
    {u"EXPERT", u"0", RbKind::int16, false, 0, 5, u"", u"quante domande si saltano"},
    {u"FILEDIA", u"1", RbKind::int16, false, 0, 1, u"", u"finestre per i file"},
    {u"OSMODE", u"0", RbKind::int16, false, 0, 32767, u"", u"snap a oggetto"},
    {u"VSINPMODE", u"CLASSIC", RbKind::text, false, 0, 0, u"CLASSIC FULL",
     u"come si leggono e scrivono i file INP"},
};

Drawing* drawing() {
  AcDbDatabase* db = Session::instance().database();
  if (!db) db = acdbHostApplicationServices()->workingDatabase();
  return db ? &db->drawing() : nullptr;
}

std::string headerName(std::u16string_view key) { return "$" + platform::narrow(key); }

std::u16string sessionValue(const Variable& variable) {
  Session& s = Session::instance();
  const std::u16string path = platform::widen(s.drawingPath());
  if (variable.name == u"DWGNAME") {
    return path.empty() ? platform::words(u"Disegno1.dxf")
                        : std::u16string(platform::fileNameOf(path));
  }
  if (variable.name == u"DWGPREFIX") return std::u16string(platform::folderOf(path));
  const auto it = s.variables.find(std::u16string(variable.name));
  return std::u16string(it == s.variables.end() ? variable.initial : it->second);
}

// What names a thing of the drawing must name one that is there.
bool setInDrawing(std::u16string_view key, std::u16string_view text) {
  Drawing* const d = drawing();
  if (!d) return false;
  if (key == u"CLAYER" && !d->structure().layerNamed(text, false)) return false;
  if (key == u"CELTYPE" && !d->structure().hasLinetype(text)) return false;
  if (key == u"TEXTSTYLE" && !d->structure().tableEntry(Type::style, text)) return false;
  return d->header().setText(headerName(key), text);
}

// The text as the variable keeps it; nothing when it is no value of it.
std::optional<std::u16string> valueOf(const Variable& variable, std::u16string_view text) {
  if (variable.kind == RbKind::text) {
    platform::Tokens known(variable.values, u" ");
    while (const auto value = known.next()) {
      if (platform::equalNoCase(*value, text)) return std::u16string(*value);
    }
    return variable.values.empty() ? std::optional(std::u16string(text)) : std::nullopt;
  }
  const auto number = platform::parseReal(text);
  const bool whole = number && std::trunc(*number) == *number;
  if (!number || !(*number >= variable.low && *number <= variable.high)) return std::nullopt;
  if (variable.kind == RbKind::int16 && !whole) return std::nullopt;
  return platform::format(u"%.15g", *number);
}

std::u16string complaintOf(const Variable& variable) {
  if (variable.kind != RbKind::text) {
    return platform::format(
        platform::words(variable.kind == RbKind::int16 ? u"Serve un numero intero da %g a %g."
                                                       : u"Serve un numero da %g a %g."),
        variable.low, variable.high);
  }
  std::u16string list;
  platform::Tokens known(variable.values, u" ");
  while (const auto value = known.next()) {
    list += (list.empty() ? u"" : u", ") + std::u16string(*value);
  }
  return platform::format(platform::words(u"Valori possibili: %s."), list);
}

}  // namespace

std::span<const Variable> declaredVariables() { return kVariables; }

const Variable* declaredVariable(std::u16string_view name) {
  for (const Variable& v : kVariables) {
    if (platform::equalNoCase(v.name, name)) return &v;
  }
  return nullptr;
}

std::optional<std::u16string> variableText(std::u16string_view name) {
  if (const Variable* variable = declaredVariable(name)) return sessionValue(*variable);
  const Drawing* const d = drawing();
  const std::string header = headerName(platform::upper(name));
  std::u16string text = d ? d->header().text(header) : u"";
  const bool there = !text.empty() || (d && Header::known(header));
  return there ? std::optional(std::move(text)) : std::nullopt;
}

bool isSettable(std::u16string_view name) {
  if (const Variable* variable = declaredVariable(name)) return !variable->readOnly;
  return Header::known(headerName(platform::upper(name))) != nullptr;
}

std::u16string setVariable(std::u16string_view name, std::u16string_view text) {
  if (!isSettable(name)) return platform::words(u"La variabile è in sola lettura.");
  const Variable* const variable = declaredVariable(name);
  if (!variable) {
    return setInDrawing(platform::upper(name), text) ? u"" : platform::words(u"Valore non valido.");
  }
  auto value = valueOf(*variable, text);
  if (!value) return complaintOf(*variable);
  Session::instance().variables[std::u16string(variable->name)] = std::move(*value);
  return {};
}

}  // namespace cad

// --- as modules read and set them ----------------------------------------------------------------

int acedGetVar(std::u16string_view name, resbuf* result) {
  if (!result) return RTERROR;
  const auto text = cad::variableText(name);
  if (!text || (text->empty() && !cad::declaredVariable(name))) return RTERROR;
  switch (acutKindOf(result->restype)) {
    case RbKind::text:
      acutSetText(result, *text);
      break;
    case RbKind::real:
      result->resval.rreal = platform::wtof(*text);
      break;
    case RbKind::int16:
      result->resval.rint = static_cast<std::int16_t>(platform::wtoi(*text));
      break;
    default:
      return RTERROR;
  }
  return RTNORM;
}

// A module may put other values of the kind than users can: what they mean is between modules.
int acedSetVar(std::u16string_view name, const resbuf* value) {
  if (!value) return RTERROR;
  std::u16string text;
  const RbKind kind = acutKindOf(value->restype);
  switch (kind) {
    case RbKind::text:
      text = value->resval.rstring;
      break;
    case RbKind::real:
      text = platform::format(u"%.15g", value->resval.rreal);
      break;
    case RbKind::int16:
      text = platform::format(u"%d", static_cast<int>(value->resval.rint));
      break;
    default:
      return RTERROR;
  }
  if (const cad::Variable* variable = cad::declaredVariable(name)) {
    const bool texts = (variable->kind == RbKind::text) == (kind == RbKind::text);
    if (variable->readOnly || !texts) return RTERROR;
    cad::Session::instance().variables[std::u16string(variable->name)] = text;
    return RTNORM;
  }
  return cad::setInDrawing(platform::upper(name), text) ? RTNORM : RTERROR;
}
