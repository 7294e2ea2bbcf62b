#pragma once

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>

/// Returns what `step` returns in a process of that user, who is only in the group of the same
/// number; nothing if this process may not become him.
template <class Step>
std::optional<bool> asUser(uid_t user, Step step) {
  constexpr int kNotThatUser = 3;
  const pid_t process = ::fork();
  if (process == 0) {
    if (::setgroups(0, nullptr) != 0 || ::setgid(user) != 0 || ::setuid(user) != 0) {
      std::_Exit(kNotThatUser);
    }
    std::_Exit(step() ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(process, &status, 0), process);
  EXPECT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kNotThatUser) return std::nullopt;
  return status == 0;
}
