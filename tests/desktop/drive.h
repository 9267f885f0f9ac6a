// Steps of a user, taken while commands wait in their loops.
#pragma once

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

namespace desktop {

// Waits until `when` holds, then does `act`; a step whose time is up fails and ends the run.
struct Step {
  std::string what;
  std::function<bool()> when;
  std::function<void()> act;
};

// Takes the steps one after another and returns when the last one has been taken and `idle` holds.
// `abandon` ends what still waits after a failure.
inline void drive(std::vector<Step> steps, std::function<bool()> idle,
                  std::function<void()> abandon, int milliseconds = 20000) {
  steps.push_back({"nothing runs any more", std::move(idle), [] {}});
  std::size_t next = 0;
  bool failed = false;
  QElapsedTimer clock;
  clock.start();
  QEventLoop loop;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    if (next < steps.size() && !failed && steps[next].when()) {
      clock.restart();
      steps[next++].act();
    } else if (next < steps.size() && clock.elapsed() > milliseconds) {
      if (!failed) ADD_FAILURE() << "step " << next + 1 << " never came: " << steps[next].what;
      failed = true;
      abandon();
    }
    if (next == steps.size() || (failed && steps.back().when())) loop.quit();
  });
  timer.start(2);
  loop.exec();
}

}  // namespace desktop
