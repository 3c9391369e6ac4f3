#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <functional>
#include <iostream>

namespace kestrel::test {

/// How a child of this process ended: its exit status, or the signal as a negative number.
[[nodiscard]] inline int endOf(pid_t process) {
  int status = 0;
  ::waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// The same of a program in a process of its own; with an exception it ends with 99.
[[nodiscard]] inline int endOf(const std::function<int()>& program) {
  const pid_t process = ::fork();
  if (process != 0) return endOf(process);
  try {
    ::_exit(program());
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    ::_exit(99);
  }
}

/// Whether the check holds in a process of its own, which it may change.
[[nodiscard]] inline bool holdsInChild(const std::function<bool()>& check) {
  return endOf([&] { return check() ? 0 : 1; }) == 0;
}

/// The same for a user without rights.
[[nodiscard]] inline bool holdsForUser(uid_t user, const std::function<bool()>& check) {
  return holdsInChild([&] {
    return ::setresgid(user, user, user) == 0 && ::setresuid(user, user, user) == 0 && check();
  });
}

}  // namespace kestrel::test
