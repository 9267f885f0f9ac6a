// The parts of the command that adds an element.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "module/editing/add_jobs.h"

namespace vessora {

// Behind the names that are proposed: each run sets them from the number of names in the network,
// and leaves them as they are in a network without.
extern std::int32_t nextNodeNumber, nextLinkNumber;

// How the choice of the network ends the run, or that an element is to be chosen.
enum class NetworkStep { goOn, ran, abandoned };

// Shows networks, makes a new one, confirms the default one: whatever the user asks for.
// currentNetwork is settled when the run goes on.
NetworkStep settleNetwork();

// The branches of nodes. `names` are those of the network so far, and get the new one.
void addJunctionAtPoint(ElementNames& names);
void addReservoirAtPoint(ElementNames& names);
void addTankAtPoint(ElementNames& names);

// What a job has to say beyond the words of the command.
void tellAdded(const AddedElement& added);
// The name that a number proposes.
std::u16string proposed(std::int32_t number);
// The user's points, as prompts give and take them, and the world's.
AcGePoint3d toWorld(const AcGePoint3d& point);
AcGePoint3d toUser(const AcGePoint3d& point);

}  // namespace vessora
