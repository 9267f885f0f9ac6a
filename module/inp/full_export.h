// A drawn network back into an input file, from the text that the drawing keeps.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "epanet/convert.h"
#include "module/inp/full_compare.h"
#include "module/inp/inp_jobs.h"

namespace vessora {

// The text of a network's file and what it means. For a network without kept text: that of a file
// which has its settings and nothing else.
struct KeptFile {
  explicit KeptFile(std::string bytes) : document(std::move(bytes)), network(document) {}
  // Where it names things and gives quantities, read anew: only who changes the text needs it.
  epanet::Record record() const;

  epanet::Document document;
  epanet::Network network;
};
// Null, with a notice, when the drawing has a text that cannot be used.
std::unique_ptr<KeptFile> keptFile(std::u16string_view network, bool withoutText, Notices& notices);

// The bytes of the file that the drawing stands for; nothing when it cannot be told, with a notice.
std::optional<std::string> fullText(const ExportRequest& request, ExportResult& result);

}  // namespace vessora
