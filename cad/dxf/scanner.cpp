#include "cad/dxf/scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "platform/text.h"
#include "platform/words.h"

namespace cad {
namespace {

constexpr std::array<std::string_view, 48> kTypeNames = {
    "",           "SECTION",  "ENDSEC",       "EOF",         "TABLE",      "ENDTAB",  "BLOCK",
    "ENDBLK",     "CLASS",    "BLOCK_RECORD", "LAYER",       "LTYPE",      "STYLE",   "APPID",
    "DIMSTYLE",   "VPORT",    "VIEW",         "UCS",         "INSERT",     "ATTRIB",  "ATTDEF",
    "SEQEND",     "POLYLINE", "VERTEX",       "LINE",        "POINT",      "TEXT",    "MTEXT",
    "LWPOLYLINE", "CIRCLE",   "ARC",          "ELLIPSE",     "SPLINE",     "SOLID",   "TRACE",
    "3DFACE",     "HATCH",    "DIMENSION",    "ACAD_TABLE",  "DICTIONARY", "XRECORD", "TABLESTYLE",
    "LAYOUT",     "VIEWPORT", "LEADER",       "MULTILEADER", "RAY",        "XLINE"};

const char kBinarySentinel[] = "AutoCAD Binary DXF\r\n\x1A";  // 22 bytes with its ending zero

// Finds line feeds sixteen bytes at a time. A file has tens of millions of lines, most of them a
// few bytes long, so that a search function called for each would spend its time in starting up.
class LineFinder {
 public:
  explicit LineFinder(std::string_view text) : text_(text) { load(0); }
  // Offset of the next line feed at or behind the last answer + 1, or the text's size.
  std::size_t next() {
    while (mask_ == 0) {
      if (block_ + 64 >= text_.size()) return text_.size();
      load(block_ + 64);
    }
    const std::size_t at = block_ + static_cast<unsigned>(__builtin_ctzll(mask_));
    mask_ &= mask_ - 1;
    return at;
  }

 private:
  void load(std::size_t block) {
    block_ = block;
    mask_ = 0;
    const char* p = text_.data() + block;
#if defined(__SSE2__)
    if (block + 64 <= text_.size()) {
      const __m128i lf = _mm_set1_epi8('\n');
      for (int i = 3; i >= 0; --i) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * i));
        mask_ = (mask_ << 16) | static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, lf)));
      }
      return;
    }
#endif
    const std::size_t n = std::min<std::size_t>(64, text_.size() - block);
    for (std::size_t i = 0; i < n; ++i) {
      if (p[i] == '\n') mask_ |= 1ULL << i;
    }
  }
  std::string_view text_;
  std::size_t block_ = 0;
  std::uint64_t mask_ = 0;
};

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  return s;
}

bool onlyBlanks(std::string_view s) {
  return std::all_of(s.begin(), s.end(), [](char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\x1a' || c == 0;
  });
}

Type typeOf(std::string_view name) {
  // Sorted by how often a drawing of a network has them.
  switch (name.size()) {
    case 6:
      if (name == "VERTEX") return Type::vertex;
      if (name == "ATTRIB") return Type::attrib;
      if (name == "SEQEND") return Type::seqend;
      if (name == "INSERT") return Type::insert;
      break;
    case 8:
      if (name == "POLYLINE") return Type::polyline;
      break;
    default:
      break;
  }
  for (std::size_t i = 1; i < kTypeNames.size(); ++i) {
    if (kTypeNames[i] == name) return static_cast<Type>(i);
  }
  return Type::other;
}

// Collects, tag by tag, what the index keeps of one record.
class Indexer {
 public:
  Indexer(const Format& format, NameTables names) : format_(format), names_(names) {}

  void begin(Record& record, std::string_view typeText) {
    record_ = &record;
    seen_ = 0;
    record.type = typeOf(typeText);
    if (typeText != lastTypeText_) {
      lastType_ = names_.types.ofBytes(format_, typeText);
      lastTypeText_ = typeText;
    }
    record.typeName = lastType_;
    if (record.type == Type::dimstyle) seen_ |= kHandle;  // its group 5 is no handle in old files
  }

  void tag(int code, std::string_view value) {
    switch (code) {
      case 5:
        if (!(seen_ & kHandle) && record_->type != Type::section) setHandle(value);
        break;
      case 105:
        if (record_->type == Type::dimstyle) setHandle(value);
        break;
      case 2:
        if (!(seen_ & kName)) {
          seen_ |= kName;
          record_->name = record_->type == Type::section || record_->type == Type::table
                              ? names_.types.ofBytes(format_, value)
                              : symbol(value);
        }
        break;
      case 8:
        if (!(seen_ & kLayer)) {
          seen_ |= kLayer;
          record_->layer = symbol(value);
        }
        break;
      case 60:
        if (!(seen_ & kHidden)) record_->set(Record::hidden, number(value) != 0);
        seen_ |= kHidden;
        break;
      case 67:
        if (number(value) == 1) record_->set(Record::paper);
        break;
      case 70:
        if (!(seen_ & kFlags)) {
          seen_ |= kFlags;
          if (record_->type == Type::polyline) {
            const int f = number(value);
            if (f & 1) record_->set(Record::closed);
            if (f & 8) record_->set(Record::poly3d);
            if (f & (16 | 64)) record_->set(Record::polyMesh);
          }
        }
        break;
      case 66:
        if (record_->type == Type::insert && number(value) == 1) record_->set(Record::hasParts);
        break;
      case 1001: {
        const std::uint32_t app = symbol(value);
        if (record_->type != Type::section) record_->apps = names_.sets.with(record_->apps, app);
        seen_ |= kName | kLayer | kHandle | kFlags | kHidden;
        break;
      }
      default:
        break;
    }
  }

 private:
  static constexpr unsigned kHandle = 1, kName = 2, kLayer = 4, kFlags = 8, kHidden = 16;

  void setHandle(std::string_view value) {
    seen_ |= kHandle;
    record_->handle = parseTagHandle(value);
  }
  int number(std::string_view value) const {
    if (format_.binary) {
      std::int16_t v = 0;
      if (value.size() >= 2) std::memcpy(&v, value.data(), 2);
      return v;
    }
    return static_cast<int>(parseTagInteger(value));
  }
  // A drawing of a network has a few names a million times, one after the other.
  std::uint32_t symbol(std::string_view value) {
    if (value.empty()) return 0;
    const std::size_t mixed = value.size() + 3 * static_cast<unsigned char>(value.front()) +
                              5 * static_cast<unsigned char>(value.back());
    Known& known = known_[mixed % known_.size()];
    if (known.bytes != value) known = {value, names_.symbols.ofBytes(format_, value)};
    return known.name;
  }

  const Format& format_;
  NameTables names_;
  Record* record_ = nullptr;
  unsigned seen_ = 0;
  std::string_view lastTypeText_;
  std::uint32_t lastType_ = 0;
  struct Known {
    std::string_view bytes;
    std::uint32_t name = 0;
  };
  std::array<Known, 64> known_;
};

int versionOf(std::string_view acadver) {
  acadver = trimmed(acadver);
  if (acadver.size() != 6 || acadver.substr(0, 2) != "AC") return 1009;
  const auto v = static_cast<int>(parseTagInteger(acadver.substr(2)));
  return v < 1012 ? 1009 : v;
}

// Version, code page and line ends, from the first variables of the file.
Format detectFormat(std::string_view bytes) {
  Format f;
  f.version = 1009;
  std::size_t at = 0;
  if (bytes.size() > 22 && bytes.substr(0, 21) == std::string_view(kBinarySentinel, 21)) {
    f.binary = true;
    f.wideCodes = bytes.size() > 23 && bytes[22] == 0 && bytes[23] == 0;
    at = 22;
  }
  std::string_view variable;
  std::string page;
  Tag tag;
  int sections = 0;
  for (;;) {
    const bool ok =
        f.binary ? readBinaryTag(bytes, at, f.wideCodes, tag) : readAsciiTag(bytes, at, tag);
    if (!ok) break;
    if (tag.code == 0 && trimmed(tag.bytes()) == "SECTION" && ++sections > 1) break;
    if (tag.code == 0 && trimmed(tag.bytes()) == "ENDSEC") break;
    if (tag.code == 9) variable = trimmed(tag.bytes());
    if (tag.code == 1 && variable == "$ACADVER") f.version = versionOf(tag.bytes());
    if (tag.code == 3 && variable == "$DWGCODEPAGE") page = std::string(trimmed(tag.bytes()));
  }
  f.page = f.version >= 1021 ? platform::CodePage() : platform::CodePage::named(page);
  const std::size_t lf = bytes.find('\n');
  f.crlf = !f.binary && lf != std::string_view::npos && lf > 0 && bytes[lf - 1] == '\r';
  return f;
}

platform::Error malformed(std::string_view bytes, std::size_t at, const std::string& name,
                          const std::string& what) {
  const auto line =
      1 + std::count(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at), '\n');
  return {name + ":" + std::to_string(line) + ": " + what};
}

std::string quoted(std::string_view s) {
  std::string out = "\"";
  for (const char c : s.substr(0, 30)) out += c >= 32 && c < 127 ? c : '?';
  return out + (s.size() > 30 ? "...\"" : "\"");
}

platform::Result<ScannedFile> scanAscii(std::string_view bytes, const std::string& name,
                                        ScannedFile file, NameTables names) {
  LineFinder lines(bytes);
  RecordList& records = file.records;
  records.emplace_back();
  Indexer index(file.format, names);
  std::size_t at = 0;
  bool any = false;
  const char* base = bytes.data();
  auto endRecord = [&](std::size_t end) {
    if (any) {
      records.back().size =
          static_cast<std::uint32_t>(end - static_cast<std::size_t>(records.back().bytes - base));
    } else {
      file.preamble = bytes.substr(0, end);
    }
  };
  while (at < bytes.size()) {
    const std::size_t tagStart = at;
    const std::size_t codeEnd = lines.next();
    // The group code: blanks, digits, nothing else.
    const char* p = base + at;
    const char* end = base + codeEnd;
    while (p < end && (*p == ' ' || *p == '\t')) ++p;
    int code = 0;
    const char* digits = p;
    const bool negative = p < end && *p == '-';
    if (negative) ++digits, ++p;
    while (p < end && static_cast<unsigned char>(*p - '0') < 10 && code < 100000)
      code = code * 10 + (*p++ - '0');
    while (p > digits && p < end && (*p == ' ' || *p == '\t' || *p == '\r')) ++p;
    if (p != end || p == digits || code > 32767) {
      if (onlyBlanks(bytes.substr(at))) {
        file.trailer = bytes.substr(at);
        break;
      }
      return malformed(bytes, at, name,
                       platform::words("serve un codice di gruppo, c'è ") +
                           quoted(trimmed(bytes.substr(at, codeEnd - at))) +
                           platform::words("; il file è guasto o non è un disegno DXF"));
    }
    if (codeEnd + 1 >= bytes.size()) {
      return malformed(bytes, at, name,
                       platform::words("il file finisce a metà di una coppia; è troncato"));
    }
    if (negative) code = -code;
    const std::size_t valueStart = codeEnd + 1;
    std::size_t valueEnd = lines.next();
    at = valueEnd < bytes.size() ? valueEnd + 1 : valueEnd;
    // Only a handful of codes matter here; points, numbers and texts pass by.
    if (code != 0 && code != 2 && code != 5 && code != 8 && code != 60 && code != 105 &&
        !(code >= 66 && code <= 70) && code != 1001) {
      if (!any && code != 999) break;
      continue;
    }
    if (valueEnd > valueStart && base[valueEnd - 1] == '\r') --valueEnd;
    std::string_view value(base + valueStart, valueEnd - valueStart);
    if (code != 0) {
      if (any) index.tag(code, value);
      continue;
    }
    endRecord(tagStart);
    any = true;
    Record& record = records.emplace_back();
    record.bytes = base + tagStart;
    index.begin(record, trimmed(value));
    if (record.type == Type::eof) {
      file.sawEof = true;
      at = bytes.size();
      break;
    }
  }
  if (!any) {
    return platform::Error{name + platform::words(": non è un disegno DXF (non vi comincia alcun "
                                                  "oggetto); dare un file salvato come DXF")};
  }
  endRecord(bytes.size() - file.trailer.size());
  return file;
}

platform::Result<ScannedFile> scanBinary(std::string_view bytes, const std::string& name,
                                         ScannedFile file, NameTables names) {
  RecordList& records = file.records;
  records.emplace_back();
  Indexer index(file.format, names);
  std::size_t at = 22;
  Tag tag;
  bool any = false;
  while (at < bytes.size()) {
    const std::size_t start = at;
    if (!readBinaryTag(bytes, at, file.format.wideCodes, tag)) {
      if (any && onlyBlanks(bytes.substr(start))) {
        file.trailer = bytes.substr(start);
        break;
      }
      return platform::Error{name + ": byte " + std::to_string(start) +
                             platform::words(": il file è troncato o guasto")};
    }
    if (tag.code != 0) {
      if (any) index.tag(tag.code, tag.bytes());
      continue;
    }
    if (any) {
      records.back().size = static_cast<std::uint32_t>(bytes.data() + start - records.back().bytes);
    } else {
      file.preamble = bytes.substr(0, start);
    }
    any = true;
    Record& record = records.emplace_back();
    record.bytes = bytes.data() + start;
    index.begin(record, tag.bytes());
    if (record.type == Type::eof) {
      file.sawEof = true;
      break;
    }
  }
  if (!any)
    return platform::Error{
        name + platform::words(": non è un disegno DXF (non vi comincia alcun oggetto)")};
  records.back().size = static_cast<std::uint32_t>(bytes.data() + bytes.size() -
                                                   file.trailer.size() - records.back().bytes);
  return file;
}

}  // namespace

std::string_view nameOf(Type type) { return kTypeNames[static_cast<std::size_t>(type)]; }

platform::Result<ScannedFile> scanDxf(std::string_view whole, const std::string& name,
                                      NameTables names) {
  std::string_view bytes = whole;
  while (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  if (bytes.size() >= 6 && bytes.substr(0, 4) == "AC10" && bytes[4] >= '0' && bytes[4] <= '9') {
    return platform::Error{
        name +
        platform::words(
            ": è un file DWG; salvarlo come DXF nel programma che l'ha fatto e aprire quello")};
  }
  if (bytes.size() > 0xFFFFFFF0U) {
    return platform::Error{name + platform::words(": oltre 4 GB; dividere il disegno")};
  }
  ScannedFile file;
  file.format = detectFormat(bytes);
  if (file.format.version > 1032) {
    return platform::Error{
        name +
        platform::words(
            ": scritto da una versione più nuova di quelle che questo programma legge (AC") +
        std::to_string(file.format.version) + platform::words("); salvarlo come R2018 o prima")};
  }
  auto scanned = file.format.binary ? scanBinary(bytes, name, std::move(file), names)
                                    : scanAscii(bytes, name, std::move(file), names);
  // The marks stay where they stood.
  if (scanned) {
    scanned->preamble = {whole.data(), whole.size() - bytes.size() + scanned->preamble.size()};
  }
  return scanned;
}

namespace {
// What the tags of a record do not say.
constexpr std::uint16_t kKept = Record::erased | Record::space | Record::child | Record::open |
                                Record::touched | Record::changed | Record::synthetic |
                                Record::stored;
}  // namespace

void copyIndex(Record& record, const Record& like) {
  record.type = like.type;
  record.typeName = like.typeName;
  record.layer = like.layer;
  record.name = like.name;
  record.apps = like.apps;
  record.flags = static_cast<std::uint16_t>((record.flags & kKept) | (like.flags & ~kKept));
}

void indexTags(Record& record, const TagList& tags, NameTables names) {
  record.flags &= kKept;
  record.layer = record.apps = record.name = 0;
  record.handle = 0;
  Indexer index(tags.format(), names);
  index.begin(record, trimmed(tags[0].bytes()));
  for (int i = 1; i < tags.size(); ++i) index.tag(tags[i].code, tags[i].bytes());
}

void enterTypeNames(NameTable& types) {
  for (const std::string_view n : kTypeNames) types.of(std::u16string(n.begin(), n.end()));
}

}  // namespace cad
