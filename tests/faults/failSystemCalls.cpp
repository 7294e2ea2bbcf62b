// failSystemCalls list FILE PROGRAM [ARGUMENT]...
// failSystemCalls kill N PROGRAM [ARGUMENT]...
// failSystemCalls CALL N RESULT MODE PROGRAM [ARGUMENT]...
//
// Runs a program, and lets a system call of it or of its child processes fail: the call of the
// number CALL that is the N-th one since main() began, counted from 1 (MODE "once"), or every one
// from there on
// ("on"). RESULT is the error number that it returns without being made; 0 lets it read or write
// half of what it is asked to. "list" lets nothing fail and writes the numbers of all calls to
// FILE, in their order; a slash follows that of a call that writes a folder to the disk.
// "kill" kills the process that makes the N-th call of all, in place of it.
//
// The exit status is that of the program; 128 and the signal if a signal ended it; 125 if it cannot
// be traced.
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <vector>

namespace {

constexpr int kCannotTrace = 125;

struct Fault {
  unsigned long call = 0;
  unsigned long first = 0;
  long error = 0;
  bool isRepeated = false;
  bool isKill = false;
};

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "failSystemCalls: %s: %s\n", what, std::strerror(errno));
  std::exit(kCannotTrace);
}

/// The registers of a stopped process.
class Registers {
 public:
  explicit Registers(pid_t process) : process(process) {
    if (::ptrace(PTRACE_GETREGS, process, nullptr, &values) != 0) isGone = true;
  }
  user_regs_struct* operator->() noexcept { return &values; }
  const user_regs_struct& operator*() const noexcept { return values; }
  void store() { ::ptrace(PTRACE_SETREGS, process, nullptr, &values); }
  bool isGone = false;

 private:
  pid_t process;
  user_regs_struct values{};
};

class Tracer {
 public:
  Tracer(Fault fault, std::FILE* list) : fault(fault), list(list) {}

  int run(char** arguments) {
    const pid_t program = start(arguments);
    int status = 0;
    while (true) {
      const pid_t process = ::waitpid(-1, &status, __WALL);
      if (process < 0) return result;
      if (WIFSTOPPED(status)) {
        handleStop(process, status);
        continue;
      }
      entered.erase(process);
      if (process == program) {
        result = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
      }
    }
  }

 private:
  enum class Entered { kNo, kUnchanged, kChanged, kFailing };

  static pid_t start(char** arguments) {
    const pid_t program = ::fork();
    if (program < 0) fail("fork");
    if (program == 0) {
      if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(kCannotTrace);
      ::raise(SIGSTOP);
      ::execv(arguments[0], arguments);
      ::_exit(kCannotTrace);
    }
    int status = 0;
    if (::waitpid(program, &status, 0) != program || !WIFSTOPPED(status)) fail("waitpid");
    constexpr long kOptions = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK |
                              PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;
    if (::ptrace(PTRACE_SETOPTIONS, program, nullptr, kOptions) != 0) fail("ptrace");
    ::ptrace(PTRACE_SYSCALL, program, nullptr, nullptr);
    return program;
  }

  void handleStop(pid_t process, int status) {
    int signal = WSTOPSIG(status);
    if (signal == (SIGTRAP | 0x80)) {
      handleCall(process);
      signal = 0;
    } else if (status >> 16 == PTRACE_EVENT_EXEC) {
      isProgram = true;
      signal = 0;
    } else if (status >> 16 != 0 || signal == SIGTRAP) {
      signal = 0;
    } else if (signal == SIGSTOP && !entered.contains(process)) {
      // The first stop of a child process.
      entered[process] = Entered::kNo;
      signal = 0;
    }
    ::ptrace(PTRACE_SYSCALL, process, nullptr, signal);
  }

  void handleCall(pid_t process) {
    Entered& state = entered[process];
    Registers registers(process);
    if (registers.isGone) return;
    if (state == Entered::kNo) {
      state = enter(process, registers);
    } else {
      if (state == Entered::kFailing) registers->rax = static_cast<unsigned long>(-fault.error);
      if (state == Entered::kChanged) {
        // To the program, a call changes the result only.
        registers->rdi = saved[process].rdi;
        registers->rdx = saved[process].rdx;
      }
      if (state != Entered::kUnchanged) registers.store();
      state = Entered::kNo;
    }
  }

  Entered enter(pid_t process, Registers& registers) {
    if (!isProgram) return Entered::kUnchanged;
    const unsigned long call = registers->orig_rax;
    // main() begins with this one.
    isMainRunning |= call == SYS_fcntl;
    if (!isMainRunning) return Entered::kUnchanged;
    if (list != nullptr) {
      std::fprintf(list, "%lu%s\n", call, writesFolder(process, *registers) ? "/" : "");
    }
    if (list != nullptr || (call != fault.call && !fault.isKill)) return Entered::kUnchanged;
    ++count;
    if (fault.isRepeated ? count < fault.first : count != fault.first) return Entered::kUnchanged;
    saved[process] = *registers;
    if (!fault.isKill && (fault.error == 0 || call == SYS_brk)) {
      // The latter fails by returning the end that it has not changed.
      if (call == SYS_brk) registers->rdi = 0;
      if (fault.error == 0 && registers->rdx > 1) registers->rdx /= 2;
      registers.store();
      return Entered::kChanged;
    }
    registers->orig_rax = static_cast<unsigned long>(-1);
    registers.store();
    if (fault.isKill) ::kill(process, SIGKILL);
    return Entered::kFailing;
  }

  static bool writesFolder(pid_t process, const user_regs_struct& registers) {
    if (registers.orig_rax != SYS_fsync && registers.orig_rax != SYS_fdatasync) return false;
    const std::string descriptors = "/proc/" + std::to_string(process) + "/fd/";
    std::error_code error;
    return std::filesystem::is_directory(descriptors + std::to_string(registers.rdi), error);
  }

  Fault fault;
  std::FILE* list;
  std::map<pid_t, Entered> entered;
  std::map<pid_t, user_regs_struct> saved;
  unsigned long count = 0;
  bool isProgram = false;
  bool isMainRunning = false;
  int result = kCannotTrace;
};

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount > 3 && std::strcmp(arguments[1], "list") == 0) {
    std::FILE* list = std::fopen(arguments[2], "w");
    if (list == nullptr) fail(arguments[2]);
    const int status = Tracer({}, list).run(arguments + 3);
    std::fclose(list);
    return status;
  }
  if (argumentCount > 3 && std::strcmp(arguments[1], "kill") == 0) {
    const Fault fault{.first = std::strtoul(arguments[2], nullptr, 10), .isKill = true};
    return Tracer(fault, nullptr).run(arguments + 3);
  }
  if (argumentCount < 6) return kCannotTrace;
  const Fault fault{.call = std::strtoul(arguments[1], nullptr, 10),
                    .first = std::strtoul(arguments[2], nullptr, 10),
                    .error = std::strtol(arguments[3], nullptr, 10),
                    .isRepeated = std::strcmp(arguments[4], "on") == 0};
  return Tracer(fault, nullptr).run(arguments + 5);
}
