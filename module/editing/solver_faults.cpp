#include "module/editing/solver_faults.h"

#include <type_traits>

#include "platform/text.h"

namespace vessora {

using schema::Field;

namespace {

// Columns of names are 19 characters wide, and the value behind follows without a blank.
constexpr std::size_t kLongestName = 18;

bool isReadable(std::u16string_view name) {
  return name.size() <= kLongestName && !name.starts_with(u'[') &&
         name.find_first_of(u" \t\r\n;") == name.npos;
}

bool touches(FieldSet changed, FieldSet fields) { return !(changed & fields).isEmpty(); }

bool levelsInOrder(const EpaTank& tank) {
  const double initial = platform::wtof(tank.initLevel);
  return platform::wtof(tank.minLevel) <= initial && initial <= platform::wtof(tank.maxLevel);
}

}  // namespace

template <class Record>
void warnOfSolver(const Record& element, FieldSet changed, Notices& warnings) {
  const std::u16string name = element.id.str();
  if (name.empty()) return;  // which is told by itself
  if (changed.has(Field::id) && !isReadable(name)) {
    warnings.push_back({NoticeCode::nameUnreadable, name});
  }
  if constexpr (std::is_same_v<Record, EpaPump>) {
    if (touches(changed, {Field::headCurve, Field::power}) && element.headCurve.empty() &&
        element.power.empty()) {
      warnings.push_back({NoticeCode::pumpWithoutDrive, name});
    }
  } else if constexpr (std::is_same_v<Record, EpaPipe>) {
    // The dialog's own word for it.
    if (changed.has(Field::status) && element.status == u"Close") {
      warnings.push_back({NoticeCode::pipeStatusUnknown, name, element.status.str()});
    }
  } else if constexpr (std::is_same_v<Record, EpaTank>) {
    if (touches(changed, {Field::initLevel, Field::minLevel, Field::maxLevel}) &&
        !levelsInOrder(element)) {
      warnings.push_back({NoticeCode::tankLevelsDisordered, name});
    }
  }
}

template void warnOfSolver(const EpaJunc&, FieldSet, Notices&);
template void warnOfSolver(const EpaResv&, FieldSet, Notices&);
template void warnOfSolver(const EpaTank&, FieldSet, Notices&);
template void warnOfSolver(const EpaPipe&, FieldSet, Notices&);
template void warnOfSolver(const EpaPump&, FieldSet, Notices&);
template void warnOfSolver(const EpaValv&, FieldSet, Notices&);

}  // namespace vessora
