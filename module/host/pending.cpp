// Commands whose bodies are still to come: they say so and change nothing.
#include "module/host/module.h"
#include "module/host/translate.h"

#define PENDING(name)                                                                    \
  int vessora::EpaCommands::name() {                                                     \
    acutPrintf(vessora::TraduciTesto(u"\nComando non disponibile in questa versione.")); \
    return kAbandoned;                                                                   \
  }

PENDING(hnaddepa)
PENDING(hnmatepa)
PENDING(hnmodepa)
PENDING(hnpzzpmod)
PENDING(hnsetmat)
PENDING(hnsetpat)
PENDING(epacalc)
