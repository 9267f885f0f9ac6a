// The subcommands. Each returns the program's exit status: 0 done, 1 failed with one line on standard
// error.
#pragma once

#include <string>

namespace cli {

struct ImportOptions {
  std::string inp, out, base;
};
int importNetwork(const ImportOptions& options);

struct ExportOptions {
  std::string drawing, out, network;
  bool csv = false;
};
int exportNetwork(const ExportOptions& options);

int showInfo(const std::string& drawing, bool json);

struct RunOptions {
  std::string drawing, script, out;
};
int runScript(const RunOptions& options);

int shell(const std::string& drawing);

}  // namespace cli
