// The jobs that the module offers in the system registry.
#include "module/jobs.h"

#include "module/entry.h"
#include "module/host/host_drawing.h"
#include "module/host/translate.h"

namespace vessora {

namespace {

class ModuleJobs : public Jobs {
 public:
  const AcRxClass* isA() const override {
    static const AcRxClass description(kClass, AcRxObject::desc());
    return &description;
  }

  std::vector<CommandRow> commands() override {
    std::vector<CommandRow> rows;
#define VESSORA_COMMAND(name, needs, help) \
  rows.push_back({u"" #name, #name, TraduciTesto(help), CommandNeeds::needs});
#define VESSORA_PENDING VESSORA_COMMAND
#include "module/host/commands.def"
    return rows;
  }
};

ModuleJobs jobs;

}  // namespace

void offerJobs() {
  if (AcRxDictionary* registry = acrxSysRegistry()) registry->atPut(Jobs::kService, &jobs);
}

void withdrawJobs() {
  AcRxDictionary* registry = acrxSysRegistry();
  if (registry && registry->at(Jobs::kService) == &jobs) registry->remove(Jobs::kService);
}

}  // namespace vessora
