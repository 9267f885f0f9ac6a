// The services by which a module meets its host: the system registry with the dynamic linker and
// the command stack, the codes of the host's messages, and the module object of the run-time
// underneath.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cad/api/ge.h"
#include "cad/api/object_id.h"
#include "cad/api/rxobject.h"

namespace AcRx {
enum AppMsgCode {
  kNullMsg = 0,
  kInitAppMsg = 1,
  kUnloadAppMsg = 2,
  kLoadDwgMsg = 3,
  kUnloadDwgMsg = 4,
  kInvkSubrMsg = 5,
  kCfgMsg = 6,
  kEndMsg = 7,
  kQuitMsg = 8,
  kSaveMsg = 9,
};
enum AppRetCode { kRetOK = 0, kRetError = 3 };
}  // namespace AcRx

// Named objects of the session, by which modules and programs find each other's services. Names are
// compared exactly.
class CAD_API AcRxDictionary : public AcRxObject {
  ACRX_DECLARE(AcRxDictionary)
 public:
  // Null when nothing has the name.
  virtual AcRxObject* at(std::u16string_view name) const = 0;
  // Enters an object, which stays the caller's and must be taken out before it goes. False when the
  // name is taken or the registry takes no objects.
  virtual bool atPut(std::u16string_view name, AcRxObject* object) = 0;
  // Takes the name out; what it named, or null. The host's own services stay.
  virtual AcRxObject* remove(std::u16string_view name) = 0;
};
CAD_API AcRxDictionary* acrxSysRegistry();

// Registered as "DynamicLinker".
class CAD_API AcRxDynamicLinker : public AcRxObject {
  ACRX_DECLARE(AcRxDynamicLinker)
 public:
  // The module may be unloaded.
  virtual bool unlockApplication(void* packet) = 0;
  // The module works with several open drawings.
  virtual bool registerAppMDIAware(void* packet) = 0;
};

// Keeps together what the host's own commands would part. Registered by a module under this name,
// one for the session; a host that does not know it moves entities all the same.
class AcEdFollower : public AcRxObject {
 public:
  static constexpr char16_t kService[] = u"TRANSFORM_FOLLOWER";
  // The entities, and no others, stand now where the matrix has put them: moved, turned about an
  // upright axis or scaled alike. What belongs to them is brought after them, within the same step
  // of undo. The answer is for the user, empty when there is nothing to say. Nothing is open.
  virtual std::u16string follow(const std::vector<AcDbObjectId>& entities,
                                const AcGeMatrix3d& matrix) = 0;
};

using AcRxFunctionPtr = void (*)();

// Registered as "ACAD_REGISTERED_COMMANDS".
class CAD_API AcEdCommandStack : public AcRxObject {
  ACRX_DECLARE(AcEdCommandStack)
 public:
  // False when the group has a command of that global name already.
  virtual bool addCommand(std::u16string_view group, std::u16string_view globalName,
                          std::u16string_view localName, int flags, AcRxFunctionPtr function) = 0;
  virtual bool removeGroup(std::u16string_view group) = 0;
};

// The run-time underneath: its allocator and the module object.
CAD_API void* odrxAlloc(std::size_t size);
CAD_API void odrxFree(void* memory);

class CAD_API OdRxModule : public AcRxObject {
  ACRX_DECLARE(OdRxModule)
 public:
  virtual void* sysData() = 0;
  virtual std::u16string moduleName() const = 0;
  virtual void initApp() {}
  virtual void uninitApp() {}
};

// A module that holds the handle of its library.
class CAD_API OdRxWin32Module : public OdRxModule {
  ACRX_DECLARE(OdRxWin32Module)
};

// --- dialog resources ----------------------------------------------------------------------------

// Whose dialogs and resources are found first; a command of a module sets it to the module for its
// span.
CAD_API void* afxResourceHandle();
CAD_API void afxSetResourceHandle(void* handle);
// Modules that extend the session with dialogs of their own, entered and left as libraries come and
// go.
CAD_API bool afxAddExtensionModule(void* instance);
CAD_API void afxRemoveExtensionModule(void* instance);
