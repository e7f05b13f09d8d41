// jex-tour: the kernel families at work, each on one real problem.
#include <cstdio>
#include <exception>

#include "tour/series.h"
#include "tour/tour.h"

namespace {

enum Status { good = 0, failed = 1, unusable = 2 };

int run(const std::vector<std::string>& arguments) {
  using namespace jex::tour;
  const Options options = parse(arguments);
  if (options.help) {
    std::fputs(usage().c_str(), stdout);
    return good;
  }
  const jex::Module* kernels = jex::module();
  if (!kernels) return failed;  // the loader has told the reason
  return show(options, *kernels) ? good : failed;
}

int complain(const std::exception& reason, Status status) {
  std::fflush(stdout);
  std::fprintf(stderr, "jex-tour: %s\n", reason.what());
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const int status = run(std::vector<std::string>(argv + (argc > 0), argv + argc));
    if (std::fflush(stdout) == 0) return status;
    std::perror("jex-tour: standard output");
    return failed;
  } catch (const jex::tour::InputError& reason) {
    return complain(reason, unusable);
  } catch (const jex::tour::UsageError& reason) {
    return complain(reason, unusable);
  } catch (const std::exception& reason) {
    return complain(reason, failed);
  }
}
