// Commands whose bodies are still to come: they say so and change nothing.
#include "module/host/module.h"
#include "module/host/translate.h"

#define VESSORA_COMMAND(name, needs, help)
#define VESSORA_PENDING(name, needs, help)                                               \
  int vessora::EpaCommands::name() {                                                     \
    acutPrintf(vessora::TraduciTesto(u"\nComando non disponibile in questa versione.")); \
    return kAbandoned;                                                                   \
  }
#include "module/host/commands.def"
