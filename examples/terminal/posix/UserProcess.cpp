#include "terminal/UserProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>

#include "terminal/Command.h"
#include "terminal/Failure.h"

struct UserProcess::Handles {
  pid_t process = 0;  // 0 after it has ended
  int output = -1;    // the end of the pipe from which the parent reads
};

namespace {

[[noreturn]] void Refuse() {
  throw Failure{eErrOutOfMemory, "Starting a user", __FILE__, __LINE__};
}

}  // namespace

UserProcess::UserProcess(const std::vector<std::string>& arguments)
    : handles_(std::make_unique<Handles>()) {
  std::string program = program_invocation_short_name;
  std::vector<std::string> words = arguments;
  std::vector<char*> pointers = {program.data()};
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);

  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) Refuse();  // so no other user keeps this pipe open
  handles_->output = ends[0];
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  const int error = posix_spawn(&handles_->process, "/proc/self/exe", &actions, nullptr,
                                pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (error == 0) return;
  close(handles_->output);
  Refuse();
}

UserProcess::UserProcess(UserProcess&& other) noexcept = default;

UserProcess::~UserProcess() {
  if (handles_ == nullptr) return;  // moved away
  Kill();
  close(handles_->output);
}

UserProcess::State UserProcess::Look() {
  int status = 0;
  if (waitpid(handles_->process, &status, WNOHANG) == 0) return State::kRuns;
  handles_->process = 0;
  const bool stopped = WIFEXITED(status) && WEXITSTATUS(status) == kStopped;
  if (stopped || (WIFSIGNALED(status) && WTERMSIG(status) == SIGINT)) return State::kInterrupted;
  return status == 0 ? State::kSucceeded : State::kFailed;
}

void UserProcess::Kill() {
  if (handles_->process == 0) return;
  kill(handles_->process, SIGKILL);
  waitpid(handles_->process, nullptr, 0);
  handles_->process = 0;
}

std::string UserProcess::TakeOutput() {
  std::string text;
  char block[4096];
  for (ssize_t got = 0; (got = read(handles_->output, block, sizeof block)) > 0;) {
    text.append(block, static_cast<std::size_t>(got));
  }
  return text;
}
