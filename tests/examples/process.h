// Runs a program and keeps what it wrote; a folder that lives as long as its test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace jex::test {

class Folder {
 public:
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "jex-tour-XXXXXX").string();
    if (!mkdtemp(name.data())) std::abort();
    path_ = name;
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;

  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  std::string write(const std::string& name, const std::string& content) const {
    std::ofstream(path_ / name, std::ios::binary) << content;
    return *this / name;
  }

 private:
  std::filesystem::path path_;
};

inline std::string read_file(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

struct Outcome {
  int status;  // exit status, or -1 for a signal
  std::string out, err;
};

// Standard error goes to a file in the folder; so does standard output, unless `sink` is to swallow
// it unread.
inline Outcome run(const Folder& folder, std::vector<std::string> command,
                   const std::string& sink = {}) {
  const std::string err_file = folder / "stderr";
  const std::string out_file = sink.empty() ? folder / "stdout" : sink;
  std::vector<char*> arguments;
  for (std::string& word : command) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const auto redirect = [](const std::string& file, int stream) {
      const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      if (opened < 0 || dup2(opened, stream) < 0) _exit(126);
    };
    redirect(out_file, STDOUT_FILENO);
    redirect(err_file, STDERR_FILENO);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  int state = 0;
  if (child < 0 || waitpid(child, &state, 0) != child) std::abort();
  return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, sink.empty() ? read_file(out_file) : "",
          read_file(err_file)};
}

}  // namespace jex::test
