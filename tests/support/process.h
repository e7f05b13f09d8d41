// Runs a program and keeps what it wrote; a folder that lives as long as its test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#ifdef _WIN32
#include "support/windows.h"
#else
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace jex::test {

class Folder {
 public:
  Folder() {
    std::random_device random;
    do path_ = std::filesystem::temp_directory_path() / ("jex-test-" + std::to_string(random()));
    while (!std::filesystem::create_directory(path_));
    path_.make_preferred();
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;

  std::string operator/(const std::string& name) const {
    return (path_ / name).make_preferred().string();
  }
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

// What a program wrote to a stream: lines end as in C on both targets.
inline std::string read_text(const std::string& path) {
  std::string text = read_file(path);
#ifdef _WIN32
  std::erase(text, '\r');
#endif
  return text;
}

// Variables that the program gets besides those of the test; one may be empty.
using Environment = std::vector<std::pair<std::string, std::string>>;

// Where programs look for libraries first.
#ifdef _WIN32
inline const char* const library_path = "PATH";
#else
inline const char* const library_path = "LD_LIBRARY_PATH";
#endif

struct Outcome {
  int status;  // exit status, or -1 for a program that was ended
  std::string out, err;
};

#ifdef _WIN32

inline HANDLE opened_for_child(const std::string& file) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE stream = CreateFileA(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (stream == INVALID_HANDLE_VALUE) std::abort();
  return stream;
}

// Every word in quotes: none of the tests' words has one at its end, or a backslash there.
inline int status_of(const std::vector<std::string>& command, const Environment& environment,
                     const std::string& out_file, const std::string& err_file) {
  std::string line;
  for (const std::string& word : command) line += "\"" + word + "\" ";
  for (const auto& [name, value] : environment)
    SetEnvironmentVariableA(name.c_str(), value.c_str());
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  start.hStdOutput = opened_for_child(out_file);
  start.hStdError = opened_for_child(err_file);
  PROCESS_INFORMATION child{};
  const bool running = CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                      nullptr, &start, &child);
  for (const auto& [name, value] : environment) SetEnvironmentVariableA(name.c_str(), nullptr);
  CloseHandle(start.hStdOutput);
  CloseHandle(start.hStdError);
  if (!running) return 127;
  WaitForSingleObject(child.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(child.hProcess, &status);
  CloseHandle(child.hProcess);
  CloseHandle(child.hThread);
  return status < 256 ? int(status) : -1;
}

#else

inline int status_of(std::vector<std::string> command, const Environment& environment,
                     const std::string& out_file, const std::string& err_file) {
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
    for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  int state = 0;
  if (child < 0 || waitpid(child, &state, 0) != child) std::abort();
  return WIFEXITED(state) ? WEXITSTATUS(state) : -1;
}

#endif

// Standard error goes to a file in the folder; so does standard output, unless `sink` is to swallow
// it unread.
inline Outcome run(const Folder& folder, const std::vector<std::string>& command,
                   const std::string& sink = {}, const Environment& environment = {}) {
  const std::string err_file = folder / "stderr";
  const std::string out_file = sink.empty() ? folder / "stdout" : sink;
  const int status = status_of(command, environment, out_file, err_file);
  return {status, sink.empty() ? read_text(out_file) : "", read_text(err_file)};
}

}  // namespace jex::test
