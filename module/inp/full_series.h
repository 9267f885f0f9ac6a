// How the patterns and curves of a drawing differ from those of a file.
#pragma once

#include <vector>

#include "module/inp/full_compare.h"

namespace vessora {

// Adds what differs to the comparison, whose renames are looked at. With `everything` each of them
// counts as changed.
void compareSeries(const FullForm& form, bool everything, const std::vector<EpaPattern>& patterns,
                   const std::vector<EpaCurve>& curves, Comparison& comparison);

}  // namespace vessora
