// vessora: water networks in CAD drawings, from the command line.
#include <CLI/CLI.hpp>

#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "platform/files.h"

namespace {

// The subcommands that read, write or may come to read or write INP files and results.
void addClassic(CLI::App& command, cli::InpMode& mode) {
  command.add_flag_callback(
      "--classic", [&mode] { mode = cli::InpMode::classic; },
      cli::words("file INP e risultati alla maniera classica (VSINPMODE=CLASSIC)",
                 "INP files and results the classic way (VSINPMODE=CLASSIC)"));
}

// A sheet of paper in place of a picture.
void addSheet(CLI::App& command, cli::RenderOptions& render) {
  using cli::words;
  auto* paper = command.add_option("--paper", render.paper,
                                   words("tavola in scala su carta A4, A3, A2, A1 o A0",
                                         "sheet at scale on A4, A3, A2, A1 or A0 paper"));
  for (const char* other : {"--dark", "--width"}) paper->excludes(command.get_option(other));
  const auto add = [&](const char* name, auto& value, const std::string& help) {
    return command.add_option(name, value, help)->needs(paper);
  };
  command.add_flag("--landscape", render.landscape, words("foglio orizzontale", "lying paper"))
      ->needs(paper);
  add("--scale", render.scale,
      words("scala della tavola, 1:2000, o auto", "scale of the sheet, 1:2000, or auto"));
  add("--title", render.title,
      words("titolo della tavola (altrimenti il nome del file)",
            "title of the sheet (else the file's name)"));
  add("--date", render.date,
      words("data da scrivere (altrimenti oggi)", "date to write (else today)"));
  add("-n,--network", render.network, words("rete del cartiglio", "network of the title block"));
  add("--text-height", render.textHeight,
      words("altezza minima sulla carta dei testi del disegno [mm]; chi non trova posto si omette",
            "least height on paper of the drawing's texts [mm]; those without room are left out"))
      ->check(CLI::Range(0.1, 100.0));
  auto* profile = add("--profile", render.profile,
                      words("un profilo longitudinale al posto della pianta, per nome",
                            "a longitudinal profile in place of the plan, by its name"));
  add("--heights", render.heights,
      words("quante volte le altezze del profilo sono ingrandite (altrimenti 10, o quanto sta)",
            "how many times heights of the profile are enlarged (else 10, or what fits)"))
      ->needs(profile)
      ->check(CLI::Range(1.0, 1000.0));
  add("--dpi", render.dpi, words("punti per pollice di un PNG", "dots per inch of a PNG"))
      ->check(CLI::Range(30, 600));
}

}  // namespace

int main(int argc, char** argv) {
  using cli::words;
  platform::endTemporaryFilesOnSignals();
  CLI::App app{words("Reti di distribuzione idrica nei disegni CAD.",
                     "Water-distribution networks in CAD drawings.")};
  app.require_subcommand(1);
  app.set_help_flag("-h,--help", words("questo testo", "this text"));
  app.set_version_flag("--version", "vessora 0.1.0");
  int status = 0;

  cli::ImportOptions import;
  auto* c = app.add_subcommand("import", words("disegna una rete da un file INP di EPANET",
                                               "draw a network from an EPANET INP file"));
  c->add_option("INP", import.inp,
                words("file INP; il suo nome dà il nome alla rete",
                      "INP file; its name becomes the network's name"))
      ->required();
  c->add_option("-o,--output", import.out, words("disegno DXF da scrivere", "DXF drawing to write"))
      ->required();
  c->add_option("-d,--drawing", import.base,
                words("disegno di base a cui aggiungere la rete",
                      "base drawing that the network is added to"));
  c->add_option("--scale", import.scale,
                words("scala di simboli, scritte e frecce: un numero, o auto, dalla lunghezza dei "
                      "rami (auto; con --classic 1)",
                      "scale of symbols, texts and arrows: a number, or auto, by the length of the "
                      "links (auto; with --classic 1)"))
      ->type_name("auto|S")
      ->check([](const std::string& text) {
        return cli::isScale(text) ? std::string()
                                  : cli::words("serve un numero maggiore di 0, o auto",
                                               "must be a number above 0, or auto");
      });
  addClassic(*c, import.mode);
  c->callback([&] { status = cli::importNetwork(import); });

  cli::ExportOptions exporting;
  c = app.add_subcommand("export", words("scrive il file INP di una rete disegnata",
                                         "write the INP file of a drawn network"));
  c->add_option("DRAWING", exporting.drawing, words("disegno DXF", "DXF drawing"))->required();
  c->add_option("-o,--output", exporting.out, words("file INP da scrivere", "INP file to write"))
      ->required();
  c->add_option("-n,--network", exporting.network,
                words("rete (altrimenti la predefinita, o l'unica)",
                      "network (else the default one, or the only one)"));
  c->add_flag("--csv", exporting.csv,
              words("scrive anche il file CSV accanto", "write the CSV file beside it too"));
  c->add_option("--units", exporting.units,
                words("unità di portata del file: CFS, GPM, MGD, IMGD, AFD, LPS, LPM, MLD, CMH, "
                      "CMD, CMS (altrimenti le sue)",
                      "the file's flow units: CFS, GPM, MGD, IMGD, AFD, LPS, LPM, MLD, CMH, CMD, "
                      "CMS (else its own)"))
      ->transform(CLI::IsMember(cli::flowUnitNames(), CLI::ignore_case));
  c->add_option("--for", exporting.solver,
                words("versione di EPANET che userà il file: 2.0, 2.2 o 2.3 (con --units)",
                      "release of EPANET that will run the file: 2.0, 2.2 or 2.3 (with --units)"))
      ->check(CLI::IsMember({"2.0", "2.0.12", "2.2", "2.3", "2.3.5"}));
  c->add_flag("--without-text", exporting.withoutText,
              words("scrive ciò che è disegnato, senza il testo conservato del file",
                    "write what is drawn, without the kept text of the file"));
  c->add_flag("--rewrite", exporting.rewrite,
              words("riscrive nel testo conservato tutto ciò che è disegnato",
                    "write all that is drawn anew into the kept text"));
  addClassic(*c, exporting.mode);
  c->callback([&] { status = cli::exportNetwork(exporting); });

  cli::ResultsOptions results;
  c = app.add_subcommand(
      "results", words("porta i risultati di EPANET (report RPT o file OUT) su una rete disegnata",
                       "bring the results of EPANET (an RPT report or an OUT file) onto a "
                       "drawn network"));
  c->add_option("DRAWING", results.drawing, words("disegno DXF", "DXF drawing"))->required();
  auto* report =
      c->add_option("REPORT", results.report,
                    words("file RPT o OUT; il suo nome sceglie la rete, se ce n'è una così",
                          "RPT or OUT file; its name chooses the network, if there is one so "
                          "named"));
  c->add_option("-o,--output", results.out,
                words("disegno DXF da scrivere (altrimenti lo stesso)",
                      "DXF drawing to write (else the same one)"));
  c->add_option("-n,--network", results.network, words("rete", "network"));
  auto* period =
      c->add_option("--period", results.period,
                    words("periodo da importare, come lo scrive il file; 7:00 vale 7:00:00",
                          "period to import, as the file writes it; 7:00 is 7:00:00"));
  auto* list = c->add_flag("--list-periods", results.listPeriods,
                           words("elenca i periodi e non cambia nulla",
                                 "list the periods and change nothing"))
                   ->excludes(period);
  auto* clear =
      c->add_flag("--clear", results.clear, words("toglie i risultati", "remove the results"))
          ->excludes(report, period, list);
  addClassic(*c, results.mode);
  c->callback([&, report, clear] {
    if (report->count() + clear->count() == 0) throw CLI::RequiredError("REPORT");
    status = cli::importResults(results);
  });

  cli::SolveOptions solve;
  c = app.add_subcommand("solve",
                         words("calcola una rete disegnata con EPANET e ne porta i "
                               "risultati sul disegno",
                               "solve a drawn network by EPANET and bring the results onto "
                               "the drawing"));
  c->add_option("DRAWING", solve.drawing, words("disegno DXF", "DXF drawing"))->required();
  c->add_option("-n,--network", solve.network, words("rete", "network"));
  c->add_option("-o,--output", solve.out,
                words("disegno DXF da scrivere (altrimenti lo stesso)",
                      "DXF drawing to write (else the same one)"));
  c->add_option("--period", solve.period,
                words("periodo da portare sul disegno (altrimenti il primo)",
                      "period to bring onto the drawing (else the first)"));
  c->add_option("--solver", solve.solver,
                words("programma EPANET, o cartella del pacchetto epanet-js",
                      "EPANET program, or folder of the package epanet-js"));
  c->add_option("--keep", solve.keep,
                words("cartella in cui lasciare i file INP, RPT e OUT",
                      "folder in which to leave the INP, RPT and OUT files"));
  addClassic(*c, solve.mode);
  c->callback([&] { status = cli::solveNetwork(solve); });

  std::string infoDrawing;
  bool json = false;
  c = app.add_subcommand("info",
                         words("elenca le reti di un disegno, o dice che cosa c'è in un file INP",
                               "list the networks of a drawing, or tell what an INP file holds"));
  c->add_option("FILE", infoDrawing, words("disegno DXF o file INP", "DXF drawing or INP file"))
      ->required();
  c->add_flag("--json", json, words("in forma JSON", "as JSON"));
  c->callback([&] { status = cli::showInfo(infoDrawing, json); });

  cli::DiffOptions diff;
  c = app.add_subcommand("diff",
                         words("che cosa il disegno dice di diverso dal testo che conserva, "
                               "o da un file INP",
                               "what the drawing says otherwise than its kept text, or than "
                               "an INP file"));
  c->add_option("DRAWING", diff.drawing, words("disegno DXF", "DXF drawing"))->required();
  c->add_option(
      "INP", diff.inp,
      words("file INP (altrimenti il testo conservato)", "INP file (else the kept text)"));
  c->add_option("-n,--network", diff.network, words("rete", "network"));
  auto* asJson = c->add_flag("--json", diff.json, words("in forma JSON", "as JSON"));
  auto* mend = c->add_flag("--mend", diff.mend,
                           words("dà alle copie nel disegno i nomi che hanno nel file",
                                 "give copies in the drawing the names that they have in the file"))
                   ->excludes(asJson);
  c->add_option("-o,--output", diff.out,
                words("disegno DXF da scrivere (altrimenti lo stesso)",
                      "DXF drawing to write (else the same one)"))
      ->needs(mend);
  c->callback([&] { status = cli::showDiff(diff); });

  cli::RunOptions run;
  c = app.add_subcommand("run",
                         words("esegue comandi da uno script", "run commands from a script"));
  c->add_option("DRAWING", run.drawing,
                words("disegno DXF, o - per uno nuovo", "DXF drawing, or - for a new one"))
      ->required();
  c->add_option("SCRIPT", run.script,
                words("file di script (docs/scripts.md)", "script file (docs/scripts.md)"))
      ->required();
  c->add_option("-o,--output", run.out,
                words("disegno DXF da scrivere alla fine", "DXF drawing to write at the end"));
  addClassic(*c, run.mode);
  c->callback([&] { status = cli::runScript(run); });

  cli::RenderOptions render;
  c = app.add_subcommand("render", words("disegna il disegno su PNG, SVG o PDF",
                                         "paint the drawing as PNG, SVG or PDF"));
  c->add_option("DRAWING", render.drawing, words("disegno DXF", "DXF drawing"))->required();
  c->add_option("-o,--output", render.out,
                words("file .png, .svg o .pdf", "file .png, .svg or .pdf"))
      ->required();
  c->add_option("--view", render.view,
                words("plan (dall'alto) o iso (da sud-ovest)",
                      "plan (from above) or iso (from the south-west)"))
      ->check(CLI::IsMember({"plan", "iso"}));
  c->add_flag("--dark", render.dark, words("fondo scuro", "dark ground"));
  c->add_option("--width", render.width, words("larghezza in pixel", "width in pixels"))
      ->check(CLI::Range(100, 20000));
  c->add_option("--window", render.window, words("finestra x1,y1,x2,y2", "window x1,y1,x2,y2"));
  c->add_option("--layers", render.layers, words("solo questi layer", "only these layers"))
      ->delimiter(',');
  addSheet(*c, render);
  c->callback([&] { status = cli::render(render); });

  std::string shellDrawing;
  cli::InpMode shellMode = cli::InpMode::full;
  c = app.add_subcommand("shell",
                         words("la riga di comando interattiva", "the interactive command line"));
  c->add_option("DRAWING", shellDrawing, words("disegno DXF", "DXF drawing"));
  addClassic(*c, shellMode);
  c->callback([&] { status = cli::shell(shellDrawing, shellMode); });

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? 0 : 2;
  } catch (const std::bad_alloc&) {
    return cli::fail(
        words("memoria esaurita: lavoro interrotto", "out of memory: the job was stopped"));
  } catch (const std::exception& e) {
    return cli::fail(words("errore interno: ", "internal error: ") + e.what());
  }
  return status;
}
