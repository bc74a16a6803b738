// SPDX-License-Identifier: GPL-3.0-or-later
#include <atomic>
#include <csignal>
#include <iostream>
#include <new>
#include <string>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "qt/numbered_save.h"

namespace {

using brelant::test::NumberedSaver;

/// What a worker leaves behind when it is killed.
struct Progress {
  std::atomic<unsigned> done{0};
  std::atomic<bool> saving{false};
};

/// Memory that a worker and the program that started it have in common.
Progress* SharedProgress() {
  void* memory = mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return memory == MAP_FAILED ? nullptr : new (memory) Progress;
}

/// Saves until it is killed; with `first` each save finds no file.
[[noreturn]] void Work(const std::string& path, bool first, Progress& progress) {
  constexpr unsigned kLongestLife = 10;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  alarm(kLongestLife);
  NumberedSaver saver;
  for (;;) {
    progress.saving = true;
    if (!saver.Save(path, progress.done + 1)) _exit(1);
    ++progress.done;
    progress.saving = false;
    if (first) saver.Remove(path);
  }
}

}  // namespace

/// Each line of standard input, "again PATH" or "first PATH", starts a worker, whose process number is
/// printed. When somebody has killed it: how many saves there have been, and 1 if one was under way; -1 if
/// it ended in another way. To fork spares the start of a program for each kill.
int main() {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  auto* progress = SharedProgress();
  if (progress == nullptr) return 1;
  std::string how;
  std::string path;
  while (std::cin >> how && std::getline(std::cin >> std::ws, path)) {
    progress->saving = false;
    const pid_t worker = fork();
    if (worker < 0) return 1;
    if (worker == 0) Work(path, how == "first", *progress);
    std::cout << worker << std::endl;
    int status = 0;
    if (waitpid(worker, &status, 0) != worker) return 1;
    const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    std::cout << progress->done << ' ' << (killed ? int{progress->saving} : -1) << std::endl;
  }
  return 0;
}
