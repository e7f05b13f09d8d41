// The spectrogram of a chirp: windows of a signal, half overlapping, transformed in one batch.
//
//   x(t) = sin(2 pi (f0 t + (f1 - f0) t^2 / (2 T)))   has the frequency f0 + (f1 - f0) t / T at
//   time t
//
// Every window is weighted by von Hann's function and transformed; its strongest frequency must be
// that of the chirp at its middle, within one bin. The picture is one character for each power.
#include <jex/jex.hpp>

#include <cmath>
#include <complex>
#include <cstdio>
#include <numbers>
#include <vector>

int main() {
  constexpr int rate = 8000, window = 256, hop = window / 2, bins = window / 2 + 1;
  constexpr double seconds = 2, f0 = 300, f1 = 3300, pi = std::numbers::pi;
  const int samples = int(rate * seconds), count = (samples - window) / hop + 1;

  std::vector<float> windows(size_t(count) * window);
  for (int w = 0; w < count; ++w)
    for (int j = 0; j < window; ++j) {
      const double t = double(w * hop + j) / rate;
      const double phase = f0 * t + (f1 - f0) * t * t / (2 * seconds);
      const double hann = 0.5 - 0.5 * std::cos(2 * pi * j / window);
      windows[size_t(w) * window + j] = float(hann * std::sin(2 * pi * phase));
    }

  std::vector<std::complex<float>> spectra(size_t(count) * bins);
  jex::fft(jex::Direction::forward, windows, spectra,
           {.lengths = {window}, .batch = count, .scale = 4.0 / window});

  const auto power = [&](int w, int k) { return std::norm(spectra[size_t(w) * bins + k]); };
  double worst = 0;
  for (int w = 0; w < count; ++w) {
    int best = 0;
    for (int k = 1; k < bins; ++k)
      if (power(w, k) > power(w, best)) best = k;
    const double middle = (w * hop + window / 2.0) / rate;
    const double expected = f0 + (f1 - f0) * middle / seconds;
    worst = std::max(worst, std::abs(best * double(rate) / window - expected));
  }

  for (int row = 15; row >= 0; --row) {
    std::printf("%5d Hz |", row * rate / 32);
    for (int w = 0; w < count; w += 2) {
      float most = 0;
      for (int k = 8 * row; k < 8 * row + 8; ++k) most = std::max(most, power(w, k));
      std::putchar(" .:#"[most > 0.3f ? 3 : most > 0.03f ? 2 : most > 0.003f ? 1 : 0]);
    }
    std::putchar('\n');
  }
  const double bin = double(rate) / window;
  std::printf("%d windows; the ridge is within %.1f Hz of the chirp, a bin is %.2f Hz\n", count,
              worst, bin);
  return worst <= bin ? 0 : 1;
}
