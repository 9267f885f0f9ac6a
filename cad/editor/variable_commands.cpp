// Variables by name: what they hold, and other values for them.
#include "cad/editor/host_commands.h"
#include "cad/editor/variables.h"
#include "cad/ui/frontend.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::host {
namespace {

// Asks until `take` has no complaint. False when the user ends or gives nothing.
template <class Take>
bool askText(std::u16string_view text, std::vector<std::u16string> keywords, Take&& take) {
  ui::Prompt prompt;
  prompt.kind = ui::Prompt::Kind::string;
  prompt.text = text;
  prompt.keywords = std::move(keywords);
  prompt.allowBlanks = true;
  for (;;) {
    const ui::Answer answer = session().frontend().ask(prompt);
    if (answer.status != ui::Answer::Status::ok) return false;
    const std::u16string complaint = take(answer.text);
    if (complaint.empty()) return true;
    session().frontend().invalid(complaint);
  }
}

// The values that a variable is limited to; empty when it is not.
std::vector<std::u16string> valuesOf(std::u16string_view name) {
  std::vector<std::u16string> values;
  if (const Variable* variable = declaredVariable(name)) {
    platform::Tokens known(variable->values, u" ");
    while (const auto value = known.next()) values.emplace_back(*value);
  }
  return values;
}

// "*", a name, or the beginning of names with a star behind.
bool matches(std::u16string_view name, std::u16string_view pattern) {
  if (!pattern.ends_with(u'*')) return platform::equalNoCase(name, pattern);
  pattern.remove_suffix(1);
  return platform::equalNoCase(name.substr(0, pattern.size()), pattern);
}

void listVariables() {
  std::u16string pattern = u"*";
  askText(platform::words(u"\nVariabili da elencare <*>: "), {}, [&](const std::u16string& text) {
    pattern = text;
    return std::u16string();
  });
  bool any = false;
  for (const Variable& variable : declaredVariables()) {
    if (!matches(variable.name, pattern)) continue;
    any = true;
    acutPrintf(u"\n  %-10s %-16s %s%s", variable.name, *variableText(variable.name),
               platform::words(variable.help),
               variable.readOnly ? platform::words(u" (sola lettura)") : std::u16string());
  }
  if (!any) say(platform::words(u"\nNessuna variabile ha questo nome."));
}

}  // namespace

void commandSetVar() {
  std::vector<std::u16string> names{u"?"};
  for (const Variable& variable : declaredVariables()) names.emplace_back(variable.name);
  std::u16string name;
  const bool named =
      askText(platform::words(u"\nNome della variabile o [?]: "), names, [&](auto& text) {
        name = platform::upper(text);
        const bool known = name == u"?" || variableText(name);
        return known ? std::u16string()
                     : platform::words(u"Variabile sconosciuta; ? elenca quelle che ci sono.");
      });
  if (!named) return;
  if (name == u"?") return listVariables();
  const std::u16string now = *variableText(name);
  if (!isSettable(name)) {
    acutPrintf(platform::words(u"\n%s = %s (sola lettura)"), name, now);
    return;
  }
  std::u16string choice;
  const std::vector<std::u16string> values = valuesOf(name);
  for (const std::u16string& value : values) choice += (choice.empty() ? u" [" : u"/") + value;
  if (!choice.empty()) choice += u']';
  const std::u16string standing = now.empty() ? u"" : u" <" + now + u">";
  askText(platform::format(platform::words(u"\nNuovo valore per %s%s%s: "), name, choice, standing),
          values, [&](const std::u16string& text) { return setVariable(name, text); });
}

}  // namespace cad::host
