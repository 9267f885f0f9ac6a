// Layers by name: freeze, thaw, switch, colour, make, set current.
#include "cad/editor/host_commands.h"
#include "cad/editor/layers.h"
#include "platform/words.h"

namespace cad::host {
namespace {

void listLayers() {
  for (const LayerInfo& l : layersOf(drawing())) {
    acutPrintf(platform::words(u"\n%s  colore %d%s%s"), l.name, l.colour,
               l.frozen ? platform::words(u"  congelato") : std::u16string(),
               l.off ? platform::words(u"  spento") : std::u16string());
  }
}

void askColour(std::u16string_view layer) {
  double colour = 0;
  if (acedGetReal(platform::words(u"\nColore (1-255): "), colour) != RTNORM) return;
  if (changeLayer(drawing(), layer, {.colour = static_cast<int>(colour)}) != Acad::eOk) {
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
  if (!d.structure().layerNamed(name, option == u"Nuovo")) {
    acutPrintf(platform::words(u"\nIl layer \"%s\" non esiste."), name);
    return;
  }
  if (option == u"Congela") changeLayer(d, name, {.frozen = true});
  if (option == u"Scongela") changeLayer(d, name, {.frozen = false});
  if (option == u"Disattiva") changeLayer(d, name, {.off = true});
  if (option == u"Attiva") changeLayer(d, name, {.off = false});
  if (option == u"Colore") askColour(name);
  if (option == u"Imposta") d.header().setText("$CLAYER", name);
}

}  // namespace cad::host
