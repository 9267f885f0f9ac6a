#include "cad/dxf/tags.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "cad/dxf/bytes.h"
#include "platform/text.h"

namespace cad {
namespace {

// A value outside its range or no number at all must not reach a file: programs refuse the drawing.
double finite(double v) {
  if (std::isnan(v)) return 0;
  return std::clamp(v, -1.7976931348623157e308, 1.7976931348623157e308);
}

}  // namespace

namespace {
std::vector<std::unique_ptr<TagList>>& pool() {
  static std::vector<std::unique_ptr<TagList>> lists;
  return lists;
}
}  // namespace

BorrowedTags borrowTags() {
  if (pool().empty()) return BorrowedTags(new TagList);
  BorrowedTags tags(pool().back().release());
  pool().pop_back();
  return tags;
}

void ReturnTags::operator()(TagList* tags) const noexcept {
  std::unique_ptr<TagList> owned(tags);
  if (pool().size() > 64) return;
  owned->clear();
  pool().push_back(std::move(owned));
}

const Format& TagList::neutral() {
  static const Format format;
  return format;
}

void TagList::clear() {
  tags_.clear();
  arena_.reset();
}

bool TagList::parse(const Format& format, std::string_view text) {
  clear();
  format_ = &format;
  std::size_t at = 0;
  Tag tag;
  while (at < text.size()) {
    const bool ok = format.binary ? readBinaryTag(text, at, format.wideCodes, tag)
                                  : readAsciiTag(text, at, tag);
    if (!ok) {
      // Bytes behind the last tag (blank lines, what follows EOF) stay with it.
      if (tags_.empty()) return false;
      tags_.back().total += static_cast<std::uint32_t>(text.size() - at);
      return true;
    }
    tags_.push_back(tag);
  }
  return !tags_.empty();
}

void TagList::create(const Format& format, std::string_view type) {
  clear();
  format_ = &format;
  addAscii(0, type);
}

void TagList::createLiteral(const Format& format, std::string_view type) {
  clear();
  format_ = &format;
  addLiteral(0, type);
}

void TagList::copy(const TagList& made) {
  clear();
  format_ = made.format_;
  tags_ = made.tags_;
  std::size_t bytes = 0;
  for (const Tag& t : tags_) bytes += t.size;
  char* to = arena_.allocate(bytes);
  for (Tag& t : tags_) {
    char* const next = copyShort(to, t.bytes());
    t.value = to;
    to = next;
  }
}

void TagList::transcode(const Format& to) {
  if (&to == format_) return;
  const bool same = to.sameEncoding(*format_) && to.crlf == format_->crlf;
  if (same) {
    format_ = &to;
    return;
  }
  const bool sameValues = to.sameEncoding(*format_);
  const Format& from = *format_;
  for (Tag& t : tags_) {
    if (!sameValues) {
      const int i = static_cast<int>(&t - tags_.data());
      Tag fresh;
      switch (kindOf(t.code)) {
        case ValueKind::text: {
          const std::u16string text = from.decode(t.bytes());
          scratch_.clear();
          to.encode(scratch_, text);
          fresh = make(t.code, scratch_);
          break;
        }
        case ValueKind::handle:
          fresh = make(t.code, std::string(t.bytes()));
          break;
        case ValueKind::bytes: {
          // Hex digits in ASCII files, plain bytes in binary ones.
          const std::u16string digits = this->text(i);
          format_ = &to;
          fresh = makeText(t.code, digits);
          format_ = &from;
          break;
        }
        case ValueKind::real: {
          const double v = real(i);
          format_ = &to;
          fresh = makeReal(t.code, v);
          format_ = &from;
          break;
        }
        default: {
          const std::int64_t v = integer(i);
          format_ = &to;
          fresh = makeInteger(t.code, v);
          format_ = &from;
          break;
        }
      }
      t = fresh;
    }
    t.start = nullptr;
    t.total = 0;
  }
  format_ = &to;
}

int TagList::find(int code, int from, int to) const {
  if (to < 0) to = size();
  for (int i = from; i < to; ++i) {
    if (tags_[static_cast<std::size_t>(i)].code == code) return i;
  }
  return -1;
}

int TagList::findOwn(int code) const {
  for (int i = 1; i < size(); ++i) {
    const int c = (*this)[i].code;
    if (c == code) return i;
    if (c == 1001) break;
  }
  return -1;
}

int TagList::xdataBegin() const {
  for (int i = 1; i < size(); ++i) {
    if ((*this)[i].code == 1001) return i;
  }
  return size();
}

TagRange TagList::subclass(std::string_view name, int occurrence) const {
  const int end = xdataBegin();
  bool any = false;
  for (int i = 1; i < end; ++i) {
    const Tag& t = (*this)[i];
    if (t.code != 100) continue;
    any = true;
    if (t.bytes() != name || --occurrence > 0) continue;
    int stop = i + 1;
    while (stop < end && (*this)[stop].code != 100 && (*this)[stop].code != 101) ++stop;
    return {i + 1, stop};
  }
  return any ? TagRange{end, end} : TagRange{1, end};
}

TagRange TagList::xdata(std::u16string_view application) const {
  for (int i = xdataBegin(); i < size(); ++i) {
    if ((*this)[i].code != 1001) continue;
    const std::string_view bytes = (*this)[i].bytes();
    bool same = bytes.size() == application.size();
    for (std::size_t k = 0; same && k < bytes.size(); ++k) {
      same = static_cast<char16_t>(static_cast<unsigned char>(bytes[k])) == application[k] &&
             application[k] < 128;
    }
    if (!same && !platform::equalNoCase(text(i), application)) continue;
    int stop = i + 1;
    while (stop < size() && (*this)[stop].code != 1001) ++stop;
    return {i, stop};
  }
  return {size(), size()};
}

TagRange TagList::group(std::string_view name) const {
  const int end = xdataBegin();
  for (int i = 1; i < end; ++i) {
    const Tag& t = (*this)[i];
    if (t.code != 102 || t.size < 1 || t.value[0] != '{' || t.bytes().substr(1) != name) continue;
    int stop = i + 1;
    while (stop < end && (*this)[stop].code != 102) ++stop;
    return {i, std::min(stop + 1, end)};
  }
  return {0, 0};
}

double TagList::real(int i) const {
  const Tag& t = (*this)[i];
  if (!format_->binary) return parseTagReal(t.bytes());
  if (kindOf(t.code) == ValueKind::real && t.size == 8) {
    const double v = littleEndian<double>(t.value);
    return std::isfinite(v) ? v : 0;
  }
  return static_cast<double>(integer(i));
}

std::int64_t TagList::integer(int i) const {
  const Tag& t = (*this)[i];
  if (!format_->binary) return parseTagInteger(t.bytes());
  switch (kindOf(t.code)) {
    case ValueKind::int16:
      return littleEndian<std::int16_t>(t.value);
    case ValueKind::int32:
      return littleEndian<std::int32_t>(t.value);
    case ValueKind::int64:
      return littleEndian<std::int64_t>(t.value);
    case ValueKind::boolean:
      return t.value[0];
    case ValueKind::real:
      return static_cast<std::int64_t>(std::clamp(real(i), -9e18, 9e18));
    default:
      return parseTagInteger(t.bytes());
  }
}

std::uint64_t TagList::handle(int i) const { return parseTagHandle((*this)[i].bytes()); }

AcGePoint3d TagList::point(int i) const {
  AcGePoint3d p(real(i), 0, 0);
  const int code = (*this)[i].code;
  if (i + 1 < size() && (*this)[i + 1].code == code + 10) {
    p.y = real(i + 1);
    if (i + 2 < size() && (*this)[i + 2].code == code + 20) p.z = real(i + 2);
  }
  return p;
}

double TagList::realOr(int code, double fallback, TagRange range) const {
  const int i = find(code, range);
  return i < 0 ? fallback : real(i);
}
std::int64_t TagList::integerOr(int code, std::int64_t fallback, TagRange range) const {
  const int i = find(code, range);
  return i < 0 ? fallback : integer(i);
}
std::u16string TagList::textOr(int code, std::u16string_view fallback, TagRange range) const {
  const int i = find(code, range);
  return i < 0 ? std::u16string(fallback) : text(i);
}

Tag TagList::make(int code, std::string_view encoded) {
  Tag t;
  char* const kept = arena_.allocate(encoded.size());
  copyShort(kept, encoded);
  t.value = kept;
  t.size = static_cast<std::uint32_t>(encoded.size());
  t.code = static_cast<std::int16_t>(code);
  return t;
}

Tag TagList::makeReal(int code, double value) {
  char buffer[40];
  value = finite(value);
  if (format_->binary) {
    putLittleEndian(buffer, value);
    return make(code, {buffer, 8});
  }
  return make(code,
              {buffer, static_cast<std::size_t>(platform::writeReal(buffer, value) - buffer)});
}

Tag TagList::makeInteger(int code, std::int64_t value) {
  char buffer[24];
  if (!format_->binary) {
    char* end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    return make(code, {buffer, static_cast<std::size_t>(end - buffer)});
  }
  const ValueKind kind = kindOf(code);
  const int n = sizeOfBinary(kind);
  if (kind == ValueKind::real) return makeReal(code, static_cast<double>(value));
  if (n < 0) return make(code, std::to_string(value));
  putLittleEndian(buffer, value);  // little endian: the low bytes come first
  return make(code, {buffer, static_cast<std::size_t>(n)});
}

// Writes the characters of a text as bytes. False, with any bytes written, where they are not the
// text's bytes in every encoding.
static bool narrowPlain(std::u16string_view text, char* to) {
  std::size_t i = 0;
#if defined(__SSE2__)
  for (; i + 8 <= text.size(); i += 8) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + i));
    const __m128i printing = _mm_and_si128(_mm_cmpgt_epi16(v, _mm_set1_epi16(31)),
                                           _mm_cmplt_epi16(v, _mm_set1_epi16(127)));
    const __m128i plain = _mm_andnot_si128(_mm_cmpeq_epi16(v, _mm_set1_epi16('^')), printing);
    if (_mm_movemask_epi8(plain) != 0xFFFF) return false;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + i), _mm_packus_epi16(v, v));
  }
#endif
  bool plain = true;
  for (; i < text.size(); ++i) {
    const char16_t c = text[i];
    plain &= c >= 32 && c < 127 && c != u'^';
    to[i] = static_cast<char>(c);
  }
  return plain;
}

Tag TagList::makeText(int code, std::u16string_view text) {
  if (!format_->binary || kindOf(code) != ValueKind::bytes) {
    char* const bytes = arena_.allocate(text.size());
    if (narrowPlain(text, bytes)) {
      Tag t;
      t.value = bytes;
      t.size = static_cast<std::uint32_t>(text.size());
      t.code = static_cast<std::int16_t>(code);
      return t;
    }
    arena_.shrink(text.size());
  }
  scratch_.clear();
  if (format_->binary && kindOf(code) == ValueKind::bytes) {
    // A length byte stands before the value.
    const std::string digits = platform::narrow(text.substr(0, 510));
    for (std::size_t k = 0; k + 1 < digits.size(); k += 2) {
      scratch_ += static_cast<char>(parseTagHandle(std::string_view(digits).substr(k, 2)));
    }
  } else {
    format_->encode(scratch_, text);
  }
  return make(code, scratch_);
}

std::u16string TagList::text(int i) const {
  const Tag& t = (*this)[i];
  if (!format_->binary || kindOf(t.code) != ValueKind::bytes) return format_->decode(t.bytes());
  std::u16string digits;
  for (const char c : t.bytes()) {
    digits += u"0123456789ABCDEF"[static_cast<unsigned char>(c) >> 4];
    digits += u"0123456789ABCDEF"[c & 15];
  }
  return digits;
}

// What has the value already keeps its spelling: a write that changes nothing leaves no trace.
void TagList::setText(int i, std::u16string_view text) {
  // Without escapes a text of fewer bytes than characters cannot be the same.
  if ((*this)[i].size < text.size() && !format_->binary) {
    at(i) = makeText((*this)[i].code, text);
    return;
  }
  if (this->text(i) != text) at(i) = makeText((*this)[i].code, text);
}
void TagList::setAscii(int i, std::string_view text) { at(i) = make((*this)[i].code, text); }
void TagList::setReal(int i, double value) {
  const bool same =
      (*this)[i].size > 0 && real(i) == value && std::signbit(real(i)) == std::signbit(value);
  if (!same) at(i) = makeReal((*this)[i].code, value);
}
void TagList::setInteger(int i, std::int64_t value) {
  if ((*this)[i].size == 0 || integer(i) != value) at(i) = makeInteger((*this)[i].code, value);
}

Tag TagList::makeHandle(int code, std::uint64_t handle) {
  char digits[16];
  char* const end = digits + sizeof digits;
  char* first = end;
  do {
    *--first = "0123456789ABCDEF"[handle & 15];
    handle >>= 4;
  } while (handle != 0);
  return make(code, {first, static_cast<std::size_t>(end - first)});
}

void TagList::setHandle(int i, std::uint64_t handle) {
  at(i) = makeHandle((*this)[i].code, handle);
}

void TagList::insertText(int at, int code, std::u16string_view text) {
  place(at, makeText(code, text));
}
void TagList::insertAscii(int at, int code, std::string_view text) { place(at, make(code, text)); }
void TagList::insertReal(int at, int code, double value) { place(at, makeReal(code, value)); }
void TagList::insertInteger(int at, int code, std::int64_t value) {
  place(at, makeInteger(code, value));
}
void TagList::insertHandle(int at, int code, std::uint64_t handle) {
  place(at, makeHandle(code, handle));
}

void TagList::insertHandles(std::uint64_t own, std::uint64_t owner) {
  const Tag both[] = {makeHandle(5, own), makeHandle(330, owner)};
  tags_.insert(tags_.begin() + 1, std::begin(both), std::end(both));
}

void TagList::erase(int from, int to) { tags_.erase(tags_.begin() + from, tags_.begin() + to); }

void TagList::addPoint(int code, const AcGePoint3d& p) {
  addReal(code, p.x);
  addReal(code + 10, p.y);
  addReal(code + 20, p.z);
}

void TagList::replacePoint(int i, const AcGePoint3d& p) {
  const int code = (*this)[i].code;
  at(i) = makeReal(code, p.x);
  at(i + 1) = makeReal(code + 10, p.y);
  at(i + 2) = makeReal(code + 20, p.z);
}

void TagList::putReal(int code, double value, TagRange range) {
  const int i = find(code, range);
  i < 0 ? insertReal(range.end, code, value) : setReal(i, value);
}
void TagList::putInteger(int code, std::int64_t value, TagRange range) {
  const int i = find(code, range);
  i < 0 ? insertInteger(range.end, code, value) : setInteger(i, value);
}
void TagList::putText(int code, std::u16string_view value, TagRange range) {
  const int i = find(code, range);
  i < 0 ? insertText(range.end, code, value) : setText(i, value);
}

void TagList::putPoint(int code, const AcGePoint3d& p, TagRange range) {
  const double axis[] = {p.x, p.y, p.z};
  int i = find(code, range);
  if (i < 0) {
    for (int k = 0; k < 3; ++k) insertReal(range.end + k, code + 10 * k, axis[k]);
    return;
  }
  for (int k = 0; k < 3; ++k) {
    const int want = code + 10 * k;
    if (i + k < size() && (*this)[i + k].code == want) {
      if (real(i + k) != axis[k]) setReal(i + k, axis[k]);
    } else if (axis[k] != 0) {
      insertReal(i + k, want, axis[k]);
    } else {
      break;  // an absent axis is zero
    }
  }
}

void TagList::insertCopy(int at, const TagList& from, int i) {
  Tag t = from[i];
  if (!format_->sameEncoding(*from.format_)) {
    switch (kindOf(t.code)) {
      case ValueKind::text:
        insertText(at, t.code, from.text(i));
        return;
      case ValueKind::real:
        insertReal(at, t.code, from.real(i));
        return;
      case ValueKind::handle:
        insertAscii(at, t.code, std::string(t.bytes()));
        return;
      case ValueKind::bytes: {
        TagList one;
        one.create(from.format(), "X");
        one.tags_.push_back(t);
        one.transcode(*format_);
        place(at, make(t.code, one[1].bytes()));
        return;
      }
      default:
        insertInteger(at, t.code, from.integer(i));
        return;
    }
  }
  place(at, make(t.code, t.bytes()));
}

}  // namespace cad
