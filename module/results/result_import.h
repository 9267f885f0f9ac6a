// Results of one period of a report onto the elements of a network, as extended data, and off them
// again.
//
// Elements are found by their layer and rows by the element's name. An element that the report does
// not name gets the list's last row: nothing tells it from the others afterwards.
#pragma once

#include <string_view>

#include "module/network/network_list.h"
#include "module/network/schema.h"
#include "module/results/result_jobs.h"
#include "module/results/rpt_reader.h"

namespace vessora {

// Calls act(entity) for each entity of this class that passes the filter, open for write; of how
// many it said yes.
template <class Entity, class Act>
int forEachOf(resbuf* filter, Act act) {
  int count = 0;
  for (const AcDbObjectId id : SelectionSet(u"_X", filter)) {
    const Opened<Entity> entity(id, AcDb::kForWrite);
    if (entity && act(*entity)) ++count;
  }
  return count;
}
// The list by which an element tells the period of its results.
Chain periodData(std::u16string_view time);
// Takes an element's results off. An entity that has nothing to lose is not touched: it would count
// as changed. Whether it had results.
bool removeResults(AcDbEntity& entity, const char16_t* results);

// What writes the results. A null list removes results and periods; else the list has at least one
// row, and each element gets its row and `time`. The answer is how many elements were given
// results, or had some to lose.
int WriteNodeResults(const NetworkLayers& layers, const NodeResultList* nodes,
                     std::u16string_view time, Notices& notices);
int WritePipeResults(const NetworkLayers& layers, const LinkResultList* links,
                     std::u16string_view time);
int WriteValvePumpResults(const NetworkLayers& layers, const LinkResultList* links,
                          std::u16string_view time, Notices& notices);

// Takes the colours that a query gave off the link polylines: by layer again.
void ResetLinkColors(const NetworkLayers& layers);
// A piezometric line drawn from older results must not outlive them.
void ErasePiezometricLine(std::u16string_view network);

}  // namespace vessora
