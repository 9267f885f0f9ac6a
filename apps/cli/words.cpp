#include "apps/cli/words.h"

#include <cstdio>

#include "platform/text.h"

namespace cli {

int fail(std::string_view message) {
  std::fprintf(stderr, "vessora: %s\n", program::oneLine(message).c_str());
  return 1;
}

void warn(std::string_view message) {
  std::fprintf(stderr, "vessora: %s%s\n", words("attenzione: ").c_str(),
               program::oneLine(message).c_str());
}

void say(std::string_view line) { std::printf("%s\n", program::oneLine(line).c_str()); }

void warn(const vessora::Notices& notices) {
  for (const std::string& line : described(notices)) warn(line);
}

std::string describe(const vessora::PickedNetwork& picked, const std::string& drawing,
                     const std::string& wanted) {
  using Why = vessora::PickedNetwork::Why;
  const std::string names = listed(picked.names);
  if (picked.why == Why::unknown) {
    return drawing + ": " + words("la rete non c'è: ") + wanted +
           (names.empty() ? words(" (il disegno non ha reti)") : words("; ci sono: ") + names);
  }
  return drawing + ": " +
         (picked.why == Why::none ? words("il disegno non ha reti")
                                  : words("indicare la rete con -n; ci sono: ") + names);
}

void warn(const std::string& path, const std::vector<epanet::Problem>& problems, bool utf8) {
  constexpr std::size_t kShown = 8;
  std::size_t shown = 0;
  for (const epanet::Problem& problem : problems) {
    // Nodes without coordinates are told where they have been placed.
    if (problem.fault == epanet::Fault::noCoordinates) continue;
    if (shown++ < kShown) warn(path + ": " + describe(problem, utf8));
  }
  if (shown <= kShown) return;
  warn(path + ": " + words("altri problemi: ") + std::to_string(shown - kShown) +
       words("; li elenca: vessora info ") + path);
}

}  // namespace cli
