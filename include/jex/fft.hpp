/**
 * @file fft.hpp
 * @brief Fourier transforms of spans: any length, several dimensions, many at once, threads.
 *
 * @code
 * std::vector<double> x(1000);
 * std::vector<std::complex<double>> y(501);
 * jex::fft(jex::Direction::forward, x, y);
 *
 * jex::FftSettings rows{.lengths = {256}, .batch = 100, .scale = 1.0 / 256};
 * jex::FftPlan<std::complex<float>, std::complex<float>> plan(jex::Direction::backward, rows);
 * plan(z, w);  // as often as you like
 * @endcode
 *
 * The types of the elements tell the kind of the transform:
 *
 * | In      | Out     | transform                                                          |
 * |---------|---------|--------------------------------------------------------------------|
 * | complex | complex | complex                                                            |
 * | real    | complex | of numbers, forward, to half the spectrum                          |
 * | complex | real    | the way back                                                       |
 * | real    | real    | of numbers, the spectrum packed by FftSettings::format; at most 2-D |
 *
 * Half a spectrum has n/2 + 1 elements along the last dimension.
 *
 * Wrong shapes, settings that do not fit together and spans that are too short throw
 * std::invalid_argument, before anything is written; no memory throws std::bad_alloc, a missing
 * kernel module std::runtime_error. Spans of one type may be the same one, with one layout for
 * both sides; else they must not overlap. A plan may be used by one thread at a time.
 */
#ifndef JEX_FFT_HPP
#define JEX_FFT_HPP

#include <jex/dfti.h>
#include <jex/views.hpp>

#include <algorithm>
#include <cstdint>
#include <new>
#include <span>
#include <utility>
#include <vector>

namespace jex {

/** @brief The sign of the exponent: forward -, backward +. Neither scales by itself. */
enum class Direction { forward, backward };

/** @brief Layouts of a packed spectrum of numbers; jex/dft.h draws them. */
enum class FftFormat { ccs = JEX_DFT_CCS, pack = JEX_DFT_PACK, perm = JEX_DFT_PERM };

/** @brief Where the elements of one side are, counted in elements of its span. */
struct FftLayout {
  std::vector<jex_int> strides{}; /**< one for each length; empty: row-major, without gaps */
  jex_int distance = 0;           /**< from one transform to the next; 0: without gaps */
  jex_int offset = 0;             /**< of the first element */
};

struct FftSettings {
  std::vector<jex_int> lengths{}; /**< one to seven, the last varies fastest; three for numbers */
  jex_int batch = 1;              /**< number of transforms */
  FftLayout in{}, out{};
  double scale = 1;                   /**< factor of the results */
  FftFormat format = FftFormat::perm; /**< of numbers to numbers */
  jex_int threads = 0;                /**< most threads of one call; 0: all of the core's */
};

template <class In, class Out>
class FftPlan {
 public:
  static constexpr bool is_complex = detail::is_complex<In> && detail::is_complex<Out>;
  static constexpr bool is_packed = !detail::is_complex<In> && !detail::is_complex<Out>;

  FftPlan(Direction direction, FftSettings settings)
      : direction_(direction), settings_(std::move(settings)) {
    const auto& n = settings_.lengths;
    require(!n.empty() && n.size() <= (is_complex ? 7 : is_packed ? 2 : 3), "number of lengths");
    require(std::all_of(n.begin(), n.end(), [](jex_int m) { return m > 0; }), "a length below 1");
    require(settings_.batch > 0 && settings_.threads >= 0, "batch or threads");
    require(is_complex || is_packed || (direction == Direction::forward) == detail::is_complex<Out>,
            "numbers are the operand forward and the result backward");
    in_ = side(settings_.in, detail::is_complex<In>, is_forward());
    out_ = side(settings_.out, detail::is_complex<Out>, !is_forward());
  }
  FftPlan(FftPlan&& other) noexcept
      : direction_(other.direction_),
        settings_(std::move(other.settings_)),
        in_(std::move(other.in_)),
        out_(std::move(other.out_)),
        apart_(std::exchange(other.apart_, nullptr)),
        in_place_(std::exchange(other.in_place_, nullptr)) {}
  FftPlan& operator=(FftPlan&&) = delete;
  ~FftPlan() {
    if (apart_) jex_dft_dfti_free_descriptor_external(&apart_);
    if (in_place_) jex_dft_dfti_free_descriptor_external(&in_place_);
  }

  /** @brief out := scale times the transforms of in. */
  void operator()(std::span<const In> in, std::span<Out> out) {
    require(in.size() >= in_.size && out.size() >= out_.size, "a span is too short");
    const bool same = static_cast<const void*>(in.data()) == static_cast<const void*>(out.data());
    if (!same) {
      if (!apart_) apart_ = make(JEX_DFT_NOT_IN_PLACE);
      return check(is_forward() ? jex_dft_dfti_compute_forward(apart_, address(in), address(out))
                                : jex_dft_dfti_compute_backward(apart_, address(in), address(out)));
    }
    require(is_complex || is_packed, "numbers and complex elements in one place");
    require(
        in_.strides == out_.strides && in_.distance == out_.distance && in_.offset == out_.offset,
        "one place, two layouts");
    if (!in_place_) in_place_ = make(JEX_DFT_IN_PLACE);
    check(is_forward() ? jex_dft_dfti_compute_forward(in_place_, address(out))
                       : jex_dft_dfti_compute_backward(in_place_, address(out)));
  }

  /** @brief Elements that a span must have at least. */
  size_t operands() const { return in_.size; }
  size_t results() const { return out_.size; }

 private:
  struct Side {
    std::vector<jex_int> strides;
    jex_int distance, offset;
    size_t size;
  };

  static void require(bool fits, const char* what) { detail::require(fits, "jex::fft", what); }
  static void check(jex_int status) {
    if (status == JEX_DFT_NO_MEMORY) throw std::bad_alloc();
    if (status != JEX_DFT_SUCCESS)
      throw std::runtime_error(std::string("jex::fft: ") +
                               jex_dft_dfti_error_message_external(status));
  }
  template <class T>
  static void* address(std::span<T> span) {
    return const_cast<std::remove_const_t<T>*>(span.data());
  }
  bool is_forward() const { return direction_ == Direction::forward; }

  // Elements along dimension i of a side of numbers, of their packed spectrum, of a half spectrum.
  jex_int extent(size_t i, bool has_complex, bool has_numbers) const {
    const jex_int n = settings_.lengths[i];
    const bool is_last = i + 1 == settings_.lengths.size();
    if (is_complex || (has_numbers && !has_complex)) return n;
    if (has_complex) return is_last ? n / 2 + 1 : n;
    return settings_.format == FftFormat::ccs ? n + 2 - n % 2 : n;
  }

  Side side(const FftLayout& layout, bool has_complex, bool has_numbers) const {
    const size_t rank = settings_.lengths.size();
    require(layout.strides.empty() || layout.strides.size() == rank, "number of strides");
    require(layout.distance >= 0 && layout.offset >= 0, "a distance or an offset below 0");
    Side s{layout.strides, layout.distance, layout.offset, 0};
    int64_t step = 1, last = 0;
    s.strides.resize(rank);
    for (size_t i = rank; i-- > 0;) {
      if (layout.strides.empty()) s.strides[i] = jex_int(step);
      require(s.strides[i] > 0, "a stride below 1");
      const jex_int n = extent(i, has_complex, has_numbers);
      last += int64_t(n - 1) * s.strides[i];
      step *= n;
      require(last < INT32_MAX && step <= INT32_MAX, "too many elements");
    }
    if (s.distance == 0) s.distance = jex_int(layout.strides.empty() ? step : last + 1);
    last += s.offset + int64_t(settings_.batch - 1) * s.distance;
    require(last < INT32_MAX, "too many elements");
    s.size = size_t(last) + 1;
    return s;
  }

  jex_dft_dfti_handle make(jex_int placement) const {
    constexpr bool is_double = sizeof(detail::CElement<In>) / (1 + detail::is_complex<In>) == 8;
    jex_dft_dfti_handle h = nullptr;
    check(jex_dft_dfti_create_descriptor_d_md(&h, is_double ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE,
                                              is_complex ? JEX_DFT_COMPLEX : JEX_DFT_REAL,
                                              jex_int(settings_.lengths.size()),
                                              settings_.lengths.data()));
    const auto set = [h](jex_int parameter, jex_int value) {
      return jex_dft_dfti_set_value_intval(h, parameter, value);
    };
    const auto set_strides = [h](jex_int parameter, const Side& s) {
      std::vector<jex_int> values{s.offset};
      values.insert(values.end(), s.strides.begin(), s.strides.end());
      return jex_dft_dfti_set_value_intarray(h, parameter, values.data());
    };
    jex_int status = 0;
    for (const jex_int answer :
         {set(JEX_DFTI_PLACEMENT, placement), set(JEX_DFTI_NUMBER_OF_TRANSFORMS, settings_.batch),
          set(JEX_DFTI_INPUT_DISTANCE, in_.distance), set(JEX_DFTI_OUTPUT_DISTANCE, out_.distance),
          set(JEX_DFTI_CONJUGATE_EVEN_STORAGE,
              is_packed ? JEX_DFT_REAL_ELEMENTS : JEX_DFT_INTERLEAVED),
          set(JEX_DFTI_PACKED_FORMAT, jex_int(settings_.format)),
          set_strides(JEX_DFTI_INPUT_STRIDES, in_), set_strides(JEX_DFTI_OUTPUT_STRIDES, out_),
          jex_dft_dfti_set_value_dblval(
              h, is_forward() ? JEX_DFTI_FORWARD_SCALE : JEX_DFTI_BACKWARD_SCALE, settings_.scale),
          settings_.threads ? set(JEX_DFTI_THREAD_LIMIT, settings_.threads) : 0})
      if (status == 0) status = answer;
    if (status == 0) status = jex_dft_dfti_commit_descriptor_external(h);
    if (status != 0) jex_dft_dfti_free_descriptor_external(&h);
    check(status);
    return h;
  }

  Direction direction_;
  FftSettings settings_;
  Side in_, out_;
  jex_dft_dfti_handle apart_ = nullptr, in_place_ = nullptr;
};

/**
 * @brief One transform, or the batch of the settings. Without lengths the spans are one dimension:
 *        of complex elements the shorter one, of numbers theirs.
 */
template <class In, class Out>
void fft(Direction direction, std::span<const In> in, std::span<Out> out,
         FftSettings settings = {}) {
  if (settings.lengths.empty()) {
    const bool numbers_in = !detail::is_complex<In>, numbers_out = !detail::is_complex<Out>;
    const size_t n = numbers_in && direction == Direction::forward ? in.size()
                     : numbers_out && direction == Direction::backward
                         ? out.size()
                         : std::min(in.size(), out.size());
    settings.lengths = {jex_int(n)};
  }
  FftPlan<In, Out>(direction, std::move(settings))(in, out);
}

/** @brief The same of containers: fft(direction, x, y). */
template <class X, class Y>
requires requires(const X& x, Y& y) {
  std::span(x);
  std::span(y);
}
void fft(Direction direction, const X& x, Y&& y, FftSettings settings = {}) {
  const std::span in(x);
  const std::span out(y);
  using In = typename decltype(in)::value_type;
  using Out = typename decltype(out)::value_type;
  fft<In, Out>(direction, std::span<const In>(in), std::span<Out>(out), std::move(settings));
}

}  // namespace jex

#endif
