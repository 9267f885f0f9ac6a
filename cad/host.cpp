// What the library says of itself.
#include "cad/api/export.h"

// The version of the host interface that this library offers, as major * 100 + minor.
extern "C" CAD_API int vessoraHostInterface() { return 2302; }
