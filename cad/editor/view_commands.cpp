// The window of the plan that is seen.
#include <algorithm>

#include "cad/editor/host_commands.h"
#include "cad/shape/extents.h"
#include "platform/words.h"

namespace cad::host {
namespace {

Session::View window(const AcGePoint3d& a, const AcGePoint3d& b) {
  return {true,
          {std::min(a.x, b.x), std::min(a.y, b.y), 0},
          {std::max(a.x, b.x), std::max(a.y, b.y), 0}};
}

void zoomExtents() {
  AcDbExtents box;
  const Drawing& d = drawing();
  for (const std::uint32_t e : d.index().allInSpace()) {
    if (!d.record(e).is(Record::paper)) box.addExt(extentsOf(d, e));
  }
  session().view.set = !box.isEmpty();
  session().view.low = box.minPoint();
  session().view.high = box.maxPoint();
}

}  // namespace

void commandZoom() {
  if (!haveDrawing()) return;
  std::u16string option;
  const int answer =
      askKeyword(0, u"Estensioni Finestra", u"\nZoom [Estensioni/Finestra] <Estensioni>: ", option);
  if (answer == RTCAN) return;
  if (option != u"Finestra") return zoomExtents();
  AcGePoint3d a, b;
  if (acedGetPoint(nullptr, platform::words(u"\nPrimo angolo: "), a) != RTNORM) return;
  if (acedGetPoint(&a, platform::words(u"\nAngolo opposto: "), b) != RTNORM) return;
  session().view = window(a, b);
}

int zoomWindow(const resbuf* arguments) {
  const resbuf* a = arguments ? arguments->rbnext : nullptr;
  const resbuf* b = a ? a->rbnext : nullptr;
  if (!b || acutKindOf(a->restype) != RbKind::point || acutKindOf(b->restype) != RbKind::point) {
    return RTERROR;
  }
  const double *p = a->resval.rpoint, *q = b->resval.rpoint;
  session().view = window({p[0], p[1], 0}, {q[0], q[1], 0});
  return RTNORM;
}

void commandRegenAll() {}

}  // namespace cad::host
