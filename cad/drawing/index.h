// Which entities of model space and the layouts lie on a layer, carry an application's data, or
// refer to a block. Made when it is first asked for, then kept up with every change.
#pragma once

#include <cstdint>
#include <vector>

#include "cad/drawing/records.h"

namespace cad {

class CAD_API Index {
 public:
  explicit Index(const Records& records) : records_(records) {}
  // Entities in drawing order. A list may still hold some that have moved away or been erased:
  // callers look at the record.
  const std::vector<std::uint32_t>& onLayer(std::uint32_t name) { return built().layers_.at(name); }
  const std::vector<std::uint32_t>& withApplication(std::uint32_t name) {
    return built().applications_.at(name);
  }
  const std::vector<std::uint32_t>& ofBlock(std::uint32_t name) {
    return built().references_.at(name);
  }
  // All entities of model space and layouts, parts left out.
  std::vector<std::uint32_t> allInSpace() const;
  // A record's state has changed from `before`; a default one for what is new or brought back.
  void note(std::uint32_t record, const Record& before);

 private:
  // Lists by name that may be out of order and doubled after changes.
  struct Lists {
    std::vector<std::vector<std::uint32_t>> of;
    std::vector<bool> mixed;
    void add(std::uint32_t name, std::uint32_t record);
    const std::vector<std::uint32_t>& at(std::uint32_t name);
  };
  Index& built();

  const Records& records_;
  bool built_ = false;
  Lists layers_, applications_, references_;
};

}  // namespace cad
