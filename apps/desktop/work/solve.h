// A drawn network solved by the real solver, in a folder of its own; nothing of it is drawn.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/temporary_files.h"

class QWidget;

namespace desktop {

struct Solved {
  std::string fault;  // why there are no results; empty when there are
  bool cancelled = false;
  std::vector<std::string> messages;  // of export and solver, in words
  // The files of the run are there while this lives.
  std::shared_ptr<platform::TemporaryFolder> folder;
  std::string output, report;
};

// Of a network of the open drawing. The window over `parent` can cancel the solver.
Solved solveNetwork(std::u16string_view network, QWidget* parent);

}  // namespace desktop
