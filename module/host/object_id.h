// The id of a drawing object, for records that hold one and need nothing else of the host.
#pragma once

#include "cad/api/object_id.h"
