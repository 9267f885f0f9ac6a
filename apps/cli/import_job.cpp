// An INP file into a drawing. What a drawing should not get is refused before anything is drawn.
#include "apps/cli/host.h"
#include "apps/cli/inp_words.h"
#include "apps/cli/jobs.h"
#include "apps/cli/outputs.h"
#include "cad/drawing/drawing.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cli {
namespace {

// Characters that a name may have in the open drawing, as the host rules it.
std::size_t longestName() {
  const cad::Drawing& drawing = cad::Session::instance().database()->drawing();
  return static_cast<std::size_t>(cad::faultOfName(u"", drawing.format().version).limit);
}

std::string shown(char16_t c) {
  return "\"" + platform::printable(platform::narrow(std::u16string_view(&c, 1))) + "\"";
}

// What is wrong with the file's name as that of a network; empty when nothing is.
std::string faultOfName(const vessora::InpFindings& found) {
  if (found.name.empty()) {
    return words("il nome del file deve dare il nome alla rete (NOME.inp)");
  }
  if (found.isAqueductName) {
    return words("i nomi che iniziano così sono del modulo acquedotti; rinominare il file");
  }
  if (found.unusable != 0) {
    return words("il nome della rete non può contenere ") + shown(found.unusable) +
           words(", che nessun layer può avere; rinominare il file");
  }
  if (found.longestLayer > longestName()) {
    return words("il nome della rete è troppo lungo: i suoi layer avrebbero ") +
           std::to_string(found.longestLayer) + words(" caratteri, il disegno ne ammette ") +
           std::to_string(longestName());
  }
  if (!found.taken.empty()) {
    return words("il disegno ha già una rete di questo nome: ") + platform::narrow(found.taken) +
           words("; rinominare il file");
  }
  return {};
}

// What the file lacks; empty when there is something to draw.
std::string faultOfContent(const vessora::InpFindings& found) {
  if (found.counts.nodes() + found.counts.links() == 0) {
    return words(
        "non è un file INP di EPANET: non ha righe in sezioni come [JUNCTIONS] o [PIPES] (sotto la "
        "riga dei titoli)");
  }
  if (found.full) return {};
  if (found.coordinates == 0) {
    return words("il file non ha coordinate ([COORDINATES]): non c'è nulla da disegnare");
  }
  if (found.drawn == 0) {
    return words("nessun elemento ha un posto in [COORDINATES]: non c'è nulla da disegnare");
  }
  if (found.outOfProportion) {
    return words("righe ripetute con lo stesso nome darebbero ") + std::to_string(found.drawn) +
           words(" oggetti e punti; correggere il file");
  }
  return {};
}

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
  for (const std::string& fault : {faultOfName(found), faultOfContent(found)}) {
    if (!fault.empty()) return fail(o.inp + ": " + fault);
  }
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
