#include "module/results/route.h"

#include "module/host/host_drawing.h"

namespace vessora {

RptRoute rptRoute;

int queueRptImport(std::u16string_view path, std::u16string_view network) {
  rptRoute = {true, true, path, std::u16string(network)};
  return KsrFactory::GetGeneralUtils()->SendCommand(u"IMPRPT\n");
}

}  // namespace vessora
