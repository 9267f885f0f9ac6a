// Making a drawing agree with the file that its export in full writes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/host/host_values.h"
#include "module/host/notices.h"

namespace vessora {

struct MendedName {
  AcDbObjectId id;  // of a symbol, of a pipe's polyline
  std::u16string was, now;
};
struct MendResult {
  std::vector<MendedName> copies;
  Notices notices;  // why nothing could be done; what is left to the user
};

// Copies of elements, whose names an export changes in the file alone, get those names in the
// drawing, links the nodes that they lie on, and lose the tie to the rows of their originals.
// Renames that the classic way has made are noted. The file that is exported afterwards is the
// same. A name that was written over an attribute by hand is told of and stays.
MendResult mendNames(std::u16string_view network);

}  // namespace vessora
