#include "session.h"

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>

namespace jex::bench {

const char session_flag[] = "--session";

namespace {

constexpr int most_crashes = 3;
// What takes longer hangs. A peer's first call may plan by measuring, for minutes where the
// operands have millions of elements.
constexpr unsigned case_seconds = 120, plan_seconds = 1200;

/// Runs one case in the child and prints its answer.
void answer(const Case& c, const PeerLibrary* library, const Effort& effort) {
  const Entry ours = module_entry(c.routine);
  const Entry theirs = library ? library->entry(c.routine) : Entry{};
  const char* name = c.name.c_str();
  if (!ours || (library && !theirs)) {
    std::printf("absent %s\n", name);
    return;
  }
  auto problem = c.make();
  problem->fill();
  std::printf("ours %s\n", name);
  std::fflush(stdout);
  problem->run(ours, 1);
  if (library) {
    auto other = c.make();
    other->fill();
    std::printf("peer %s\n", name);
    std::fflush(stdout);
    alarm(plan_seconds);
    other->run(theirs, 1);
    alarm(case_seconds);
    const double deviation = problem->deviation(*other);
    if (!(deviation <= 1)) {
      std::printf("wrong %s %g\n", name, deviation);
      return;
    }
  }
  const Pair pair = time_pair(*problem, ours, theirs, effort);
  std::printf("time %s %.9g %.9g\n", name, pair.ours, pair.peer);
}

struct Child {
  pid_t pid;
  FILE* answers;
};

Child start_child(const Peer& peer, const std::string& names, const Effort& effort) {
  std::ostringstream repetitions, batch;
  repetitions << effort.repetitions;
  batch << effort.batch_seconds;
  int input[2], output[2];
  if (pipe(input) != 0 || pipe(output) != 0) std::perror("pipe"), std::exit(2);
  const pid_t pid = fork();
  if (pid < 0) std::perror("fork"), std::exit(2);
  if (pid == 0) {
    dup2(input[0], STDIN_FILENO);
    dup2(output[1], STDOUT_FILENO);
    for (int end : {input[0], input[1], output[0], output[1]}) close(end);
    if (!peer.core_type.empty()) setenv("OPENBLAS_CORETYPE", peer.core_type.c_str(), 1);
    execl("/proc/self/exe", "jex-bench", session_flag, peer.path.c_str(), repetitions.str().c_str(),
          batch.str().c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  close(input[0]);
  close(output[1]);
  // The child reads all names before it answers, so neither side waits for the other.
  FILE* to_child = fdopen(input[1], "w");
  std::fputs(names.c_str(), to_child);
  std::fclose(to_child);
  return {pid, fdopen(output[0], "r")};
}

/// Reads a child's answers; returns the line it died at ("peer ddot/..."), empty if it did not.
std::string collect(const Child& child, Measurements& found) {
  std::string pending;
  char line[256];
  while (std::fgets(line, sizeof line, child.answers)) {
    std::istringstream words(line);
    std::string word, name;
    words >> word >> name;
    Measurement m;
    if (word == "ours" || word == "peer") {
      pending = word + " " + name;
      continue;
    }
    if (word == "time") {
      m.state = State::timed;
      words >> m.time.ours >> m.time.peer;
    } else if (word == "wrong") {
      m.state = State::wrong;
      words >> word;
      m.deviation = std::strtod(word.c_str(), nullptr);
    }
    found[name] = m;
    pending.clear();
  }
  std::fclose(child.answers);
  int status = 0;
  waitpid(child.pid, &status, 0);
  const bool died = !WIFEXITED(status) || WEXITSTATUS(status) != 0;
  return died && pending.empty() ? "peer" : pending;
}

}  // namespace

Measurements run_session(const Peer& peer, const std::vector<const Case*>& cases,
                         const Effort& effort) {
  Measurements found;
  for (int crashes = 0; crashes < most_crashes;) {
    std::string names;
    for (const Case* c : cases) {
      if (!found.count(c->name)) names += c->name + "\n";
    }
    if (names.empty()) return found;
    const std::string died_at = collect(start_child(peer, names, effort), found);
    if (died_at.empty()) return found;
    ++crashes;
    const bool ours = died_at.compare(0, 5, "ours ") == 0;
    if (died_at.size() > 5) {
      found[died_at.substr(5)].state = ours ? State::ours_crashed : State::peer_crashed;
    }
  }
  for (const Case* c : cases) {
    if (!found.count(c->name)) found[c->name].state = State::peer_crashed;
  }
  return found;
}

int serve_session(int argc, char** argv) {
  if (argc != 5) return 2;
  const std::string path = argv[2];
  const Effort effort{std::atoi(argv[3]), std::atof(argv[4])};
  // Freed memory stays with the process: page faults are not what a case measures.
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
  const rlimit no_core{0, 0};  // some peers are known to crash
  setrlimit(RLIMIT_CORE, &no_core);

  std::map<std::string, Case> cases;
  for (Case& c : all_cases()) cases.emplace(c.name, std::move(c));
  std::vector<std::string> names;
  for (std::string name; std::getline(std::cin, name);) names.push_back(name);

  std::unique_ptr<PeerLibrary> library;
  if (!path.empty()) {
    library = std::make_unique<PeerLibrary>(path);
    if (!library->is_open()) {
      std::fprintf(stderr, "%s\n", library->error().c_str());
      return 1;
    }
  }
  for (const std::string& name : names) {
    const auto found = cases.find(name);
    if (found == cases.end()) return 2;
    alarm(case_seconds);
    answer(found->second, library.get(), effort);
    std::fflush(stdout);
  }
  return 0;
}

}  // namespace jex::bench
