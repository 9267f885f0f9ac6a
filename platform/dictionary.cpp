#include "platform/dictionary.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/text.h"

namespace platform {

namespace {

// Separates a context from its text in one key; no text holds it.
constexpr char16_t kSeparator = 4;

std::u16string keyOf(std::u16string_view text, std::u16string_view context) {
  if (context.empty()) return std::u16string(text);
  std::u16string key(context);
  key += kSeparator;
  key += text;
  return key;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t from = text.find_first_not_of(" \t\r\f\v");
  if (from == text.npos) return {};
  return text.substr(from, text.find_last_not_of(" \t\r\f\v") + 1 - from);
}

// The letters of the conversions of a message template. A blank is a flag too, but "100 % di" is
// far more often a sentence than a number.
std::string conversionsOf(std::string_view text) {
  std::string letters;
  for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%', at)) {
    std::size_t end = text.find_first_not_of("-+0#.123456789lh", at + 1);
    if (end == text.npos) break;
    if (std::string_view("sdiufegcx").find(text[end]) != std::string_view::npos) {
      letters += text[end];
    }
    at = end + (text[end] == '%' && end == at + 1 ? 1 : 0);
  }
  return letters;
}

}  // namespace

class DictionaryParser {
 public:
  explicit DictionaryParser(const std::string& name) : name_(name) {}

  Result<Dictionary> run(std::string_view bytes) {
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
    while (!bytes.empty() && error_.empty()) {
      const std::size_t end = std::min(bytes.find('\n'), bytes.size());
      ++line_;
      readLine(trimmed(bytes.substr(0, end)));
      bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    if (error_.empty()) finishEntry();
    if (!error_.empty()) return Error{std::move(error_)};
    return std::move(dictionary_);
  }

 private:
  struct Entry {
    std::optional<std::string> context, id, text;
    bool fuzzy = false;
    int line = 0;  // of its first keyword
  };

  void fail(int line, std::string_view reason) {
    if (error_.empty()) {
      error_ = name_ + ":" + std::to_string(line) + ": " + std::string(reason);
    }
  }
  void fail(std::string_view reason) { fail(line_, reason); }

  void readLine(std::string_view line) {
    if (line.empty()) return;
    if (!isValidUtf8(line)) return fail("the text is not UTF-8");
    if (line[0] == '#') return readComment(line);
    if (line[0] == '"') {
      if (!open_) return fail("a text without msgid or msgstr in front of it");
      return readText(line, *open_);
    }
    const std::size_t end = line.find_first_of(" \t\"[");
    const std::string_view keyword = line.substr(0, end);
    const std::string_view rest = end == line.npos ? "" : trimmed(line.substr(end));
    readKeyword(keyword, rest);
  }

  // A comment stands in front of its entry, so it ends the one before.
  void readComment(std::string_view line) {
    if (entry_.text) finishEntry();
    if (line.substr(0, 2) == "#," && line.find("fuzzy") != line.npos) entry_.fuzzy = true;
  }

  void readKeyword(std::string_view keyword, std::string_view rest) {
    if (keyword == "msgctxt" || keyword == "msgid") {
      if (entry_.text) finishEntry();
      if (entry_.line == 0) entry_.line = line_;
    }
    if (keyword == "msgctxt" && !entry_.context && !entry_.id) {
      begin(entry_.context, rest);
    } else if (keyword == "msgid" && !entry_.id) {
      begin(entry_.id, rest);
    } else if (keyword == "msgstr" && entry_.id && !entry_.text) {
      begin(entry_.text, rest);
    } else if (keyword == "msgid_plural") {
      fail("plural forms are not understood");
    } else if (keyword == "msgctxt" || keyword == "msgid" || keyword == "msgstr") {
      fail(std::string(keyword) + " in the wrong place");
    } else {
      fail("msgctxt, msgid, msgstr, a quoted text or a comment is expected");
    }
  }

  void begin(std::optional<std::string>& part, std::string_view quoted) {
    open_ = &part.emplace();
    readText(quoted, *open_);
  }

  void readText(std::string_view quoted, std::string& to) {
    if (quoted.empty() || quoted[0] != '"') return fail("a text in quotation marks is expected");
    for (std::size_t i = 1; i < quoted.size(); ++i) {
      const char c = quoted[i];
      if (c == '"') {
        if (i + 1 < quoted.size()) fail("something stands behind the text");
        return;
      }
      if (c == '\\' && i + 1 < quoted.size()) {
        const char plain = escaped(quoted[++i]);
        if (plain == 0)
          return fail("an escape that is not understood: \\" + std::string(1, quoted[i]));
        to += plain;
      } else if (static_cast<unsigned char>(c) < ' ' && c != '\t') {
        return fail("a control character in the text");
      } else {
        to += c;
      }
    }
    fail("the closing quotation mark is missing");
  }

  static char escaped(char c) {
    switch (c) {
      case 'n':
        return '\n';
      case 't':
        return '\t';
      case 'r':
        return '\r';
      case '"':
      case '\\':
        return c;
      default:
        return 0;
    }
  }

  void finishEntry() {
    open_ = nullptr;
    Entry entry = std::exchange(entry_, {});
    if (entry.line == 0) return;
    if (!entry.id || !entry.text) return fail(entry.line, "an entry without msgid or msgstr");
    // The entry of the empty text is the file's own header.
    if (entry.id->empty() || entry.text->empty() || entry.fuzzy) return;
    if (conversionsOf(*entry.id) != conversionsOf(*entry.text)) {
      return fail(entry.line, "the conversions of the translation are not those of the original");
    }
    const std::u16string context = widen(entry.context.value_or(""));
    const bool isNew =
        dictionary_.texts_.emplace(keyOf(widen(*entry.id), context), widen(*entry.text)).second;
    if (!isNew) return fail(entry.line, "a second translation of one text");
    if (!context.empty()) dictionary_.hasContexts_ = true;
  }

  const std::string& name_;
  std::string error_;
  int line_ = 0;
  Entry entry_;
  std::string* open_ = nullptr;  // the text that a line of text alone continues
  Dictionary dictionary_;
};

Result<Dictionary> Dictionary::parse(std::string_view bytes, const std::string& name) {
  return DictionaryParser(name).run(bytes);
}

const std::u16string* Dictionary::find(std::u16string_view text,
                                       std::u16string_view context) const {
  const auto at = texts_.find(keyOf(text, context));
  return at == texts_.end() ? nullptr : &at->second;
}

}  // namespace platform
