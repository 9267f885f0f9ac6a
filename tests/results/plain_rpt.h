// A report read the plain way, line after line into one working record that is copied for each row:
// what the reader's lists of lines must amount to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/results/rpt_reader.h"
#include "platform/text.h"

namespace vessora {

struct PlainRows {
  std::vector<EpaNodeResult> nodes;
  std::vector<EpaLinkResult> links;
};

// `at` stands between "Results" and the colon: empty, or " at TIME hrs".
inline PlainRows readPlainly(const std::string& bytes, const std::string& at,
                             const std::string& continuedAt) {
  const std::string text = platform::toUtf8(bytes);
  platform::TextLines source(text);
  std::string line;
  bool ended = false;
  const auto read = [&] {
    if (const auto next = source.next()) {
      line = next->substr(0, next->find('\0'));
    } else {
      ended = true;
    }
  };
  const auto begins = [&](const char* kind) {
    const std::string head = std::string("  ") + kind + " Results";
    return line == head + at + ":\n" || line == head + continuedAt + ": (continued)\n";
  };
  PlainRows rows;
  EpaNodeResult node;
  EpaLinkResult link;
  enum { none, nodes, links } state = none;
  while (!ended) {
    read();
    if (begins("Node") || begins("Link")) {
      state = begins("Node") ? nodes : links;
      for (int i = 0; i < 4; ++i) read();
    } else if (state == nodes) {
      ParseNodeResultRow(line, node);
      rows.nodes.push_back(node);
    } else if (state == links) {
      ParseLinkResultRow(line, link);
      rows.links.push_back(link);
    }
  }
  return rows;
}

inline bool same(const EpaNodeResult& a, const EpaNodeResult& b) {
  return a.id == b.id && a.demand == b.demand && a.head == b.head && a.pressure == b.pressure &&
         a.quality == b.quality && a.period == b.period;
}
inline bool same(const EpaLinkResult& a, const EpaLinkResult& b) {
  return a.id == b.id && a.flow == b.flow && a.velocity == b.velocity && a.headloss == b.headloss &&
         a.status == b.status && a.period == b.period;
}

// Whether a list has these rows and finds each name where it comes first.
template <class List, class Record>
bool agrees(const List& list, const std::vector<Record>& rows) {
  if (list.size() != rows.size()) return false;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::size_t first = list.find(rows[i].id);
    if (first > i || !(rows[first].id == rows[i].id)) return false;
    if (!same(list[i], rows[i])) return false;
  }
  return true;
}

}  // namespace vessora
