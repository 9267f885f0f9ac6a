// The scanner behind parseInp: one pass over the lines of an input file.
#pragma once

#include <array>
#include <string_view>

#include "module/inp/id_index.h"
#include "module/inp/inp_text.h"
#include "module/network/records.h"

namespace vessora {

enum class InpSection {
  none,
  junctions,
  reservoirs,
  tanks,
  pipes,
  pumps,
  valves,
  coordinates,
  vertices,
  status,
  curves,
  patterns,
  emitters,
  reactions,
  times,
  options,
  energy,
};

// Makes room in the lists for the rows of the element sections, so that no record is ever moved.
void reserveRows(std::string_view utf8, EpaNetwork& network);

class InpScanner {
 public:
  // `utf8`, `network` and `settings` must outlive the scanner.
  InpScanner(std::string_view utf8, EpaNetwork& network, EpaSettings& settings);
  // Reads to the end of the file. To be called once.
  void run();

 private:
  // The words of a keyword line; those that the line lacks are empty.
  using Words = std::array<std::string_view, 4>;

  bool enterSection();
  void enterPatterns();
  void readLine();

  void readJunction();
  void readReservoir();
  void readTank();
  void readPipe();
  void readPump();
  void readValve();
  void readPoint(RecordList<EpaCoord>& points);
  void readStatus();
  void readEmitter();
  void readPattern();
  void readCurves();

  void readKeywords(void (InpScanner::*handle)(const Words&));
  void takeReaction(const Words& words);
  void takeTime(const Words& words);
  void takeOption(const Words& words);
  void takeEnergy(const Words& words);
  void takePumpEnergy(const Words& words);

  InpTokens rowTokens() const { return InpTokens(lines_.line(), kRowDelimiters); }

  InpLines lines_;
  EpaNetwork& network_;
  EpaSettings& settings_;
  InpSection section_ = InpSection::none;
  bool reactionsPassed_ = false;  // one [REACTIONS] header has been met
  EpaPattern pattern_;            // its id outlives the rows: a comment line makes a pattern of it
  IdIndex<EpaJunc> juncsById_;
  IdIndex<EpaPump> pumpsById_;
  IdIndex<EpaValv> valvesById_;
  StatusRows<EpaPump> pumpStatus_;
  StatusRows<EpaValv> valveStatus_;
};

}  // namespace vessora
