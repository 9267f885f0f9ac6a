// The process-wide values of the commands, and what every command begins and ends with.
#include "module/host/module.h"

#include <cstdint>
#include <utility>

#include "module/host/command_span.h"

namespace vessora {

std::u16string installPath;
wide256 currentNetwork;
std::vector<std::u16string> networkNames;
wide256 defaultNetwork;
wide256 selectedNetwork;
int resistanceFormulaIndex = 0;

// --- the common start of commands ----------------------------------------------------------------

bool readInstallPath(std::u16string& path) {
  resbuf* value = nullptr;
  const int status = acedGetSym(u"hn-cpath", &value);
  const Chain chain(value);
  if (status != RTNORM || chain.text(0).empty()) return false;
  path = chain.text(0);
  return true;
}

namespace {
std::vector<void (*)()> endOfSpan;
}

std::uint32_t CommandSpan::number_ = 0;

CommandSpan::~CommandSpan() {
  for (void (*forget)() : std::exchange(endOfSpan, {})) forget();
}

void CommandSpan::atEnd(void (*forget)()) { endOfSpan.push_back(forget); }

}  // namespace vessora
