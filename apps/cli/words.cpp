#include "apps/cli/words.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/text.h"

namespace cli {

using platform::narrow;

bool italian() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value && *value) return std::strncmp(value, "it", 2) == 0;
  }
  return false;
}

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
  std::fprintf(stderr, "vessora: %s%s\n", words("attenzione: ", "warning: ").c_str(),
               oneLine(message).c_str());
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
  const auto part = [](const char* it, const char* en, int count) {
    return words(it, en) + " " + std::to_string(count);
  };
  return part("nodi", "junctions", n.junctions) + ", " +
         part("serbatoi", "reservoirs", n.reservoirs) + ", " + part("vasche", "tanks", n.tanks) +
         ", " + part("condotte", "pipes", n.pipes) + ", " + part("pompe", "pumps", n.pumps) + ", " +
         part("valvole", "valves", n.valves);
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
    return drawing + ": " + words("la rete non c'è: ", "no such network: ") + wanted +
           (names.empty() ? words(" (il disegno non ha reti)", " (it has no network)")
                          : words("; ci sono: ", "; it has: ") + names);
  }
  return drawing + ": " +
         (picked.why == Why::none
              ? words("il disegno non ha reti", "the drawing has no network")
              : words("indicare la rete con -n; ci sono: ", "name the network with -n; it has: ") +
                    names);
}

}  // namespace cli
