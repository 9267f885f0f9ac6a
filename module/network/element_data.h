// Records and the table of how they are stored: which field of a record is which row, and the
// reading and building of attributes and extended data by the table.
//
// Element records: EpaJunc, EpaResv, EpaTank, EpaPipe, EpaValv, EpaPump. Results: EpaNodeResult,
// EpaLinkResult, which have extended data alone.
#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

#include "module/host/host_drawing.h"
#include "module/network/field_set.h"
#include "module/network/records.h"
#include "module/network/result_records.h"
#include "schema/element.h"

namespace vessora {

// How a kind of record is stored.
template <class Record>
const schema::Kind& kindOf();

// The text of a record's field; empty for a field that it does not have.
template <class Record>
std::u16string_view textOf(const Record& record, schema::Field field);

// --- attributes ----------------------------------------------------------------------------------

// The attributes of an element into its record, a missing one as empty text. The result is false
// when the block has no attribute of the id at all.
template <class Record>
bool takeAttributes(AcDbBlockReference* block, Record& record);
// Those of the fields that the set has; every one of the tag.
template <class Record>
void writeAttributes(AcDbBlockReference* block, const Record& record,
                     FieldSet changed = FieldSet::all());

// --- extended data -------------------------------------------------------------------------------

// How many decimals of a real go into a record.
enum class Reals { threeDecimals, whole };

// The item of one field into the record, when it is there.
template <class Record>
void takeField(const Chain& data, Record& record, schema::Field field,
               Reals reals = Reals::threeDecimals);
// All items. A field whose item is missing stays as it is; a real that stands for no value empties
// its field. Of an element that has the id on an attribute too, `id` false leaves the id alone. A
// pump's list of an older layout ends before the speed pattern, or goes on with a point there.
template <class Record>
void takeData(const Chain& data, Record& record, bool id = true,
              Reals reals = Reals::threeDecimals);
// Results: missing items read as 0 and as empty text.
void takeResult(const Chain& data, EpaNodeResult& result);
void takeResult(const Chain& data, EpaLinkResult& result);

// The list of a record. Reals come from the record's texts, 0 for none; what is `given` goes before
// what the record says.
struct Given {
  schema::Field field;
  std::u16string_view text;
  double real = 0;
};
template <class Record>
Chain dataOf(const Record& record, std::initializer_list<Given> given = {});
// Puts a record's list onto its entity, open for write. Of a set that is not all fields only the
// items of its fields are put in their places, and the others stay what they are; where the list
// that is there has no such items it is made whole from the record.
template <class Record>
void writeData(AcDbObject* entity, const Record& record, FieldSet changed,
               std::initializer_list<Given> given = {});
// Of the companion polyline of a valve or a pump.
Chain companionData(std::u16string_view id);
// The same list with the tie to the rows of the kept text behind it; without an id as it is.
Chain withTie(Chain data, std::u16string_view keptId);

// One value of a list that the table describes; empty or 0 when it is not there.
std::u16string_view textAt(const Chain& data, const schema::List& list, schema::Field field);
double realAt(const Chain& data, const schema::List& list, schema::Field field);

// A real of extended data as records hold it: three decimals, cut at the field's capacity.
void storeReal(wide50& field, double value);
// A real as attributes show it: the same; in full one that three decimals would change is whole.
void storeShown(wide50& field, double value);
// The whole real: the shortest text that reads back as it.
void storeExactly(wide50& field, double value);

}  // namespace vessora
