// A two-dimensional filter by transforms: a picture is blurred, and the blur is undone.
//
// Circular convolution with a kernel is a product of spectra, so that a blur costs two transforms
// whatever its width, and the quotient takes it back as far as the noise of rounding allows. The
// blurred picture is compared with the sum over the kernel at some points, the restored one with
// the first.
#include <jex/jex.hpp>

#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

namespace {

constexpr int height = 240, width = 320, half = width / 2 + 1, reach = 12;
constexpr double variance = 2.0;

using Picture = std::vector<double>;
using Spectrum = std::vector<std::complex<double>>;

// Rings, and a frame with sharp corners.
Picture draw() {
  Picture p(height * width);
  for (int i = 0; i < height; ++i)
    for (int j = 0; j < width; ++j) {
      const double r = std::hypot(i - height / 2.0, j - width / 2.0);
      const bool frame = std::abs(i - height / 2) > 100 || std::abs(j - width / 2) > 140;
      p[i * width + j] = frame ? 1 : 0.5 + 0.5 * std::cos(r * r / 400);
    }
  return p;
}

double weight(int i, int j) {
  if (std::abs(i) > reach || std::abs(j) > reach) return 0;
  return std::exp(-(i * i + j * j) / (2 * variance));
}

Spectrum spectrum_of(const Picture& p) {
  Spectrum s(height * half);
  jex::fft(jex::Direction::forward, p, s, {.lengths = {height, width}});
  return s;
}
Picture picture_of(const Spectrum& s) {
  Picture p(height * width);
  jex::fft(jex::Direction::backward, s, p,
           {.lengths = {height, width}, .scale = 1.0 / (height * width)});
  return p;
}

double difference(const Picture& a, const Picture& b) {
  double most = 0;
  for (size_t i = 0; i < a.size(); ++i) most = std::max(most, std::abs(a[i] - b[i]));
  return most;
}

bool check(const char* what, double error, double bound) {
  const bool good = error <= bound;  // NaN is not
  std::printf("%-44s %9.2e  bound %9.2e  %s\n", what, error, bound, good ? "good" : "BAD");
  return good;
}

}  // namespace

int main() {
  const Picture picture = draw();
  Picture kernel(height * width);
  double sum = 0;
  for (int i = -reach; i <= reach; ++i)
    for (int j = -reach; j <= reach; ++j) {
      kernel[(i + height) % height * width + (j + width) % width] = weight(i, j);
      sum += weight(i, j);
    }
  for (double& k : kernel) k /= sum;

  const Spectrum filter = spectrum_of(kernel);
  Spectrum spectrum = spectrum_of(picture);
  double least = 1;
  for (size_t k = 0; k < spectrum.size(); ++k) {
    spectrum[k] *= filter[k];
    least = std::min(least, std::abs(filter[k]));
  }
  const Picture blurred = picture_of(spectrum);
  spectrum = spectrum_of(blurred);
  for (size_t k = 0; k < spectrum.size(); ++k) spectrum[k] /= filter[k];
  const Picture restored = picture_of(spectrum);

  double error = 0;
  for (int at = 0; at < height * width; at += 997) {
    double direct = 0;
    for (int i = -reach; i <= reach; ++i)
      for (int j = -reach; j <= reach; ++j) {
        const int row = (at / width - i + height) % height,
                  column = (at % width - j + width) % width;
        direct += weight(i, j) / sum * picture[row * width + column];
      }
    error = std::max(error, std::abs(blurred[at] - direct));
  }
  const double eps = std::numeric_limits<double>::epsilon(), size = height * width;
  std::printf(
      "%d x %d points; the blur changes them by up to %.2f and weakens waves down to %.1e\n",
      height, width, difference(picture, blurred), least);
  bool good = check("blur, against the sum over the kernel", error, 8 * eps * std::log2(size));
  good &= check("blur undone, against the picture", difference(restored, picture),
                8 * eps * std::log2(size) / least);
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
