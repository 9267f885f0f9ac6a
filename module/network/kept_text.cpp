#include "module/network/kept_text.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "module/network/schema.h"
#include "module/network/settings_store.h"
#include "platform/deflate.h"
#include "platform/text.h"

namespace vessora {
namespace {

constexpr char16_t kStore[] = u"VESSORA_INP";
constexpr int kVersion = 1;

// What a network has a record of, and how its key ends.
constexpr std::u16string_view kText = u"", kRenames = u"-RENAMES", kResults = u"-RESULTS";

std::u16string hexadecimal(std::uint64_t number, int digits) {
  std::u16string text;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
    text += u"0123456789ABCDEF"[(number >> shift) & 15];
  }
  return text;
}

// The key of a network's record: as much of its name as any release takes, for the reader of the
// file, and a hash of the whole. Keys compare without case and names do not.
std::u16string keyOf(std::u16string_view network, std::u16string_view theme) {
  std::u16string key;
  std::uint64_t hash = 14695981039346656037U;
  for (const char16_t c : network) {
    for (const int byte : {c & 0xFF, c >> 8}) {
      hash = (hash ^ static_cast<std::uint64_t>(byte)) * 1099511628211U;
    }
    const bool plain = (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') ||
                       (c >= u'a' && c <= u'z') || c == u'_' || c == u'-';
    if (plain && key.size() < 24) key += c;
  }
  return key + u'-' + hexadecimal(hash, 16) + std::u16string(theme);
}

// Our dictionary, made when it is wanted and not there; empty when it is not, or the name is
// somebody else's.
Opened<AcDbDictionary> openStore(bool make) {
  AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
  AcDbDictionary* named = nullptr;
  if (!database || database->getNamedObjectsDictionary(named, AcDb::kForRead) != Acad::eOk) {
    return {};
  }
  const Opened<AcDbDictionary> root(named);
  AcDbObjectId id;
  if (root->getAt(kStore, id) == Acad::eOk) {
    return Opened<AcDbDictionary>(id, make ? AcDb::kForWrite : AcDb::kForRead);
  }
  if (!make || root->upgradeOpen() != Acad::eOk) return {};
  Fresh<AcDbDictionary> store;
  store.taken(root->setAt(kStore, store.get(), id));
  return store.release();
}

Opened<AcDbXrecord> openRecord(std::u16string_view network, std::u16string_view theme,
                               AcDb::OpenMode mode = AcDb::kForRead) {
  const Opened<AcDbDictionary> store = openStore(false);
  AcDbObjectId id;
  if (!store || store->getAt(keyOf(network, theme), id) != Acad::eOk) return {};
  return Opened<AcDbXrecord>(id, mode);
}

Opened<AcDbXrecord> makeRecord(std::u16string_view network, std::u16string_view theme) {
  if (Opened<AcDbXrecord> there = openRecord(network, theme, AcDb::kForWrite)) return there;
  const Opened<AcDbDictionary> store = openStore(true);
  if (!store) return {};
  Fresh<AcDbXrecord> record;
  AcDbObjectId id;
  record.taken(store->setAt(keyOf(network, theme), record.get(), id));
  return record.release();
}

void eraseRecord(std::u16string_view network, std::u16string_view theme) {
  const Opened<AcDbXrecord> record = openRecord(network, theme, AcDb::kForWrite);
  if (record) record->erase();
}

// --- the contents of a record: version and network's name, and then what the theme has

class RecordBuilder {
 public:
  explicit RecordBuilder(std::u16string_view network)
      : chain_(acutBuildList(70, kVersion, 1, network, RTNONE)), last_(chain_.item(1)) {}
  void text(std::u16string_view value) { add(acutBuildList(1, value, RTNONE)); }
  void kind(int value) { add(acutBuildList(70, value, RTNONE)); }
  void number(std::uint32_t value) { add(acutBuildList(90, static_cast<int>(value), RTNONE)); }
  const resbuf* get() const { return chain_.get(); }

 private:
  void add(resbuf* node) { last_ = last_->rbnext = node; }
  const Chain chain_;
  resbuf* last_;
};

class RecordReader {
 public:
  // `ours` is false for what another version of this program, or none, has written.
  RecordReader(const Chain& chain, std::u16string_view network) : at_(chain.get()) {
    ours = number(70) == std::uint32_t{kVersion} && text() == network;
  }
  bool done() const { return at_ == nullptr; }
  std::optional<std::uint32_t> number(int code) {
    const resbuf* const node = take(code);
    if (!node) return std::nullopt;
    return code == 90 ? static_cast<std::uint32_t>(node->resval.rlong)
                      : static_cast<std::uint32_t>(node->resval.rint);
  }
  std::optional<std::u16string> text() {
    const resbuf* const node = take(1);
    return node ? std::optional<std::u16string>(node->resval.rstring) : std::nullopt;
  }
  bool ours = false;

 private:
  // The next item if it has the code; nothing follows one that has not.
  const resbuf* take(int code) {
    const resbuf* const node = at_ && at_->restype == code ? at_ : nullptr;
    at_ = node ? node->rbnext : nullptr;
    return node;
  }
  const resbuf* at_;
};

bool readText(const AcDbXrecord& record, std::u16string_view network, PackedText& packed) {
  const Chain chain(record.rbChain(packed.deflated));
  RecordReader reader(chain, network);
  const auto length = reader.number(90), checksum = reader.number(90);
  if (!reader.ours || !length || !checksum) return false;
  packed.size = *length;
  packed.checksum = *checksum;
  return true;
}

// --- the checksum on the settings points

std::u16string markOf(AcDbObjectId point) {
  const Opened<AcDbObject> opened(point);
  if (!opened) return {};
  const Chain data(opened->xData(schema::kKept.application));
  return std::u16string(data.text(schema::kKeptPlace));
}

// An empty mark takes it off.
void setMarks(std::u16string_view network, std::u16string_view mark) {
  if (!mark.empty()) acdbRegApp(schema::kKept.application);
  for (const AcDbObjectId id : settingsPoints(network)) {
    if (markOf(id) == mark) continue;
    const Opened<AcDbObject> point(id, AcDb::kForWrite);
    XDataBuilder data(schema::kKept.application);
    if (!mark.empty()) data.text(mark);
    if (point) point->setXData(data.take().get());
  }
}

}  // namespace

// --- the text ------------------------------------------------------------------------------------

KeptState loadPackedText(std::u16string_view network, PackedText& packed) {
  packed = PackedText();
  std::vector<std::u16string> marks;
  for (const AcDbObjectId id : settingsPoints(network)) {
    if (std::u16string mark = markOf(id); !mark.empty()) marks.push_back(std::move(mark));
  }
  const Opened<AcDbXrecord> record = openRecord(network, kText);
  if (!record) return marks.empty() ? KeptState::none : KeptState::lost;
  if (!readText(*record, network, packed)) return KeptState::damaged;
  for (const std::u16string& mark : marks) {
    if (mark != hexadecimal(packed.checksum, 8)) return KeptState::damaged;
  }
  return KeptState::whole;
}

KeptState loadKeptText(std::u16string_view network, KeptText& text) {
  text = KeptText();
  PackedText packed;
  const KeptState state = loadPackedText(network, packed);
  if (state != KeptState::whole) return state;
  std::optional<std::string> bytes = unpackText(packed);
  if (!bytes) return KeptState::damaged;
  text = {std::move(*bytes), packed.checksum};
  return KeptState::whole;
}

bool hasKeptText(std::u16string_view network) { return bool(openRecord(network, kText)); }

namespace {
constexpr std::size_t kLargestText = std::numeric_limits<std::int32_t>::max();
}  // namespace

PackedText packText(std::string_view bytes) {
  if (bytes.size() > kLargestText) return {bytes.size(), 0, {}};
  return {bytes.size(), platform::crc32(bytes), platform::deflated(bytes)};
}

std::optional<std::string> unpackText(const PackedText& packed) {
  std::optional<std::string> whole = platform::inflated(packed.deflated, packed.size);
  if (!whole || platform::crc32(*whole) != packed.checksum) return std::nullopt;
  return whole;
}

bool saveKeptText(std::u16string_view network, const PackedText& text) {
  if (text.size > kLargestText) return false;
  const Opened<AcDbXrecord> record = makeRecord(network, kText);
  if (!record) return false;
  RecordBuilder head(network);
  head.number(static_cast<std::uint32_t>(text.size));
  head.number(text.checksum);
  if (record->setFromRbChain(head.get(), text.deflated) != Acad::eOk) return false;
  eraseRecord(network, kRenames);
  eraseRecord(network, kResults);
  setMarks(network, hexadecimal(text.checksum, 8));
  return true;
}

void markSettings(std::u16string_view network) {
  const Opened<AcDbXrecord> record = openRecord(network, kText);
  if (!record) return;
  std::string bytes;
  const Chain chain(record->rbChain(bytes));
  RecordReader reader(chain, network);
  reader.number(90);
  const auto checksum = reader.number(90);
  if (reader.ours && checksum) setMarks(network, hexadecimal(*checksum, 8));
}

void eraseKeptText(std::u16string_view network) {
  for (const std::u16string_view theme : {kText, kRenames, kResults}) eraseRecord(network, theme);
  setMarks(network, {});
}

// --- renames -------------------------------------------------------------------------------------

std::vector<Rename> loadRenames(std::u16string_view network) {
  std::vector<Rename> renames;
  const Opened<AcDbXrecord> record = openRecord(network, kRenames);
  if (!record) return renames;
  const Chain chain(record->rbChain());
  RecordReader reader(chain, network);
  while (reader.ours && !reader.done()) {
    const auto kind = reader.number(70);
    const auto kept = reader.text(), now = reader.text();
    if (!kept || !now || *kind > static_cast<std::uint32_t>(RenamedKind::curve)) break;
    renames.push_back({static_cast<RenamedKind>(*kind), *kept, *now});
  }
  return renames;
}

namespace {

bool saveRenames(std::u16string_view network, const std::vector<Rename>& renames) {
  if (renames.empty()) {
    eraseRecord(network, kRenames);
    return true;
  }
  RecordBuilder list(network);
  for (const Rename& r : renames) {
    list.kind(static_cast<int>(r.kind));
    list.text(r.kept);
    list.text(r.now);
  }
  const Opened<AcDbXrecord> record = makeRecord(network, kRenames);
  return record && record->setFromRbChain(list.get()) == Acad::eOk;
}

// The name that the text has for what has one now.
std::u16string keptNameOf(const std::vector<Rename>& renames, RenamedKind kind,
                          std::u16string_view now) {
  for (const Rename& r : renames) {
    if (r.kind == kind && r.now == now) return r.kept;
  }
  return std::u16string(now);
}

}  // namespace

bool addRename(std::u16string_view network, RenamedKind kind, std::u16string_view from,
               std::u16string_view to) {
  return from == to || noteRename(network, kind, keptNameOf(loadRenames(network), kind, from), to);
}

bool noteRename(std::u16string_view network, RenamedKind kind, std::u16string_view kept,
                std::u16string_view now) {
  if (!hasKeptText(network)) return true;
  std::vector<Rename> renames = loadRenames(network);
  const auto before = std::find_if(renames.begin(), renames.end(), [&](const Rename& r) {
    return r.kind == kind && r.kept == kept;
  });
  if (before != renames.end() && before->now == now) return true;
  if (before == renames.end()) {
    if (kept == now) return true;
    renames.push_back({kind, std::u16string(kept), std::u16string(now)});
  } else if (kept == now) {
    renames.erase(before);
  } else {
    before->now = now;
  }
  return saveRenames(network, renames);
}

void forgetRename(std::u16string_view network, RenamedKind kind, std::u16string_view now) {
  std::vector<Rename> renames = loadRenames(network);
  if (std::erase_if(renames, [&](const Rename& r) { return r.kind == kind && r.now == now; }) > 0) {
    saveRenames(network, renames);
  }
}

// --- results -------------------------------------------------------------------------------------

ResultMark loadResultMark(std::u16string_view network) {
  const Opened<AcDbXrecord> record = openRecord(network, kResults);
  if (!record) return {};
  const Chain chain(record->rbChain());
  RecordReader reader(chain, network);
  const auto fingerprint = reader.text(), period = reader.text();
  if (!reader.ours || !period) return {};
  return {*fingerprint, *period};
}

bool saveResultMark(std::u16string_view network, const ResultMark& mark) {
  const Opened<AcDbXrecord> record = makeRecord(network, kResults);
  if (!record) return false;
  RecordBuilder list(network);
  list.text(mark.fingerprint);
  list.text(mark.period);
  return record->setFromRbChain(list.get()) == Acad::eOk;
}

void clearResultMark(std::u16string_view network) { eraseRecord(network, kResults); }

}  // namespace vessora
