// The running median of a series: each window is copied into a work buffer and parted there. A
// buffer that was given back is kept, so that the next window gets it for a few nanoseconds.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>

#include "families/errors.h"
#include "families/kernels.h"
#include "tour/family.h"
#include "tour/series.h"
#include "tour/svg.h"
#include "tour/text.h"
#include "tour/timing.h"

namespace jex::tour {
namespace {

constexpr jex_int alignment = 128;

// A work buffer of n numbers, held while the object lives.
class Buffer {
 public:
  Buffer(const Module& memory, size_t n)
      : memory_(memory),
        numbers_(static_cast<double*>(memory.jex_serv_allocate(n * sizeof(double), alignment))) {
    if (!numbers_) throw std::bad_alloc();
  }
  Buffer(const Buffer&) = delete;
  ~Buffer() { memory_.jex_serv_deallocate(numbers_); }
  double* data() const { return numbers_; }
  bool is_aligned() const { return reinterpret_cast<uintptr_t>(numbers_) % alignment == 0; }

 private:
  const Module& memory_;
  double* const numbers_;
};

// The median of n numbers, which it puts into another order.
double median(double* numbers, size_t n) {
  std::nth_element(numbers, numbers + n / 2, numbers + n);
  return numbers[n / 2];
}

struct Medians {
  Vector values;
  size_t misaligned = 0;
};

Medians running_median(const Module& memory, const Vector& values, size_t window) {
  Medians m;
  for (size_t i = 0; i + window <= values.size(); ++i) {
    const Buffer buffer(memory, window);
    std::copy_n(&values[i], window, buffer.data());
    m.values.push_back(median(buffer.data(), window));
    m.misaligned += !buffer.is_aligned();
  }
  return m;
}

// The same without work buffers.
Vector sorted_medians(const Vector& values, size_t window) {
  Vector result;
  for (size_t i = 0; i + window <= values.size(); ++i) {
    Vector part(&values[i], &values[i] + window);
    std::sort(part.begin(), part.end());
    result.push_back(part[window / 2]);
  }
  return result;
}

// Numbers that did not last while five buffers of growing sizes were out.
size_t overwritten(const Module& memory, size_t n) {
  const Buffer buffers[] = {
      {memory, n}, {memory, 2 * n}, {memory, 3 * n}, {memory, 4 * n}, {memory, 5 * n}};
  for (size_t k = 0; k < 5; ++k) std::fill_n(buffers[k].data(), (k + 1) * n, k);
  size_t wrong = 0;
  for (size_t k = 0; k < 5; ++k)
    for (size_t i = 0; i < (k + 1) * n; ++i) wrong += buffers[k].data()[i] != k;
  return wrong;
}

// Requests and returns in a second, a thousand at a time.
template <class Pair>
double pairs_per_second(Pair pair) {
  return 1000 * times_per_second([&] {
           for (int i = 0; i < 1000; ++i) pair();
         });
}

}  // namespace

Report memory(const Context& context) {
  const Series series = read_series(context.file.empty() ? sunspots_file() : context.file);
  const Module& kernels = context.kernels;
  const size_t window = std::min<size_t>(context.size, series.values.size() - 1);
  context.progress.tell(text("medians of %zu values", window));
  kernels.jex_serv_freebuffers();
  const Medians medians = running_median(kernels, series.values, window);
  jex_int kept = 0, left = 0;
  const int64_t bytes = kernels.jex_serv_jex_memstat(&kept);
  const bool cached = kept >= 0;
  const size_t wrong = overwritten(kernels, window);
  kernels.jex_serv_freebuffers();
  const int64_t still = kernels.jex_serv_jex_memstat(&left);

  Report report;
  report.problem = {
      {"file", file_name(series.file)},
      {"series", text("%zu values of %s", series.values.size(), series.y_name.c_str())},
      {"median", text("of %zu values, a work buffer for each", window)}};
  report.checks = {
      exactly("medians", text("%zu", medians.values.size()),
              differing(medians.values, sorted_medians(series.values, window)), "values"),
      exactly("five buffers at once", text("%zu numbers", 15 * window), wrong, "numbers")};
  if (cached) {
    report.checks.push_back(
        exactly("aligned", text("to %d bytes", alignment), medians.misaligned, "buffers"));
    report.checks.push_back(
        exactly("freed", text("%d buffer%s", kept, kept == 1 ? "" : "s"), size_t(still), "bytes"));
  }
  report.findings = {{"cache", cached
                                   ? text("%zu requests were served by %d buffer%s of %lld bytes",
                                          medians.values.size(), kept, kept == 1 ? "" : "s",
                                          static_cast<long long>(bytes))
                                   : "switched off: each request went to the allocator"}};
  for (const size_t n : {window, size_t(1) << 17}) {
    const std::string size = text("%zu bytes", n * sizeof(double));
    const double buffers = pairs_per_second([&] { Buffer(kernels, n); });
    const double blocks = pairs_per_second([&] {
      void* volatile block = std::malloc(n * sizeof(double));
      std::free(block);
    });
    report.rates.push_back({"requests of " + size, buffers / 1e6, "million a second"});
    report.rates.push_back({"the same by malloc and free", blocks / 1e6, "million a second"});
  }

  svg::Panel panel = plot_of(series);
  const size_t middle = window / 2;
  panel.curves.push_back(
      {"median", series.first + middle * series.step, series.step, medians.values});
  report.pictures = {{"memory.svg", svg::draw("Running median of " + series.y_name, {panel})}};
  return report;
}

}  // namespace jex::tour
