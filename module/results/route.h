// The route by which another module hands over a report: what ImportaRpt stored until the import
// command that it posted has run.
#pragma once

#include <string>
#include <string_view>

#include "platform/wide.h"

namespace vessora {

struct RptRoute {
  bool exported = false;      // the next import takes path and network from here
  bool lowerCaseHrs = false;  // its report heads its periods with "hrs" in small letters
  platform::wide256 path;
  std::u16string network;
};
extern RptRoute rptRoute;

// The body of ImportaRpt: what the host says to the posted command line.
int queueRptImport(std::u16string_view path, std::u16string_view network);

}  // namespace vessora
