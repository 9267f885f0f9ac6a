// The id of an entity, as records keep it.
#pragma once

#include "cad/api/object_id.h"
