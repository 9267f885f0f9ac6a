#include "module/inp/csv_writer.h"

#include "module/inp/text_output.h"

namespace vessora {

namespace {

void writeNodes(TextOutput& out, const EpaNetwork& network) {
  out.print(
      u"NODI;\n"
      u"Nome;Quota [m];Portata al nodo [l/s];Coef. Emitter;Pattern associato;\n");
  for (const EpaJunc& j : network.juncs) {
    out.print(u"%s;%s;%s;%s;%s;\n", j.id, j.elev, j.demand, j.emitter, j.pattern);
  }
  out.print(
      u"\nSERBATOI;\n"
      u"Nome;Carico Totale[m];Pattern associato;\n");
  for (const EpaResv& r : network.resvs) out.print(u"%s;%s;%s;\n", r.id, r.head, r.pattern);
  out.print(
      u"\nSERBATOI di COMPENSO;\n"
      u"Nome;Quota [m];Diametro [m];Livello iniziale [m];Livello massimo [m];Livello minimo [m];"
      u"Volume minimo [m];Curva volume;\n");
  for (const EpaTank& t : network.tanks) {
    out.print(u"%s;%s;%s;%s;%s;%s;%s;\n%s;\n", t.id, t.elev, t.diameter, t.initLevel, t.maxLevel,
              t.minLevel, t.minVol, t.volCurve);
  }
}

void writeLinks(TextOutput& out, const EpaNetwork& network) {
  out.print(
      u"\nCONDOTTE;\n"
      u"Nome;Lunghezza [m];Diametro [mm];Scabrezza;Nodo iniziale;Nodo finale;"
      u"Coef. Perdita concentrata;Stato;\n");
  for (const EpaPipe& p : network.pipes) {
    out.print(u"%s;%s;%s;%s;%s;%s;%s;%s;\n", p.id, p.length, p.diameter, p.roughness, p.node1,
              p.node2, p.minorLoss, p.status);
  }
  out.print(
      u"\nVALVOLE;\n"
      u"Nome;Diametro [mm];Nodo iniziale;Nodo finale;Coef. Perdita concentrata;Setting;Tipo;"
      u"Stato;\n");
  for (const EpaValv& v : network.valves) {
    out.print(u"%s;%s;%s;%s;%s;%s;%s;%s;\n", v.id, v.diameter, v.node1, v.node2, v.minorLoss,
              v.setting, v.type, v.status);
  }
  out.print(
      u"\nPOMPE;\n"
      u"Nome;Nodo iniziale;Nodo finale;Curva carico;Potenza;Velocità;Stato;Pattern velocità;"
      u"Curva efficienza;Prezzo;Pattern prezzo;\n");
  for (const EpaPump& p : network.pumps) {
    out.print(u"%s;%s;%s;%s;%s;%s;%s;\n%s;\n%s;\n%s;\n%s;\n", p.id, p.node1, p.node2, p.headCurve,
              p.power, p.speed, p.status, p.speedPattern, p.effCurve, p.price, p.pricePattern);
  }
}

}  // namespace

std::int32_t WriteNetworkCsv(std::u16string_view path, const EpaNetwork& network,
                             const EpaSettings& settings, Notices& notices) {
  auto out = TextOutput::open(path, notices);
  if (!out) return 0;
  out->print(u"Rete;%s;\n\n", settings.name);
  writeNodes(*out, network);
  writeLinks(*out, network);
  return out->close(notices);
}

}  // namespace vessora
