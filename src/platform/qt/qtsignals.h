// The signals that end a program, where there are signals.
#pragma once

#include <functional>
#include <memory>

// While it lives, the first request to end (SIGTERM, SIGINT, SIGHUP) calls the routine from the
// event loop, once, and a broken pipe ends nothing. What comes within a second belongs to the
// first: a closed terminal and a logout tell more than once. A later one ends the program at once.
// A request that the program was started to ignore stays ignored.
class SignalWatch {
 public:
  explicit SignalWatch(std::function<void()> asked);
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  struct State;
  std::unique_ptr<State> state;
};
