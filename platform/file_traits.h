// What a file has beside its bytes: owner, group, permissions, extended attributes.
#pragma once

#include <sys/stat.h>

namespace platform {

// Makes the new file `to` stand in for `from` (whose state is `old`): owner, group, permissions,
// attributes of users and access lists, as far as the process may. Rights never widen: where the
// owner cannot be kept the file runs as nobody else, and where the group cannot be kept another
// group gets no more than everybody had.
void takeOverTraits(int from, const struct stat& old, int to);

}  // namespace platform
