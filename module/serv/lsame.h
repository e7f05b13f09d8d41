// Comparison of option characters.
#pragma once

namespace jex::serv {

inline unsigned char fold(unsigned char c) { return c >= 'a' && c <= 'z' ? c - 32 : c; }

// The first byte of each word, without regard to the case of the ASCII letters.
inline int lsame(const char* a, const char* b) { return fold(*a) == fold(*b); }

}  // namespace jex::serv
