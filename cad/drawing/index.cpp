#include "cad/drawing/index.h"

#include <algorithm>

namespace cad {

void Index::Lists::add(std::uint32_t name, std::uint32_t record) {
  if (name >= of.size()) {
    of.resize(name + 1);
    mixed.resize(name + 1, false);
  }
  std::vector<std::uint32_t>& list = of[name];
  if (!list.empty() && list.back() >= record) mixed[name] = true;
  list.push_back(record);
}

const std::vector<std::uint32_t>& Index::Lists::at(std::uint32_t name) {
  static const std::vector<std::uint32_t> empty;
  if (name == 0 || name >= of.size()) return empty;
  std::vector<std::uint32_t>& list = of[name];
  if (mixed[name]) {
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    mixed[name] = false;
  }
  return list;
}

Index& Index::built() {
  if (built_) return *this;
  built_ = true;
  for (std::uint32_t i = 1; i < records_.count(); ++i) {
    if (records_[i].is(Record::space) && !records_[i].is(Record::erased)) note(i, Record());
  }
  return *this;
}

void Index::note(std::uint32_t record, const Record& before) {
  if (!built_) return;
  const Record& r = records_[record];
  if (!r.is(Record::space) || r.is(Record::child)) return;
  const bool fresh = before.bytes == nullptr;
  if (fresh || before.layer != r.layer) layers_.add(r.layer, record);
  if (r.type == Type::insert && (fresh || before.name != r.name)) references_.add(r.name, record);
  if (!fresh && before.apps == r.apps) return;
  records_.sets().forEach(r.apps, [&](std::uint32_t app) { applications_.add(app, record); });
}

std::vector<std::uint32_t> Index::allInSpace() const {
  std::vector<std::uint32_t> all;
  for (std::uint32_t i = 1; i < records_.count(); ++i) {
    const Record& r = records_[i];
    if (r.is(Record::space) && !r.is(Record::erased) && !r.is(Record::child)) all.push_back(i);
  }
  return all;
}

}  // namespace cad
