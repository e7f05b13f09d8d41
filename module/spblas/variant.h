// What the letters in the middle of a kernel's name say: operation, kind of matrix, triangle and
// diagonal, e.g. "ntlu" for A itself, triangular, lower, unit diagonal.
#pragma once

namespace jex::spblas {

enum class Op { none, transpose, conj_transpose, conj };
consteval bool is_transposed(Op op) { return op == Op::transpose || op == Op::conj_transpose; }
consteval bool is_conjugated(Op op) { return op == Op::conj || op == Op::conj_transpose; }

enum class Kind { general, symmetric, hermitian, triangular, diagonal, skew };
enum class Uplo { none, lower, upper };
enum class Diag { non_unit, unit };

struct Variant {
  Op op;
  Kind kind;
  Uplo uplo;
  Diag diag;
};

// Not to be called at compile time: a letter that is not in its list does not compile.
void no_such_letter();

// Place of a letter in a list of them.
consteval int place_of(char letter, const char* list) {
  int place = 0;
  while (list[place] != letter)
    if (!list[place++]) no_such_letter();
  return place;
}

consteval Variant variant(const char* letters) {
  return {Op(place_of(letters[0], "ntcs")), Kind(place_of(letters[1], "gshtda")),
          Uplo(place_of(letters[2], "_lu")), letters[3] == 'u' ? Diag::unit : Diag::non_unit};
}

}  // namespace jex::spblas
