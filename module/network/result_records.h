// The results of one element for one period, as texts: what stands in a report, or what is read
// back from the drawing. Plain values that are copied as bytes; a default one is empty.
//
// Units are those of the report; with flows in l/s they are l/s, m, m/s, m/km and mg/l.
#pragma once

#include <type_traits>

#include "platform/wide.h"

namespace vessora {

struct EpaNodeResult {
  platform::wide256 id;
  platform::wide50 demand;
  platform::wide50 head;
  platform::wide50 pressure;
  platform::wide50 quality;
  platform::wide50 period;  // known only of results in a drawing
};

struct EpaLinkResult {
  platform::wide256 id;
  platform::wide50 flow;
  platform::wide50 velocity;
  platform::wide50 headloss;
  platform::wide50 status;
  platform::wide50 period;  // known only of results in a drawing
};

static_assert(std::is_trivially_copyable_v<EpaNodeResult> &&
              std::is_trivially_copyable_v<EpaLinkResult>);

}  // namespace vessora
