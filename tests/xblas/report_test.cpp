// Wrong arguments are told to the one routine behind the empty entries, and the computation goes
// on. The test puts a jump to a recorder over that routine's first bytes.

#include "xblas/product.h"

#include "support/pages.h"

#include <jex/core.h>

namespace jex::test {
namespace {

struct Report {
  std::string routine;
  int position, value;
  bool null;
};
std::vector<Report> reports;

void record(const char* routine, int position, int value, void* null) {
  reports.push_back({routine, position, value, null == nullptr});
}

class Reports : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(jex::module(), nullptr) << jex_core_error();
    routine_ = reinterpret_cast<unsigned char*>(jex::module()->jex_blas_dgemm_mscale);
    ASSERT_TRUE(allow(routine_, sizeof saved_, Access::everything));
    memcpy(saved_, routine_, sizeof saved_);
    const int32_t distance = reinterpret_cast<unsigned char*>(&record) - (routine_ + 5);
    routine_[0] = 0xe9;  // jmp
    memcpy(routine_ + 1, &distance, sizeof distance);
    reports.clear();
  }
  void TearDown() override {
    memcpy(routine_, saved_, sizeof saved_);
    ASSERT_TRUE(allow(routine_, sizeof saved_, Access::execute));
  }

 private:
  unsigned char* routine_;
  unsigned char saved_[5];
};

// One wrong argument: which field, its value, and its position with one vector; two vectors move
// those behind x by one.
enum class Field { option, m, n, kl, ku, lda, incx, incy, prec };
struct Wrong {
  Field field;
  int value, position;
};

template <class T>
void set(Arguments<T>& v, Field field, int value) {
  jex_int* const fields[] = {&v.option, &v.m,    &v.n,    &v.kl,  &v.ku,
                             &v.lda,    &v.incx, &v.incy, &v.prec};
  *fields[int(field)] = value;
}

template <class T>
void check(Kind kind, const char* name, std::initializer_list<Wrong> wrongs) {
  for (const bool two : {false, true})
    for (const Wrong& wrong : wrongs) {
      T a[64], x[16], y[16];
      for (int i = 0; i < 64; ++i) a[i] = number<T>(i % 5 + 1);
      for (int i = 0; i < 16; ++i) x[i] = number<T>(1), y[i] = T{};
      Arguments<T> v{kind,
                     kind < Kind::symv ? 111 : 121,
                     3,
                     3,
                     1,
                     1,
                     number<T>(1),
                     a,
                     4,
                     x,
                     two ? x : nullptr,
                     1,
                     T{},
                     y,
                     1,
                     213};
      run(v);
      EXPECT_TRUE(reports.empty()) << "nothing is wrong";
      std::fill(y, y + 16, T{});
      set(v, wrong.field, wrong.value);
      run(v);
      const int position = wrong.position + (two && wrong.field >= Field::incx);
      const std::string text = name + std::string(two ? "2_x" : "_x") + " " +
                               std::to_string(position) + " = " + std::to_string(wrong.value);
      ASSERT_EQ(reports.size(), 1u) << text;
      EXPECT_EQ(reports[0].routine, name + std::string(two ? "2_x" : "_x"));
      EXPECT_EQ(reports[0].position, -position) << text;
      EXPECT_EQ(reports[0].value, wrong.value) << text;
      EXPECT_TRUE(reports[0].null) << text;
      reports.clear();
      // Extents below 1 and an unknown precision leave nothing to compute; all else has a result.
      const bool computes = wrong.value > 0 ? wrong.field != Field::prec : wrong.field >= Field::kl;
      EXPECT_EQ(std::all_of(y, y + 16, is_zero<T>), !computes) << text;
    }
}

template <class T>
void check_type(const std::string& prefix) {
  const auto name = [&](const char* routine) { return prefix + routine; };
  check<T>(Kind::gemv, name("gemv").c_str(),
           {{Field::m, -1, 3}, {Field::lda, 2, 7}, {Field::incx, 0, 9}, {Field::incy, 0, 12}});
  check<T>(Kind::gbmv, name("gbmv").c_str(),
           {{Field::option, 114, 2},
            {Field::m, -1, 3},
            {Field::kl, -1, 5},
            {Field::ku, -1, 6},
            {Field::lda, 2, 9},
            {Field::incx, 0, 11},
            {Field::incy, 0, 14}});
  check<T>(Kind::symv, name("symv").c_str(),
           {{Field::n, 0, 3}, {Field::incx, 0, 8}, {Field::incy, 0, 11}});
}

TEST_F(Reports, FloatRoutines) { check_type<float>("BLAS_s"); }
TEST_F(Reports, DoubleRoutines) { check_type<double>("BLAS_d"); }
TEST_F(Reports, ComplexRoutines) {
  check_type<jex_scomplex>("BLAS_c");
  check_type<jex_dcomplex>("BLAS_z");
  const auto wrongs = {Wrong{Field::option, 120, 2}, Wrong{Field::n, 0, 3},
                       Wrong{Field::incx, 0, 8}, Wrong{Field::incy, 0, 11},
                       Wrong{Field::prec, 210, 12}};
  check<jex_scomplex>(Kind::hemv, "BLAS_chemv", wrongs);
  check<jex_dcomplex>(Kind::hemv, "BLAS_zhemv", wrongs);
}

// Of several wrong arguments the first is told; the leading dimension of gemv is looked at apart.
TEST_F(Reports, OnlyTheFirstOfThem) {
  double a[4] = {1, 2, 3, 4}, x[2] = {5, 6}, y[2] = {};
  Arguments<double> v{Kind::gemv, 111, 2, 2, 0, 0, 1, a, 1, x, nullptr, 0, 0, y, 0, 214};
  run(v);
  ASSERT_EQ(reports.size(), 2u);
  EXPECT_EQ(reports[0].position, -9);
  EXPECT_EQ(reports[1].position, -7);
  EXPECT_EQ(reports[1].value, 1);
  EXPECT_EQ(y[0], 5 * (2 + 3));  // row 1 of columns that begin one apart; both rows end in y[0]
  v.m = 2, v.n = 0;
  run(v);
  EXPECT_EQ(reports[2].position, -4);
}

}  // namespace
}  // namespace jex::test
