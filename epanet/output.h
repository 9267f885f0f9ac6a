// The binary results file of the solver, versions 2.0 to 2.3: every period at the solver's own
// (float) precision, in the units of the run.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "epanet/results.h"

namespace epanet {

enum class OutputQuality { none, chemical, age, trace };
enum class OutputStatistic { none, average, minimum, maximum, range };

// What a pump used, over the whole run.
struct PumpUse {
  int link = 0;                  // place among the links, from 0
  std::array<float, 6> figures;  // % of time, % efficiency, kWh/Mgal or m3, average and peak kW,
                                 // cost a day
};

class Output final : public Results {
 public:
  // Whether the bytes begin as such a file does.
  static bool looksLikeOne(std::string_view bytes);
  // Takes any bytes. A file whose end is missing is taken with its whole periods, if it has one.
  static OpenedResults open(std::string bytes);

  const std::vector<Period>& periods() const override { return periods_; }
  PeriodValues values(std::size_t k) const override;
  bool isCut() const override { return cut_; }
  bool isUtf8() const override { return utf8_; }

  int version() const { return version_; }
  OutputQuality quality() const { return quality_; }
  OutputStatistic statistic() const { return statistic_; }
  // The last warning of the run, 0 without one; unknown (0) in a file that is cut.
  int warning() const { return warning_; }
  std::size_t nodeCount() const { return nodes_; }
  std::size_t linkCount() const { return links_; }
  std::string_view nodeId(std::size_t i) const { return textAt(idsAt_ + i * idWidth_, idWidth_); }
  std::string_view linkId(std::size_t i) const { return nodeId(nodes_ + i); }
  bool isPipe(std::size_t link) const { return intAt(typesAt_ + 4 * link) <= 1; }
  std::vector<PumpUse> pumpUses() const;
  float demandCharge() const { return floatAt(periodsAt_ - 4); }

 private:
  Output() = default;
  OutputFault readHead();
  OutputFault place(std::size_t idWidth);
  OutputFault checkElements() const;
  OutputFault checkEnd();
  void namePeriods();
  std::int32_t intAt(std::size_t at) const;
  float floatAt(std::size_t at) const;
  std::string_view textAt(std::size_t at, std::size_t width) const;
  std::size_t periodSize() const { return 16 * nodes_ + 32 * links_; }

  std::string bytes_;
  std::vector<Period> periods_;
  std::size_t nodes_ = 0, links_ = 0, tanks_ = 0, pumps_ = 0;
  std::size_t idWidth_ = 0, idsAt_ = 0, endsAt_ = 0, typesAt_ = 0, energyAt_ = 0, periodsAt_ = 0;
  int version_ = 0, flowUnit_ = 0, pressureUnit_ = 0, warning_ = 0;
  OutputQuality quality_ = OutputQuality::none;
  OutputStatistic statistic_ = OutputStatistic::none;
  std::string qualityUnit_;
  bool cut_ = false, utf8_ = true;
};

}  // namespace epanet
