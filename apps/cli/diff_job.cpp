// How a drawing differs from the text that it keeps, or from a file.
#include <array>
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

// Words of kinds and fields; the codes are English.
std::string inWords(const std::string& code) {
  constexpr std::array<std::pair<const char*, const char*>, 40> kWords = {{
      {"junction", "nodo"},
      {"reservoir", "serbatoio"},
      {"tank", "tank"},
      {"pipe", "condotta"},
      {"pump", "pompa"},
      {"valve", "valvola"},
      {"pattern", "pattern"},
      {"curve", "curva"},
      {"option", "opzione"},
      {"node", "nodo"},
      {"link", "ramo"},
      {"elevation", "quota"},
      {"head", "carico"},
      {"demand", "domanda"},
      {"emitter", "emettitore"},
      {"initial level", "livello iniziale"},
      {"minimum level", "livello minimo"},
      {"maximum level", "livello massimo"},
      {"diameter", "diametro"},
      {"minimum volume", "volume minimo"},
      {"volume curve", "curva dei volumi"},
      {"length", "lunghezza"},
      {"roughness", "scabrezza"},
      {"minor loss", "perdita concentrata"},
      {"status", "stato"},
      {"type", "tipo"},
      {"setting", "regolazione"},
      {"head curve", "curva caratteristica"},
      {"power", "potenza"},
      {"speed", "velocità"},
      {"speed pattern", "pattern di velocità"},
      {"efficiency curve", "curva di rendimento"},
      {"price", "prezzo"},
      {"price pattern", "pattern del prezzo"},
      {"first node", "primo nodo"},
      {"second node", "secondo nodo"},
      {"value", "valore"},
      {"values", "valori"},
  }};
  if (!platform::isItalian()) return code;
  for (const auto& [english, own] : kWords) {
    if (english && code == english) return own;
  }
  return code;
}

std::string lineOf(const vessora::DiffItem& item) {
  const std::string head = inWords(item.kind) + " " + narrow(item.name) + ": ";
  const std::string change = narrow(item.was) + " -> " + narrow(item.now);
  switch (item.what) {
    case What::changed:
      return head + inWords(item.field) +
             (item.was.empty() && item.now.empty() ? "" : " " + change);
    case What::moved:
      return head + words("spostato ") + change;
    case What::course:
      return head + words("tracciato cambiato, vertici ") + change;
    case What::added:
      return head + words("nuovo");
    case What::copied:
      return head + words("copia di ") + narrow(item.was);
    case What::gone:
      return head + words("tolto");
    default:
      return head + words("ora si chiama ") + narrow(item.now);
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
    for (const vessora::DiffItem& item : diff.items) say(lineOf(item));
    if (diff.items.empty()) say(words("nessuna differenza"));
  }
  return 0;
}

}  // namespace cli
