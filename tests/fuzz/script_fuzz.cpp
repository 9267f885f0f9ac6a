// Any bytes as a script: whatever it answers, dialogs, messages and prompts must come to an end.
#include <cstdint>
#include <string>
#include <string_view>

#include "tests/ui/sample_dialogs.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view script(reinterpret_cast<const char*>(data), size);
  {
    sample::PipeDialog dialog;
    sample::play(dialog, script);
  }
  {
    sample::QueryDialog dialog;
    sample::play(dialog, script);
  }
  {
    sample::PatternDialog dialog;
    sample::play(dialog, script);
  }
  sample::NetworkDialog networks;
  cad::ui::ScriptFrontend ui(script, "fuzz.vsc");
  cad::ui::Prompt prompt;
  prompt.kind = cad::ui::Prompt::Kind::command;
  prompt.text = u"Comando: ";
  for (int i = 0; i < 8 && !ui.failed(); ++i) {
    if (ui.ask(prompt).status == cad::ui::Answer::Status::end) break;
    ui.print(u"uno\ndue");
  }
  networks.run(ui);
  (void)ui.finish();
  return 0;
}
