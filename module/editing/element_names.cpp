#include "module/editing/element_names.h"

#include <algorithm>

namespace vessora {

bool LinkNameExists(std::u16string_view name, const std::vector<std::u16string>& names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

void takeName(std::u16string_view name, const schema::Kind& kind, std::u16string_view network,
              std::vector<std::u16string>& names, Notices& warnings) {
  const bool node = &kind == &schema::kJunc || &kind == &schema::kResv || &kind == &schema::kTank;
  if (name.empty()) {
    warnings.push_back({NoticeCode::nameEmpty, schema::layerName(kind.layer, network)});
  } else if (LinkNameExists(name, names)) {
    warnings.push_back(
        {node ? NoticeCode::nodeNameTwice : NoticeCode::linkNameTwice, std::u16string(name)});
  }
  names.emplace_back(name);
}

}  // namespace vessora
