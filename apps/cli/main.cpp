// vessora: water networks in CAD drawings, from the command line.
#include <CLI/CLI.hpp>

#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "apps/cli/usage.h"
#include "platform/files.h"

namespace {

// The subcommands that read, write or may come to read or write INP files and results.
void addClassic(CLI::App& command, cli::InpMode& mode) {
  command.add_flag_callback(
      "--classic", [&mode] { mode = cli::InpMode::classic; },
      cli::words("file INP e risultati alla maniera classica (VSINPMODE=CLASSIC)"));
}

// A sheet of paper in place of a picture.
void addSheet(CLI::App& command, cli::RenderOptions& render) {
  using cli::words;
  auto* paper = command.add_option("--paper", render.paper,
                                   words("tavola in scala su carta A4, A3, A2, A1 o A0"));
  for (const char* other : {"--dark", "--width"}) paper->excludes(command.get_option(other));
  const auto add = [&](const char* name, auto& value, const std::string& help) {
    return command.add_option(name, value, help)->needs(paper);
  };
  command.add_flag("--landscape", render.landscape, words("foglio orizzontale"))->needs(paper);
  add("--scale", render.scale, words("scala della tavola, 1:2000, o auto"));
  add("--title", render.title, words("titolo della tavola (altrimenti il nome del file)"));
  add("--date", render.date, words("data da scrivere (altrimenti oggi)"));
  add("-n,--network", render.network, words("rete del cartiglio"));
  add("--text-height", render.textHeight,
      words("altezza minima sulla carta dei testi del disegno [mm]; chi non trova posto si omette"))
      ->check(CLI::Range(0.1, 100.0));
  auto* profile = add("--profile", render.profile,
                      words("un profilo longitudinale al posto della pianta, per nome"));
  add("--unit", render.unit,
      words("unità del disegno: mm, cm, m, km, in, ft... (altrimenti quella che dice di sé, o m)"))
      ->excludes(profile);
  add("--heights", render.heights,
      words("quante volte le altezze del profilo sono ingrandite (altrimenti 10, o quanto sta)"))
      ->needs(profile)
      ->check(CLI::Range(1.0, 1000.0));
  add("--dpi", render.dpi, words("punti per pollice di un PNG"))->check(CLI::Range(30, 600));
}

}  // namespace

int main(int argc, char** argv) {
  using cli::words;
  platform::endTemporaryFilesOnSignals();
  CLI::App app{words("Reti di distribuzione idrica nei disegni CAD.")};
  app.name("vessora");
  cli::nameHelps(app);
  app.require_subcommand(1);
  app.set_help_flag("-h,--help", words("questo testo"));
  app.set_version_flag("--version", "vessora 0.1.0", words("la versione"));
  int status = 0;

  cli::ImportOptions import;
  auto* c = cli::addCommand(app, "import", words("disegna una rete da un file INP di EPANET"));
  c->add_option("INP", import.inp, words("file INP; il suo nome dà il nome alla rete"))->required();
  c->add_option("-o,--output", import.out, words("disegno DXF da scrivere"))->required();
  c->add_option("-d,--drawing", import.base, words("disegno di base a cui aggiungere la rete"));
  c->add_option("--scale", import.scale,
                words("scala di simboli, scritte e frecce: un numero, o auto, dalla lunghezza dei "
                      "rami (auto; con --classic 1)"))
      ->type_name("auto|S")
      ->check([](const std::string& text) {
        return cli::isScale(text) ? std::string()
                                  : cli::words("serve un numero maggiore di 0, o auto");
      });
  addClassic(*c, import.mode);
  c->callback([&] { status = cli::importNetwork(import); });

  cli::ExportOptions exporting;
  c = cli::addCommand(app, "export", words("scrive il file INP di una rete disegnata"));
  c->add_option(words("DISEGNO"), exporting.drawing, words("disegno DXF"))->required();
  c->add_option("-o,--output", exporting.out, words("file INP da scrivere"))->required();
  c->add_option("-n,--network", exporting.network,
                words("rete (altrimenti la predefinita, o l'unica)"));
  c->add_flag("--csv", exporting.csv, words("scrive anche il file CSV accanto"));
  c->add_option("--units", exporting.units,
                words("unità di portata del file: CFS, GPM, MGD, IMGD, AFD, LPS, LPM, MLD, CMH, "
                      "CMD, CMS (altrimenti le sue)"))
      ->transform(CLI::IsMember(cli::flowUnitNames(), CLI::ignore_case));
  c->add_option("--for", exporting.solver,
                words("versione di EPANET che userà il file: 2.0, 2.2 o 2.3 (con --units)"))
      ->check(CLI::IsMember({"2.0", "2.0.12", "2.2", "2.3", "2.3.5"}));
  c->add_flag("--without-text", exporting.withoutText,
              words("scrive ciò che è disegnato, senza il testo conservato del file"));
  c->add_flag("--rewrite", exporting.rewrite,
              words("riscrive nel testo conservato tutto ciò che è disegnato"));
  addClassic(*c, exporting.mode);
  c->callback([&] { status = cli::exportNetwork(exporting); });

  cli::ResultsOptions results;
  c = cli::addCommand(
      app, "results",
      words("porta i risultati di EPANET (report RPT o file OUT) su una rete disegnata"));
  c->add_option(words("DISEGNO"), results.drawing, words("disegno DXF"))->required();
  auto* report =
      c->add_option("REPORT", results.report,
                    words("file RPT o OUT; il suo nome sceglie la rete, se ce n'è una così"));
  c->add_option("-o,--output", results.out,
                words("disegno DXF da scrivere (altrimenti lo stesso)"));
  c->add_option("-n,--network", results.network, words("rete"));
  auto* period =
      c->add_option("--period", results.period,
                    words("periodo da importare, come lo scrive il file; 7:00 vale 7:00:00"));
  auto* list = c->add_flag("--list-periods", results.listPeriods,
                           words("elenca i periodi e non cambia nulla"))
                   ->excludes(period);
  auto* clear = c->add_flag("--clear", results.clear, words("toglie i risultati"))
                    ->excludes(report, period, list);
  addClassic(*c, results.mode);
  c->callback([&, report, clear] {
    if (report->count() + clear->count() == 0) throw CLI::RequiredError("REPORT");
    status = cli::importResults(results);
  });

  cli::SolveOptions solve;
  c = cli::addCommand(app, "solve",
                      words("calcola una rete disegnata con EPANET e ne porta i "
                            "risultati sul disegno"));
  c->add_option(words("DISEGNO"), solve.drawing, words("disegno DXF"))->required();
  c->add_option("-n,--network", solve.network, words("rete"));
  c->add_option("-o,--output", solve.out, words("disegno DXF da scrivere (altrimenti lo stesso)"));
  c->add_option("--period", solve.period,
                words("periodo da portare sul disegno (altrimenti il primo)"));
  c->add_option("--solver", solve.solver,
                words("programma EPANET, o cartella del pacchetto epanet-js"));
  c->add_option("--keep", solve.keep, words("cartella in cui lasciare i file INP, RPT e OUT"));
  addClassic(*c, solve.mode);
  c->callback([&] { status = cli::solveNetwork(solve); });

  std::string infoDrawing;
  bool json = false;
  c = cli::addCommand(app, "info",
                      words("elenca le reti di un disegno, o dice che cosa c'è in un file INP"));
  c->add_option("FILE", infoDrawing, words("disegno DXF o file INP"))->required();
  c->add_flag("--json", json, words("in forma JSON"));
  c->callback([&] { status = cli::showInfo(infoDrawing, json); });

  cli::DiffOptions diff;
  c = cli::addCommand(app, "diff",
                      words("che cosa il disegno dice di diverso dal testo che conserva, "
                            "o da un file INP"));
  c->add_option(words("DISEGNO"), diff.drawing, words("disegno DXF"))->required();
  c->add_option("INP", diff.inp, words("file INP (altrimenti il testo conservato)"));
  c->add_option("-n,--network", diff.network, words("rete"));
  auto* asJson = c->add_flag("--json", diff.json, words("in forma JSON"));
  auto* mend =
      c->add_flag("--mend", diff.mend, words("dà alle copie nel disegno i nomi che hanno nel file"))
          ->excludes(asJson);
  c->add_option("-o,--output", diff.out, words("disegno DXF da scrivere (altrimenti lo stesso)"))
      ->needs(mend);
  c->callback([&] { status = cli::showDiff(diff); });

  cli::RunOptions run;
  c = cli::addCommand(app, "run", words("esegue comandi da uno script"));
  c->add_option(words("DISEGNO"), run.drawing, words("disegno DXF, o - per uno nuovo"))->required();
  c->add_option("SCRIPT", run.script, words("file di script (docs/scripts.md)"))->required();
  c->add_option("-o,--output", run.out, words("disegno DXF da scrivere alla fine"));
  addClassic(*c, run.mode);
  c->callback([&] { status = cli::runScript(run); });

  cli::RenderOptions render;
  c = cli::addCommand(app, "render", words("dipinge il disegno come PNG, SVG o PDF"));
  c->add_option(words("DISEGNO"), render.drawing, words("disegno DXF"))->required();
  c->add_option("-o,--output", render.out, words("file .png, .svg o .pdf"))->required();
  c->add_option("--view", render.view, words("plan (dall'alto) o iso (da sud-ovest)"))
      ->check(CLI::IsMember({"plan", "iso"}));
  c->add_flag("--dark", render.dark, words("fondo scuro"));
  c->add_option("--width", render.width, words("larghezza in pixel"))
      ->check(CLI::Range(100, 20000));
  c->add_option("--window", render.window, words("finestra x1,y1,x2,y2"));
  c->add_option("--layers", render.layers, words("solo questi layer"))->delimiter(',');
  c->add_option("--hide", render.hidden, words("senza questi layer"))->delimiter(',');
  addSheet(*c, render);
  c->callback([&] { status = cli::render(render); });

  std::string shellDrawing;
  cli::InpMode shellMode = cli::InpMode::full;
  c = cli::addCommand(app, "shell", words("la riga di comando interattiva"));
  c->add_option(words("DISEGNO"), shellDrawing, words("disegno DXF"));
  addClassic(*c, shellMode);
  c->callback([&] { status = cli::shell(shellDrawing, shellMode); });

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return cli::endOf(app, e);
  } catch (const std::bad_alloc&) {
    return cli::fail(words("memoria esaurita: lavoro interrotto"));
  } catch (const std::exception& e) {
    return cli::fail(words("errore interno: ") + e.what());
  }
  return status;
}
