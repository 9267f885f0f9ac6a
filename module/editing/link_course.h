// A link while it is being drawn: a bare polyline on layer "0", which becomes an element when its
// data are known, or is dropped, or stays in the drawing as it is when the user leaves it there.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/editing/add_jobs.h"
#include "module/host/host_drawing.h"
#include "schema/element.h"

namespace vessora {

// The layer of a kind of link, made in the kind's colour when it is missing; null when no layer can
// have the name.
AcDbObjectId makeLinkLayer(const schema::Kind& kind, std::u16string_view network);

// The new polyline, with its first vertex; null when the drawing takes none.
AcDbObjectId beginCourse(const AcGePoint3d& start);
void extendCourse(AcDbObjectId course, const AcGePoint3d& vertex);
void dropCourse(AcDbObjectId course);
// Along its segments, in space.
double lengthOf(AcDbObjectId course);

// The course as an element: on the layer of its kind, with its data and, of pumps and valves, with
// the symbol amid it. As the jobs that add a link.
AddedElement makePipe(std::u16string_view network, AcDbObjectId course, const EpaPipe& pipe,
                      std::u16string_view material, ElementNames& names);
AddedElement makePump(std::u16string_view network, AcDbObjectId course, const EpaPump& pump,
                      ElementNames& names);
AddedElement makeValve(std::u16string_view network, AcDbObjectId course, const EpaValv& valve,
                       ElementNames& names);

}  // namespace vessora
