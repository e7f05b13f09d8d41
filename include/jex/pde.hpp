/**
 * @file pde.hpp
 * @brief Poisson's and Helmholtz' equation; see jex/pde.h for the equation and its conditions.
 *
 * @code
 * jex::Region<double, 2> square{{0, 0}, {1, 1}, {1024, 1024}};
 * std::vector<double> u = f;                      // square.points() values, x fastest
 * jex::poisson(square, "DDDD", std::span(u));     // zero on all sides
 * @endcode
 *
 * Element types are float and double. Wrong arguments throw std::invalid_argument, memory that is
 * not there std::bad_alloc, a missing kernel module std::runtime_error; nothing is written then.
 */
#ifndef JEX_PDE_HPP
#define JEX_PDE_HPP

#include <jex/pde.h>
#include <jex/views.hpp>

#include <array>
#include <new>
#include <span>
#include <string>

namespace jex {

/** @brief A rectangle or a box, and how many intervals its axes are cut into. */
template <class T, std::size_t dimensions>
requires(dimensions == 2 || dimensions == 3) struct Region {
  std::array<T, dimensions> begin, end;
  std::array<jex_int, dimensions> intervals;

  /** @brief Points of the grid. */
  std::size_t points() const {
    std::size_t count = 1;
    for (const jex_int n : intervals) count *= std::size_t(n) + 1;
    return count;
  }
  /** @brief Points of a side of an axis. */
  std::size_t side_points(std::size_t axis) const {
    return points() / (std::size_t(intervals[axis]) + 1);
  }
};

/** @brief Values or outward derivatives on the sides, in the order of the letters; empty: zeros. */
template <class T, std::size_t dimensions>
using Sides = std::array<std::span<const T>, 2 * dimensions>;

/** @brief Solves -div grad u + q u = f; f becomes u. */
template <class T, std::size_t dimensions>
void helmholtz(const Region<T, dimensions>& region, const std::string& conditions, T q,
               std::span<T> f, const Sides<T, dimensions>& sides = {}) {
  static_assert(std::is_same_v<T, float> || std::is_same_v<T, double>);
  constexpr auto solve = [] {
    if constexpr (std::is_same_v<T, double>)
      return jex_dhelmholtz;
    else
      return jex_shelmholtz;
  }();
  detail::require(conditions.size() == 2 * dimensions, "jex::helmholtz",
                  "there is not one letter for each side");
  for (const jex_int n : region.intervals)
    detail::require(n > 0, "jex::helmholtz", "an axis has no intervals");
  detail::require(f.size() == region.points(), "jex::helmholtz", "f has not the size of the grid");
  const T* data[2 * dimensions];
  for (std::size_t i = 0; i < 2 * dimensions; ++i) {
    detail::require(sides[i].empty() || sides[i].size() == region.side_points(i / 2),
                    "jex::helmholtz", "data has not the size of its side");
    data[i] = sides[i].empty() ? nullptr : sides[i].data();
  }
  const jex_int answer = solve(jex_int(dimensions), region.begin.data(), region.end.data(),
                               region.intervals.data(), conditions.c_str(), q, data, f.data());
  if (answer == -2) throw std::bad_alloc();
  detail::require(answer, "jex::helmholtz");
}

/** @brief Solves -div grad u = f; f becomes u. */
template <class T, std::size_t dimensions>
void poisson(const Region<T, dimensions>& region, const std::string& conditions, std::span<T> f,
             const Sides<T, dimensions>& sides = {}) {
  helmholtz(region, conditions, T(0), f, sides);
}

}  // namespace jex

#endif
