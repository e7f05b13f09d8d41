// RSA-129: a message that was published encrypted in 1977, with the product of the two primes that
// keep it; the primes were found in 1994. Who knows them reads the message:
//
//   c = m^e mod p q,   m = c^d mod p q  with  d = 1 / e mod (p - 1)(q - 1)
//
//   M. Gardner, "A new kind of cipher that would take millions of years to break", Scientific
//   American 237 (1977), 120-124.
//   D. Atkins, M. Graff, A. K. Lenstra, P. C. Leyland, "The Magic Words Are Squeamish Ossifrage",
//   Advances in Cryptology - ASIACRYPT '94 (1995), 263-277.
#include <gmp.h>

#include "tour/family.h"
#include "tour/svg.h"
#include "tour/text.h"
#include "tour/timing.h"

namespace jex::tour {
namespace {

constexpr const char
    *product =
        "114381625757888867669235779976146612010218296721242362562561842935706935245733897830597123"
        "563958705058989075147599290026879543541",
    *factor_p = "3490529510847650949147849619903898133417764638493387843990820577",
    *factor_q = "32769132993266709549961988190834461413177642967992942539798288533",
    *encrypted =
        "968696137546220614771409222543558829057599911245743198746951209308162982251457083569314766"
        "22883989628013391990551829945157815154";
constexpr unsigned long exponent = 9007;

// An integer of the module's GNU MP, from its decimal digits.
class Integer {
 public:
  Integer(const Module& gmp, const char* digits = "0") : gmp_(gmp) {
    gmp_.jex_gmp___gmpz_init_set_str(z_, digits, 10);
  }
  Integer(const Integer&) = delete;
  ~Integer() { gmp_.jex_gmp___gmpz_clear(z_); }
  operator mpz_ptr() { return z_; }
  operator mpz_srcptr() const { return z_; }

 private:
  const Module& gmp_;
  mpz_t z_;
};

// 1 / e mod (p - 1)(q - 1)
void decryption_exponent(const Module& gmp, const Integer& p, const Integer& q, Integer& d) {
  Integer e(gmp), phi(gmp), other(gmp);
  gmp.jex_gmp___gmpz_set_ui(e, exponent);
  gmp.jex_gmp___gmpz_sub_ui(phi, p, 1);
  gmp.jex_gmp___gmpz_sub_ui(other, q, 1);
  gmp.jex_gmp___gmpz_mul(phi, phi, other);
  gmp.jex_gmp___gmpz_invert(d, e, phi);
}

// Two decimal digits are a letter: 00 a blank, 01 an A, .. 26 a Z.
std::string letters_of(const Module& gmp, const Integer& message) {
  std::string digits(gmp.jex_gmp___gmpz_sizeinbase(message, 10) + 2, '\0');
  gmp.jex_gmp___gmpz_get_str(digits.data(), 10, message);
  digits.resize(digits.find('\0'));
  if (digits.size() % 2) digits.insert(0, "0");
  std::string letters;
  for (size_t i = 0; i < digits.size(); i += 2) {
    const int number = (digits[i] - '0') * 10 + digits[i + 1] - '0';
    letters += number == 0 ? ' ' : number <= 26 ? char('A' + number - 1) : '?';
  }
  return letters;
}

// Powers a second of as many bits as the modulus, a random odd number of `bits`, has.
double powers_per_second(const Module& gmp, jex_int bits) {
  gmp_randstate_t random;
  gmp.jex_gmp___gmp_randinit_default(random);
  Integer base(gmp), power(gmp), modulus(gmp), result(gmp);
  for (Integer* z : {&base, &power, &modulus}) gmp.jex_gmp___gmpz_urandomb(*z, random, bits);
  for (const jex_int bit : {0, bits - 1}) gmp.jex_gmp___gmpz_setbit(modulus, bit);
  gmp.jex_gmp___gmpz_setbit(power, bits - 1);
  gmp.jex_gmp___gmp_randclear(random);
  return times_per_second([&] { gmp.jex_gmp___gmpz_powm(result, base, power, modulus); });
}

void time_powers(const Context& context, Report& report) {
  svg::Panel panel{"Power modulo a number", "log2 of the bits of the modulus",
                   "log10 of the seconds"};
  panel.curves = {{"power", std::log2(context.size / 16), 1, {}}};
  for (jex_int bits = context.size / 16; bits <= context.size; bits *= 2) {
    context.progress.tell(text("powers modulo %d bits", bits));
    const double rate = powers_per_second(context.kernels, bits);
    panel.curves[0].y.push_back(-std::log10(rate));
    report.rates.insert(report.rates.begin(),
                        {text("powers modulo %d bits", bits), rate, "a second"});
  }
  report.pictures = {{"integers.svg", svg::draw("Time of a power", {panel})}};
}

}  // namespace

Report integers(const Context& context) {
  const Module& gmp = context.kernels;
  Integer n(gmp, product), p(gmp, factor_p), q(gmp, factor_q), cipher(gmp, encrypted);
  Integer d(gmp), message(gmp), again(gmp), pq(gmp);
  gmp.jex_gmp___gmpz_mul(pq, p, q);
  decryption_exponent(gmp, p, q, d);
  gmp.jex_gmp___gmpz_powm_sec(message, cipher, d, n);
  gmp.jex_gmp___gmpz_powm_ui(again, message, exponent, n);

  const auto differing_bits = [&](const Integer& a, const Integer& b) {
    return gmp.jex_gmp___gmpz_hamdist(a, b);
  };
  const size_t composite =
      !gmp.jex_gmp___gmpz_probab_prime_p(p, 25) + !gmp.jex_gmp___gmpz_probab_prime_p(q, 25);
  Report report;
  report.problem = {
      {"modulus", text("RSA-129, %zu decimal digits, %zu bits", std::string(product).size(),
                       size_t(gmp.jex_gmp___gmpz_sizeinbase(n, 2)))},
      {"message", text("published as m^%lu modulo it", exponent)}};
  report.checks = {
      exactly("p times q", "the modulus", differing_bits(pq, n), "bits"),
      exactly("p and q", "prime", composite, "numbers"),
      exactly("message encrypted", "as published", differing_bits(again, cipher), "bits")};
  report.findings = {{"message", letters_of(gmp, message)}};
  gmp.jex_gmp___gmpz_combit(cipher, 7);
  gmp.jex_gmp___gmpz_powm(again, cipher, d, n);
  report.findings.push_back({"one bit changed", letters_of(gmp, again)});
  time_powers(context, report);
  return report;
}

}  // namespace jex::tour
