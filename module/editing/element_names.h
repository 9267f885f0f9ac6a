// Names of new elements beside those that a network has.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/host/module.h"
#include "module/host/notices.h"

namespace vessora {

// Exact, by letter case too.
bool LinkNameExists(std::u16string_view name, const std::vector<std::u16string>& names);

// Adds the name of a new element of a kind to those of its network. One that is there already, or
// that is none, becomes a warning: the user wanted it so, and yet no solver accepts it.
void takeName(std::u16string_view name, const schema::Kind& kind, std::u16string_view network,
              std::vector<std::u16string>& names, Notices& warnings);

}  // namespace vessora
