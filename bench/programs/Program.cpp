#include "programs/Program.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace bench::programs {

namespace {

double secondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// The file that becomes the standard output of a program.
class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&actions); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { posix_spawn_file_actions_destroy(&actions); }

  void writeTo(int descriptor) {
    posix_spawn_file_actions_adddup2(&actions, descriptor, STDOUT_FILENO);
  }
  void writeTo(const std::string& file) {
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, file.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
  }
  const posix_spawn_file_actions_t* get() const noexcept { return &actions; }

 private:
  posix_spawn_file_actions_t actions{};
};

/// A program that was started.
class Running {
 public:
  Running(const std::vector<std::string>& arguments, const FileActions& actions) {
    std::vector<char*> texts;
    for (const std::string& text : arguments) texts.push_back(const_cast<char*>(text.data()));
    texts.push_back(nullptr);
    if (posix_spawn(&process, texts[0], actions.get(), nullptr, texts.data(), environ) != 0) {
      throw std::runtime_error("cannot be started: " + arguments[0]);
    }
    name = arguments[0];
  }

  Finished wait() const {
    int status = 0;
    rusage used{};
    wait4(process, &status, 0, &used);
    if (status != 0) throw std::runtime_error("did not end well: " + name);
    return {secondsOf(used.ru_utime) + secondsOf(used.ru_stime), {}};
  }

 private:
  pid_t process = 0;
  std::string name;
};

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> block{};
  for (ssize_t count = 0; (count = read(descriptor, block.data(), block.size())) > 0;) {
    text.append(block.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

Finished run(const std::vector<std::string>& arguments) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe can be made");
  FileActions actions;
  actions.writeTo(ends[1]);
  const Running program(arguments, actions);
  close(ends[1]);
  std::string output = readAll(ends[0]);
  close(ends[0]);
  Finished finished = program.wait();
  finished.output = std::move(output);
  return finished;
}

Finished runToFile(const std::vector<std::string>& arguments, const std::string& outputFile) {
  FileActions actions;
  actions.writeTo(outputFile);
  return Running(arguments, actions).wait();
}

}  // namespace bench::programs
