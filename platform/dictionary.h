// A dictionary of texts: Italian originals and what they are in another language, read from a PO
// file.
//
// What is understood of the format: entries of an optional msgctxt, msgid and msgstr, each a quoted
// text that may go on over several lines; the escapes \n \t \r \" \\ ; comments; entries marked
// "#, fuzzy" are read and not used, nor are those with an empty msgstr. Plural forms are refused.
// The bytes are UTF-8, with or without a mark. A msgctxt is the name of the library whose text it
// is; without one a text is everybody's.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/result.h"

namespace platform {

class Dictionary {
 public:
  // The error begins with "name:line: ". Nothing of a faulty file is used: half a dictionary would
  // look like a translator's oversight. A fault is also a second entry of one original, and a
  // translation whose conversions (%s, %d...) are not those of its original in their order.
  static Result<Dictionary> parse(std::string_view bytes, const std::string& name);

  // The translation of a text, or null. Texts are compared exactly.
  const std::u16string* find(std::u16string_view text, std::u16string_view context = {}) const;
  std::size_t size() const { return texts_.size(); }
  // Whether any entry has a context: without one there is no use in asking for it.
  bool hasContexts() const { return hasContexts_; }

 private:
  friend class DictionaryParser;
  std::unordered_map<std::u16string, std::u16string> texts_;
  bool hasContexts_ = false;
};

}  // namespace platform
