// An INP file into a drawing. What a drawing should not get is refused before anything is drawn.
#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "apps/cli/outputs.h"
#include "apps/program/inp_words.h"
#include "cad/drawing/drawing.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cli {
namespace {

// Nothing: it is chosen by the network.
std::optional<double> scaleOf(const ImportOptions& o) {
  if (o.scale.empty() && o.mode == InpMode::classic) return 1;
  if (o.scale.empty() || o.scale == "auto") return std::nullopt;
  return platform::parseReal(platform::widen(o.scale));
}

vessora::ImportResult draw(JobSpan& job, const vessora::InpFile& file, const std::u16string& name,
                           std::optional<double> scale) {
  Progress progress(words("Disegno della rete:"));
  auto& drawing = cad::Session::instance().database()->drawing().writer();
  drawing.setObserver(
      [&](std::uint32_t n) { progress.show(std::to_string(n) + words(" oggetti")); });
  vessora::ImportResult result = job->importInp(file, name, scale);
  drawing.setObserver({});
  return result;
}

}  // namespace

bool isScale(const std::string& text) {
  const auto number = platform::parseReal(platform::widen(text));
  return text == "auto" || (number && *number > 0 && *number < 1e9);
}

int importNetwork(const ImportOptions& o) {
  if (platform::folderExists(o.inp) || !platform::fileExists(o.inp)) {
    return fail(o.inp + ": " + words("file INP inesistente; controllare il percorso"));
  }
  if (const std::string no = refusalOf(o.out, {{o.inp, false}, {o.base, true}}); !no.empty()) {
    return fail(no);
  }
  JobSpan job(o.mode);
  if (auto opened = job.open(o.base); !opened) return fail(opened.error());
  const vessora::InpFile file = job->openInp(platform::widen(platform::absolutePath(o.inp)));
  const vessora::InpFindings found = job->examineInp(file);
  if (!found.readable) return fail(o.inp + ": " + words("non si può leggere"));
  if (const std::string no = faultOf(found); !no.empty()) return fail(o.inp + ": " + no);
  const vessora::ImportResult result = draw(job, file, found.name, scaleOf(o));
  if (result.drawn() == 0) {
    for (const vessora::DrawnKind& kind : result.kinds) warn(kind.notices);
    return fail(o.inp + ": " + words("non è stato disegnato nulla"));
  }
  {
    Progress progress(words("Salvataggio"));
    if (auto saved = saveDrawing(o.out); !saved) return fail(saved.error());
  }
  warn(o.inp, found.problems, found.utf8);
  warn(result.reading);
  for (const vessora::DrawnKind& kind : result.kinds) warn(kind.notices);
  say(platform::narrow(found.name) + ": " + describe(job->network(found.name).counts));
  if (found.full || !o.scale.empty()) {
    say(words("scala dei simboli: ") + platform::narrow(platform::format(u"%g", result.scale)));
  }
  return 0;
}

}  // namespace cli
