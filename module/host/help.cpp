// The help launcher of the product.
#include "module/host/module.h"
#include "module/host/translate.h"
#include "platform/files.h"
#include "platform/process.h"
#include "platform/text.h"

namespace vessora {

// The topic is translated first, so that another language can have pages of its own. Root and topic
// travel as one argument and no shell reads them: blanks in the root do no harm.
void showHelp(std::u16string_view topic) {
  const std::string page = platform::narrow(TraduciTesto(std::u16string(topic).c_str()));
  const std::string root = platform::nativePath(installPath);
  platform::startProcess(root + "hnhelp.exe", {root + "|" + page});
}

}  // namespace vessora
