// Powers of the size of RSA through the module's GNU MP entries: makes a key from two random
// primes, signs a number, checks the signature, and shows that one changed bit spoils it. The
// random numbers are those of a fixed seed: an example of arithmetic, no key for use.
//
//   R. L. Rivest, A. Shamir, L. Adleman, "A Method for Obtaining Digital Signatures and Public-Key
//   Cryptosystems", Communications of the ACM 21 (1978), 120-126.

#include <jex/core.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <initializer_list>

#include <gmp.h>

namespace {

// Seconds that the call takes.
template <class Call>
double timed(Call call) {
  const std::clock_t start = std::clock();
  call();
  return double(std::clock() - start) / CLOCKS_PER_SEC;
}

}  // namespace

int main(int argc, char** argv) {
  const int bits = argc > 1 ? std::atoi(argv[1]) : 2048;
  if (bits < 64 || bits > 16384) {
    std::fprintf(stderr, "usage: jex-rsa [bits of the modulus, 64 to 16384]\n");
    return 2;
  }
  const jex::Module* gmp = jex::module();
  if (!gmp) return 1;

  gmp_randstate_t random;
  gmp->jex_gmp___gmp_randinit_default(random);
  gmp->jex_gmp___gmp_randseed_ui(random, 1978);
  mpz_t p, q, n, e, d, phi, message, signature, opened;
  gmp->jex_gmp___gmpz_inits(p, q, n, e, d, phi, message, signature, opened, nullptr);

  // Primes with both upper bits set, so that their product has all its bits; e must divide neither
  // p - 1 nor q - 1.
  gmp->jex_gmp___gmpz_set_ui(e, 65537);
  const double making = timed([&] {
    do {
      for (mpz_ptr prime : {p, q}) {
        gmp->jex_gmp___gmpz_urandomb(prime, random, bits / 2);
        gmp->jex_gmp___gmpz_setbit(prime, bits / 2 - 1);
        gmp->jex_gmp___gmpz_setbit(prime, bits / 2 - 2);
        gmp->jex_gmp___gmpz_nextprime(prime, prime);
      }
      gmp->jex_gmp___gmpz_mul(n, p, q);
      gmp->jex_gmp___gmpz_sub(phi, n, p);
      gmp->jex_gmp___gmpz_sub(phi, phi, q);
      gmp->jex_gmp___gmpz_add_ui(phi, phi, 1);
    } while (!gmp->jex_gmp___gmpz_invert(d, e, phi));
  });

  gmp->jex_gmp___gmpz_urandomm(message, random, n);
  const double signing = timed([&] { gmp->jex_gmp___gmpz_powm_sec(signature, message, d, n); });
  const double opening = timed([&] { gmp->jex_gmp___gmpz_powm(opened, signature, e, n); });
  const bool right = gmp->jex_gmp___gmpz_cmp(opened, message) == 0;
  gmp->jex_gmp___gmpz_combit(signature, 7);
  gmp->jex_gmp___gmpz_powm(opened, signature, e, n);
  const bool spoiled = gmp->jex_gmp___gmpz_cmp(opened, message) != 0;

  std::printf("modulus of %u bits, made in %.3f s\n",
              unsigned(gmp->jex_gmp___gmpz_sizeinbase(n, 2)), making);
  std::printf("signed in %.2f ms, opened in %.3f ms: %s\n", 1e3 * signing, 1e3 * opening,
              right ? "the message" : "another message");
  std::printf("with one bit changed: %s\n", spoiled ? "another message" : "still the message");
  gmp->jex_gmp___gmpz_clears(p, q, n, e, d, phi, message, signature, opened, nullptr);
  gmp->jex_gmp___gmp_randclear(random);
  return right && spoiled ? 0 : 1;
}
