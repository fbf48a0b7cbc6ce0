#include "terminal/UserProcess.h"

#include <windows.h>

#include <utility>

#include "terminal/Command.h"
#include "terminal/Failure.h"

struct UserProcess::Handles {
  HANDLE process = nullptr;  // null after it has ended
  HANDLE output = nullptr;   // the end of the pipe from which the parent reads
};

namespace {

[[noreturn]] void Refuse() {
  throw Failure{eErrOutOfMemory, "Starting a user", __FILE__, __LINE__};
}

// Writes a word of a command line in quotation marks, as the system takes it apart again:
// backslashes count only before a quotation mark.
std::string Quoted(const std::string& word) {
  std::string text = "\"";
  std::size_t backslashes = 0;
  for (const char c : word) {
    if (c == '"') text.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    text += c;
  }
  return text.append(backslashes, '\\') + '"';
}

}  // namespace

UserProcess::UserProcess(const std::vector<std::string>& arguments)
    : handles_(std::make_unique<Handles>()) {
  char program[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, program, MAX_PATH);
  std::string line = Quoted(program);
  for (const std::string& word : arguments) line += ' ' + Quoted(word);

  HANDLE written_end = nullptr;
  if (CreatePipe(&handles_->output, &written_end, nullptr, 0) == 0) Refuse();
  SetHandleInformation(written_end, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  start.hStdOutput = written_end;
  start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started{};
  const bool runs = CreateProcessA(program, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                   nullptr, &start, &started) != 0;
  CloseHandle(written_end);
  if (runs) {
    CloseHandle(started.hThread);
    handles_->process = started.hProcess;
    return;
  }
  CloseHandle(handles_->output);
  Refuse();
}

UserProcess::UserProcess(UserProcess&& other) noexcept = default;

UserProcess::~UserProcess() {
  if (handles_ == nullptr) return;  // moved away
  Kill();
  CloseHandle(handles_->output);
}

UserProcess::State UserProcess::Look() {
  if (WaitForSingleObject(handles_->process, 0) == WAIT_TIMEOUT) return State::kRuns;
  DWORD status = 0;
  GetExitCodeProcess(handles_->process, &status);
  CloseHandle(std::exchange(handles_->process, nullptr));
  if (status == kStopped || status == STATUS_CONTROL_C_EXIT) return State::kInterrupted;
  return status == 0 ? State::kSucceeded : State::kFailed;
}

void UserProcess::Kill() {
  if (handles_->process == nullptr) return;
  TerminateProcess(handles_->process, 1);
  WaitForSingleObject(handles_->process, INFINITE);
  CloseHandle(std::exchange(handles_->process, nullptr));
}

std::string UserProcess::TakeOutput() {
  std::string text;
  char block[4096];
  DWORD waiting = 0;
  while (PeekNamedPipe(handles_->output, nullptr, 0, nullptr, &waiting, nullptr) != 0 &&
         waiting > 0) {
    DWORD got = 0;
    if (ReadFile(handles_->output, block, sizeof block, &got, nullptr) == 0) break;
    text.append(block, got);
  }
  return text;
}
