#include "apps/cli/outputs.h"

#include "apps/cli/words.h"
#include "platform/files.h"

namespace cli {

std::string refusalOf(const std::string& output, const std::vector<Input>& inputs) {
  for (const Input& input : inputs) {
    if (input.path.empty() || input.path == "-") continue;
    const bool named = platform::absolutePath(output) == platform::absolutePath(input.path);
    if (!named && !platform::sameFile(output, input.path)) continue;
    if (named && input.mayBeOutput) continue;
    return output + ": " + words("è lo stesso file che si legge (") + input.path +
           words("); scrivere altrove");
  }
  return {};
}

std::string listingBeside(const std::string& path) {
  const std::size_t name = path.find_last_of('/') + 1;  // 0 without a folder
  const std::size_t dot = path.find_last_of('.');
  const bool extension = dot != path.npos && dot > name;
  return (extension ? path.substr(0, dot) : path) + ".csv";
}

}  // namespace cli
