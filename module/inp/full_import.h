// An input file read in full, and drawn.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "epanet/network.h"
#include "module/inp/inp_jobs.h"
#include "module/network/kept_text.h"
#include "platform/beside.h"

namespace vessora {

struct FullFile {
  explicit FullFile(std::string bytes)
      : document(std::move(bytes)),
        packed(platform::beside([&text = document.text()] { return packText(text); })),
        network(document) {}
  epanet::Document document;
  // The text as the drawing will keep it: made beside the reading of what it means.
  std::shared_future<PackedText> packed;
  epanet::Network network;
};

// What would be drawn.
void examineFullFile(const FullFile& file, InpFindings& found);
// Draws every node and link of the file once, under a name that the drawing does not have yet, with
// settings, patterns and curves, and keeps the file's text. `scale` is that of importInp.
ImportResult drawFullFile(const FullFile& file, std::u16string_view name,
                          std::optional<double> scale);

}  // namespace vessora
