// Runs every example of a document, so that what a reader copies works.
//
//   run_docs DOCUMENT.md PROJECT_FOLDER BIN_FOLDER
//
// Each fenced block says what it is:
//   ```sh            lines for the shell; all of a document run in order, in one scratch folder
//   that has
//                    the examples, build/release/bin, and rete.inp as the reader's own network
//   ```sh solver     the same, where the solver is (VESSORA_SOLVER names it)
//   ```sh installs   not run, but what it calls must be a program of the project
//   ```script NAME   a script for the program, on a drawing of the scratch folder: "-" a new one,
//                    borgo.dxf and solved.dxf the example without and with results
//   ```text          no example
// Any other block is an error, as is a block without a word. Of commands within a line, `vessora
// ...`, the subcommand and all options must be known to the program.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Block {
  int line = 0;
  std::string kind, argument, text;
};

struct Span {
  int line = 0;
  std::string text;
};

struct Document {
  std::vector<Block> blocks;
  std::vector<Span> spans;  // code within lines
};

Document read(const fs::path& file) {
  Document document;
  std::ifstream in(file);
  std::string line;
  bool inside = false;
  for (int number = 1; std::getline(in, line); ++number) {
    if (line.starts_with("```")) {
      inside = !inside;
      if (!inside) continue;
      std::istringstream words(line.substr(3));
      Block& block = document.blocks.emplace_back();
      block.line = number;
      words >> block.kind >> block.argument;
    } else if (inside) {
      document.blocks.back().text += line + "\n";
    } else {
      for (std::size_t at = 0; (at = line.find('`', at)) != line.npos;) {
        const std::size_t end = line.find('`', at + 1);
        if (end == line.npos) break;
        document.spans.push_back({number, line.substr(at + 1, end - at - 1)});
        at = end + 1;
      }
    }
  }
  if (inside) document.blocks.back().kind = "(without an end)";
  return document;
}

class Runner {
 public:
  Runner(const fs::path& document, fs::path project, fs::path bin)
      : document_(document), project_(std::move(project)), bin_(std::move(bin)) {
    scratch_ = fs::temp_directory_path() /
               ("vessora-docs-" + document.stem().string() + "-" + std::to_string(getpid()));
    fs::remove_all(scratch_);
    fs::create_directories(scratch_ / "docs/pictures");
    fs::create_directories(scratch_ / "build/release");
    fs::create_directory_symlink(bin_, scratch_ / "build/release/bin");
    fs::copy(project_ / "examples", scratch_ / "examples");
    fs::copy(project_ / "docs/tutorial", scratch_ / "docs/tutorial");
    for (const auto& entry : fs::directory_iterator(project_ / "docs/pictures")) {
      if (entry.path().extension() == ".script") {
        fs::copy(entry.path(), scratch_ / "docs/pictures" / entry.path().filename());
      }
    }
    fs::copy(project_ / "examples/borgo.inp", scratch_ / "rete.inp");
  }

  int run() {
    const Document document = read(document_);
    for (const Block& block : document.blocks) run(block);
    for (const Span& span : document.spans) check(span);
    if (failures_ == 0) fs::remove_all(scratch_);
    std::cout << ran_ << " examples run, " << skipped_ << " skipped, " << failures_ << " failed\n";
    return failures_ == 0 ? 0 : 1;
  }

 private:
  void fail(int line, const std::string& what) {
    ++failures_;
    std::cerr << document_.filename().string() << ":" << line << ": " << what << "\n";
  }

  // The exit status of a bash text in the scratch folder; what it prints goes to a file. Scripts
  // are written in Italian.
  int shell(const std::string& text, const std::string& output = ".output",
            const std::string& locale = "it_IT.UTF-8") {
    std::ofstream(scratch_ / ".lines") << text;
    const std::string command = "cd '" + scratch_.string() + "' && PATH='" + bin_.string() +
                                "':\"$PATH\" LC_ALL=" + locale + " bash -e -o pipefail .lines >" +
                                output + " 2>&1 </dev/null";
    const int raw = std::system(command.c_str());
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
  }
  std::string output(const std::string& name = ".output") const {
    std::ifstream in(scratch_ / name);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

  void run(const Block& block) {
    if (block.kind == "text" && block.argument.empty()) return;
    if (block.kind == "sh" && block.argument == "installs") return installs(block);
    if (block.kind == "sh" && block.argument == "solver" && !std::getenv("VESSORA_SOLVER")) {
      ++skipped_;
      return;
    }
    std::string lines = block.text;
    if (block.kind == "script" && !block.argument.empty()) {
      prepare();
      std::ofstream(scratch_ / ".script") << block.text;
      const bool fresh = block.argument == "-";
      lines =
          "vessora run " + (fresh ? "-" : ".drawings/" + block.argument) + " .script -o .after.dxf";
    } else if (block.kind != "sh" || !(block.argument.empty() || block.argument == "solver")) {
      return fail(block.line, "a block must say what it is: sh, script DRAWING or text");
    }
    ++ran_;
    if (const int status = shell(lines); status != 0) {
      fail(block.line, "status " + std::to_string(status) + "\n" + output());
    }
  }

  // The drawings that scripts begin with, made once.
  void prepare() {
    if (fs::exists(scratch_ / ".drawings")) return;
    const int status = shell(
        "mkdir .drawings\n"
        "vessora import examples/borgo.inp -o .drawings/borgo.dxf\n"
        "vessora results .drawings/borgo.dxf examples/borgo.rpt --period 7:00:00 -o "
        ".drawings/solved.dxf\n"
        "vessora run .drawings/solved.dxf docs/pictures/profile.script -o .drawings/profile.dxf\n");
    if (status != 0) fail(0, "the drawings cannot be made\n" + output());
  }

  void installs(const Block& block) {
    std::istringstream lines(block.text);
    for (std::string line, program; std::getline(lines, line);) {
      if (!(std::istringstream(line) >> program)) continue;
      if (access((project_ / program).c_str(), X_OK) != 0) {
        fail(block.line, program + " is no program of the project");
      }
    }
  }

  void check(const Span& span) {
    std::istringstream words(span.text);
    std::string word, subcommand;
    words >> word >> subcommand;
    if (word != "vessora" || subcommand.empty() || subcommand[0] == '-') return;
    const std::string help = helpOf(subcommand);
    if (help.empty()) return fail(span.line, "no such subcommand: " + span.text);
    for (std::size_t at = 0; (at = span.text.find("--", at)) != span.text.npos;) {
      const std::size_t end = span.text.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", at);
      const std::string option = span.text.substr(at, end == span.text.npos ? end : end - at);
      if (help.find(option) == help.npos) {
        fail(span.line, "no such option " + option + ": " + span.text);
      }
      at += option.size();
    }
  }
  // What the program says of a subcommand; empty when it has none of the name.
  const std::string& helpOf(const std::string& subcommand) {
    const auto [at, fresh] = helps_.try_emplace(subcommand);
    if (fresh && shell("vessora '" + subcommand + "' --help", ".help", "en_US.UTF-8") == 0) {
      const std::string help = output(".help");
      // Asked for the help of what it does not know, it tells that of all.
      if (help.find(" " + subcommand + " [OPTIONS]") != help.npos) at->second = help;
    }
    return at->second;
  }

  fs::path document_, project_, bin_, scratch_;
  std::map<std::string, std::string> helps_;
  int ran_ = 0, skipped_ = 0, failures_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: run_docs DOCUMENT.md PROJECT_FOLDER BIN_FOLDER\n";
    return 2;
  }
  return Runner(argv[1], argv[2], argv[3]).run();
}
