#include "tour/input.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "tour/text.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

namespace jex::tour {

constexpr size_t largest_file = 16 << 20;

void fail(const std::string& file, int line, const std::string& what) {
  throw InputError(text("%s:%d: %s", printable(file, 4096).c_str(), line, what.c_str()));
}

std::string content_of(const std::string& path) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) fail(path, 1, text("cannot be opened: %s", std::strerror(errno)));
  std::string content;
  char part[65536];
  while (const size_t count = std::fread(part, 1, sizeof part, file.get())) {
    content.append(part, count);
    if (content.size() > largest_file) fail(path, 1, "is larger than 16 MiB");
  }
  if (std::ferror(file.get())) fail(path, 1, text("cannot be read: %s", std::strerror(errno)));
  return content;
}

static std::filesystem::path program_file() {
#ifdef _WIN32
  char path[1000] = "";
  GetModuleFileNameA(nullptr, path, sizeof path - 1);
  return path;
#else
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored);
#endif
}

std::string data_file(const std::string& name) {
  std::error_code ignored;
  auto installed = program_file().parent_path().parent_path() / "share/jex" / name;
  installed.make_preferred();
  return std::filesystem::exists(installed, ignored) ? installed.string() : JEX_TOUR_DATA + name;
}

}  // namespace jex::tour
