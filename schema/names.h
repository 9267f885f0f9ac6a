// Names of networks and of their layers.
#pragma once

#include <string>
#include <string_view>

namespace schema {

// The layer of a network: prefix and name.
std::u16string layerName(std::u16string_view prefix, std::u16string_view network);

// Whether the name is one of the sibling module's networks.
bool isAqueductName(std::u16string_view network);

// The first character that the name of a layer, and so of a network, cannot hold: one of
// < > / \ " : ; ? * | , = ` or a control character. 0 when there is none.
char16_t unusableCharacter(std::u16string_view network);
// How long the longest layer name is that importing a network makes of its name.
std::size_t longestLayerName(std::u16string_view network);

// What a file's name gives as the name of a network: what stands between the last separator (of
// either kind) and the last four characters, which are taken for the extension.
std::u16string_view networkOfFile(std::u16string_view path);

}  // namespace schema
