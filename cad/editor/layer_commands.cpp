// Layers by name: freeze, thaw, switch, colour, make, set current.
#include "cad/api/owners.h"
#include "cad/editor/host_commands.h"
#include "platform/words.h"

namespace cad::host {
namespace {

void listLayers() {
  Drawing& d = drawing();
  const std::uint32_t table = d.structure().tableRecord(Type::layer);
  for (std::uint32_t e = d.structure().firstTableEntry(table); e;
       e = d.structure().nextTableEntry(table, e)) {
    const Opened<AcDbLayerTableRecord> l(d.idOf(e));
    if (!l) continue;
    acutPrintf(platform::words(u"\n%s  colore %d%s%s"), l->getName(), l->colorIndex(),
               l->isFrozen() ? platform::words(u"  congelato") : std::u16string(),
               l->isOff() ? platform::words(u"  spento") : std::u16string());
  }
}

void askColour(AcDbLayerTableRecord& layer) {
  double color = 0;
  if (acedGetReal(platform::words(u"\nColore (1-255): "), color) == RTNORM &&
      layer.setColorIndex(static_cast<int>(color)) != Acad::eOk) {
    say(platform::words(u"\nIl colore è un numero da 1 a 255."));
  }
}

}  // namespace

void commandLayer() {
  if (!haveDrawing()) return;
  std::u16string option, name;
  if (askKeyword(1, u"Congela Scongela Disattiva Attiva Colore Nuovo Imposta Elenco",
                 u"\nOpzione [Congela/Scongela/Disattiva/Attiva/Colore/Nuovo/Imposta/Elenco]: ",
                 option) != RTNORM) {
    return;
  }
  if (option == u"Elenco") return listLayers();
  if (acedGetString(true, platform::words(u"\nNome del layer: "), name) != RTNORM || name.empty())
    return;
  Drawing& d = drawing();
  Opened<AcDbLayerTableRecord> layer(d.idOf(d.structure().layerNamed(name, option == u"Nuovo")),
                                     AcDb::kForWrite);
  if (!layer) {
    acutPrintf(platform::words(u"\nIl layer \"%s\" non esiste."), name);
    return;
  }
  if (option == u"Congela") layer->setIsFrozen(true);
  if (option == u"Scongela") layer->setIsFrozen(false);
  if (option == u"Disattiva") layer->setIsOff(true);
  if (option == u"Attiva") layer->setIsOff(false);
  if (option == u"Colore") askColour(*layer);
  layer.close();
  if (option == u"Imposta") d.header().setText("$CLAYER", name);
}

}  // namespace cad::host
