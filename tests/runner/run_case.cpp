// Runs one case of tests/cases through the public door and compares what came out.
//
//   run_case CASE_FOLDER BIN_FOLDER [--update]
//
// A case is a folder with
//   cmd        shell lines, run by bash in a scratch copy of the folder with the programs on the
//   path console    expected standard output           (missing: must be empty) errors     expected
//   standard error            (missing: must be empty) status     expected exit status (missing: 0)
//   expected/  files that must come out byte for byte under the same names
// The scratch folder's own path reads "$DIR" in what is compared. --update rewrites the
// expectations from what came out; the diff is then reviewed like code.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

std::string readAll(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void writeAll(const fs::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

std::string replaceAll(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != text.npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
  return text;
}

// The first place where two texts differ, for a reader.
std::string difference(const std::string& wanted, const std::string& got) {
  std::istringstream a(wanted), b(got);
  std::string la, lb;
  for (int line = 1;; ++line) {
    const bool ha = static_cast<bool>(std::getline(a, la)),
               hb = static_cast<bool>(std::getline(b, lb));
    if (!ha && !hb) return "  they differ in line ends only\n";
    if (ha != hb || la != lb) {
      return "  line " + std::to_string(line) + "\n    wanted: " + (ha ? la : "(end)") +
             "\n    got:    " + (hb ? lb : "(end)") + "\n";
    }
  }
}

class Case {
 public:
  Case(fs::path folder, bool update) : folder_(std::move(folder)), update_(update) {}

  int run(const std::string& bin) {
    scratch_ = fs::temp_directory_path() /
               ("vessora-case-" + folder_.filename().string() + "-" + std::to_string(getpid()));
    fs::remove_all(scratch_);
    fs::create_directories(scratch_);
    for (const auto& entry : fs::directory_iterator(folder_)) {
      const std::string name = entry.path().filename().string();
      const bool expectation = name == "console" || name == "errors" || name == "status";
      if (entry.is_regular_file() && !expectation) fs::copy(entry.path(), scratch_ / name);
    }
    const std::string command =
        "unset LC_ALL VESSORA_LANG; cd '" + scratch_.string() + "' && PATH='" + bin +
        "':\"$PATH\" TOP='" + top() +
        "' LANG=C LC_MESSAGES=en_US.UTF-8 bash -e -o pipefail ./cmd >.console 2>.errors </dev/null";
    const int raw = std::system(command.c_str());
    const int status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
    compare("console", normal(readAll(scratch_ / ".console")));
    compare("errors", normal(readAll(scratch_ / ".errors")));
    compare("status", status == 0 ? "" : std::to_string(status) + "\n");
    compareFiles();
    if (failed_) {
      std::cerr << "case " << folder_.string() << " failed; what came out is in "
                << scratch_.string() << "\n";
      return 1;
    }
    fs::remove_all(scratch_);
    return 0;
  }

 private:
  std::string top() const {
    return fs::absolute(folder_ / "../../../..").lexically_normal().string();
  }
  std::string normal(const std::string& text) const {
    return replaceAll(text, scratch_.string(), "$DIR");
  }

  void compare(const std::string& name, const std::string& got) {
    const fs::path file = folder_ / name;
    const std::string wanted = fs::exists(file) ? readAll(file) : "";
    if (wanted == got) return;
    if (update_) {
      got.empty() ? static_cast<void>(fs::remove(file)) : writeAll(file, got);
      return;
    }
    failed_ = true;
    std::cerr << name << ":\n" << difference(wanted, got);
  }

  void compareFiles() {
    const fs::path expected = folder_ / "expected";
    if (!fs::exists(expected)) return;
    for (const auto& entry : fs::directory_iterator(expected)) {
      const std::string name = entry.path().filename().string();
      const fs::path made = scratch_ / name;
      if (!fs::exists(made)) {
        failed_ = true;
        std::cerr << name << ": was not written\n";
        continue;
      }
      const std::string wanted = readAll(entry.path()), got = readAll(made);
      if (wanted == got) continue;
      if (update_) {
        writeAll(entry.path(), got);
      } else {
        failed_ = true;
        std::cerr << name << ":\n" << difference(wanted, got);
      }
    }
  }

  fs::path folder_, scratch_;
  bool update_, failed_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: run_case CASE_FOLDER BIN_FOLDER [--update]\n";
    return 2;
  }
  const bool update =
      (argc > 3 && std::string(argv[3]) == "--update") || std::getenv("UPDATE_GOLDEN");
  return Case(argv[1], update).run(argv[2]);
}
