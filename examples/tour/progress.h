// What the program is at, on a terminal, while that takes long.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>

namespace jex::tour {

// One line, written anew each second once `patience` is over, and wiped out at the end. A stream
// that is no terminal gets nothing.
class Progress {
 public:
  Progress(std::FILE* stream, std::string task,
           std::chrono::milliseconds patience = std::chrono::seconds(2));
  ~Progress();
  Progress(const Progress&) = delete;

  // The step that begins now.
  void tell(const std::string& step);

 private:
  void watch(std::chrono::milliseconds patience);

  std::FILE* const stream_;
  const std::string task_;
  std::string step_;
  bool done_ = false;
  std::mutex mutex_;
  std::condition_variable end_;
  std::thread watcher_;  // last: it uses the others
};

}  // namespace jex::tour
