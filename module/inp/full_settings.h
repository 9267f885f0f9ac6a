// The settings of a network as importing its file in full stores them, and what of them an export
// has to take back.
#pragma once

#include <string>
#include <vector>

#include "epanet/editor.h"
#include "module/inp/full_form.h"
#include "module/network/records.h"

namespace vessora {

// The settings of the file: its options, or what the solver does without them. Times have the form
// hh:mm:ss. Name and flag are left alone.
void fillSettings(const FullForm& form, EpaSettings& settings);

// An option that the drawing has otherwise than the kept text.
struct ChangedSetting {
  epanet::Option option;
  std::string was, now;  // as the file writes them
  bool operator==(const ChangedSetting&) const = default;
};
std::vector<ChangedSetting> changedSettings(const FullForm& form, const EpaSettings& drawn);
// How an option is called in a file: "Demand Multiplier".
std::string settingName(epanet::Option option);
// All of them that stand in a section, as rows of a file.
std::string settingRows(const EpaSettings& drawn, epanet::Section section);

// Puts changed options into the row that decides, or into a new row of their section.
void writeSettings(const epanet::Network& network, const std::vector<ChangedSetting>& changes,
                   epanet::Editor& editor);

}  // namespace vessora
