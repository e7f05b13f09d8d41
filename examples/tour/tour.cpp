#include "tour/tour.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "tour/input.h"
#include "tour/results.h"
#include "tour/text.h"
#include "tour/timing.h"

namespace jex::tour {
namespace {

// Makes the folder if need be.
void write(const std::filesystem::path& path, const std::string& content) {
  std::error_code error;
  if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), error);
  if (error)
    throw UsageError(text("%s cannot be made: %s", path.parent_path().string().c_str(),
                          error.message().c_str()));
  FILE* file = std::fopen(path.string().c_str(), "wb");
  bool written = file && std::fwrite(content.data(), 1, content.size(), file) == content.size();
  if (file) written = std::fclose(file) == 0 && written;
  if (!written)
    throw UsageError(text("%s cannot be written: %s", path.string().c_str(), std::strerror(errno)));
}

Result result_of(const Family& family, const Options& options, const Module& kernels) {
  const bool reads = !options.file.empty() && input_of(options.file) == family.input;
  Progress progress(stderr, family.name);
  progress.tell("at work");
  const auto start = std::chrono::steady_clock::now();
  Report report = family.run({kernels, reads ? options.file : "",
                              options.size ? options.size : family.size.usual, progress});
  return {family, std::move(report), seconds_since(start)};
}

// The page, and each picture as a file of its own beside it.
void write_page(const std::filesystem::path& folder, std::span<const Result> results) {
  size_t pictures = 0;
  for (const Result& result : results)
    for (const Picture& picture : result.report.pictures) {
      write(folder / picture.file, picture.svg);
      ++pictures;
    }
  write(folder / "index.html", page(results));
  std::printf("\nwritten: %s, and %zu picture%s beside it\n",
              (folder / "index.html").string().c_str(), pictures, pictures == 1 ? "" : "s");
}

}  // namespace

bool show(const Options& options, const Module& kernels) {
  if (options.threads) jex_set_num_threads(options.threads);
  std::vector<Result> results;
  for (const Family& family : families()) {
    if (!options.family.empty() && options.family != family.name) continue;
    results.push_back(result_of(family, options, kernels));
    print(results.back());
    std::fflush(stdout);
  }
  print_summary(results);
  write_page(options.out, results);
  if (!options.json.empty()) {
    write(options.json, json(results));
    std::printf("written: %s\n", options.json.c_str());
  }
  return std::all_of(results.begin(), results.end(), [](const Result& result) {
    return result.held() == result.report.checks.size();
  });
}

}  // namespace jex::tour
