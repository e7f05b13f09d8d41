#include "pdepl/diagnostics.h"

#include "serv/report.h"

namespace jex::pdepl {
namespace {

constexpr jex_int title = 490;
constexpr jex_int from_1 = 30;  // the texts that count from 1 lie that much lower
constexpr char log_file[] = "JEX_Poisson_Library_Log.txt";

enum class Shown { nothing, element, coefficient, text };

struct Line {
  jex_int code, number;
  Shown shown;
  int element;
};

constexpr Line lines[] = {
    {failed_before, 530, Shown::element, last_status},
    {failed_before, 531, Shown::nothing, 0},
    {bad_x, 532, Shown::element, intervals},
    {bad_x, 535, Shown::nothing, 0},
    {bad_y, 533, Shown::element, intervals + 1},
    {bad_y, 535, Shown::nothing, 0},
    {bad_z, 534, Shown::element, intervals + 2},
    {bad_z, 535, Shown::nothing, 0},
    {bad_conditions, 536, Shown::element, conditions},
    {bad_conditions, 537, Shown::nothing, 0},
    {bad_domain, 538, Shown::text, 0},
    {bad_domain, 539, Shown::nothing, 0},
    {transform_error, 540, Shown::text, 0},
    {transform_error, 541, Shown::nothing, 0},
    {release_error, 542, Shown::text, 0},
    {negative_coefficient, 543, Shown::coefficient, 0},
    {negative_coefficient, 544, Shown::nothing, 0},
    {moved_tables, 545, Shown::nothing, 0},
    {moved_tables, 546, Shown::nothing, 0},
    {singular_problem, 547, Shown::nothing, 0},
    {singular_problem, 548, Shown::nothing, 0},
    {singular_problem, 549, Shown::nothing, 0},
};

bool is_error(jex_int code) { return code >= failed_before && code <= release_error; }
jex_int destination_of(jex_int code, const jex_int* ipar) {
  return ipar[is_error(code) ? errors : warnings];
}

}  // namespace

void print(Flavour flavour, jex_int code, const jex_int* ipar, double q, const char* text) {
  const jex_int lower = flavour == Flavour::c ? 0 : from_1;
  serv::Report message;
  message.compose(title, is_error(code), lines, code, [&](const Line& line) {
    const jex_int number = line.number - lower;
    switch (line.shown) {
      case Shown::nothing:
        message.add(number);
        break;
      case Shown::element:
        message.add(number, serv::Value(ipar[line.element]));
        break;
      case Shown::coefficient:
        message.add(number, serv::Value(q));
        break;
      case Shown::text:
        message.add(number, text);
        break;
    }
  });
  message.send(destination_of(code, ipar), log_file);
}

void report(Code code, const jex_int* ipar, double q, const char* text) {
  if (destination_of(code, ipar) == 0) return;
  print(ipar[message_set] ? Flavour::c : Flavour::f, code, ipar, q, text);
}

}  // namespace jex::pdepl
