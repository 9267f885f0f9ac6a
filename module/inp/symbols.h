// Symbols of a network: the only way to put a block into the drawing.
//
// Each operation makes sure that the block is defined, reading its file under the product root the
// first time it is missing, and puts a reference with its attributes and extended data into model
// space. Points are in world coordinates. The result is 1 when a reference was made, else 0; the
// user has then been told on the command line.
//
// Block definitions and the places of flow arrows are remembered for the length of one command.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "module/host/host_drawing.h"

namespace vessora {

// A junction, red when it has an emitter, with a flow arrow for a demand that is not 0.
int InsertJunc(const AcGePoint3d& point, std::u16string_view layer, std::u16string_view id,
               std::u16string_view elev, std::u16string_view demand, double emitter,
               std::u16string_view pattern);
int InsertResv(const AcGePoint3d& point, std::u16string_view layer, std::u16string_view id,
               std::u16string_view head, std::u16string_view pattern);
int InsertTank(const AcGePoint3d& point, std::u16string_view layer, std::u16string_view id,
               std::u16string_view elev, std::u16string_view initLevel,
               std::u16string_view minLevel, std::u16string_view maxLevel,
               std::u16string_view diameter, std::u16string_view minVol,
               std::u16string_view volCurve);
// `xdata` is the element's whole list. The pump's is released here, the valve's stays the caller's.
int InsertPump(const AcGePoint3d& point, std::u16string_view layer, std::u16string_view id,
               std::u16string_view status, Chain xdata);
int InsertValv(const AcGePoint3d& point, std::u16string_view layer, std::u16string_view id,
               std::u16string_view diameter, std::u16string_view type, std::u16string_view setting,
               std::u16string_view minorLoss, const Chain& xdata);
// The arrow of an inflow or an outflow at a node, in place of one of its kind that stands there.
int InsertFlowIn(const AcGePoint3d& point, std::u16string_view network);
int InsertFlowOut(const AcGePoint3d& point, std::u16string_view network);
// A colour legend on the current layer: ten classes when the sixth text is given, else five.
int InsertLegend(const AcGePoint3d& point, std::u16string_view title,
                 const std::array<std::u16string, 10>& classes, int kind);
// A block of the product by its name, at a rotation in radians and a scale in all three axes.
int InsertNamedBlock(const AcGePoint3d& point, std::u16string_view layer, std::u16string_view name,
                     std::u16string_view code, std::u16string_view description,
                     std::u16string_view blockName, double rotation, double scale);

// Drops what is remembered: for a command that itself moves or erases arrows between insertions.
void forgetSymbols();

}  // namespace vessora
