// Ids and points of a drawing, as records and requests keep them.
#pragma once

#include "cad/api/ge.h"
#include "cad/api/object_id.h"
