#include "apps/cli/words.h"

#include <cstdio>

#include "platform/format.h"
#include "platform/text.h"

namespace cli {

using platform::narrow;

namespace {

// Names may hold line feeds; a message is one line.
std::string oneLine(std::string_view text) {
  std::string line = platform::printable(text);
  while (line.ends_with('\n')) line.pop_back();
  for (char& c : line) {
    if (c == '\n' || c == '\t') c = ' ';
  }
  return line;
}

}  // namespace

int fail(std::string_view message) {
  std::fprintf(stderr, "vessora: %s\n", oneLine(message).c_str());
  return 1;
}

void warn(std::string_view message) {
  std::fprintf(stderr, "vessora: %s%s\n", words("attenzione: ").c_str(), oneLine(message).c_str());
}

void say(std::string_view line) { std::printf("%s\n", oneLine(line).c_str()); }

std::vector<std::string> described(const vessora::Notices& notices) {
  std::vector<std::string> lines;
  const vessora::Notice* before = nullptr;
  for (const vessora::Notice& notice : notices) {
    // A missing symbol is missing for each element; once is enough.
    const bool again = before && before->code == notice.code && before->subject == notice.subject &&
                       before->other == notice.other;
    if (!again) lines.push_back(oneLine(describe(notice)));
    before = &notice;
  }
  return lines;
}

void warn(const vessora::Notices& notices) {
  for (const std::string& line : described(notices)) warn(line);
}

std::string describe(const vessora::ElementCounts& n) {
  return narrow(
      platform::format(words(u"nodi %d, serbatoi %d, tank %d, condotte %d, pompe %d, valvole %d"),
                       n.junctions, n.reservoirs, n.tanks, n.pipes, n.pumps, n.valves));
}

std::string listed(const std::vector<std::u16string>& names) {
  std::string all;
  for (const std::u16string& name : names) all += (all.empty() ? "" : ", ") + narrow(name);
  return all;
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

}  // namespace cli
