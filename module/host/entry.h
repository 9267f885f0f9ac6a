// What the entry points of the module share with the folders in which their work is done.
#pragma once

#include <cstdint>
#include <string_view>

namespace vessora {

// Stands for this library among the modules that extend the session with dialogs of their own.
void* moduleInstance();

// Rises when a command begins. Whatever is remembered about the drawing for the length of one
// command is stale when the number is another one: a user may have undone or erased anything since.
extern std::uint32_t commandNumber;
// Has `forget` called once, when the running command has ended: the place to release such memories.
void atCommandEnd(void (*forget)());
// What the exports call when a command's body is through.
void endCommand();

// Bodies of the two exports that other modules call; they live where their work is done.
// ScriviInp: 1 when the file has been written, else 0.
std::int64_t WriteInpOf(std::u16string_view path, std::u16string_view network);
// ImportaRpt: what the host says to the posted command line.
int QueueRptImport(std::u16string_view path, std::u16string_view network);

}  // namespace vessora
