// Peer library: the sparse cases as plain loops, with the benchmark's flags.
#include <complex>

#include "sparse_call.h"

namespace {

using jex::bench::SparseCall;

template <class T>
struct Call {
  const int m, n, ldx, ldy;
  const T alpha, *const a;
  const int *const columns, *const rows;
  const T* const x;
  T* const y;
  const int* const entry_rows;
  const T* const diagonals;
  const int* const distances;
  const int diagonal_count;

  explicit Call(const SparseCall& c)
      : m(c.m),
        n(c.n),
        ldx(c.ldx),
        ldy(c.ldy),
        alpha(*static_cast<const T*>(c.alpha)),
        a(static_cast<const T*>(c.values)),
        columns(c.columns),
        rows(c.rows),
        x(static_cast<const T*>(c.x)),
        y(static_cast<T*>(c.y)),
        entry_rows(c.entry_rows),
        diagonals(static_cast<const T*>(c.diagonals)),
        distances(c.distances),
        diagonal_count(c.diagonal_count) {}
};

template <class T>
void product(const Call<T>& c) {
  for (int i = 0; i < c.m; ++i) {
    T sum = 0;
    for (int k = c.rows[i]; k < c.rows[i + 1]; ++k) sum += c.a[k] * c.x[c.columns[k]];
    c.y[i] += c.alpha * sum;
  }
}

template <class T>
void symmetric(const Call<T>& c) {
  for (int i = 0; i < c.m; ++i) {
    const T t = c.alpha * c.x[i];
    T sum = 0;
    for (int k = c.rows[i]; k < c.rows[i + 1]; ++k) {
      const int j = c.columns[k];
      sum += c.a[k] * c.x[j];
      if (j < i) c.y[j] += c.a[k] * t;
    }
    c.y[i] += c.alpha * sum;
  }
}

// Columns of B and C: elements at i + j ld.
template <class T>
void down_columns(const Call<T>& c) {
  for (int j = 0; j < c.n; ++j)
    for (int i = 0; i < c.m; ++i) {
      T sum = 0;
      for (int k = c.rows[i]; k < c.rows[i + 1]; ++k) sum += c.a[k] * c.x[c.columns[k] + j * c.ldx];
      c.y[i + j * c.ldy] += c.alpha * sum;
    }
}

// Rows of B and C: elements at i ld + j.
template <class T>
void along_rows(const Call<T>& c) {
  for (int i = 0; i < c.m; ++i)
    for (int k = c.rows[i]; k < c.rows[i + 1]; ++k) {
      const T t = c.alpha * c.a[k];
      for (int j = 0; j < c.n; ++j) c.y[i * c.ldy + j] += t * c.x[c.columns[k] * c.ldx + j];
    }
}

template <class T>
void lower_solve(const Call<T>& c) {
  for (int j = 0; j < c.n; ++j) {
    T* const y = c.y + j * c.ldy;
    for (int i = 0; i < c.m; ++i) {
      T sum = y[i];
      const int last = c.rows[i + 1] - 1;
      for (int k = c.rows[i]; k < last; ++k) sum -= c.a[k] * y[c.columns[k]];
      y[i] = sum / c.a[last];
    }
  }
}

template <class T>
void triplets(const Call<T>& c) {
  const int count = c.rows[c.m];
  for (int k = 0; k < count; ++k) c.y[c.entry_rows[k]] += c.alpha * c.a[k] * c.x[c.columns[k]];
}

template <class T>
void symmetric_triplets(const Call<T>& c) {
  const int count = c.rows[c.m];
  for (int k = 0; k < count; ++k) {
    const int i = c.entry_rows[k], j = c.columns[k];
    const T t = c.alpha * c.a[k];
    c.y[i] += t * c.x[j];
    if (j < i) c.y[j] += t * c.x[i];
  }
}

template <class T>
void diagonals(const Call<T>& c) {
  for (int d = 0; d < c.diagonal_count; ++d) {
    const int distance = c.distances[d];
    const T* const a = c.diagonals + size_t(d) * c.m;
    const int last = distance > 0 ? c.m - distance : c.m;
    for (int i = distance < 0 ? -distance : 0; i < last; ++i)
      c.y[i] += c.alpha * a[i] * c.x[i + distance];
  }
}

template <class T>
void diagonal_lower_solve(const Call<T>& c) {
  for (int i = 0; i < c.m; ++i) {
    T sum = c.y[i];
    for (int d = 0; d < c.diagonal_count - 1; ++d)
      if (i + c.distances[d] >= 0)
        sum -= c.diagonals[size_t(d) * c.m + i] * c.y[i + c.distances[d]];
    c.y[i] = sum / c.diagonals[size_t(c.diagonal_count - 1) * c.m + i];
  }
}

}  // namespace

#define PEER(name, T, work)                                                             \
  extern "C" __attribute__((visibility("default"))) void name##_(const SparseCall* c) { \
    work(Call<T>(*c));                                                                  \
  }

PEER(scsr1ng__f__mvout_par, float, product)
PEER(dcsr1ng__f__mvout_par, double, product)
PEER(zcsr1ng__f__mvout_par, std::complex<double>, product)
PEER(dcsr1nslnf__mvout_par, double, symmetric)
PEER(dcsr1ng__f__mmout_par, double, down_columns)
PEER(dcsr0ng__c__mmout_par, double, along_rows)
PEER(dcsr1ntlnf__svout_seq, double, lower_solve)
PEER(dcsr1ntlnf__smout_par, double, lower_solve)
PEER(dcoo1ng__f__mvout_par, double, triplets)
PEER(scoo1ng__f__mvout_par, float, triplets)
PEER(zcoo1ng__f__mvout_par, std::complex<double>, triplets)
PEER(dcoo1nslnf__mvout_par, double, symmetric_triplets)
PEER(ddia1ng__f__mvout_par, double, diagonals)
PEER(sdia1ng__f__mvout_par, float, diagonals)
PEER(zdia1ng__f__mvout_par, std::complex<double>, diagonals)
PEER(ddia1ntlnf__svout_seq, double, diagonal_lower_solve)
