// The types behind a letter of the BLAS, for the rows of the front: ELEMENT_t is the type in
// memory, ARRAY_t what C pointers point to, SCALAR_t how C passes one value.
#pragma once

#define ELEMENT_s float
#define ELEMENT_d double
#define ELEMENT_c jex_scomplex
#define ELEMENT_z jex_dcomplex

#define ARRAY_s float
#define ARRAY_d double
#define ARRAY_c void
#define ARRAY_z void

#define SCALAR_s float
#define SCALAR_d double
#define SCALAR_c const void*
#define SCALAR_z const void*
