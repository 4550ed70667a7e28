// Call from a program with a window: a worker thread calls, the window's thread never blocks.
//
// usage: worker_thread MILLISECONDS     how long the window waits for the answer
//
// The wait is bounded, the call is not: nothing cancels it. It continues, a change may still be
// made, and queued calls wait behind it. As no thread may be in a call when main returns, the
// program can then only end by _Exit. A call in a child process can be ended: child_process.cc.
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <future>
#include <iostream>
#include <mutex>
#include <queue>
#include <string>
#include <thread>

#include "DantegRPC.h"

namespace {

using Task = std::packaged_task<std::string()>;
std::mutex mutex;
std::condition_variable arrived;
std::queue<Task> tasks;  // an empty one ends the thread

void Work() {
  for (;;) {
    std::unique_lock lock(mutex);
    arrived.wait(lock, [] { return !tasks.empty(); });
    Task task = std::move(tasks.front());
    tasks.pop();
    lock.unlock();
    if (!task.valid()) return;
    task();
  }
}

void Post(Task task) {
  const std::lock_guard lock(mutex);
  tasks.push(std::move(task));
  arrived.notify_one();
}

}  // namespace

int main(int argc, char** argv) {
  std::thread worker(Work);
  Task task([value = std::string()]() mutable { return DantegRPC::GetName(value) ? value : "?"; });
  std::future<std::string> name = task.get_future();
  Post(std::move(task));  // a window would return to its event loop here and look again later
  const std::chrono::milliseconds limit(argc == 2 ? std::atoi(argv[1]) : 1000);
  if (name.wait_for(limit) == std::future_status::timeout) {
    std::cout << "no answer yet; the call continues" << std::endl;
    std::_Exit(3);
  }
  std::cout << "device name: " << name.get() << '\n';
  Post(Task());
  worker.join();
}
