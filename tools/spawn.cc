#include "tools/spawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>
#include <system_error>

#include "tools/failure.h"

namespace tool {

pid_t Spawn(const SpawnOptions& options, std::vector<std::string> words) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  for (const Redirection& it : options.files) {
    if (it.to == Redirection::kNull)
      posix_spawn_file_actions_addopen(&files, it.descriptor, "/dev/null", O_RDWR, 0);
    else
      posix_spawn_file_actions_adddup2(&files, it.to, it.descriptor);
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  const int flags = POSIX_SPAWN_SETSIGMASK | (options.own_session ? POSIX_SPAWN_SETSID : 0);
  posix_spawnattr_setflags(&attributes, static_cast<short>(flags));
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t process = 0;
  const int error = posix_spawnp(&process, options.program.c_str(), &files, &attributes,
                                 arguments.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  posix_spawnattr_destroy(&attributes);
  if (error != 0)
    throw Failure(ExitStatus::kFailed, "cannot run '" + options.program +
                                           "': " + std::generic_category().message(error));
  return process;
}

}  // namespace tool
