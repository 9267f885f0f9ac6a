// What a drawing keeps of the file that a network was imported from: its text, byte for byte, and
// beside it what cannot be seen by comparing text and drawing.
//
// All of it stands in a dictionary of ours under the named objects, one record a network and theme.
// The record of the text holds version, name, length, checksum and the deflated bytes; the
// network's settings point carries the checksum too, so that a text and a network that do not
// belong together are told apart. Names of networks compare exactly. Drawings of releases without
// dictionaries (R12) keep nothing.
//
// Every change here belongs to the running command and is taken back with it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vessora {

// --- the text ------------------------------------------------------------------------------------

struct KeptText {
  std::string bytes;
  std::uint32_t checksum = 0;  // CRC-32 of the bytes
};
enum class KeptState {
  none,     // the drawing has no text of this network, and nothing says that it ever had one
  whole,    // here it is
  lost,     // the settings point tells of a text that is not there
  damaged,  // it is not what was kept, or the settings point tells of another one
};
// `text` is empty unless the answer is `whole`.
KeptState loadKeptText(std::u16string_view network, KeptText& text);
// Whether there is a text, whole or not, without a look at it.
bool hasKeptText(std::u16string_view network);
// A text as the drawing keeps it. Packing and unpacking need no drawing and may go on beside other
// work.
struct PackedText {
  std::size_t size = 0;  // of the text
  std::uint32_t checksum = 0;
  std::string deflated;
};
PackedText packText(std::string_view bytes);
// The text; nothing when it is not what was packed.
std::optional<std::string> unpackText(const PackedText& packed);
// The same as loadKeptText, but for what unpackText finds damaged.
KeptState loadPackedText(std::u16string_view network, PackedText& packed);
// Keeps a text in place of the one before, whose renames and results go with it, and puts its
// checksum onto the settings points of the network, if there are any yet. False when this drawing
// cannot keep it (R12, or more than 2 GB), and nothing has changed.
bool saveKeptText(std::u16string_view network, const PackedText& text);
inline bool saveKeptText(std::u16string_view network, std::string_view bytes) {
  return saveKeptText(network, packText(bytes));
}
// Puts the checksum of the kept text onto settings points that came after it.
void markSettings(std::u16string_view network);
// Takes away all that is kept of the network, and the checksum.
void eraseKeptText(std::u16string_view network);

// --- renames -------------------------------------------------------------------------------------

enum class RenamedKind : std::uint8_t { node, link, pattern, curve };
struct Rename {
  RenamedKind kind = RenamedKind::node;
  std::u16string kept, now;  // what the text calls it, what the drawing does
  friend bool operator==(const Rename&, const Rename&) = default;
};
// In the order in which things were first renamed.
std::vector<Rename> loadRenames(std::u16string_view network);
// A thing has got another name. What was renamed before keeps the name that the text has; back to
// that name is no rename. Nothing is noted where no text is kept. False when it could not be noted.
bool addRename(std::u16string_view network, RenamedKind kind, std::u16string_view from,
               std::u16string_view to);
// The same of a thing that is known by the name that the text has for it.
bool noteRename(std::u16string_view network, RenamedKind kind, std::u16string_view kept,
                std::u16string_view now);
// A renamed thing is gone; its name is free.
void forgetRename(std::u16string_view network, RenamedKind kind, std::u16string_view now);

// --- results -------------------------------------------------------------------------------------

// Which hydraulics the results on the elements were computed from, and the period they show.
struct ResultMark {
  std::u16string fingerprint, period;
  bool empty() const { return fingerprint.empty() && period.empty(); }
  friend bool operator==(const ResultMark&, const ResultMark&) = default;
};
// Empty when there is none.
ResultMark loadResultMark(std::u16string_view network);
// Also where no text is kept. False when this drawing cannot keep it.
bool saveResultMark(std::u16string_view network, const ResultMark& mark);
void clearResultMark(std::u16string_view network);

}  // namespace vessora
