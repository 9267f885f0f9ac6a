// How a drawing differs from the text that it keeps, or from a file.
#include <cstdio>

#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "apps/cli/outputs.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cli {
namespace {

using platform::narrow;
using What = vessora::DiffItem::What;

const char* codeOf(What what) {
  switch (what) {
    case What::changed:
      return "changed";
    case What::moved:
      return "moved";
    case What::course:
      return "course";
    case What::added:
      return "added";
    case What::copied:
      return "copied";
    case What::gone:
      return "gone";
    default:
      return "renamed";
  }
}

void showJson(const std::u16string& network, const vessora::DiffResult& diff) {
  std::printf("{\"network\": %s, \"differences\": [", jsonText(narrow(network)).c_str());
  const char* separator = "";
  for (const vessora::DiffItem& item : diff.items) {
    std::printf(
        "%s\n  {\"what\": \"%s\", \"kind\": \"%s\", \"name\": %s, \"field\": %s, \"was\": %s, "
        "\"now\": %s}",
        separator, codeOf(item.what), item.kind.c_str(), jsonText(narrow(item.name)).c_str(),
        jsonText(item.field).c_str(), jsonText(narrow(item.was)).c_str(),
        jsonText(narrow(item.now)).c_str());
    separator = ",";
  }
  std::printf("%s]}\n", diff.items.empty() ? "" : "\n");
}

int mendDrawing(const DiffOptions& o, JobSpan& job, const std::u16string& network) {
  if (!o.out.empty()) {
    if (const std::string no = refusalOf(o.out, {{o.drawing, true}}); !no.empty()) return fail(no);
  }
  const vessora::MendResult mended = job->mendNames(network);
  if (mended.copies.empty() && !mended.notices.empty()) {
    return fail(o.drawing + ": " + describe(mended.notices.back()));
  }
  const auto saved = saveDrawing(o.out.empty() ? o.drawing : o.out);
  if (!saved) return fail(saved.error());
  warn(mended.notices);
  for (const vessora::MendedName& copy : mended.copies) {
    say(narrow(copy.was) + " -> " + narrow(copy.now));
  }
  if (mended.copies.empty()) say(words("nulla da correggere"));
  return 0;
}

}  // namespace

int showDiff(const DiffOptions& o) {
  JobSpan job(InpMode::full);
  if (auto opened = job.open(o.drawing); !opened) return fail(opened.error());
  const vessora::PickedNetwork picked = job->pickNetwork(platform::widen(o.network), u"");
  if (picked.why != vessora::PickedNetwork::Why::found) {
    return fail(describe(picked, o.drawing, o.network));
  }
  if (o.mend) return mendDrawing(o, job, picked.name);
  const std::u16string path =
      o.inp.empty() ? std::u16string() : platform::widen(platform::absolutePath(o.inp));
  const vessora::DiffResult diff = job->diffNetwork(picked.name, path);
  if (!diff.compared) {
    return fail(diff.notices.empty()
                    ? o.drawing + ": " +
                          words("la rete non ha un testo conservato; indicare un file INP con cui "
                                "confrontarla")
                    : describe(diff.notices.back()));
  }
  warn(diff.notices);
  if (o.json) {
    showJson(picked.name, diff);
  } else {
    for (const vessora::DiffItem& item : diff.items) say(describe(item));
    if (diff.items.empty()) say(words("nessuna differenza"));
  }
  return 0;
}

}  // namespace cli
