#include "tools/interrupt.h"

#include <csignal>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

namespace tool::interrupt {
namespace {

// Never destroyed: the thread that waits for signals outlives main.
struct State {
  std::mutex mutex;
  std::function<void()> handler;
  std::function<void()> before_end;
  std::set<grpc::ClientContext*> calls;
  int signal = 0;
};

State& TheState() {
  static State& state = *new State;
  return state;
}

// Without those that the caller of this program ignores, as nohup does.
sigset_t Signals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) sigaddset(&signals, signal);
  }
  return signals;
}

void EndBy(int signal) {
  std::signal(signal, SIG_DFL);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  std::raise(signal);
}

// The mutex of the state is held.
void CallHandler(State& state, int signal) {
  state.signal = signal;
  state.handler();
  for (grpc::ClientContext* call : state.calls) call->TryCancel();
}

void Handle(int signal) {
  State& state = TheState();
  const std::lock_guard<std::mutex> lock(state.mutex);
  if (state.handler) {
    CallHandler(state, signal);
    return;
  }
  if (state.before_end) state.before_end();
  EndBy(signal);
}

}  // namespace

void Watch() {
  TheState();
  const sigset_t signals = Signals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::thread([signals] {
    int signal = 0;
    while (sigwait(&signals, &signal) == 0) Handle(signal);
  }).detach();
}

Handler::Handler(std::function<void()> function) {
  State& state = TheState();
  const std::lock_guard<std::mutex> lock(state.mutex);
  outer = std::exchange(state.handler, std::move(function));
}

Handler::~Handler() {
  State& state = TheState();
  const std::lock_guard<std::mutex> lock(state.mutex);
  state.handler = std::move(outer);
}

void BeforeEnd(std::function<void()> function) {
  State& state = TheState();
  const std::lock_guard<std::mutex> lock(state.mutex);
  state.before_end = std::move(function);
}

void Request() {
  State& state = TheState();
  const std::lock_guard<std::mutex> lock(state.mutex);
  if (state.handler) CallHandler(state, SIGTERM);
}

int Signal() {
  State& state = TheState();
  const std::lock_guard<std::mutex> lock(state.mutex);
  return state.signal;
}

Call::Call(grpc::ClientContext& context) : call(&context) {
  State& state = TheState();
  const std::lock_guard<std::mutex> lock(state.mutex);
  state.calls.insert(call);
}

Call::~Call() {
  State& state = TheState();
  const std::lock_guard<std::mutex> lock(state.mutex);
  state.calls.erase(call);
}

}  // namespace tool::interrupt
