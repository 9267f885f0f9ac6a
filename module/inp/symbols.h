// Symbols of a network: the only way to put a block into the drawing.
//
// Each operation makes sure that the block is defined, reading its file under the product root the
// first time it is missing, and puts a reference with its attributes and extended data into model
// space. Points are in world coordinates. `kept` is the id by which the kept text of the network
// has the element, if it has it. The result is 1 when a reference was made, else 0, with a notice.
// The symbols of elements tell their id to whom wants it.
//
// Symbols and arrows of a network have the scale of those it has already (symbol_scale.h), or the
// one that a command has it use; in the classic way 1. Block definitions, scales and the places of
// flow arrows are remembered for the length of one command.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "module/host/host_drawing.h"
#include "module/host/notices.h"
#include "module/network/records.h"

namespace vessora {

// A junction, red when it has an emitter, with a flow arrow for a demand that is not 0. The emitter
// counts as given, not as the record has it.
int InsertJunc(const AcGePoint3d& point, std::u16string_view layer, const EpaJunc& junc,
               double emitter, Notices& notices, AcDbObjectId* made = nullptr,
               std::u16string_view kept = {});
int InsertResv(const AcGePoint3d& point, std::u16string_view layer, const EpaResv& resv,
               Notices& notices, AcDbObjectId* made = nullptr, std::u16string_view kept = {});
int InsertTank(const AcGePoint3d& point, std::u16string_view layer, const EpaTank& tank,
               Notices& notices, AcDbObjectId* made = nullptr, std::u16string_view kept = {});
// `data` is the element's whole list of extended data, with the nodes that it was drawn between.
int InsertPump(const AcGePoint3d& point, std::u16string_view layer, const EpaPump& pump,
               const Chain& data, Notices& notices, AcDbObjectId* made = nullptr);
int InsertValv(const AcGePoint3d& point, std::u16string_view layer, const EpaValv& valv,
               const Chain& data, Notices& notices, AcDbObjectId* made = nullptr);
// The arrow of an inflow or an outflow at a node, in place of one of its kind that stands there.
int InsertFlowIn(const AcGePoint3d& point, std::u16string_view network, Notices& notices);
int InsertFlowOut(const AcGePoint3d& point, std::u16string_view network, Notices& notices);
// A colour legend on the current layer: ten classes when the sixth text is given, else five.
int InsertLegend(const AcGePoint3d& point, std::u16string_view title,
                 const std::array<std::u16string, 10>& classes, int kind, double scale,
                 Notices& notices);
// A block of the product by its name, at a rotation in radians and a scale in all three axes.
int InsertNamedBlock(const AcGePoint3d& point, std::u16string_view layer, std::u16string_view name,
                     std::u16string_view code, std::u16string_view description,
                     std::u16string_view blockName, double rotation, double scale,
                     Notices& notices);

// Gives the symbols of a network this scale, above 0, until the command ends.
void useSymbolScale(std::u16string_view network, double scale);

// Drops what is remembered: for a command that itself moves or erases arrows between insertions.
void forgetSymbols();

}  // namespace vessora
