#include "pdett/diagnostics.h"

#include "serv/report.h"

namespace jex::pdett {
namespace {

constexpr jex_int title = 396;
constexpr jex_int from_1 = 39;  // the other set lies that much lower
constexpr char log_file[] = "JEX_Trig_Transforms_Log.txt";

// What stands in the place that a text has for a value.
enum class Shown { nothing, intervals, kind, status, threads, one, tolerance, replacement, text };

struct Line {
  Code code;
  jex_int number;
  Shown shown;
};

constexpr Line lines[] = {
    {failed_before, 449, Shown::status},
    {failed_before, 450, Shown::nothing},
    {too_few_intervals, 451, Shown::intervals},
    {too_few_intervals, 452, Shown::nothing},
    {unknown_kind, 453, Shown::kind},
    {unknown_kind, 454, Shown::nothing},
    {unknown_kind, 455, Shown::nothing},
    {unknown_kind, 456, Shown::nothing},
    {not_initialised, 457, Shown::nothing},
    {not_initialised, 458, Shown::nothing},
    {not_initialised, 459, Shown::nothing},
    {not_committed, 460, Shown::nothing},
    {not_committed, 461, Shown::status},
    {not_committed, 462, Shown::nothing},
    {not_committed, 463, Shown::nothing},
    {does_not_fit, 464, Shown::nothing},
    {does_not_fit, 465, Shown::intervals},
    {does_not_fit, 466, Shown::nothing},
    {negative_tolerance, 467, Shown::tolerance},
    {negative_tolerance, 468, Shown::nothing},
    {negative_tolerance, 469, Shown::nothing},
    {negative_tolerance, 470, Shown::nothing},
    {negative_tolerance, 471, Shown::replacement},
    {first_not_zero, 472, Shown::text},
    {first_not_zero, 473, Shown::tolerance},
    {first_not_zero, 474, Shown::nothing},
    {last_not_zero, 475, Shown::text},
    {last_not_zero, 476, Shown::tolerance},
    {last_not_zero, 477, Shown::nothing},
    {staggered_last, 478, Shown::text},
    {staggered_last, 479, Shown::tolerance},
    {staggered_last, 480, Shown::nothing},
    {bad_threads, 481, Shown::threads},
    {bad_threads, 482, Shown::nothing},
    {bad_threads, 483, Shown::one},
    {staggered_first, 484, Shown::text},
    {staggered_first, 485, Shown::tolerance},
    {staggered_first, 486, Shown::nothing},
    {fourier_error, 487, Shown::text},
};

}  // namespace

void report(Code code, const jex_int* ipar, double tolerance, double replacement,
            const char* text) {
  const bool is_error = code <= does_not_fit || code == fourier_error;
  const jex_int destination = ipar[is_error ? errors : warnings];
  if (destination == 0) return;
  const jex_int lower = ipar[message_set] ? 0 : from_1;
  serv::Report message;
  message.compose(title, is_error, lines, code, [&](const Line& line) {
    const jex_int number = line.number - lower;
    using serv::Value;
    switch (line.shown) {
      case Shown::nothing:
        message.add(number);
        break;
      case Shown::intervals:
        message.add(number, Value(ipar[intervals]));
        break;
      case Shown::kind:
        message.add(number, Value(ipar[kind]));
        break;
      case Shown::status:
        message.add(number, Value(ipar[last_status]));
        break;
      case Shown::threads:
        message.add(number, Value(ipar[threads]));
        break;
      case Shown::one:
        message.add(number, Value(jex_int(1)));
        break;
      case Shown::tolerance:
        message.add(number, Value(tolerance));
        break;
      case Shown::replacement:
        message.add(number, Value(replacement));
        break;
      case Shown::text:
        message.add(number, text);
        break;
    }
  });
  message.send(destination, log_file);
}

}  // namespace jex::pdett
