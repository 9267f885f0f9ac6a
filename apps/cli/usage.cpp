#include "apps/cli/usage.h"

#include <regex>

#include "apps/cli/words.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cli {
namespace {

// The parser's sentences, and ours in their place with what they name.
struct Sentence {
  const char* parsers;
  const char16_t* ours;
};
constexpr Sentence kSentences[] = {
    {"A subcommand is required", u"manca il comando"},
    {"(.*) is required", u"manca %s"},
    {"The following arguments? w\\w+ not expected: (.*)", u"argomento inatteso: %s"},
    {"(.*): 1 required .* missing", u"%s: manca il valore"},
    {"(.*): (.*) not in \\{(.*)\\}", u"%s: \"%s\" non è tra %s"},
    {"(.*): Value (.*) not in range \\[?([^ ]*) (?:to|-) ([^\\]]*)\\]?",
     u"%s: %s non sta tra %s e %s"},
    {"Could not convert: (.*) = (.*)", u"%s: \"%s\" non è un numero"},
    {"(.*) excludes (.*)", u"%s non va insieme a %s"},
    {"(.*) requires (.*)", u"%s va solo insieme a %s"},
};

// A number is the one kind of value of options that the parser itself judges.
std::string sentenceOf(const std::string& parsers) {
  std::smatch part;
  for (const Sentence& sentence : kSentences) {
    if (!std::regex_match(parsers, part, std::regex(sentence.parsers))) continue;
    const std::string a = part.str(1), b = part.str(2), c = part.str(3), d = part.str(4);
    using std::string_view;
    return platform::narrow(platform::format(words(sentence.ours), string_view(a), string_view(b),
                                             string_view(c), string_view(d)));
  }
  return parsers;
}

// Kinds of values in our words, also where what they may be stands behind.
class Helps : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string all = CLI::Formatter::make_option_opts(option);
    const std::string kinds[][2] = {{" INT:INT in ", " " + words("NUMERO") + " "},
                                    {" FLOAT:FLOAT in ", " " + words("NUMERO") + " "},
                                    {" TEXT:", " " + words("TESTO") + ":"}};
    for (const auto& [parsers, own] : kinds) {
      if (all.starts_with(parsers)) return own + all.substr(parsers.size());
    }
    return all;
  }
};

}  // namespace

void nameHelps(CLI::App& app) {
  const auto form = std::make_shared<Helps>();
  app.formatter(form);
  form->column_width(32);
  const auto label = [&](const char* name, const char* own) { form->label(name, words(own)); };
  label("Usage", "Uso");
  label("OPTIONS", "OPZIONI");
  label("SUBCOMMAND", "COMANDO");
  label("Positionals", "Argomenti");
  label("REQUIRED", "(necessario)");
  label("Excludes", "Non insieme a");
  label("Needs", "Solo insieme a");
  label("TEXT", "TESTO");
  label("INT", "NUMERO");
  label("FLOAT", "NUMERO");
  app.option_defaults()->group(words("Opzioni"));
}

CLI::App* addCommand(CLI::App& app, const char* name, const std::string& help) {
  CLI::App* const command = app.add_subcommand(name, help)->group(words("Comandi"));
  command->set_help_flag("-h,--help", words("questo testo"));
  return command;
}

int endOf(const CLI::App& app, const CLI::ParseError& end) {
  if (end.get_exit_code() == 0) return app.exit(end);
  std::string command = "vessora ";
  for (const CLI::App* chosen : app.get_subcommands()) command += chosen->get_name() + " ";
  fail(sentenceOf(end.what()) + "; " + words("le opzioni: ") + command + "--help");
  return 2;
}

}  // namespace cli
