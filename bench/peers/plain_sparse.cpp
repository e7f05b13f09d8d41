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
        y(static_cast<T*>(c.y)) {}
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
