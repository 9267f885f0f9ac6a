// How long the product's jobs take and what memory they need, as drawings and networks grow.
//
//   bench_vessora [--large] [--check] [--jobs NAME,...] [--folder FOLDER]
//
// Every job runs in a process of its own, so that its peak of memory is its own. Times are of
// processor, the program's own apart from the system's work for it, and of the clock, which is less
// than both together where two threads share the work. They depend on the machine; growth from one
// size to the ten times larger one does not, so that is what --check looks at.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/make_drawing.h"
#include "bench/make_grid.h"
#include "bench/make_report.h"
#include "cad/api/database.h"
#include "cad/drawing/drawing.h"
#include "cad/editor/session.h"
#include "cad/ui/script_frontend.h"
#include "epanet/network.h"
#include "epanet/results.h"
#include "module/editing/table_jobs.h"
#include "module/host/command_span.h"
#include "module/host/module.h"
#include "module/inp/inp_reader.h"
#include "module/network/network_list.h"
#include "platform/files.h"
#include "schema/element.h"

namespace {

namespace fs = std::filesystem;

constexpr double kLargestGrowth = 11;  // of a job whose work is in proportion to its input
constexpr double kNothing = 0.05;      // seconds too short to compare

// Seconds of processor: in the program, and in the system for it (pages of memory, files). What
// others do on the machine meanwhile hardly changes the first; the second depends on how much
// memory is free.
struct Seconds {
  double program = 0, system = 0;
  double clock = 0;  // on the wall
  double both() const { return program + system; }
};

double wallClock() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Seconds of(const rusage& used) {
  const auto seconds = [](const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
  };
  return {seconds(used.ru_utime), seconds(used.ru_stime), wallClock()};
}
Seconds now() {
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  return of(used);
}
Seconds since(const Seconds& start) {
  const Seconds end = now();
  return {end.program - start.program, end.system - start.system, end.clock - start.clock};
}

[[noreturn]] void fail(const std::string& message) {
  std::fprintf(stderr, "bench_vessora: %s\n", message.c_str());
  std::exit(1);
}

// --- the jobs that run in this program, each in a child of it. They return the seconds that count.

Seconds readInp(const std::string& path) {
  const Seconds start = now();
  auto text = platform::readFile(path);
  if (!text) fail(text.error());
  vessora::EpaNetwork network;
  vessora::EpaSettings settings;
  vessora::parseInp(std::move(*text), network, settings);
  if (network.juncs.size() == 0) fail(path + ": no junctions were read");
  return since(start);
}

// As the full way reads a file: its rows, and what they mean.
Seconds parseInp(const std::string& path) {
  const Seconds start = now();
  auto text = platform::readFile(path);
  if (!text) fail(text.error());
  const epanet::Document document(std::move(*text));
  const epanet::Network network(document);
  if (network.nodes.empty()) fail(path + ": no nodes were read");
  return since(start);
}

// All periods of a report or a binary results file.
Seconds readResults(const std::string& path) {
  const Seconds start = now();
  auto text = platform::readFile(path);
  if (!text) fail(text.error());
  const epanet::OpenedResults opened = epanet::openResults(std::move(*text));
  if (!opened.results || opened.results->periods().empty()) fail(path + ": no results were read");
  for (std::size_t k = 0; k < opened.results->periods().size(); ++k) {
    const epanet::PeriodValues values = opened.results->values(k);
    if (values.nodes.rows().empty()) fail(path + ": a period without nodes");
  }
  return since(start);
}

Seconds loadDrawing(const std::string& path) {
  const Seconds start = now();
  AcDbDatabase database(false);
  std::vector<std::string> warnings;
  const auto loaded = database.drawing().load(path, warnings);
  if (!loaded) fail(loaded.error());
  return since(start);
}

Seconds saveDrawing(const std::string& path, const std::string& out) {
  AcDbDatabase database(false);
  std::vector<std::string> warnings;
  const auto loaded = database.drawing().load(path, warnings);
  if (!loaded) fail(loaded.error());
  const Seconds start = now();
  const auto saved = database.drawing().save(out, {false});
  if (!saved) fail(saved.error());
  return since(start);
}

// Gives all pipes of the drawing a material: what the command does between its dialog's search and
// its end. Their results go with it.
Seconds assignMaterial(const std::string& path) {
  AcDbDatabase database(false);
  std::vector<std::string> warnings;
  const auto loaded = database.drawing().load(path, warnings);
  if (!loaded) fail(loaded.error());
  acdbHostApplicationServices()->setWorkingDatabase(&database);
  acdbRegApp(schema::app::kMaterial);
  const std::u16string network = vessora::pickNetwork({}, {}).name;
  const Seconds start = now();
  vessora::PipeNames found;
  vessora::FindPipesByMaterial(network, u"", found);
  const int assigned = vessora::AssignMaterial(network, 0.02, u"PEAD", found).pipes;
  const Seconds seconds = since(start);
  if (assigned == 0 || static_cast<std::size_t>(assigned) != found.size())
    fail(path + ": not all pipes were assigned");
  return seconds;
}

// A junction from the middle of the drawing, as a script names it.
std::string middleJunction(const cad::Drawing& drawing) {
  std::vector<std::uint32_t> junctions;
  for (const std::uint32_t i : drawing.index().allInSpace()) {
    const cad::Record& r = drawing.record(i);
    const std::u16string& layer = drawing.names().text(r.layer);
    if (r.type == cad::Type::insert && layer.starts_with(u"JUNC-")) junctions.push_back(i);
  }
  char handle[24];
  std::snprintf(
      handle, sizeof handle, "\"#%llX\"",
      static_cast<unsigned long long>(drawing.record(junctions.at(junctions.size() / 2)).handle));
  return handle;
}

// The command alone, as a session runs it, in a drawing of which nobody has asked anything yet.
Seconds modifyNode(const std::string& path) {
  cad::Session& session = cad::Session::instance();
  std::vector<std::string> warnings;
  const auto opened = session.openDrawing(path, warnings);
  if (!opened) fail(opened.error());
  session.setSymbol(u"hn-cpath", u"/");
  cad::Drawing& drawing = session.database()->drawing();
  cad::ui::ScriptFrontend script(
      middleJunction(drawing) + "\n[Nodo]\nNome del nodo = NUOVO\nQuota del nodo [m] = 55.5\nOK\n",
      "modify");
  session.setFrontend(&script);
  const Seconds start = now();
  drawing.beginCommand(u"HNMODEPA");
  {
    const vessora::CommandSpan span;
    vessora::EpaCommands().hnmodepa();
  }
  drawing.endCommand();
  const Seconds seconds = since(start);
  if (const auto done = script.finish(); !done) fail(done.error());
  session.setFrontend(nullptr);
  return seconds;
}

int runChild(const std::vector<std::string>& a) {
  Seconds seconds;
  if (a[1] == "inp-read") seconds = readInp(a[2]);
  if (a[1] == "inp-parse") seconds = parseInp(a[2]);
  if (a[1] == "rpt-read" || a[1] == "out-read") seconds = readResults(a[2]);
  if (a[1] == "assign") seconds = assignMaterial(a[2]);
  if (a[1] == "dxf-load") seconds = loadDrawing(a[2]);
  if (a[1] == "dxf-save") seconds = saveDrawing(a[2], a[3]);
  if (a[1] == "modify") seconds = modifyNode(a[2]);
  std::printf("%.9f %.9f %.9f\n", seconds.program, seconds.system, seconds.clock);
  return 0;
}

// --- running and measuring -----------------------------------------------------------------------

struct Measure {
  Seconds seconds;
  double megabytes = 0;  // peak of resident memory
};

// Runs a program to its end. The time is what it prints, or all that it used when it prints none.
Measure run(const std::vector<std::string>& command) {
  int pipeEnds[2];
  if (pipe(pipeEnds) != 0) fail("no pipe");
  const double begun = wallClock();
  const pid_t child = fork();
  if (child == 0) {
    dup2(pipeEnds[1], 1);
    close(pipeEnds[0]);
    close(pipeEnds[1]);
    std::vector<char*> argv;
    for (const std::string& s : command) argv.push_back(strdup(s.c_str()));
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
  }
  close(pipeEnds[1]);
  std::string printed;
  char buffer[4096];
  for (ssize_t n; (n = read(pipeEnds[0], buffer, sizeof buffer)) > 0;) {
    printed.append(buffer, static_cast<std::size_t>(n));
  }
  close(pipeEnds[0]);
  int status = 0;
  rusage used{};
  wait4(child, &status, 0, &used);
  Measure m{of(used), static_cast<double>(used.ru_maxrss) / 1024};
  m.seconds.clock -= begun;
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
    fail(command[0] + " " + command[1] + " failed");
  Seconds own;
  if (std::sscanf(printed.c_str(), "%lf %lf %lf", &own.program, &own.system, &own.clock) == 3) {
    m.seconds = own;
  }
  return m;
}

// The mean of some runs: the clock that parts program from system ticks every few milliseconds, so
// that only many ticks together say something.
Measure mean(const std::vector<std::string>& command, int times) {
  Measure sum;
  for (int i = 0; i < times; ++i) {
    const Measure m = run(command);
    sum.seconds.program += m.seconds.program / times;
    sum.seconds.system += m.seconds.system / times;
    sum.seconds.clock += m.seconds.clock / times;
    sum.megabytes += m.megabytes / times;
  }
  return sum;
}

int repeats(std::size_t size) {
  return size <= 1000 ? 50 : size <= 10000 ? 20 : size <= 100000 ? 8 : 3;
}

struct Job {
  const char* name;
  const char* what;
  const char* input;  // inp, drawn (from it), report (on drawn), output (the same), solved (drawn
                      // with results), dxf, elements (drawn, of so many elements in all)
};

// What the commands are answered with, whatever the size of the network.
const char kColours[] =
    "NETVIS\ntutto\n<invio>\n[Interroga Rete]\nNodi/Colore = Pressione\nRami/Colore = "
    "Velocità\nOK\n0,0\n0,100\n";
const char kGradeLine[] = "EPAPIEZO\n2\ntutto\n<invio>\n";
const char kTables[] = "EPATABLES\n[Disegna Tabelle]\nRisultati Nodi\nOK\n";

const Job kJobs[] = {
    {"inp-read", "EPANET file into records, the classic way", "inp"},
    {"inp-parse", "EPANET file into document and network, the full way", "inp"},
    {"import", "vessora import: file to drawing, in full", "inp"},
    {"export", "vessora export: unedited drawing to file, in full", "drawn"},
    {"info", "vessora info: what an unedited drawing holds", "drawn"},
    {"info-inp", "vessora info: what a file holds, and what is wrong with it", "inp"},
    {"rpt-read", "all 5 periods of a report", "report"},
    {"out-read", "all 5 periods of a binary results file", "output"},
    {"results", "vessora results: one of 5 periods onto the drawing", "report"},
    {"colours", "NETVIS: nodes and links in classes, with legends", "solved"},
    {"grade-line", "EPAPIEZO over the whole network", "solved"},
    {"tables", "EPATABLES: pipe data and node results", "solved"},
    {"assign", "a material for all pipes, without opening and saving", "solved"},
    {"modify", "HNMODEPA alone: a junction renamed and raised", "elements"},
    {"render", "vessora render: plan as PNG", "drawn"},
    {"dxf-load", "open a drawing", "dxf"},
    {"dxf-save", "save it unchanged", "dxf"},
};

class Bench {
 public:
  Bench(std::string self, fs::path folder, bool large)
      : self_(std::move(self)), folder_(std::move(folder)) {
    sizes_ = {1000, 10000, 100000};
    if (large) sizes_.push_back(1000000);
    const fs::path build = fs::path(self_).parent_path().parent_path();
    vessora_ = (build / "bin/vessora").string();
  }

  // False when a job grows faster than its input from 100 000 to 1 000 000.
  bool runAll(const std::vector<std::string>& wanted) {
    std::printf("%-10s %10s %11s %9s %11s %11s %12s %9s %12s\n", "job", "elements", "seconds",
                "growth", "in system", "by clock", "us/element", "peak MB", "peak / file");
    bool good = true;
    for (const Job& job : kJobs) {
      if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), job.name) == wanted.end())
        continue;
      double before = 0;
      for (const std::size_t size : sizes_) {
        const std::string input = inputOf(job, size);
        const Measure m = mean(commandOf(job, input), repeats(size));
        const double growth = before > 0.001 ? m.seconds.program / before : 0;
        row(job, size, m, growth, static_cast<double>(fs::file_size(input)) / (1 << 20));
        if (size == 1000000 && before > kNothing && growth > kLargestGrowth) good = false;
        before = m.seconds.program;
      }
    }
    return good;
  }

 private:
  static void row(const Job& job, std::size_t size, const Measure& m, double growth,
                  double megabytes) {
    char text[16] = "";
    if (growth > 0) std::snprintf(text, sizeof text, "%.1f", growth);
    std::printf("%-10s %10zu %11.4f %9s %11.4f %11.4f %12.3f %9.0f %12.2f\n", job.name, size,
                m.seconds.program, text, m.seconds.system, m.seconds.clock,
                m.seconds.both() * 1e6 / static_cast<double>(size), m.megabytes,
                m.megabytes / megabytes);
    std::fflush(stdout);
  }

  std::string file(const std::string& kind, std::size_t size, const char* extension) const {
    return (folder_ / (kind + std::to_string(size) + extension)).string();
  }

  // The file that a job reads, made when it is not there yet.
  std::string inputOf(const Job& job, std::size_t size) {
    if (std::strcmp(job.input, "dxf") == 0) {
      const std::string path = file("drawing", size, ".dxf");
      if (!fs::exists(path)) {
        const auto made = bench::makeDrawing(size, path);
        if (!made) fail(made.error());
      }
      return path;
    }
    if (std::strcmp(job.input, "inp") == 0) return grid(size);
    // To each node of the grid comes a link and a quarter.
    if (std::strcmp(job.input, "elements") == 0) return drawnGrid(size * 4 / 9);
    const std::string drawn = drawnGrid(size);
    if (std::strcmp(job.input, "drawn") == 0) return drawn;
    const std::string report = file("rete", size, ".rpt");
    if (!fs::exists(report)) {
      const auto made = bench::makeReport(grid(size), 5, report);
      if (!made) fail(made.error());
    }
    if (std::strcmp(job.input, "report") == 0) return report;
    if (std::strcmp(job.input, "output") == 0) {
      const std::string output = file("rete", size, ".out");
      if (!fs::exists(output)) {
        const auto made = bench::makeOutput(grid(size), 5, output);
        if (!made) fail(made.error());
      }
      return output;
    }
    const std::string solved = file("solved", size, ".dxf");
    if (!fs::exists(solved))
      run({vessora_, "results", drawn, report, "--period", "1:00:00", "-o", solved});
    return solved;
  }

  std::string grid(std::size_t nodes) const {
    const std::string inp = file("rete", nodes, ".inp");
    if (!fs::exists(inp) && !bench::makeGrid(nodes, inp)) fail(inp + ": cannot be written");
    return inp;
  }
  std::string drawnGrid(std::size_t nodes) const {
    const std::string drawn = file("rete", nodes, ".dxf");
    if (!fs::exists(drawn)) run({vessora_, "import", grid(nodes), "-o", drawn});
    return drawn;
  }

  // A script's file, made when it is not there yet.
  std::string script(const char* name, const char* text) const {
    const std::string path = (folder_ / name).string();
    if (!fs::exists(path)) {
      const auto written = platform::writeFile(path, text);
      if (!written) fail(written.error());
    }
    return path;
  }

  std::vector<std::string> commandOf(const Job& job, const std::string& input) const {
    const std::string name = job.name;
    const std::string out = (folder_ / (name == "export" ? "out.inp" : "out.dxf")).string();
    if (name == "import" || name == "export") return {vessora_, name, input, "-o", out};
    if (name == "info" || name == "info-inp") return {vessora_, "info", input};
    if (name == "results") {
      const std::string drawn = fs::path(input).replace_extension(".dxf").string();
      return {vessora_, "results", drawn, input, "--period", "1:00:00", "-o", out};
    }
    const auto play = [&](const char* text) {
      return std::vector<std::string>{vessora_, "run", input, script(job.name, text)};
    };
    if (name == "colours") return play(kColours);
    if (name == "grade-line") return play(kGradeLine);
    if (name == "tables") return play(kTables);
    if (name == "render") return {vessora_, "render", input, "-o", out + ".png"};
    return {self_, "--child", name, input, out};
  }

  std::string self_, vessora_;
  fs::path folder_;
  std::vector<std::size_t> sizes_;
};

int usage() {
  std::fputs(
      "usage: bench_vessora [--large] [--check] [--jobs NAME,...] [--folder FOLDER]\njobs:\n",
      stderr);
  for (const Job& job : kJobs) std::fprintf(stderr, "  %-10s %s\n", job.name, job.what);
  return 2;
}

std::vector<std::string> splitAtCommas(const std::string& text) {
  std::vector<std::string> parts;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(',', at), text.size());
    parts.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> a(argv + 1, argv + argc);
  if (a.size() == 4 && a[0] == "--child") return runChild(a);
  bool large = false, check = false;
  std::vector<std::string> jobs;
  // On a disk in memory where there is one: what is measured is the program.
  std::string parent =
      fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path().string();
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] == "--large") {
      large = true;
    } else if (a[i] == "--check") {
      check = true;
    } else if (a[i] == "--jobs" && i + 1 < a.size()) {
      jobs = splitAtCommas(a[++i]);
    } else if (a[i] == "--folder" && i + 1 < a.size()) {
      parent = a[++i];
    } else {
      return usage();
    }
  }
  for (const std::string& name : jobs) {
    if (std::none_of(std::begin(kJobs), std::end(kJobs),
                     [&](const Job& j) { return name == j.name; }))
      return usage();
  }
  if (check && !large) {
    std::fprintf(stderr,
                 "bench_vessora: --check compares 100 000 with 1 000 000 elements; add --large\n");
    return 2;
  }
  std::string folder = parent + "/vessora-bench-XXXXXX";
  if (!mkdtemp(folder.data())) fail(parent + ": no folder can be made in it");
  std::error_code ignored;
  const bool good = Bench(fs::canonical("/proc/self/exe").string(), folder, large).runAll(jobs);
  fs::remove_all(folder, ignored);
  if (check && !good) {
    std::fprintf(stderr,
                 "bench_vessora: a job grew more than %g times for ten times the elements\n",
                 kLargestGrowth);
    return 1;
  }
  return 0;
}
