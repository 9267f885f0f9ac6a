// The English catalogue against the sources of module, kit, host and programs: every text that
// reaches a user has its translation. Texts are found in the sources themselves, so a new one is
// missed here at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dictionary.h"
#include "platform/files.h"
#include "platform/text.h"

namespace {

namespace fs = std::filesystem;

const fs::path kRoot = fs::path(VESSORA_TESTS_DIR).parent_path();

// What looks like a text and is not one for translation.
const std::set<std::string, std::less<>> kExceptions = {
    "?",       // the help button
    "5", "10"  // how many colours
};
// Words that only look like texts where any literal of a source may be one: names of blocks, of
// the host and of the files that the solver reads, and what is said before a translator is there.
const std::set<std::string, std::less<>> kNotTexts = {
    "Junc",
    "Resv",
    "Tank",
    "Pump",
    "Valv",
    "Open",
    "Close",
    "None",
    "Closed",
    "Active",
    "Chemical",
    "Trace",
    "Age",
    "Continue",
    "Stop",
    "First",
    "Zero",
    "ByLayer",
    "Standard",
    "Left",
    "DynamicLinker",
    "Vessora",
    "Results.csv",
    "%.3lf ÷ %.3lf",
    "Error while loading ",
    "Error while creating imported function %d from %s.",
    "Table and data does not match",
};
// The headings in these files are fixed: programs read them.
const std::set<std::string, std::less<>> kFileWriters = {"inp_writer.cpp", "csv_writer.cpp"};

// Tables whose rows end in words.
const std::set<std::string, std::less<>> kWordTables = {"notices.cpp", "inp_words.cpp", "usage.cpp",
                                                        "commands.cpp", "variables.cpp"};

struct Token {
  bool isText;  // a u"..." literal, adjacent ones joined
  std::string value;
  int line;
};

class Scanner {
 public:
  // Of a source with narrow texts those count too.
  explicit Scanner(std::string_view source, bool narrow = false)
      : source_(source), narrow_(narrow) {}

  std::vector<Token> run() {
    while (at_ < source_.size()) step();
    return std::move(tokens_);
  }

 private:
  bool startsWith(std::string_view what) const { return source_.substr(at_, what.size()) == what; }

  void skipTo(std::size_t end) {
    end = std::min(end, source_.size());
    const auto from = source_.begin();
    line_ += static_cast<int>(std::count(from + static_cast<std::ptrdiff_t>(at_),
                                         from + static_cast<std::ptrdiff_t>(end), '\n'));
    at_ = end;
  }

  void step() {
    const char c = source_[at_];
    if (startsWith("//")) return skipTo(source_.find('\n', at_));
    if (startsWith("/*")) return skipTo(std::min(source_.find("*/", at_), source_.size() - 2) + 2);
    if (startsWith("u\"")) {
      at_ += 1;
      return text(quoted());
    }
    if (c == '"' && narrow_) return text(quoted());
    if (c == '"' || c == '\'') {
      quoted();
    } else if (std::isalnum(static_cast<unsigned char>(c)) || c == '_') {
      word();
    } else {
      // A macro's line ends do not part what stands in them.
      if (!std::isspace(static_cast<unsigned char>(c)) && !startsWith("\\\n")) {
        tokens_.push_back({false, std::string(1, c), line_});
      }
      skipTo(at_ + 1);
    }
  }

  void word() {
    const std::size_t from = at_;
    const bool number = std::isdigit(static_cast<unsigned char>(source_[at_]));
    while (at_ < source_.size() && (std::isalnum(static_cast<unsigned char>(source_[at_])) ||
                                    source_[at_] == '_' || (number && source_[at_] == '\''))) {
      ++at_;
    }
    tokens_.push_back({false, std::string(source_.substr(from, at_ - from)), line_});
  }

  std::string quoted() {
    const char quote = source_[at_++];
    std::string value;
    while (at_ < source_.size() && source_[at_] != quote) {
      if (source_[at_] == '\\') {
        const char c = source_[++at_];
        value += c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
      } else {
        value += source_[at_];
      }
      ++at_;
    }
    ++at_;
    return value;
  }

  void text(const std::string& value) {
    if (!tokens_.empty() && tokens_.back().isText) {
      tokens_.back().value += value;
    } else {
      tokens_.push_back({true, value, line_});
    }
  }

  std::string_view source_;
  bool narrow_;
  std::size_t at_ = 0;
  int line_ = 1;
  std::vector<Token> tokens_;
};

bool isLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) || (c & 0x80); }

// Two words side by side, or a word with a capital letter in front.
bool isHelpTopic(std::string_view text) {
  return text.ends_with(".htm") || text.starts_with("_Comando_");
}

bool readsAsText(std::string_view text) {
  if (text.find('|') != text.npos) return false;  // a filter of file names
  if (!text.empty() && text[0] == '\n') text.remove_prefix(1);
  const auto lower = [&](std::size_t i) { return i < text.size() && std::islower(text[i] & 0x7f); };
  if (!text.empty() && std::isupper(static_cast<unsigned char>(text[0])) && lower(1) && lower(2)) {
    return true;
  }
  for (std::size_t i = 2; i + 2 < text.size(); ++i) {
    if (text[i] == ' ' && isLetter(text[i - 2]) && isLetter(text[i - 1]) && isLetter(text[i + 1]) &&
        isLetter(text[i + 2])) {
      return true;
    }
  }
  return false;
}

struct Found {
  std::string text;
  std::string place;
};

class Collector {
 public:
  Collector() {
    for (const auto& entry : fs::recursive_directory_iterator(kRoot / "module")) {
      if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp") {
        readFile(entry.path());
      }
    }
    readFile(kRoot / "cad/ui/fields.cpp");
  }
  const std::vector<Found>& found() const { return found_; }

 private:
  void readFile(const fs::path& path) {
    const auto bytes = platform::readFile(path.string());
    ASSERT_TRUE(bytes) << path;
    file_ = fs::relative(path, kRoot).generic_string();
    tokens_ = Scanner(*bytes).run();
    const bool header = path.extension() == ".h";
    if (header && path.parent_path().filename() == "dialogs") {
      readDialogs();
    } else if (!kFileWriters.contains(path.filename().string())) {
      readCode(!header);
    }
  }

  bool is(std::size_t i, std::string_view value) const {
    return i < tokens_.size() && !tokens_[i].isText && tokens_[i].value == value;
  }
  bool isMember(std::size_t dot, std::string_view name) const {
    return is(dot, ".") && is(dot + 1, name) && is(dot + 2, "=");
  }

  void add(const Token& token) {
    if (token.value.empty() || kExceptions.contains(token.value)) return;
    found_.push_back({token.value, file_ + ":" + std::to_string(token.line)});
  }

  // Every literal of a dialog's declaration is a text, but for names, help topics, and the items
  // of a list that are data.
  void readDialogs() {
    std::vector<Token> items;
    bool translate = true;
    int depth = 0;  // inside .items = {...}
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      if (depth > 0) depth += is(i, "{") ? 1 : is(i, "}") ? -1 : 0;
      if (isMember(i, "items")) {
        depth = 1;
        i += 3;
      } else if (isMember(i, "translate") && is(i + 3, "false")) {
        translate = false;
      } else if (is(i, ";")) {
        if (translate) std::for_each(items.begin(), items.end(), [&](auto& t) { add(t); });
        items.clear();
        translate = true;
      } else if (tokens_[i].isText && depth > 0) {
        items.push_back(tokens_[i]);
      } else if (tokens_[i].isText && !(i >= 3 && isMember(i - 3, "name")) &&
                 !isHelpTopic(tokens_[i].value)) {
        add(tokens_[i]);
      }
    }
  }

  // Elsewhere a text goes to TraduciTesto, or by way of a helper function, of which the literal
  // itself is the only sign.
  void readCode(bool helpers) {
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      if (!tokens_[i].isText) continue;
      if (i >= 2 && is(i - 2, "TraduciTesto")) {
        if (tokens_[i].value != "TITOLO") add(tokens_[i]);
      } else if (helpers && readsAsText(tokens_[i].value) &&
                 !kNotTexts.contains(tokens_[i].value)) {
        add(tokens_[i]);
      }
    }
  }

  std::string file_;
  std::vector<Token> tokens_;
  std::vector<Found> found_;
};

class EnglishDictionary : public testing::Test {
 protected:
  void SetUp() override {
    const std::string path = (kRoot / "assets/lingue/en.po").string();
    const auto bytes = platform::readFile(path);
    ASSERT_TRUE(bytes);
    auto parsed = platform::Dictionary::parse(*bytes, "en.po");
    ASSERT_TRUE(parsed) << parsed.error();
    dictionary = *parsed;
  }
  const std::u16string* find(std::string_view text) const {
    return dictionary.find(platform::widen(text));
  }
  platform::Dictionary dictionary;
};

std::string visible(std::string text) {
  for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos;) text.replace(at, 1, "\\n");
  return '"' + text + '"';
}

TEST_F(EnglishDictionary, HoldsEveryTextOfTheModule) {
  const Collector collector;
  std::set<std::string> originals;
  for (const Found& text : collector.found()) {
    originals.insert(text.text);
    EXPECT_TRUE(find(text.text)) << text.place << ": no translation of " << visible(text.text);
  }
  // One of each way in which a text is written: that the search itself works.
  for (const char* known :
       {"Non esiste alcuna rete!", "Rete non valida!\nSelezionare una rete Epanet!",
        "\nErrore: Impossibile inserire gli attributi", "\nImpossibile scrivere il file %s",
        "Altezza", "Selezionare una rete", "Sfoglia...", "Nodi", "Nessuno", "Velocità [m/s]",
        "Immettere un numero.",
        "Per l'esportazione della rete spostare momentaneamente di layer i nodi coincidenti con i "
        "serbatoi."}) {
    EXPECT_TRUE(originals.contains(known)) << "not found in the sources: " << visible(known);
  }
}

// What stands in words(...), of one text or of one for one thing and one for many; and in the
// tables of programs whose rows go there.
TEST_F(EnglishDictionary, HoldsEveryWordOfProgramsKitAndHost) {
  std::set<std::string> originals;
  for (const char* folder : {"apps", "cad", "platform", "epanet"}) {
    for (const auto& entry : fs::recursive_directory_iterator(kRoot / folder)) {
      const fs::path& path = entry.path();
      if (path.extension() != ".cpp" && path.extension() != ".h") continue;
      const auto bytes = platform::readFile(path.string());
      ASSERT_TRUE(bytes) << path;
      const std::vector<Token> tokens = Scanner(*bytes, true).run();
      const auto is = [&](std::size_t i, std::string_view value) {
        return i < tokens.size() && !tokens[i].isText && tokens[i].value == value;
      };
      const bool table = kWordTables.contains(path.filename().string());
      // Of the window's actions the first two literals of each row.
      const bool actions = path.filename() == "actions.cpp";
      int literals = 9;
      for (std::size_t i = 2; i < tokens.size(); ++i) {
        if (is(i, "Menu")) literals = 0;
        if (tokens[i].isText) ++literals;
        const bool action = actions && literals <= 2 && !tokens[i].value.empty();
        const bool first = is(i - 2, "words") && is(i - 1, "(");
        const bool second = i >= 4 && is(i - 4, "words") && is(i - 1, ",") && tokens[i - 2].isText;
        const bool row = table && is(i - 1, ",") && is(i + 1, "}") && readsAsText(tokens[i].value);
        if (!tokens[i].isText || !(first || second || row || action)) continue;
        originals.insert(tokens[i].value);
        EXPECT_TRUE(find(tokens[i].value))
            << path << ":" << tokens[i].line << ": no translation of " << visible(tokens[i].value);
      }
    }
  }
  for (const char* known :
       {"nodo inesistente", "manca il comando", "dipinge il disegno come PNG, SVG o PDF"}) {
    EXPECT_TRUE(originals.contains(known)) << "not found in the sources: " << visible(known);
  }
}

// Prompts and messages are joined with what stands around them.
TEST_F(EnglishDictionary, KeepsTheLineEndsAndBlanksAroundAText) {
  const Collector collector;
  for (const Found& text : collector.found()) {
    const std::u16string* translated = find(text.text);
    if (!translated) continue;
    const std::string english = platform::narrow(*translated);
    const auto edges = [](std::string_view s) {
      const std::size_t from = std::min(s.find_first_not_of(" \n"), s.size());
      return std::pair(s.substr(0, from), s.substr(s.find_last_not_of(" \n") + 1));
    };
    EXPECT_EQ(edges(english), edges(text.text)) << text.place << ": " << visible(text.text);
  }
}

// The tag of an attribute in the legend symbols, which are drawn with Italian tags.
TEST_F(EnglishDictionary, LeavesTheTagOfTheLegendAlone) { EXPECT_FALSE(find("TITOLO")); }

}  // namespace
