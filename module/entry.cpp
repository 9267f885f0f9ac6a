// The module as its host meets it: the answer to the host's messages, what it offers in the system
// registry, and the module object.
#include <cstdint>
#include <new>

#include "module/entry.h"
#include "module/host/module.h"
#include "module/host/translate.h"

#define MODULE_EXPORT extern "C" __attribute__((visibility("default")))

namespace vessora {

// Made once when the module is initialised.
struct EpaModule {
  wide256 folder;              // folder of the module file, trailing separator included
  void* mainWindow = nullptr;  // the host's main window
  bool initFailed = false;     // the translator could not be bound
  void* packet = nullptr;      // the host's application packet
};
static EpaModule* theModule = nullptr;

namespace {

constexpr char16_t kModuleFile[] = u"vessora.arx";
constexpr char16_t kGroup[] = u"VESSORA";

// --- the module descriptor -----------------------------------------------------------------------

struct CommandEntry {
  const char16_t* name;
  AcRxFunctionPtr function;
};

// Ended by an entry whose name begins with "."; the function of that entry runs when the drawing is
// saved. The list is empty because the commands are called by the names of their exports: a host
// that loads this module registers those names itself.
constexpr CommandEntry kCommands[] = {{u".", nullptr}};

struct ModuleDescriptor {
  const char16_t* group;
  bool (*afterRegistration)();
  void (*unload)();
  void (*documentLoad)();
  void (*documentUnload)();
  const CommandEntry* commands;
};

AcEdCommandStack* commandStack() {
  const AcRxDictionary* registry = acrxSysRegistry();
  return registry ? AcRxObject::cast<AcEdCommandStack>(registry->at(u"ACAD_REGISTERED_COMMANDS"))
                  : nullptr;
}

AcRxDynamicLinker* dynamicLinker() {
  const AcRxDictionary* registry = acrxSysRegistry();
  return registry ? AcRxObject::cast<AcRxDynamicLinker>(registry->at(u"DynamicLinker")) : nullptr;
}

void removeCommands() {
  if (AcEdCommandStack* stack = commandStack()) stack->removeGroup(kGroup);
}

// The texts of the family's two libraries reach users through this module's commands.
bool bindTranslator() {
  if (!BindTranslator(kModuleFile)) return false;
  FilterDictionary(u"HNGeometry.dll");
  FilterDictionary(u"HNEngineering.dll");
  return true;
}

void unloadModule() {
  withdrawJobs();
  removeCommands();
  ReleaseTranslator();
}

constexpr ModuleDescriptor kDescriptor = {kGroup, bindTranslator, unloadModule,
                                          [] {},  nullptr,        kCommands};

const CommandEntry& endEntry() {
  const CommandEntry* entry = kDescriptor.commands;
  while (entry->name[0] != u'.') ++entry;
  return *entry;
}

// --- initialisation and teardown -----------------------------------------------------------------

bool tornDown = false;

// The folder of a module file with its trailing separator; a path that ends in one stays as it is.
std::u16string_view folderPart(std::u16string_view path) {
  const std::size_t separator = path.find_last_of(u"\\/");
  return separator == path.npos ? std::u16string_view() : path.substr(0, separator + 1);
}

void registerCommands() {
  AcEdCommandStack* stack = commandStack();
  if (!stack) return;
  for (const CommandEntry* entry = kDescriptor.commands; entry->name[0] != u'.'; ++entry) {
    stack->addCommand(kDescriptor.group, entry->name, entry->name, 0, entry->function);
  }
}

AcRx::AppRetCode initialise(void* packet) {
  if (AcRxDynamicLinker* linker = dynamicLinker()) linker->unlockApplication(packet);
  if (AcRxDynamicLinker* linker = dynamicLinker()) linker->registerAppMDIAware(packet);

  delete theModule;
  theModule = new EpaModule;
  tornDown = false;
  if (const char16_t* file = acedGetAppName()) theModule->folder = folderPart(file);
  theModule->mainWindow = adsw_acadMainWnd();
  theModule->packet = packet;

  registerCommands();
  theModule->initFailed = !kDescriptor.afterRegistration();
  if (!theModule->initFailed) offerJobs();
  return theModule->initFailed ? AcRx::kRetError : AcRx::kRetOK;
}

// Unloading and quitting both come here, and a host may send the two: the second finds nothing to
// do.
void tearDown() {
  if (tornDown) return;
  kDescriptor.unload();
  removeCommands();
  delete theModule;
  theModule = nullptr;
  tornDown = true;
}

// --- the library's own coming and going ----------------------------------------------------------

enum class LibraryNotice { detach, attach };

bool attached = false;
void* resourceHandleAtStart = nullptr;
int instanceMark;
AcRxObject* moduleObject = nullptr;

int notifyLibrary(LibraryNotice notice) {
  if (notice == LibraryNotice::attach && !attached) {
    attached = afxAddExtensionModule(moduleInstance());
    resourceHandleAtStart = afxResourceHandle();
  } else if (notice == LibraryNotice::detach) {
    if (attached) afxRemoveExtensionModule(moduleInstance());
    attached = false;
    delete moduleObject;
    moduleObject = nullptr;
    delete theModule;
    theModule = nullptr;
  }
  return 1;
}

// A static object and not a pair of start and stop functions: at the end of the process those would
// run when the host's own statics are gone, while this object goes before everything that was there
// when it came.
struct LibraryLife {
  LibraryLife() { notifyLibrary(LibraryNotice::attach); }
  ~LibraryLife() { notifyLibrary(LibraryNotice::detach); }
} libraryLife;

// --- the module object ---------------------------------------------------------------------------

// The run-time underneath owns the memory; deleting gives it back there.
class CDrxModule : public OdRxWin32Module {
  ACRX_DECLARE(CDrxModule)
 public:
  explicit CDrxModule(void* handle) : handle_(handle) {}
  void* sysData() override { return handle_; }
  std::u16string moduleName() const override { return kModuleFile; }
  static void* operator new(std::size_t, void* place) { return place; }
  static void operator delete(void* memory) { odrxFree(memory); }
  static void operator delete(void*, void*) {}

 private:
  void* handle_;
};
ACRX_DEFINE(CDrxModule, OdRxWin32Module)

}  // namespace

void* moduleInstance() { return &instanceMark; }

}  // namespace vessora

// --- entry points of the host --------------------------------------------------------------------

using vessora::kDescriptor;

MODULE_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
  switch (message) {
    case AcRx::kInitAppMsg:
      return vessora::initialise(packet);
    case AcRx::kUnloadAppMsg:
    case AcRx::kQuitMsg:
      vessora::tearDown();
      break;
    case AcRx::kLoadDwgMsg:
      kDescriptor.documentLoad();
      break;
    case AcRx::kUnloadDwgMsg:
      if (kDescriptor.documentUnload) kDescriptor.documentUnload();
      break;
    case AcRx::kSaveMsg:
      if (vessora::endEntry().function) vessora::endEntry().function();
      break;
    default:
      break;
  }
  return AcRx::kRetOK;
}

// The version of the host interface that this module is made for.
MODULE_EXPORT void acrxGetApiVersion(std::uint32_t* major, std::uint32_t* minor,
                                     std::uint32_t* majorUpdate, std::uint32_t* minorUpdate) {
  *major = 23;
  *minor = 2;
  *majorUpdate = 0;
  *minorUpdate = 0;
}
MODULE_EXPORT void odrxGetAPIVersion(std::uint32_t* major, std::uint32_t* minor,
                                     std::uint32_t* majorUpdate, std::uint32_t* minorUpdate)
    __attribute__((alias("acrxGetApiVersion")));

// The one module object. The first call takes over the handle and leaves the argument null; on
// later calls the handle stays the caller's.
MODULE_EXPORT OdRxModule* odrxCreateModuleObject(void** handle) {
  if (!vessora::moduleObject) {
    void* memory = odrxAlloc(sizeof(vessora::CDrxModule));
    if (!memory) return nullptr;
    vessora::moduleObject = new (memory) vessora::CDrxModule(handle ? *handle : nullptr);
    if (handle) *handle = nullptr;
  }
  return static_cast<vessora::CDrxModule*>(vessora::moduleObject);
}
