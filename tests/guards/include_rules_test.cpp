// Includes of the module point downward, and a small tree that breaks the rule is caught.

#include "guards/include_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "support/process.h"

namespace fs = std::filesystem;
using jex::test::upward_includes;

namespace {

TEST(Includes, OfTheModulePointDownward) {
  size_t files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(MODULE_SOURCES))
    files += entry.is_regular_file();
  ASSERT_GT(files, 10u) << "no module in " MODULE_SOURCES;
  EXPECT_THAT(upward_includes(MODULE_SOURCES), testing::IsEmpty());
}

class Tree : public testing::Test {
 protected:
  void write(const char* file, const char* text) {
    fs::create_directories((root / "module" / file).parent_path());
    std::ofstream(root / "module" / file) << text;
  }
  const jex::test::Folder folder;
  const fs::path root = folder / "tree";
};

TEST_F(Tree, EachFaultIsFound) {
  write("simd/lanes.h", "#include <emmintrin.h>\n");
  write("serv/shell.h", "#include <jex/exports.h>\n#include \"simd/lanes.h\"\n");
  write("blas/level1/dot.h", "#include \"sums.h\"\n#include \"serv/shell.h\"\n");
  write("blas/level1/sums.h", "#include \"../../simd/lanes.h\"\n");
  write("blas/level2/gemv.h", "#include \"blas/level1/dot.h\"\n");
  write("blas/gemm/gemm.h", "#include \"blas/level2/gemv.h\"\n");
  write("blas/lapack/larfx.h", "#include \"blas/gemm/gemm.h\"\n");
  write("spblas/sums.h", "#include \"simd/lanes.h\"\n");
  write("spblas/csr/solve.h", "#include \"blas/level1/dot.h\"\n#include \"spblas/sums.h\"\n");
  write("pdepl/helmholtz.h", "#include \"pdett/trig.h\"\n");
  write("pdett/trig.h", "// #include \"core/dfti.h\" is no include\n");
  ASSERT_THAT(upward_includes(root / "module"), testing::IsEmpty());

  fs::create_directories(root / "core");
  std::ofstream(root / "core" / "dfti.h") << "";
  write("simd/up.h", "#include \"serv/shell.h\"\n");
  write("serv/up.h", "  #  include \"blas/level1/dot.h\"\n");
  write("blas/level1/up.cpp", "#include \"../level2/gemv.h\"\n");
  write("blas/level2/up.h", "#include \"blas/gemm/gemm.h\"\n");
  write("blas/level3/core.h", "#include \"../../../core/dfti.h\"\n#include <jex/core.h>\n");
  write("pdett/up.h", "#include \"pdepl/helmholtz.h\"\n");
  write("spblas/aside.h", "#include \"blas/gemm/gemm.h\"\n#include \"tests/support/cases.h\"\n");
  write("spblas/up.h", "#include \"spblas/csr/solve.h\"\n");
  write("new/layer.h", "#include \"simd/lanes.h\"\n");
  EXPECT_THAT(upward_includes(root / "module"),
              testing::ElementsAre(
                  "blas/level1/up.cpp: ../level2/gemv.h: blas/level1 may not include blas/level2",
                  "blas/level2/up.h: blas/gemm/gemm.h: blas/level2 may not include blas/gemm",
                  "blas/level3/core.h: ../../../core/dfti.h: not a file of the module",
                  "blas/level3/core.h: jex/core.h: a header of the core's users",
                  "new/layer.h: simd/lanes.h: from a folder without a layer",
                  "pdett/up.h: pdepl/helmholtz.h: pdett may not include pdepl",
                  "serv/up.h: blas/level1/dot.h: serv may not include blas/level1",
                  "simd/up.h: serv/shell.h: simd may not include serv",
                  "spblas/aside.h: blas/gemm/gemm.h: spblas may not include blas/gemm",
                  "spblas/aside.h: tests/support/cases.h: not a file of the module",
                  "spblas/up.h: spblas/csr/solve.h: spblas may not include spblas/csr"));
}

}  // namespace
