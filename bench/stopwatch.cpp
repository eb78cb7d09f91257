// Runs one program to its end and prints its cost:
//   stopwatch INPUT OUTPUT PROGRAM [ARGUMENT...]
// with standard input from the file INPUT and standard output into the file OUTPUT. Prints the wall
// time and the processor time in nanoseconds, the peak memory in KiB and the exit status. It is a
// separate small program, since a child's peak memory includes that of the process that started it.
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::int64_t nanoseconds(std::int64_t seconds, std::int64_t rest) {
  return seconds * 1'000'000'000 + rest;
}

std::int64_t now() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return nanoseconds(time.tv_sec, time.tv_nsec);
}

std::int64_t spent(const timeval& time) { return nanoseconds(time.tv_sec, time.tv_usec * 1000); }

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return 64;
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, argv[1], O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, argv[2], O_WRONLY | O_CREAT | O_TRUNC,
                                   0600);
  const std::int64_t start = now();
  pid_t program = -1;
  if (posix_spawnp(&program, argv[3], &files, nullptr, argv + 3, environ) != 0) return 127;
  int status = -1;
  rusage used{};
  if (wait4(program, &status, 0, &used) != program) return 1;
  const std::int64_t wall = now() - start;
  std::printf("%" PRId64 " %" PRId64 " %ld %d\n", wall, spent(used.ru_utime) + spent(used.ru_stime),
              used.ru_maxrss, WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
  return 0;
}
