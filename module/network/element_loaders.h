// One element between its entity and its record, as the commands that edit elements need it.
//
// The readers fill a record from an open entity. The updaters write a changed record back and keep
// in step what depends on it: a node drags the link ends that lie on it, the blocks of the valves
// and pumps it touches, and the node names that links store; a valve or pump renames its companion.
// None of them reports anything.
#pragma once

#include <string>

#include "module/network/element_data.h"
#include "module/network/node_update.h"
#include "module/network/schema.h"

namespace vessora {

// --- readers. The entity stays the caller's; without extended data the fields from there stay.
// Reals from there have three decimals, in full all of them. ---

void ReadJunc(EpaJunc& junc, AcDbBlockReference* block);
void ReadResv(EpaResv& resv, AcDbBlockReference* block);
void ReadTank(EpaTank& tank, AcDbBlockReference* block);
// Diameter, type, setting and minor loss come from the attributes, not from the extended data.
void ReadValv(EpaValv& valv, AcDbBlockReference* block);
// With a short list, one that ends before the speed pattern, the last four fields stay.
void ReadPump(EpaPump& pump, AcDbBlockReference* block);
// `material` stays as it is for a pipe without one.
void ReadPipe(EpaPipe& pipe, std::u16string& material, AcDb3dPolyline* polyline);

// --- updaters. Those of blocks take over the entity, open for write, and close it. ---------------

// A field that is not in `changed` stays as it is in the drawing, and what would follow from it
// does not happen: without a node's name or height no link is touched. All fields write the element
// anew as a whole.

// The links that are searched are those of `currentNetwork`. Heights are read from the texts. The
// junction's own emitter text is not looked at.
FollowedLinks UpdateJunc(Opened<AcDbBlockReference> block, const EpaJunc& junc, double emitter,
                         FieldSet changed = FieldSet::all());
FollowedLinks UpdateResv(Opened<AcDbBlockReference> block, const EpaResv& resv,
                         FieldSet changed = FieldSet::all());
FollowedLinks UpdateTank(Opened<AcDbBlockReference> block, const EpaTank& tank,
                         FieldSet changed = FieldSet::all());
// The names of the end nodes stay what the block has stored. All fields put diameter and minor loss
// on the attributes alone and 0 into the data; as two of some they go to both.
void UpdateValv(Opened<AcDbBlockReference> block, const EpaValv& valv, std::u16string_view layer,
                FieldSet changed = FieldSet::all());
void UpdatePump(Opened<AcDbBlockReference> block, const EpaPump& pump, std::u16string_view layer,
                FieldSet changed = FieldSet::all());
// The polyline is open for write and stays so. Its nodes' names and its vertices stay. The material
// counts as the field `type`, as in the list that holds it.
void UpdatePipe(AcDb3dPolyline* polyline, const EpaPipe& pipe, std::u16string_view material,
                FieldSet changed = FieldSet::all());

}  // namespace vessora
