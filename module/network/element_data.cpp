#include "module/network/element_data.h"

#include <algorithm>

#include "platform/text.h"

namespace vessora {

using schema::Field;
using schema::Row;
using schema::Rows;

// --- the fields of records -----------------------------------------------------------------------

namespace {

template <class Record>
struct Bound {
  Field field;
  wide50 Record::*text = nullptr;
  wide256 Record::*name = nullptr;
};

template <class Record>
struct Fields;

template <>
struct Fields<EpaJunc> {
  static constexpr const schema::Kind& kind = schema::kJunc;
  static constexpr Bound<EpaJunc> all[] = {{Field::id, nullptr, &EpaJunc::id},
                                           {Field::elevation, &EpaJunc::elev},
                                           {Field::demand, &EpaJunc::demand},
                                           {Field::emitter, &EpaJunc::emitter},
                                           {Field::pattern, &EpaJunc::pattern}};
};
template <>
struct Fields<EpaResv> {
  static constexpr const schema::Kind& kind = schema::kResv;
  static constexpr Bound<EpaResv> all[] = {{Field::id, nullptr, &EpaResv::id},
                                           {Field::head, &EpaResv::head},
                                           {Field::pattern, &EpaResv::pattern}};
};
template <>
struct Fields<EpaTank> {
  static constexpr const schema::Kind& kind = schema::kTank;
  static constexpr Bound<EpaTank> all[] = {
      {Field::id, nullptr, &EpaTank::id},    {Field::elevation, &EpaTank::elev},
      {Field::diameter, &EpaTank::diameter}, {Field::initLevel, &EpaTank::initLevel},
      {Field::minLevel, &EpaTank::minLevel}, {Field::maxLevel, &EpaTank::maxLevel},
      {Field::minVolume, &EpaTank::minVol},  {Field::volumeCurve, &EpaTank::volCurve}};
};
template <>
struct Fields<EpaPipe> {
  static constexpr const schema::Kind& kind = schema::kPipe;
  static constexpr Bound<EpaPipe> all[] = {
      {Field::id, nullptr, &EpaPipe::id},       {Field::node1, nullptr, &EpaPipe::node1},
      {Field::node2, nullptr, &EpaPipe::node2}, {Field::length, &EpaPipe::length},
      {Field::diameter, &EpaPipe::diameter},    {Field::roughness, &EpaPipe::roughness},
      {Field::minorLoss, &EpaPipe::minorLoss},  {Field::status, &EpaPipe::status}};
};
template <>
struct Fields<EpaValv> {
  static constexpr const schema::Kind& kind = schema::kValv;
  static constexpr Bound<EpaValv> all[] = {{Field::id, nullptr, &EpaValv::id},
                                           {Field::node1, nullptr, &EpaValv::node1},
                                           {Field::node2, nullptr, &EpaValv::node2},
                                           {Field::diameter, &EpaValv::diameter},
                                           {Field::type, &EpaValv::type},
                                           {Field::setting, &EpaValv::setting},
                                           {Field::minorLoss, &EpaValv::minorLoss},
                                           {Field::status, &EpaValv::status}};
};
template <>
struct Fields<EpaPump> {
  static constexpr const schema::Kind& kind = schema::kPump;
  static constexpr Bound<EpaPump> all[] = {{Field::id, nullptr, &EpaPump::id},
                                           {Field::node1, nullptr, &EpaPump::node1},
                                           {Field::node2, nullptr, &EpaPump::node2},
                                           {Field::headCurve, &EpaPump::headCurve},
                                           {Field::power, &EpaPump::power},
                                           {Field::speed, &EpaPump::speed},
                                           {Field::status, &EpaPump::status},
                                           {Field::speedPattern, &EpaPump::speedPattern},
                                           {Field::efficiencyCurve, &EpaPump::effCurve},
                                           {Field::price, &EpaPump::price},
                                           {Field::pricePattern, &EpaPump::pricePattern}};
};
// Results are no kind of element: they have a list.
template <>
struct Fields<EpaNodeResult> {
  static constexpr const schema::List& list = schema::kNodeResult;
  static constexpr Bound<EpaNodeResult> all[] = {{Field::demand, &EpaNodeResult::demand},
                                                 {Field::head, &EpaNodeResult::head},
                                                 {Field::pressure, &EpaNodeResult::pressure},
                                                 {Field::quality, &EpaNodeResult::quality}};
};
template <>
struct Fields<EpaLinkResult> {
  static constexpr const schema::List& list = schema::kLinkResult;
  static constexpr Bound<EpaLinkResult> all[] = {{Field::flow, &EpaLinkResult::flow},
                                                 {Field::velocity, &EpaLinkResult::velocity},
                                                 {Field::headloss, &EpaLinkResult::headloss},
                                                 {Field::status, &EpaLinkResult::status}};
};

template <class Record>
constexpr const schema::List& listOf() {
  if constexpr (requires { Fields<Record>::list; }) {
    return Fields<Record>::list;
  } else {
    return Fields<Record>::kind.data;
  }
}

// Calls act(member) with the record's member of a field, if it has it.
template <class Record, class Owner, class Act>
void withMember(Owner& record, Field field, Act act) {
  for (const Bound<Record>& bound : Fields<Record>::all) {
    if (bound.field != field) continue;
    if (bound.text) {
      act(record.*bound.text);
    } else {
      act(record.*bound.name);
    }
    return;
  }
}

template <class Record>
void put(Record& record, Field field, std::u16string_view text) {
  withMember<Record>(record, field, [&](auto& member) { member = text; });
}

}  // namespace

template <class Record>
const schema::Kind& kindOf() {
  return Fields<Record>::kind;
}

template <class Record>
std::u16string_view textOf(const Record& record, Field field) {
  std::u16string_view text;
  withMember<Record>(record, field, [&](const auto& member) { text = member.view(); });
  return text;
}

// --- attributes ----------------------------------------------------------------------------------

template <class Record>
bool takeAttributes(AcDbBlockReference* block, Record& record) {
  constexpr std::size_t kMost = 8;
  std::array<std::u16string_view, kMost> tags;
  std::array<std::u16string, kMost> texts;
  std::array<Field, kMost> fields;
  int count = 0;
  unsigned idBit = 0;
  for (const Row& row : listOf<Record>().rows) {
    if (row.tag.empty()) continue;
    const auto at = static_cast<std::size_t>(count);
    if (row.field == Field::id) idBit = 1U << at;
    tags[at] = row.tag;
    fields[at] = row.field;
    ++count;
  }
  const unsigned found = readAttributes(block, tags.data(), texts.data(), count);
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
    put(record, fields[i], texts[i]);
  return (found & idBit) != 0;
}

template <class Record>
void writeAttributes(AcDbBlockReference* block, const Record& record, FieldSet changed) {
  for (const Row& row : listOf<Record>().rows) {
    if (row.tag.empty() || !changed.has(row.field)) continue;
    WriteAttribute(block, row.tag, textOf(record, row.field));
  }
}

// --- extended data -------------------------------------------------------------------------------

namespace {

// The next item into the record, when there is one.
template <class Record>
void takeItem(XDataReader& data, Record& record, const Row& row, Reals reals) {
  if (data.done()) return;
  if (row.field == Field::none) return data.skip();
  if (row.type == schema::Type::text) return put(record, row.field, data.text());
  const double value = data.real();
  const bool empty = (row.empty != schema::Empty::never && value == 0) ||
                     (row.empty == schema::Empty::zeroOrLess && value < 0);
  withMember<Record>(record, row.field, [&](auto& member) {
    if constexpr (std::is_same_v<std::remove_reference_t<decltype(member)>, wide50>) {
      if (empty) {
        member.clear();
      } else if (reals == Reals::whole) {
        storeExactly(member, value);
      } else {
        storeReal(member, value);
      }
    }
  });
}

template <class Record>
void takeWholeResult(const Chain& chain, Record& result) {
  XDataReader data(chain);
  for (const Row& row : listOf<Record>().rows) {
    withMember<Record>(result, row.field, [&](auto& member) {
      if constexpr (std::is_same_v<std::remove_reference_t<decltype(member)>, wide50>) {
        if (row.type == schema::Type::real) {
          storeReal(member, data.real());
        } else {
          member = data.text();
        }
      }
    });
  }
}

}  // namespace

template <class Record>
void takeField(const Chain& data, Record& record, Field field, Reals reals) {
  for (const Row& row : listOf<Record>().rows) {
    if (row.field != field) continue;
    XDataReader reader(data);
    for (int i = 1; i < row.place; ++i) reader.skip();
    takeItem(reader, record, row, reals);
  }
}

template <class Record>
void takeData(const Chain& data, Record& record, bool id, Reals reals) {
  XDataReader reader(data);
  for (const Row& row : listOf<Record>().rows) {
    if (row.place == 0) break;
    if (row.field == Field::speedPattern && (reader.done() || reader.code() == 1010)) break;
    if (row.field == Field::id && !id) {
      reader.skip();
    } else {
      takeItem(reader, record, row, reals);
    }
  }
}

void takeResult(const Chain& data, EpaNodeResult& result) { takeWholeResult(data, result); }
void takeResult(const Chain& data, EpaLinkResult& result) { takeWholeResult(data, result); }

namespace {

// What a row's item has to hold: what is given, else what the record says.
template <class Record>
Given valueOf(const Record& record, const Row& row, std::initializer_list<Given> given) {
  for (const Given& own : given) {
    if (own.field == row.field) return own;
  }
  const std::u16string_view text = textOf(record, row.field);
  return {row.field, text, row.type == schema::Type::text ? 0 : platform::wtof(text)};
}

// Puts values into the items of the changed fields. False, with the list in any state, when an item
// up to the last of them is missing or holds another kind of value.
template <class Record>
bool putInPlace(const Chain& data, const Record& record, FieldSet changed,
                std::initializer_list<Given> given) {
  int last = 0;
  for (const Row& row : listOf<Record>().rows) {
    if (changed.has(row.field)) last = std::max(last, row.place);
  }
  for (const Row& row : listOf<Record>().rows) {
    if (row.place == 0 || row.place > last) continue;
    resbuf* const item = data.item(row.place);
    const bool text = row.type == schema::Type::text;
    if (!item || acutKindOf(item->restype) != (text ? RbKind::text : RbKind::real)) return false;
    if (!changed.has(row.field)) continue;
    const Given value = valueOf(record, row, given);
    if (text) {
      setTextItem(item, value.text);
    } else {
      item->resval.rreal = value.real;
    }
  }
  return true;
}

}  // namespace

template <class Record>
Chain dataOf(const Record& record, std::initializer_list<Given> given) {
  XDataBuilder data(listOf<Record>().application);
  for (const Row& row : listOf<Record>().rows) {
    if (row.place == 0) break;
    const Given value = valueOf(record, row, given);
    if (row.type == schema::Type::text) {
      data.text(value.text);
    } else {
      data.real(value.real);
    }
  }
  return data.take();
}

template <class Record>
void writeData(AcDbObject* entity, const Record& record, FieldSet changed,
               std::initializer_list<Given> given) {
  if (!changed.isAll()) {
    const Rows& rows = listOf<Record>().rows;
    if (std::none_of(rows.begin(), rows.end(),
                     [&](const Row& row) { return row.place != 0 && changed.has(row.field); })) {
      return;
    }
    const Chain stored(entity->xData(listOf<Record>().application));
    if (putInPlace(stored, record, changed, given)) {
      entity->setXData(stored.get());
      return;
    }
  }
  entity->setXData(dataOf(record, given).get());
}

Chain companionData(std::u16string_view id) {
  XDataBuilder data(schema::app::kImport);
  data.text(id);
  return data.take();
}

Chain withTie(Chain data, std::u16string_view keptId) {
  if (keptId.empty() || !data) return data;
  resbuf* last = data.get();
  while (last->rbnext) last = last->rbnext;
  last->rbnext = acutBuildList(1001, schema::app::kKept, 1000, keptId, RTNONE);
  return data;
}

std::u16string_view textAt(const Chain& data, const schema::List& list, Field field) {
  return data.text(schema::placeOf(list, field));
}

double realAt(const Chain& data, const schema::List& list, Field field) {
  XDataReader reader(data);
  for (int i = schema::placeOf(list, field); i > 1; --i) reader.skip();
  return reader.real();
}

void storeReal(wide50& field, double value) {
  char digits[330];
  const auto n = static_cast<std::size_t>(platform::writeFixed3(digits, value) - digits);
  char16_t text[wide50::capacity];
  const std::size_t kept = std::min(n, wide50::capacity - 1);
  std::copy_n(digits, kept, text);
  field.assign({text, kept});
}

void storeShown(wide50& field, double value) {
  storeReal(field, value);
  if (inpIsFull() && platform::wtof(field) != value) storeExactly(field, value);
}

void storeExactly(wide50& field, double value) {
  char digits[32];
  field = platform::widen({digits, platform::writeReal(digits, value)});
}

#define INSTANTIATE(Record)                                  \
  template std::u16string_view textOf(const Record&, Field); \
  template Chain dataOf(const Record&, std::initializer_list<Given>);
#define INSTANTIATE_ELEMENT(Record)                                                            \
  INSTANTIATE(Record)                                                                          \
  template const schema::Kind& kindOf<Record>();                                               \
  template bool takeAttributes(AcDbBlockReference*, Record&);                                  \
  template void writeAttributes(AcDbBlockReference*, const Record&, FieldSet);                 \
  template void writeData(AcDbObject*, const Record&, FieldSet, std::initializer_list<Given>); \
  template void takeField(const Chain&, Record&, Field, Reals);                                \
  template void takeData(const Chain&, Record&, bool, Reals);
INSTANTIATE_ELEMENT(EpaJunc)
INSTANTIATE_ELEMENT(EpaResv)
INSTANTIATE_ELEMENT(EpaTank)
INSTANTIATE_ELEMENT(EpaPipe)
INSTANTIATE_ELEMENT(EpaValv)
INSTANTIATE_ELEMENT(EpaPump)
INSTANTIATE(EpaNodeResult)
INSTANTIATE(EpaLinkResult)

}  // namespace vessora
