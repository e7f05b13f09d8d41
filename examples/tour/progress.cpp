#include "tour/progress.h"

#include <unistd.h>

namespace jex::tour {

Progress::Progress(std::FILE* stream, std::string task, std::chrono::milliseconds patience)
    : stream_(stream), task_(std::move(task)) {
  if (isatty(fileno(stream))) watcher_ = std::thread([this, patience] { watch(patience); });
}

Progress::~Progress() {
  if (!watcher_.joinable()) return;
  {
    const std::lock_guard guard(mutex_);
    done_ = true;
  }
  end_.notify_all();
  watcher_.join();
}

void Progress::tell(const std::string& step) {
  const std::lock_guard guard(mutex_);
  step_ = step;
}

void Progress::watch(std::chrono::milliseconds patience) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  std::unique_lock guard(mutex_);
  bool written = false;
  for (auto next = start + patience; !end_.wait_until(guard, next, [this] { return done_; });
       next += std::chrono::seconds(1)) {
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    std::fprintf(stream_, "\r\033[K%s: %s, %.0f s", task_.c_str(), step_.c_str(), seconds);
    std::fflush(stream_);
    written = true;
  }
  if (!written) return;
  std::fputs("\r\033[K", stream_);
  std::fflush(stream_);
}

}  // namespace jex::tour
