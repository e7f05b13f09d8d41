// Tables of a transform.
#include "dft/engine/roots.h"
#include "dft/engine/transform.h"

namespace jex::dft {

namespace {

// Passes over the whole length are faster than two levels as long as the first cache holds it, and
// far beyond that where small factors make it: but with many factors 2 the elements of a butterfly
// meet in one place of the caches, of which 4096 just gets along without.
constexpr int32_t shortest_shared = 65536;  // two levels are what threads share
template <class T>
bool has_one_level(int32_t n) {
  if (n * sizeof(T) <= 49152 || n == 4096) return true;
  return n < shortest_shared && n % 2 == 0 && n % 1024 != 0 &&
         largest_prime(n) <= largest_kernel_prime;
}
// A power of two in one level: butterflies of 16 elements would meet so.
template <class T>
constexpr int largest_radix_for(int32_t n, Use use) {
  return use == Use::alone && n * sizeof(T) == 65536 ? 8 : largest_radix;
}

template <class T>
constexpr int lanes = Lanes<Real<T>>::count;

// The root of an element of a register pair.
template <class T>
void put_root(Real<T>* pair, int element, Root w) {
  for (int part = 0; part < 2; ++part) {
    pair[2 * element + part] = Real<T>(w.c);
    pair[lanes<T> + 2 * element + part] = Real<T>(part ? -w.s : w.s);
  }
}

template <class T>
const Real<T>* make_roots(const Stage<T>& stage, bool is_first, const Roots& roots,
                          Blocks& blocks) {
  constexpr int elements = Lanes<T>::count;
  const int width = is_first ? elements : 1;
  const int groups = (stage.rest + width - 1) / width;
  auto* table = blocks.take<Real<T>>(uint32_t(groups) * uint32_t(stage.radix - 1) * 2 * lanes<T>);
  if (!table) return nullptr;
  Real<T>* pair = table;
  for (int group = 0; group < groups; ++group)
    for (int k = 1; k < stage.radix; ++k, pair += 2 * lanes<T>)
      for (int element = 0; element < elements; ++element) {
        int p = group * width + (is_first ? element : 0);
        if (p >= stage.rest) p = 0;
        put_root<T>(pair, element, roots(uint32_t(p) * k * stage.before));
      }
  return table;
}

template <class T>
bool make_odd_table(OddTable& odd, int radix, Blocks& blocks) {
  const int h = radix / 2;
  constexpr int root_size = 2 * lanes<T>;
  auto* offsets = blocks.take<uint16_t>(h * h);
  auto* roots = blocks.take<Real<T>>(radix * root_size);
  if (!offsets || !roots) return false;
  for (int k = 1; k <= h; ++k)
    for (int j = 1; j <= h; ++j) *offsets++ = uint16_t(j * k % radix * root_size * sizeof(Real<T>));
  for (int index = 0; index < radix; ++index) {
    const Root w = constant_root(index, radix);
    for (int i = 0; i < lanes<T>; ++i) {
      roots[index * root_size + i] = Real<T>(w.c);
      roots[index * root_size + lanes<T> + i] = Real<T>(w.s);
    }
  }
  odd = {offsets - h * h, roots};
  return true;
}

template <class T>
T element_of(Root w) {
  return {Real<T>(w.c), Real<T>(-w.s)};
}

template <class T>
bool make_twist_by_rows(Transform<T>& transform, const Roots& roots, Blocks& blocks) {
  const uint32_t n1 = transform.columns.length, n2 = transform.rows.length;
  T* twist = blocks.take<T>(n1 * n2);
  if (!twist) return false;
  transform.twist = twist;
  for (uint32_t k = 0; k < n1; ++k)
    for (uint32_t j = 0, index = 0; j < n2; ++j, index += k) *twist++ = element_of<T>(roots(index));
  return true;
}

// In each bundle of columns, for each q, for each register of columns: results q + s k in turn.
template <class T>
bool make_twist_by_passes(Transform<T>& transform, const Roots& roots, Blocks& blocks) {
  constexpr int lane_count = Lanes<T>::count;
  const int n1 = transform.columns.length, n2 = transform.rows.length;
  const Stage<T>& last = transform.columns.stages[transform.columns.count - 1];
  T* twist = blocks.take<T>(uint32_t(n1) * rounded_width<T>(n2));
  if (!twist) return false;
  transform.twist = twist;
  const int bundle = transform.bundle;
  for (int first = 0; first < n2; first += bundle) {
    const int end = first + bundle < n2 ? first + bundle : n2;
    for (int q = 0; q < last.before; ++q)
      for (int c = first; c < end; c += lane_count)
        for (int k = 0; k < last.radix; ++k, twist += lane_count)
          for (int e = 0; e < lane_count && c + e < end; ++e)
            twist[e] = element_of<T>(roots(uint32_t(q + last.before * k) * (c + e)));
  }
  return true;
}

}  // namespace

template <class T>
bool make_passes(Passes<T>& passes, int32_t n, Use use, Blocks& blocks) {
  const Radices radices = choose_radices(n, use, largest_radix_for<T>(n, use));
  passes.length = n;
  passes.count = radices.count;
  Roots roots;
  if (radices.count > 1 && !roots.make(n)) return false;
  int32_t before = 1;
  for (int i = 0; i < radices.count; ++i) {
    Stage<T>& stage = passes.stages[i];
    stage.radix = radices.radix[i];
    stage.before = before;
    before *= stage.radix;
    stage.rest = n / before;
    const bool is_first = use == Use::alone && i == 0 && stage.rest > 1 && has_kernel(stage.radix);
    if (is_first) passes.has_first = true;
    if (stage.rest > 1) {
      stage.roots = make_roots<T>(stage, is_first, roots, blocks);
      if (!stage.roots) return false;
    }
    if (has_kernel(stage.radix)) {
      for (const Direction d : {Direction::forward, Direction::backward})
        stage.kernels[int(d)] = pass_kinds<T>(stage.radix, d);
      continue;
    }
    for (int j = 0; j < i; ++j)
      if (passes.stages[j].radix == stage.radix) stage.odd = passes.stages[j].odd;
    if (!stage.odd.roots && !make_odd_table<T>(stage.odd, stage.radix, blocks)) return false;
  }
  return true;
}

template <class T>
bool make_levels(Transform<T>& transform, int32_t n1, int32_t n2, TwistOrder order,
                 Blocks& blocks) {
  transform.length = n1 * n2;
  transform.has_rows = true;
  transform.bundle = bundle_for<T>(n1 * n2, n1 > n2 ? n1 : n2);
  Roots roots;
  if (!make_passes(transform.columns, n1, Use::columns, blocks) || !roots.make(n1 * n2))
    return false;
  if (order == TwistOrder::rows)
    return make_passes(transform.rows, n2, Use::rows, blocks) &&
           make_twist_by_rows(transform, roots, blocks);
  return make_passes(transform.rows, n2, Use::rows, blocks) &&
         make_twist_by_passes(transform, roots, blocks);
}

template <class T>
bool make_transform(Transform<T>& transform, int32_t n, Blocks& blocks) {
  const int32_t columns = has_one_level<T>(n) ? 1 : split_length(n);
  if (columns >= narrow_bundle<T>)
    return make_levels(transform, columns, n / columns, TwistOrder::passes, blocks);
  transform.length = n;
  return make_passes(transform.columns, n, Use::alone, blocks);
}

template bool make_passes(Passes<jex_dcomplex>&, int32_t, Use, Blocks&);
template bool make_passes(Passes<jex_scomplex>&, int32_t, Use, Blocks&);
template bool make_levels(Transform<jex_dcomplex>&, int32_t, int32_t, TwistOrder, Blocks&);
template bool make_levels(Transform<jex_scomplex>&, int32_t, int32_t, TwistOrder, Blocks&);
template bool make_transform(Transform<jex_dcomplex>&, int32_t, Blocks&);
template bool make_transform(Transform<jex_scomplex>&, int32_t, Blocks&);

}  // namespace jex::dft
