// What every subcommand does with the host, and how it shows that it works.
#pragma once

#include <memory>
#include <string>

#include "apps/cli/words.h"
#include "apps/program/host.h"

namespace cli {

using program::InpMode;
using program::startHost;
using program::stopHost;

// Opens a drawing, "-" or an empty path being a new one; what was repaired goes to standard error.
platform::Result<void> openDrawing(const std::string& path);
platform::Result<void> saveDrawing(const std::string& path);

// The span of a job of the module that nobody is asked about: host and module are there while it is
// alive.
class JobSpan {
 public:
  explicit JobSpan(InpMode mode = InpMode::full);
  JobSpan(const JobSpan&) = delete;
  JobSpan& operator=(const JobSpan&) = delete;
  ~JobSpan();
  // Why the module is not there, or that it is and the drawing is open.
  platform::Result<void> open(const std::string& drawing);
  vessora::Jobs* operator->() const { return jobs_; }

 private:
  class Silent;
  std::unique_ptr<Silent> ui_;
  platform::Result<void> started_;
  vessora::Jobs* jobs_ = nullptr;
};

// A line on standard error that is written over again and again while a job runs; silent when
// standard error is no terminal.
class Progress {
 public:
  explicit Progress(const std::string& what);
  ~Progress();
  void show(const std::string& text);

 private:
  bool visible_;
  std::string what_;
};

}  // namespace cli
