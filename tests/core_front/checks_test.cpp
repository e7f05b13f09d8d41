// Wrong arguments of level 2: every position of every signature is reported, under the right name,
// and nothing is written. This program brings its own xerbla_ and cblas_xerbla.

#include <jex/blas.h>

#include "core_front/argument.h"

#include <gtest/gtest.h>

#include <limits.h>
#include <stdarg.h>
#include <string.h>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Report {
  int count = 0;
  std::string name, text;
  jex_int position = 0, value = 0;
  int row_major = 0;
} report;

}  // namespace

extern "C" {
JEX_API int RowMajorStrg = 0;
JEX_API void xerbla_(const char* name, const jex_int* position, jex_int length) {
  ++report.count;
  report.name = std::string(name, length);
  report.position = *position;
}
JEX_API void cblas_xerbla(jex_int position, const char* name, const char* format, ...) {
  ++report.count;
  report.name = name;
  report.position = position;
  report.row_major = RowMajorStrg;
  report.text = format;
  va_list arguments;
  va_start(arguments, format);
  report.value = *format ? va_arg(arguments, jex_int) : 0;
  va_end(arguments);
}
}

namespace {

// One letter for each argument of the Fortran routine: options U, T and D; dimensions m, n; band
// widths w; leading dimension l; increment i; anything else is a dot.
struct Signature {
  const char* routine;
  const char* arguments;
  // Positions in C that a row-major call reports the other way round.
  std::vector<std::pair<int, int>> exchanged;
};
const Signature signatures[] = {
    {"gemv", "Tmn..l.i..i", {{3, 4}}},
    {"gbmv", "Tmnww..l.i..i", {{3, 4}, {5, 6}}},
    {"ger", "mn..i.i.l", {{2, 3}, {6, 8}}},
    {"geru", "mn..i.i.l", {{2, 3}, {6, 8}}},
    {"gerc", "mn..i.i.l", {{2, 3}, {6, 8}}},
    {"symv", "Un..l.i..i", {}},
    {"hemv", "Un..l.i..i", {}},
    {"sbmv", "Unw..l.i..i", {}},
    {"hbmv", "Unw..l.i..i", {}},
    {"spmv", "Un...i..i", {}},
    {"hpmv", "Un...i..i", {}},
    {"syr", "Un..i.l", {}},
    {"her", "Un..i.l", {}},
    {"spr", "Un..i.", {}},
    {"hpr", "Un..i.", {}},
    {"syr2", "Un..i.i.l", {}},
    {"her2", "Un..i.i.l", {{6, 8}}},
    {"spr2", "Un..i.i.", {}},
    {"hpr2", "Un..i.i.", {{6, 8}}},
    {"trmv", "UTDn.l.i", {}},
    {"trsv", "UTDn.l.i", {}},
    {"tbmv", "UTDnw.l.i", {}},
    {"tbsv", "UTDnw.l.i", {}},
    {"tpmv", "UTDn..i", {}},
    {"tpsv", "UTDn..i", {}},
};

enum class Form { fortran, columns, rows };

// Memory behind one argument: an integer, an option, a scalar or an array.
using Operand = jex::test::ArgumentMemory<16 * 64>;
using jex::test::argument;

struct Call {
  std::string arguments;  // as in the signature, with O before them for C
  std::vector<Operand> operands;
  Form form;

  Call(const Signature& signature, Form form) : arguments(signature.arguments), form(form) {
    if (form != Form::fortran) arguments.insert(0, 1, 'O');
    operands.resize(arguments.size());
    for (size_t i = 0; i < arguments.size(); ++i) {
      memset(operands[i].bytes, 0x3f, sizeof operands[i].bytes);
      if (arguments[i] != '.') set(i, right_value(i));
    }
  }

  void set(size_t i, int value) {
    const bool letter = form == Form::fortran && strchr("UTD", arguments[i]);
    if (letter)
      operands[i].bytes[0] = char(value);
    else
      memcpy(operands[i].bytes, &value, sizeof value);
  }

  // The leading dimension is the smallest that is right: 3 rows, 4 columns, bands of 1 and 2.
  int right_value(size_t i) const {
    switch (arguments[i]) {
      case 'O':
        return form == Form::rows ? JEX_CBLAS_ROW_MAJOR : JEX_CBLAS_COL_MAJOR;
      case 'U':
        return form == Form::fortran ? 'l' : int(JEX_CBLAS_LOWER);
      case 'T':
        return form == Form::fortran ? 'c' : int(JEX_CBLAS_CONJ_TRANS);
      case 'D':
        return form == Form::fortran ? 'n' : int(JEX_CBLAS_NON_UNIT);
      case 'm':
        return 3;
      case 'n':
        return 4;
      case 'w':
        return arguments[i - 1] == 'w' ? 2 : 1;
      case 'i':
        return -1;
      default:
        return leading_dimension();
    }
  }
  int leading_dimension() const {
    if (arguments.find("ww") != std::string::npos) return 1 + 2 + 1;
    if (arguments.find('w') != std::string::npos) return 1 + 1;
    return arguments.find('m') != std::string::npos && form != Form::rows ? 3 : 4;
  }
  int wrong_value(size_t i) const {
    switch (arguments[i]) {
      case 'O':
        return 100;
      case 'U':
      case 'T':
      case 'D':
        return form == Form::fortran ? 'x' : -1;
      case 'l':
        return leading_dimension() - 1;
      case 'i':
        return 0;
      default:
        return -1;
    }
  }
  bool checked(size_t i) const { return arguments[i] != '.'; }
};

template <class... A>
void invoke(void (*entry)(A...), Call& call) {
  ASSERT_EQ(sizeof...(A), call.operands.size());
  [&]<size_t... i>(std::index_sequence<i...>) { entry(argument<A>(call.operands[i])...); }
  (std::index_sequence_for<A...>{});
}

struct Row {
  const char* name;  // dgemv
  bool c;
  void (*invoke)(Call&);
};
void PrintTo(const Row& row, std::ostream* out) { *out << row.name << (row.c ? " from C" : ""); }

#define JEX_F77(result, name, params, call) \
  {#name, false, [](Call& made) { invoke(jex_##name##_, made); }},
#define JEX_CBLAS(result, name, params, call) \
  {#name, true, [](Call& made) { invoke(jex_cblas_##name, made); }},
const Row rows[] = {
#include "front/blas/level2.inc"
};

const Signature& signature_of(const Row& row) {
  for (const auto& signature : signatures)
    if (!strcmp(signature.routine, row.name + 1)) return signature;
  throw std::runtime_error(row.name);
}

class Checks : public testing::TestWithParam<Row> {
 protected:
  std::vector<Form> forms() const {
    return GetParam().c ? std::vector{Form::columns, Form::rows} : std::vector{Form::fortran};
  }
  std::string reported_name() const {
    if (GetParam().c) return std::string("cblas_") + GetParam().name;
    std::string name = GetParam().name;
    for (auto& c : name) c = char(toupper(c));
    return name.append(6 - name.size(), ' ');
  }
  // Calls, and expects one report of this argument and no change.
  void expect_report(Call& call, size_t index) {
    const auto before = call.operands;
    report = {};
    GetParam().invoke(call);
    EXPECT_EQ(report.count, 1);
    EXPECT_EQ(report.name, reported_name());
    jex_int position = jex_int(index) + 1;
    if (call.form == Form::rows)
      for (const auto& [a, b] : signature_of(GetParam()).exchanged)
        if (position == a || position == b) {
          position = a + b - position;
          break;
        }
    EXPECT_EQ(report.position, position);
    const bool rows = call.form == Form::rows && call.wrong_value(0) != value_of(call, 0);
    EXPECT_EQ(report.row_major, rows);
    EXPECT_EQ(RowMajorStrg, 0);
    EXPECT_TRUE(call.operands == before) << "something was written";
  }
  static int value_of(const Call& call, size_t i) {
    int value;
    memcpy(&value, call.operands[i].bytes, sizeof value);
    return value;
  }
};

TEST_P(Checks, EachWrongArgumentIsReported) {
  for (const Form form : forms())
    for (size_t i = 0; i < Call(signature_of(GetParam()), form).arguments.size(); ++i) {
      Call call(signature_of(GetParam()), form);
      if (!call.checked(i)) continue;
      SCOPED_TRACE("form " + std::to_string(int(form)) + ", argument " + std::to_string(i + 1));
      call.set(i, call.wrong_value(i));
      expect_report(call, i);
      const char* const what = strchr("OUTD", call.arguments[i]);
      if (!GetParam().c) continue;
      const char* const texts[] = {"Illegal Order setting, %d\n", "Illegal Uplo setting, %d\n",
                                   "Illegal TransA setting, %d\n", "Illegal Diag setting, %d\n"};
      EXPECT_EQ(report.text, what ? texts[what - "OUTD"] : "");
      EXPECT_EQ(report.value, what ? call.wrong_value(i) : 0);
    }
}

// Of two wrong arguments the first is reported, in Fortran's order of arguments.
TEST_P(Checks, TheFirstWrongArgumentIsReported) {
  const Form form = forms().front();
  const Call right(signature_of(GetParam()), form);
  for (size_t i = 0; i < right.operands.size(); ++i)
    for (size_t j = i + 1; j < right.operands.size(); ++j) {
      if (!right.checked(i) || !right.checked(j)) continue;
      SCOPED_TRACE("arguments " + std::to_string(i + 1) + " and " + std::to_string(j + 1));
      Call call = right;
      call.set(i, call.wrong_value(i));
      call.set(j, call.wrong_value(j));
      expect_report(call, i);
    }
}

// The smallest leading dimension is right, and so are dimensions of 0 with a leading dimension
// of 1.
TEST_P(Checks, RightArgumentsAreNotReported) {
  for (const Form form : forms()) {
    Call call(signature_of(GetParam()), form);
    report = {};
    GetParam().invoke(call);
    EXPECT_EQ(report.count, 0) << report.name << " " << report.position;
    for (size_t i = 0; i < call.operands.size(); ++i) {
      if (strchr("mnw", call.arguments[i])) call.set(i, 0);
      if (call.arguments[i] == 'l') call.set(i, 1);
    }
    const auto before = call.operands;
    GetParam().invoke(call);
    EXPECT_EQ(report.count, 0) << report.name << " " << report.position;
    EXPECT_TRUE(call.operands == before) << "an empty call has written";
    for (size_t i = 0; i < call.operands.size(); ++i)
      if (call.arguments[i] == 'l') {
        call.set(i, 0);
        expect_report(call, i);
      }
  }
}

// Band widths whose sum is beyond the integers.
TEST_P(Checks, BandsWiderThanAnyArrayAreReported) {
  for (const Form form : forms()) {
    Call call(signature_of(GetParam()), form);
    if (call.arguments.find('w') == std::string::npos) continue;
    for (size_t i = 0; i < call.operands.size(); ++i)
      if (call.arguments[i] == 'w') call.set(i, INT_MAX);
    expect_report(call, call.arguments.find('l'));
  }
}

INSTANTIATE_TEST_SUITE_P(Level2, Checks, testing::ValuesIn(rows), [](const auto& info) {
  return std::string(info.param.c ? "cblas_" : "") + info.param.name;
});

TEST(Xerbla, NameInAnArray) {
  const char name[] = {'D', 'R', 'O', 'T', '!'};
  const jex_int length = 4, position = 7;
  report = {};
  jex_xerbla_array_(name, &length, &position);
  EXPECT_EQ(report.count, 1);
  EXPECT_EQ(report.name, "DROT" + std::string(28, ' '));
  EXPECT_EQ(report.position, 7);
}

}  // namespace
