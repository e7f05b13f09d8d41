#include "tour/input.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "tour/text.h"

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

std::string data_file(const std::string& name) {
  std::error_code ignored;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", ignored);
  const auto installed = program.parent_path().parent_path() / "share/jex" / name;
  return std::filesystem::exists(installed, ignored) ? installed.string() : JEX_TOUR_DATA + name;
}

}  // namespace jex::tour
