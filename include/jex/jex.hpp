/**
 * @file jex.hpp
 * @brief The C++ front: every family's functions on views. Each family has a header of its own.
 */
#ifndef JEX_JEX_HPP
#define JEX_JEX_HPP

#include <jex/fft.hpp>
#include <jex/pde.hpp>
#include <jex/trans.hpp>
#include <jex/views.hpp>
#include <jex/xblas.hpp>

#endif
