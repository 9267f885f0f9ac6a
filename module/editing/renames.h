// What a rename does in full, beyond the element itself.
#pragma once

#include <string_view>

#include "module/inp/collection.h"

namespace vessora {

// Notes that an element of the kept text gets another name, before it has it. An entity that is a
// copy of another one loses its tie to the text instead: it is an element of its own from now on.
// `names` are those of the network before the change.
void noteRename(std::u16string_view network, AcDbObjectId id, bool node, std::u16string_view from,
                std::u16string_view to, const NetworkNames& names);

// Takes the tie to the kept text off an entity.
void cutTie(AcDbObjectId id);

// Gives a node's new name to the links that still store the old one, wherever their ends lie, and
// to the settings that trace it. Where several nodes had the old name nobody can tell whom it
// meant, and nothing changes.
void nameFollows(std::u16string_view network, std::u16string_view from, std::u16string_view to,
                 const NetworkNames& names);

}  // namespace vessora
