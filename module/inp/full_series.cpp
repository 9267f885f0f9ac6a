#include "module/inp/full_series.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <unordered_set>

#include "module/inp/full_values.h"

namespace vessora {
namespace {

bool sameValues(const EpaPattern& a, const EpaPattern& b) {
  return std::equal(a.multipliers.begin(), a.multipliers.end(), b.multipliers.begin(),
                    b.multipliers.end(), sameReal);
}
bool sameValues(const EpaCurve& a, const EpaCurve& b) {
  return std::equal(a.points.begin(), a.points.end(), b.points.begin(), b.points.end(),
                    [](const EpaCurvePoint& p, const EpaCurvePoint& q) {
                      return sameReal(p.x, q.x) && sameReal(p.y, q.y);
                    });
}
bool isEmpty(const EpaPattern& pattern) { return pattern.multipliers.empty(); }
bool isEmpty(const EpaCurve& curve) { return curve.points.empty(); }

// What has been renamed goes first: it may have the name of what is gone.
template <class Kept>
std::vector<std::uint32_t> renamedFirst(const FullForm& form, const std::vector<Rename>& renames,
                                        RenamedKind kind, const std::vector<Kept>& kept) {
  std::vector<std::uint32_t> order(kept.size());
  std::iota(order.begin(), order.end(), 0U);
  std::unordered_set<std::u16string> renamed;
  for (const Rename& rename : renames) {
    if (rename.kind == kind) renamed.insert(rename.kept);
  }
  if (renamed.empty()) return order;
  std::stable_partition(order.begin(), order.end(), [&](std::uint32_t i) {
    return renamed.contains(form.words().text(kept[i].id));
  });
  return order;
}

// `kept(i)` is the record that importing the i-th of the file stores.
template <class Record, class Kept>
void compare(const std::vector<std::uint32_t>& order, bool everything,
             const std::vector<Record>& drawn, Kept kept,
             std::vector<ChangedSeries<Record>>& changes) {
  std::unordered_map<std::u16string, const Record*> byName;
  for (const Record& record : drawn) byName.emplace(record.id.str(), &record);
  for (const std::uint32_t i : order) {
    const Record own = kept(i);
    const auto found = byName.find(own.id.str());
    if (found == byName.end()) {
      // A record without values has no existence in a drawing.
      if (!isEmpty(own)) changes.push_back({i, std::nullopt});
      continue;
    }
    if (everything || !sameValues(*found->second, own)) changes.push_back({i, *found->second});
    byName.erase(found);
  }
  for (const Record& record : drawn) {
    const auto left = byName.find(record.id.str());
    if (left != byName.end() && left->second == &record) {
      changes.push_back({epanet::kNone, record});
    }
  }
}

}  // namespace

void compareSeries(const FullForm& form, bool everything, const std::vector<EpaPattern>& patterns,
                   const std::vector<EpaCurve>& curves, Comparison& comparison) {
  const epanet::Network& network = form.network();
  compare(
      renamedFirst(form, comparison.renames, RenamedKind::pattern, network.patterns), everything,
      patterns, [&form](std::uint32_t i) { return form.pattern(i); }, comparison.patterns);
  compare(
      renamedFirst(form, comparison.renames, RenamedKind::curve, network.curves), everything,
      curves, [&form](std::uint32_t i) { return form.curve(i); }, comparison.curves);
}

}  // namespace vessora
