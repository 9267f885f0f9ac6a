#include "cad/ui/names.h"

#include "platform/text.h"
#include "platform/words.h"

namespace cad::ui {

static bool blank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\u00A0';
}

bool isEnterSign(std::u16string_view line) { return line == u"<invio>" || line == u"<enter>"; }

std::u16string_view trimmed(std::u16string_view text) {
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
}

std::u16string plainName(std::u16string_view label) {
  std::u16string out;
  label = trimmed(label);
  for (std::size_t i = 0; i < label.size(); ++i) {
    if (label[i] == u'&' && i + 1 < label.size()) ++i;  // the mark goes, its letter stays
    if (!blank(label[i]))
      out += label[i];
    else if (!out.empty() && out.back() != u' ')
      out += u' ';
  }
  if (out.size() > 1 && out.back() == u':') out.pop_back();
  while (!out.empty() && out.back() == u' ') out.pop_back();
  return out;
}

bool sameName(std::u16string_view a, std::u16string_view b) {
  return platform::equalNoCase(plainName(a), plainName(b));
}

std::u16string quoted(std::u16string_view text) {
  bool plain = !text.empty() && !blank(text.front()) && !blank(text.back()) &&
               text.front() != u'"' && text.front() != u'#' &&
               text.find_first_of(u"\n\r\t") == text.npos;
  if (plain) return std::u16string(text);
  std::u16string out = u"\"";
  for (char16_t c : text) {
    if (c == u'"' || c == u'\\') out += u'\\';
    if (c == u'\n')
      out += u"\\n";
    else if (c == u'\r')
      out += u"\\r";
    else if (c == u'\t')
      out += u"\\t";
    else
      out += c;
  }
  return out + u'"';
}

std::optional<std::u16string> unquoted(std::u16string_view text) {
  text = trimmed(text);
  if (text.empty() || text.front() != u'"') return std::u16string(text);
  std::u16string out;
  for (std::size_t i = 1; i < text.size(); ++i) {
    char16_t c = text[i];
    if (c == u'"') return i + 1 == text.size() ? std::optional(out) : std::nullopt;
    if (c == u'\\' && i + 1 < text.size()) {
      c = text[++i];
      if (c == u'n') c = u'\n';
      if (c == u'r') c = u'\r';
      if (c == u't') c = u'\t';
    }
    out += c;
  }
  return std::nullopt;
}

std::u16string oneLine(std::u16string_view text) {
  std::u16string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\n')
      out += u"\\n";
    else if (text[i] == u'\\' && i + 1 < text.size() && text[i + 1] == u'n')
      out += u"\\\\";
    else if (text[i] != u'\r')
      out += text[i];
  }
  return out;
}

std::u16string enumerated(const std::vector<std::u16string>& texts) {
  constexpr std::size_t most = 24;
  std::u16string out;
  for (std::size_t i = 0; i < texts.size() && i < most; ++i) {
    if (i > 0) out += u", ";
    out += u'"' + texts[i] + u'"';
  }
  if (texts.size() > most) out += u", ...";
  return texts.empty() ? platform::words(u"niente") : out;
}

}  // namespace cad::ui
