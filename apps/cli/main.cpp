// vessora: water networks in CAD drawings, from the command line.
#include <CLI/CLI.hpp>

#include "apps/cli/host.h"
#include "apps/cli/jobs.h"

int main(int argc, char** argv) {
  using cli::words;
  CLI::App app{words("Reti di distribuzione idrica nei disegni CAD.",
                     "Water-distribution networks in CAD drawings.")};
  app.require_subcommand(1);
  app.set_help_flag("-h,--help", words("questo testo", "this text"));
  app.set_version_flag("--version", "vessora 0.1.0");
  int status = 0;

  cli::ImportOptions import;
  auto* c = app.add_subcommand("import", words("disegna una rete da un file INP di EPANET",
                                               "draw a network from an EPANET INP file"));
  c->add_option("INP", import.inp, words("file INP; il suo nome dà il nome alla rete",
                                         "INP file; its name becomes the network's name"))->required();
  c->add_option("-o,--output", import.out, words("disegno DXF da scrivere", "DXF drawing to write"))->required();
  c->add_option("-d,--drawing", import.base, words("disegno di base a cui aggiungere la rete",
                                                   "base drawing that the network is added to"));
  c->callback([&] { status = cli::importNetwork(import); });

  cli::ExportOptions exporting;
  c = app.add_subcommand("export", words("scrive il file INP di una rete disegnata",
                                         "write the INP file of a drawn network"));
  c->add_option("DRAWING", exporting.drawing, words("disegno DXF", "DXF drawing"))->required();
  c->add_option("-o,--output", exporting.out, words("file INP da scrivere", "INP file to write"))->required();
  c->add_option("-n,--network", exporting.network,
                words("rete (altrimenti la predefinita, o l'unica)",
                      "network (else the default one, or the only one)"));
  c->add_flag("--csv", exporting.csv, words("scrive anche il file CSV accanto", "write the CSV file beside it too"));
  c->callback([&] { status = cli::exportNetwork(exporting); });

  std::string infoDrawing;
  bool json = false;
  c = app.add_subcommand("info", words("elenca le reti di un disegno", "list the networks of a drawing"));
  c->add_option("DRAWING", infoDrawing, words("disegno DXF", "DXF drawing"))->required();
  c->add_flag("--json", json, words("in forma JSON", "as JSON"));
  c->callback([&] { status = cli::showInfo(infoDrawing, json); });

  cli::RunOptions run;
  c = app.add_subcommand("run", words("esegue comandi da uno script", "run commands from a script"));
  c->add_option("DRAWING", run.drawing, words("disegno DXF, o - per uno nuovo", "DXF drawing, or - for a new one"))->required();
  c->add_option("SCRIPT", run.script, words("file di script (docs/scripts.md)", "script file (docs/scripts.md)"))->required();
  c->add_option("-o,--output", run.out, words("disegno DXF da scrivere alla fine", "DXF drawing to write at the end"));
  c->callback([&] { status = cli::runScript(run); });

  std::string shellDrawing;
  c = app.add_subcommand("shell", words("la riga di comando interattiva", "the interactive command line"));
  c->add_option("DRAWING", shellDrawing, words("disegno DXF", "DXF drawing"));
  c->callback([&] { status = cli::shell(shellDrawing); });

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? 0 : 2;
  }
  return status;
}
