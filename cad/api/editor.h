// The editor: what a command asks of the user and says to him, selection sets, host variables and
// Lisp symbols. All calls belong to the command thread.
//
// Results are RTNORM for success, RTCAN for Esc, RTNONE for Enter alone, RTKWORD for a keyword in
// place of a value, RTERROR for a call that makes no sense.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cad/api/database.h"
#include "platform/format.h"

// A name of an entity or of a selection set, as the selection calls hand it around. Null when zero.
struct ads_name {
  std::uint64_t value[2] = {0, 0};
};

CAD_API int acdbGetObjectId(AcDbObjectId& id, const ads_name& name);
CAD_API int acdbGetAdsName(ads_name& name, AcDbObjectId id);

// --- output --------------------------------------------------------------------------------------

// Text on the command line as it stands.
CAD_API void acedPrintText(std::u16string_view text);
// The same with a template; arguments carry their types (see platform/format.h). Without arguments
// the text is not looked at, so a '%' in it stays.
template <class... Args>
void acutPrintf(std::u16string_view pattern, const Args&... args) {
  if constexpr (sizeof...(args) == 0) {
    acedPrintText(pattern);
  } else {
    acedPrintText(platform::format(pattern, args...));
  }
}
CAD_API int acedPrompt(std::u16string_view text);

// --- selection sets ------------------------------------------------------------------------------

// Mode u"_X": the entities of the whole drawing that pass the filter, in drawing order. Mode null:
// the user picks, until he presses Enter; what does not pass the filter is left out. Filters are
// chains of 8 layer, 2 block name, 0 or 5020 entity type, 1001 application, 62 colour, 410/67
// space, joined by -4 "<and" "and>" "<or" "or>" "<not" "not>" "<xor" "xor>"; texts are literal and
// compare without case. RTNORM when at least one entity is in the set, which the caller then frees.
CAD_API int acedSSGet(const char16_t* mode, const void* point1, const void* point2,
                      const resbuf* filter, ads_name& set);
CAD_API int acedSSLength(const ads_name& set, std::int32_t* length);
CAD_API int acedSSName(const ads_name& set, std::int32_t index, ads_name& entity);
CAD_API int acedSSFree(const ads_name& set);

// --- input ---------------------------------------------------------------------------------------

// One entity picked by the user. RTERROR when nothing was hit.
CAD_API int acedEntSel(std::u16string_view prompt, ads_name& entity, AcGePoint3d& point);
// Rules and keywords for the next acedGet call: bit 1 refuses Enter alone. Keywords are separated
// by blanks. Behind a "_" may stand as many names again, by which the command knows them: what it
// gets is these, whichever of both the user gives.
CAD_API int acedInitGet(int bits, const char16_t* keywords);
CAD_API int acedGetPoint(const AcGePoint3d* base, std::u16string_view prompt, AcGePoint3d& point);
CAD_API int acedGetReal(std::u16string_view prompt, double& value);
CAD_API int acedGetString(bool blanks, std::u16string_view prompt, std::u16string& text);
CAD_API int acedGetKword(std::u16string_view prompt, std::u16string& keyword);

// --- variables and symbols -----------------------------------------------------------------------

// A host variable; the node is filled and a text in it belongs to the caller.
CAD_API int acedGetVar(std::u16string_view name, resbuf* result);
CAD_API int acedSetVar(std::u16string_view name, const resbuf* value);
// A Lisp symbol. The chain belongs to the caller; it is null when the symbol has no value.
CAD_API int acedGetSym(std::u16string_view name, resbuf** chain);
CAD_API int acedPutSym(std::u16string_view name, const resbuf* chain);

// --- coordinates, window, module -----------------------------------------------------------------

// Between coordinate systems: codes 0 world, 1 user. `displacement` treats the triple as a vector.
CAD_API int acedTrans(const AcGePoint3d& from, const resbuf* fromSystem, const resbuf* toSystem,
                      bool displacement, AcGePoint3d& result);
CAD_API bool acdbUcs2Wcs(const AcGePoint3d& from, AcGePoint3d& result, bool vector);
// Full path of the module whose code is running.
CAD_API const char16_t* acedGetAppName();
// The host's main window, or null where there is none.
CAD_API void* adsw_acadMainWnd();
// Runs one host command at once, with its arguments: a chain of texts and points.
CAD_API int acedCmd(const resbuf* chain);
// Queues a command line that runs when the running command has ended.
CAD_API int acedPostCommand(std::u16string_view line);

enum class AcEdIcon { none, stop, warning, information };
// A message box with the OK button; an empty title is the host's own.
CAD_API void acedMessageBox(std::u16string_view text, std::u16string_view title, AcEdIcon icon);

namespace cad::ui {
class Frontend;
}
// Who answers dialogs and message boxes of this session.
CAD_API cad::ui::Frontend& acedFrontend();
