#include "cad/drawing/chains.h"

#include <array>

namespace cad {
namespace {

// As many as CAD programs put into one tag; longer ones are refused by some.
constexpr std::size_t kBytesOfATag = 127;

void setPoint(resbuf& node, const AcGePoint3d& p) {
  node.resval.rpoint[0] = p.x;
  node.resval.rpoint[1] = p.y;
  node.resval.rpoint[2] = p.z;
}

// The node of a tag; `i` moves to the last tag that belongs to it.
resbuf* nodeOf(const TagList& tags, int& i, int end) {
  const int code = tags[i].code;
  resbuf* const node = acutNewRb(code);
  if (!node) return nullptr;
  switch (acutKindOf(code)) {
    case RbKind::text:
      acutSetText(node, tags.text(i));
      break;
    case RbKind::real:
      node->resval.rreal = tags.real(i);
      break;
    case RbKind::int16:
      node->resval.rint = static_cast<std::int16_t>(tags.integer(i));
      break;
    case RbKind::int32:
      node->resval.rlong = static_cast<std::int32_t>(tags.integer(i));
      break;
    case RbKind::point:
      setPoint(*node, tags.point(i));
      // Files of old programs hold broken triples: a stray axis becomes a real of its own code.
      for (int k = 1; k <= 2 && i + 1 < end && tags[i + 1].code == code + 10 * k; ++k) ++i;
      break;
    case RbKind::none:
      break;
  }
  return node;
}

// What a character is as a hex digit; 16 and more for none.
constexpr auto kDigits = [] {
  std::array<unsigned char, 256> digits{};
  for (std::size_t c = 0; c < 256; ++c) {
    const std::size_t lower = c | 0x20;
    digits[c] = static_cast<unsigned char>(c >= '0' && c <= '9'           ? c - '0'
                                           : lower >= 'a' && lower <= 'f' ? lower - 'a' + 10
                                                                          : 255);
  }
  return digits;
}();

bool readDigits(std::string_view digits, char* to) {
  unsigned all = 0;
  for (std::size_t k = 0; k + 1 < digits.size(); k += 2) {
    const unsigned high = kDigits[static_cast<unsigned char>(digits[k])];
    const unsigned low = kDigits[static_cast<unsigned char>(digits[k + 1])];
    all |= high | low;
    *to++ = static_cast<char>(high << 4 | low);
  }
  return all < 16 && digits.size() % 2 == 0;
}

}  // namespace

resbuf* chainOf(const TagList& tags, TagRange range, ChainParts parts) {
  resbuf *head = nullptr, **tail = &head;
  for (int i = range.begin; i < range.end; ++i) {
    const ValueKind kind = kindOf(tags[i].code);
    if (parts != ChainParts::all && kind == ValueKind::handle) continue;
    if (parts == ChainParts::withoutHandlesAndBytes && kind == ValueKind::bytes) continue;
    *tail = nodeOf(tags, i, range.end);
    if (*tail) tail = &(*tail)->rbnext;
  }
  return head;
}

int insertChain(TagList& tags, int at, const resbuf* chain, const resbuf* end) {
  for (const resbuf* n = chain; n != end; n = n->rbnext) {
    const int code = n->restype;
    switch (acutKindOf(code)) {
      case RbKind::text:
        tags.insertText(at++, code, n->resval.rstring);
        break;
      case RbKind::real:
        tags.insertReal(at++, code, n->resval.rreal);
        break;
      case RbKind::int16:
        tags.insertInteger(at++, code, n->resval.rint);
        break;
      case RbKind::int32:
        tags.insertInteger(at++, code, n->resval.rlong);
        break;
      case RbKind::point:
        for (int k = 0; k < 3; ++k) tags.insertReal(at++, code + 10 * k, n->resval.rpoint[k]);
        break;
      case RbKind::none:
        break;
    }
  }
  return at;
}

void addBytes(TagList& tags, int code, std::string_view bytes) {
  char digits[2 * kBytesOfATag];
  for (std::size_t at = 0; at < bytes.size(); at += kBytesOfATag) {
    const std::string_view part = bytes.substr(at, kBytesOfATag);
    if (tags.format().binary) {
      tags.addAscii(code, part);
      continue;
    }
    char* out = digits;
    for (const char c : part) {
      *out++ = "0123456789ABCDEF"[static_cast<unsigned char>(c) >> 4];
      *out++ = "0123456789ABCDEF"[c & 15];
    }
    tags.addAscii(code, {digits, 2 * part.size()});
  }
}

bool readBytes(const TagList& tags, int code, TagRange range, std::string& bytes) {
  for (int i = range.begin; i < range.end; ++i) {
    if (tags[i].code != code) continue;
    std::string_view value = tags[i].bytes();
    if (tags.format().binary) {
      bytes += value;
      continue;
    }
    while (!value.empty() && (value.back() == ' ' || value.back() == '\t')) value.remove_suffix(1);
    const std::size_t before = bytes.size();
    bytes.resize(before + value.size() / 2);
    if (!readDigits(value, bytes.data() + before)) return false;
  }
  return true;
}

}  // namespace cad
