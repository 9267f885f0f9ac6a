// The product root of a user who may not write into the installed one.
//
// Commands write under the product root: the table of materials, the folder that exports propose.
// Where the installation belongs to the system, each user has a root of his own, seeded from it.
#pragma once

#include <string>

#include "platform/result.h"

namespace program {

// The root that commands get: the installed one where this user may write there, else his own
// ($XDG_DATA_HOME/vessora/root). What he changes there stays; what the installation brings new or
// newer is taken over.
platform::Result<std::string> rootForUser(const std::string& installed);

}  // namespace program
