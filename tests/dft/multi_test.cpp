// Transforms of several dimensions: ranks, storages, placements, strides, many at once.
#include "dft/real_descriptor.h"

using namespace jex::test;

namespace {

// Lengths, the fastest first, and an index that counts through them.
struct Shape {
  std::vector<jex_int> n;

  size_t size() const {
    size_t all = 1;
    for (const jex_int m : n) all *= m;
    return all;
  }
  std::vector<jex_int> index(size_t i) const {
    std::vector<jex_int> at;
    for (const jex_int m : n) {
      at.push_back(jex_int(i % m));
      i /= m;
    }
    return at;
  }
};

// One dimension after the other, by the transform of one.
Spectrum reference(Spectrum x, const Shape& shape) {
  size_t step = 1;
  for (const jex_int n : shape.n) {
    Spectrum line(n);
    for (size_t first = 0; first < x.size(); ++first) {
      if (first / step % n) continue;
      for (jex_int j = 0; j < n; ++j) line[j] = x[first + j * step];
      line = transform(line);
      for (jex_int j = 0; j < n; ++j) x[first + j * step] = line[j];
    }
    step *= n;
  }
  return x;
}
// The indices of all dimensions negated.
Spectrum mirrored(const Spectrum& x, const Shape& shape) {
  Spectrum y(x.size());
  for (size_t i = 0; i < x.size(); ++i) {
    size_t to = 0, step = 1;
    const auto at = shape.index(i);
    for (size_t k = 0; k < at.size(); ++k) {
      to += (at[k] ? shape.n[k] - at[k] : 0) * step;
      step *= shape.n[k];
    }
    y[to] = x[i];
  }
  return y;
}

double allowed(const Shape& shape, double eps) {
  double sum = eps;
  for (const jex_int n : shape.n) sum += n > 1 ? allowed_error(n, eps) : 0;
  return sum;
}

// Strides of one side: dense, or with gaps.
std::vector<jex_int> strides(const Shape& shape, jex_int first, jex_int gap, jex_int row = 0) {
  std::vector<jex_int> all{first};
  for (size_t k = 0; k + 1 < shape.n.size(); ++k)
    all.push_back(k == 0 && row ? row : all[k] * shape.n[k] + gap);
  return all;
}
size_t place(const std::vector<jex_int>& stride, const std::vector<jex_int>& at) {
  size_t sum = 0;
  for (size_t k = 0; k < at.size(); ++k) sum += size_t(stride[k]) * at[k];
  return sum;
}

void set_strides(Descriptor& d, int word, const std::vector<jex_int>& stride) {
  for (size_t k = 0; k < stride.size(); ++k) d.pointer()[k].word[word] = stride[k];
}

template <class T>
class Multi : public testing::Test {
 protected:
  using R = Part<T>;
  static constexpr jex_int precision = is_double<T> ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE;

  static double distance(const std::vector<Wide>& ours, const std::vector<Wide>& expected) {
    long double d = 0, size = 0;
    for (size_t i = 0; i < ours.size(); ++i) {
      d += std::norm(ours[i] - expected[i]);
      size += std::norm(expected[i]);
    }
    return double(sqrtl(d / size));
  }

  static void check_complex(const Shape& shape, bool in_place, bool separate, bool forward,
                            jex_int first, jex_int gap, int count) {
    SCOPED_TRACE(testing::Message() << "complex " << testing::PrintToString(shape.n) << " in place "
                                    << in_place << " parts apart " << separate << " forward "
                                    << forward << " stride " << first << " gap " << gap);
    const auto in = strides(shape, first, gap), out = in_place ? in : strides(shape, 1, gap);
    const size_t size = shape.size(), span = place(in, shape.index(size - 1)) + 1,
                 span_out = place(out, shape.index(size - 1)) + 1;
    Descriptor d(precision, JEX_DFT_COMPLEX, shape.n);
    d.set_scale(0.5, 0.25);
    d[JEX_DFT_PLACEMENT] = in_place ? JEX_DFT_IN_PLACE : JEX_DFT_NOT_IN_PLACE;
    d[JEX_DFT_COMPLEX_STORAGE] = separate ? JEX_DFT_SEPARATE : JEX_DFT_INTERLEAVED;
    d[JEX_DFT_NUMBER_OF_TRANSFORMS] = count;
    d[JEX_DFT_INPUT_DISTANCE] = jex_int(span) + 1;
    d[JEX_DFT_OUTPUT_DISTANCE] = jex_int(span_out) + 2;
    d[JEX_DFT_INPUT_OFFSET] = 1;
    set_strides(d, JEX_DFT_INPUT_STRIDE, in);
    set_strides(d, JEX_DFT_OUTPUT_STRIDE, out);
    ASSERT_EQ(d.commit(), 0);
    const size_t unit = separate ? 1 : 2;
    Numbers<R> x(unit * (count * (span + 1) + 1)), xi(separate ? x.size() : 0),
        y(unit * count * (span_out + 2)), yi(separate ? y.size() : 0);
    std::vector<Spectrum> operand;
    for (int t = 0; t < count; ++t) {
      operand.push_back(random_values(size, t + jex_int(size)));
      for (size_t i = 0; i < size; ++i) {
        const size_t at = 1 + t * (span + 1) + place(in, shape.index(i));
        x[unit * at] = R(operand[t][i].real());
        (separate ? xi[at] : x[2 * at + 1]) = R(operand[t][i].imag());
      }
    }
    ASSERT_EQ(
        in_place ? separate ? d.compute(forward, x.data(), xi.data()) : d.compute(forward, x.data())
        : separate ? d.compute(forward, x.data(), xi.data(), y.data(), yi.data())
                   : d.compute(forward, x.data(), y.data()),
        0);
    Numbers<R>&a = in_place ? x : y, &b = in_place ? xi : yi;
    for (int t = 0; t < count; ++t) {
      Spectrum expected = reference(operand[t], shape), ours(size);
      if (!forward) expected = mirrored(expected, shape);
      for (Wide& v : expected) v *= forward ? 0.5L : 0.25L;
      for (size_t i = 0; i < size; ++i) {
        const size_t at =
            (in_place ? 1 + t * (span + 1) : t * (span_out + 2)) + place(out, shape.index(i));
        ours[i] = separate ? Wide(a[at], b[at]) : Wide(a[2 * at], a[2 * at + 1]);
      }
      ASSERT_LE(distance(ours, expected), allowed(shape, epsilon<T>));
    }
  }

  // The spectrum of complex elements.
  static void check_real(const Shape& shape, bool in_place, bool forward, int count,
                         jex_int first) {
    SCOPED_TRACE(testing::Message() << "real " << testing::PrintToString(shape.n) << " in place "
                                    << in_place << " forward " << forward);
    Shape half = shape;
    half.n[0] = shape.n[0] / 2 + 1;
    // In place the strides count numbers, and a row has room for both.
    const auto numbers = strides(shape, first, 1, in_place ? first * 2 * half.n[0] : 0);
    const auto elements = in_place ? numbers : strides(half, first, 1);
    const auto at_element = [&](size_t i) {
      auto at = half.index(i);
      const size_t along = size_t(2 * first) * at[0];
      at[0] = 0;
      return along + (in_place ? 1 : 2) * place(elements, at);
    };
    const size_t room = at_element(half.size() - 1) + 2 + 2,
                 room_numbers = in_place ? room : place(numbers, shape.index(shape.size() - 1)) + 3;
    Descriptor d(precision, JEX_DFT_REAL, shape.n);
    d.set_scale(0.5, 0.25);
    d[JEX_DFT_PLACEMENT] = in_place ? JEX_DFT_IN_PLACE : JEX_DFT_NOT_IN_PLACE;
    d[JEX_DFT_CONJUGATE_EVEN_STORAGE] = JEX_DFT_INTERLEAVED;
    d[JEX_DFT_NUMBER_OF_TRANSFORMS] = count;
    const jex_int pitch = jex_int(in_place ? room : room / 2 + room % 2);
    d[JEX_DFT_INPUT_DISTANCE] = forward ? jex_int(room_numbers) : pitch;
    d[JEX_DFT_OUTPUT_DISTANCE] = forward ? pitch : jex_int(room_numbers);
    set_strides(d, JEX_DFT_INPUT_STRIDE, forward || in_place ? numbers : elements);
    set_strides(d, JEX_DFT_OUTPUT_STRIDE, forward ? elements : numbers);
    ASSERT_EQ(d.commit(), 0);
    const size_t step = (in_place ? 1 : 2) * size_t(pitch);
    Numbers<R> x(count * room_numbers), y(count * step);
    Numbers<R>&real_side = x, &spectrum = in_place ? x : y;
    std::vector<std::vector<Wide>> values;
    for (int t = 0; t < count; ++t) {
      Spectrum z = random_values(shape.size(), t + 3);
      for (Wide& v : z) v = v.real();
      Spectrum w = reference(z, shape);
      values.push_back(z);
      if (forward)
        for (size_t i = 0; i < z.size(); ++i)
          x[t * room_numbers + place(numbers, shape.index(i))] = R(z[i].real());
      else
        for (size_t i = 0; i < half.size(); ++i) {
          const auto at = half.index(i);
          const Wide v = w[place(strides(shape, 1, 0), at)];
          spectrum[t * step + at_element(i)] = R(v.real());
          spectrum[t * step + at_element(i) + 1] = R(v.imag());
        }
    }
    const std::vector<R> before(y.data(), y.data() + y.size());
    ASSERT_EQ(in_place  ? d.compute(forward, x.data())
              : forward ? d.compute(true, x.data(), y.data())
                        : d.compute(false, y.data(), x.data()),
              0);
    for (int t = 0; t < count; ++t) {
      std::vector<Wide> ours, expected;
      const Spectrum w = reference(values[t], shape);
      if (forward)
        for (size_t i = 0; i < half.size(); ++i) {
          const R* const p = &spectrum[t * step + at_element(i)];
          ours.push_back({p[0], p[1]});
          expected.push_back(w[place(strides(shape, 1, 0), half.index(i))] * 0.5L);
        }
      else
        for (size_t i = 0; i < shape.size(); ++i) {
          ours.push_back(real_side[t * room_numbers + place(numbers, shape.index(i))]);
          expected.push_back(values[t][i] * (0.25L * shape.size()));
        }
      // A rounded spectrum carries its own error backward.
      ASSERT_LE(distance(ours, expected), allowed(shape, epsilon<T>));
    }
    ASSERT_TRUE(in_place || forward || same(before.data(), y.data(), y.size())) << "operand";
  }

  // Packed spectra of two dimensions, place by place.
  static void check_packed(jex_int n, jex_int m, Packed format, bool in_place, bool forward,
                           jex_int first) {
    SCOPED_TRACE(testing::Message()
                 << "packed " << n << " x " << m << " format " << int(format) << " in place "
                 << in_place << " forward " << forward << " stride " << first);
    const Shape shape{{n, m}};
    const auto row = places_of(format, n), column = places_of(format, m);
    const size_t width = first * (row.size() + 1), height = column.size();
    Spectrum z = random_values(n * m, n + m);
    for (Wide& v : z) v = v.real();
    const Spectrum w = reference(z, shape);
    Descriptor d(precision, JEX_DFT_REAL, shape.n);
    set_packed(d, format);
    d[JEX_DFT_PLACEMENT] = in_place ? JEX_DFT_IN_PLACE : JEX_DFT_NOT_IN_PLACE;
    const jex_int real_width = in_place ? jex_int(width) : first * n + 1;
    set_strides(d, JEX_DFT_INPUT_STRIDE, {first, forward ? real_width : jex_int(width)});
    set_strides(d, JEX_DFT_OUTPUT_STRIDE, {first, forward ? jex_int(width) : real_width});
    ASSERT_EQ(d.commit(), 0);
    Numbers<R> numbers(in_place ? width * height : real_width * m), apart(width * height);
    Numbers<R>& spectrum = in_place ? numbers : apart;
    // Value at (row place i, column place j), or not one of the spectrum.
    const auto value = [&](size_t i, size_t j, long double& v) {
      const int k = row[i];
      if (k < 0) return false;
      if (k == 0 || (k == n && n % 2 == 0)) {
        if (column[j] < 0) return false;
        const Wide x = w[k / 2 + size_t(column[j] / 2) * n];
        v = column[j] % 2 ? x.imag() : x.real();
        return true;
      }
      if (j >= size_t(m)) return false;
      const Wide x = w[k / 2 + j * n];
      v = k % 2 ? x.imag() : x.real();
      return true;
    };
    std::vector<Wide> ours, expected;
    if (forward)
      for (size_t i = 0; i < z.size(); ++i)
        numbers[i % n * first + i / n * real_width] = R(z[i].real());
    else
      for (size_t i = 0; i < row.size(); ++i)
        for (size_t j = 0; j < height; ++j) {
          long double v = 0;
          value(i, j, v);
          spectrum[i * first + j * width] = R(v);
        }
    ASSERT_EQ(in_place  ? d.compute(forward, numbers.data())
              : forward ? d.compute(true, numbers.data(), apart.data())
                        : d.compute(false, apart.data(), numbers.data()),
              0);
    if (forward)
      for (size_t i = 0; i < row.size(); ++i)
        for (size_t j = 0; j < height; ++j)
          if (long double v; value(i, j, v)) {
            ours.push_back(spectrum[i * first + j * width]);
            expected.push_back(v);
          }
    if (!forward)
      for (size_t i = 0; i < z.size(); ++i) {
        ours.push_back(numbers[i % n * first + i / n * real_width]);
        expected.push_back(z[i] * (1.0L * n * m));
      }
    ASSERT_LE(distance(ours, expected), allowed(shape, epsilon<T>));
  }
};
using Both = testing::Types<jex_dcomplex, jex_scomplex>;
TYPED_TEST_SUITE(Multi, Both);

TYPED_TEST(Multi, ComplexOfTwoToSeven) {
  const Shape shapes[] = {{{1, 1}},
                          {{5, 1}},
                          {{1, 6}},
                          {{8, 8}},
                          {{12, 17}},
                          {{100, 21}},
                          {{3, 302}},
                          {{302, 3}},
                          {{64, 300}},
                          {{33, 32}},
                          {{40, 256}},
                          {{64, 512}},
                          {{4, 6, 10}},
                          {{17, 2, 33}},
                          {{5, 32, 32}},
                          {{3, 4, 5, 2}},
                          {{2, 3, 2, 3, 2}},
                          {{2, 1, 3, 2, 2, 5}},
                          {{2, 3, 1, 2, 3, 2, 4}}};
  for (const Shape& shape : shapes)
    for (const bool in_place : {false, true})
      for (const bool separate : {false, true})
        for (const bool forward : {false, true})
          for (const auto& [first, gap] : {std::pair(1, 0), std::pair(1, 3), std::pair(2, 1)})
            if (!this->HasFatalFailure())
              this->check_complex(shape, in_place, separate, forward, first, gap, 1 + gap / 3);
}

TYPED_TEST(Multi, LinesBeyondTheBundles) {
  for (const Shape& shape :
       {Shape{{3, 8192}}, Shape{{2, 9000}}, Shape{{9000, 2}}, Shape{{3, 16384}}})
    for (const bool forward : {false, true})
      this->check_complex(shape, true, false, forward, 1, 0, 1);
}

// Large results go past the caches, unless they are where the operands were.
TYPED_TEST(Multi, LargeResultsAreThoseInPlace) {
  using R = Part<TypeParam>;
  constexpr jex_int n = 1022, rows = (17 << 20) / sizeof(TypeParam) / n;
  for (const jex_int domain : {JEX_DFT_COMPLEX, JEX_DFT_REAL}) {
    const bool is_real = domain == JEX_DFT_REAL;
    const jex_int length = is_real ? 2 * n - 2 : n;
    std::vector<R> x(size_t(2) * n * rows), y(x.size());
    for (size_t i = 0; i < x.size(); ++i) x[i] = R((i * i + 3 * i) % 1009);
    for (const bool in_place : {false, true}) {
      Descriptor d(this->precision, domain, {length, rows});
      d[JEX_DFT_PLACEMENT] = in_place ? JEX_DFT_IN_PLACE : JEX_DFT_NOT_IN_PLACE;
      d[JEX_DFT_CONJUGATE_EVEN_STORAGE] = JEX_DFT_INTERLEAVED;
      set_strides(d, JEX_DFT_INPUT_STRIDE, {1, is_real ? 2 * n : n});
      set_strides(d, JEX_DFT_OUTPUT_STRIDE, {1, n});
      ASSERT_EQ(d.commit(), 0);
      ASSERT_EQ(in_place ? d.compute(true, x.data()) : d.compute(true, x.data(), y.data()), 0);
    }
    EXPECT_TRUE(same(x.data(), y.data(), x.size())) << "domain " << domain;
  }
}

TYPED_TEST(Multi, RealWithComplexElements) {
  const Shape shapes[] = {{{1, 1}},   {{2, 5}},    {{5, 2}},    {{16, 16}},   {{45, 12}},
                          {{20, 31}}, {{302, 4}},  {{7, 302}},  {{256, 64}},  {{62, 32}},
                          {{1, 9}},   {{4, 5, 6}}, {{9, 4, 3}}, {{32, 17, 2}}};
  for (const Shape& shape : shapes)
    for (const bool in_place : {false, true})
      for (const bool forward : {false, true})
        for (const jex_int first : {1, 2})
          if (!this->HasFatalFailure())
            this->check_real(shape, in_place, forward, first == 2 ? 1 : 2, first);
}

TYPED_TEST(Multi, PackedPlanes) {
  const std::pair<jex_int, jex_int> shapes[] = {{1, 1}, {1, 6},  {6, 1},  {2, 2},   {3, 4},
                                                {4, 3}, {16, 8}, {15, 9}, {64, 45}, {18, 302}};
  for (const auto& [n, m] : shapes)
    for (const Packed format : {Packed::ccs, Packed::pack, Packed::perm})
      for (const bool in_place : {false, true})
        for (const bool forward : {false, true})
          for (const jex_int first : {1, 3})
            if (!this->HasFatalFailure())
              this->check_packed(n, m, format, in_place, forward, first);
}

TEST(MultiEntries, PackedFormatsEndAtTwoDimensions) {
  Descriptor d(JEX_DFT_DOUBLE, JEX_DFT_REAL, {4, 4, 4});
  ASSERT_EQ(d.commit(), 0);
  std::vector<double> x(256);
  EXPECT_EQ(d.compute(true, x.data()), 7);
}

}  // namespace
