// What an entity draws, once for all who ask: boxes, picks and pictures.
//
// Curves come as short lines and texts as one line each, in the coordinates of the entity's block
// or space. What a block reference shows is in its block: see reference.h.
#pragma once

#include <functional>

#include "cad/drawing/drawing.h"
#include "cad/shape/primitive.h"

namespace cad::shape {

using Emit = std::function<void(Primitive&&)>;

// Hands over what one entity itself draws, the vertices of a polyline included, and for a reference
// nothing. `tags` are the entity's. False for a type that is not known how to draw.
bool drawShape(const Drawing& drawing, std::uint32_t entity, const TagList& tags, const Emit& emit);

// --- for the shapes of single types --------------------------------------------------------------

// The axes of an entity that lies in a plane of its own (group 210).
AcGeMatrix3d axesOf(const TagList& tags, TagRange body);
// A line through points, a dot for a single one, nothing for none.
void emitLine(Points points, bool closed, const Emit& emit, const AcGeMatrix3d* axes = nullptr);
void emitFill(const Loops& loops, const Emit& emit, const AcGeMatrix3d& axes);

void drawPolyline(const Drawing& drawing, std::uint32_t entity, const TagList& tags,
                  const Emit& emit);
void drawLightPolyline(const TagList& tags, const Emit& emit);
void drawText(const Drawing& drawing, const TagList& tags, bool attribute, const Emit& emit);
void drawMultilineText(const TagList& tags, const Emit& emit);
void drawMultileader(const TagList& tags, const Emit& emit);

}  // namespace cad::shape
