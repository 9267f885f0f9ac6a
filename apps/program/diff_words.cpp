// How a drawing differs from its kept text, in the user's language.
#include <array>
#include <utility>

#include "apps/program/words.h"
#include "platform/text.h"

namespace program {

using platform::narrow;

namespace {

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

}  // namespace

std::string describe(const vessora::DiffItem& item) {
  using What = vessora::DiffItem::What;
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

}  // namespace program
