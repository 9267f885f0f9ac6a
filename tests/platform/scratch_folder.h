// A folder of its own for each test, gone at its end.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/files.h"

namespace platform {

class ScratchFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "vessora-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
  }
  void TearDown() override {
    chmod(folder_.c_str(), 0700);
    std::filesystem::remove_all(folder_);
  }
  std::string at(const std::string& name) const { return folder_ + "/" + name; }
  // Names in the folder, hidden ones too: what a save leaves behind.
  std::size_t entries() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_),
                                                  std::filesystem::directory_iterator()));
  }
  std::vector<std::string> hidden() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      const std::string name = entry.path().filename().string();
      if (name[0] == '.') names.push_back(name);
    }
    return names;
  }
  std::string content(const std::string& name) const {
    const Result<std::string> bytes = readFile(at(name));
    return bytes ? *bytes : "<" + bytes.error() + ">";
  }

  std::string folder_;
};

}  // namespace platform
