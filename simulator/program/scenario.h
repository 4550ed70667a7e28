// A script of what happens to the devices while they run (docs/simulator.md):
//
//   {"steps": [
//     {"call": "SetName", "count": 2, "fault": "GetName:reject"},
//     {"after": 0.5, "set": {"network.interfaces[lan0].speed": "none"}},
//     {"restart": "DAPI"}]}
//
// A step with `call` or `after` waits for its trigger, counted from the step before it;
// one without follows at once. The call that triggers a step is answered after that step
// and those that follow at once, so that every run of the same calls gives the same
// answers. A daemon that these steps stop does not answer it.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "simulator/hooks.h"
#include "simulator/json.h"

namespace simulator {

class Scenario {
 public:
  /// Carries out a command of the control socket. Can throw.
  using Perform = std::function<void(int device, const std::string& command, const Json& argument)>;

  /// Reads the file. Throws std::runtime_error, which names the file and the step.
  explicit Scenario(std::string given);
  ~Scenario() { End(); }

  Scenario(const Scenario&) = delete;
  Scenario& operator=(const Scenario&) = delete;

  /// For Hooks::hold.
  bool Hold(int device, const std::string& method, const Hooks::Resume& resume);

  /// To be called once, when the devices run. `perform` must work until this object is
  /// destroyed.
  void Start(Perform perform);
  /// Ends it, and lets the calls go on that it holds.
  void End();

 private:
  struct Action {
    std::size_t number;  // of the step
    int device;
    std::string command;
    Json argument;
  };
  // Steps that are carried out together, after their trigger.
  struct Group {
    double after = 0;  // seconds, if `call` is empty
    std::string call;
    unsigned count = 1;
    int device = 1;  // that receives the calls
    std::vector<Action> actions;
  };

  void ReadStep(std::size_t number, const Json& step);
  void Run(const Perform& perform);
  bool Await(const Group& group, Hooks::Resume& resume);
  void CarryOut(const Group& group, const Perform& perform, Hooks::Resume resume);

  const std::string file;
  std::vector<Group> groups;

  std::mutex mutex;  // guards the members below
  std::condition_variable changed;
  std::size_t armed = 0;  // the group whose calls are counted
  unsigned seen = 0;
  std::deque<Hooks::Resume> triggered;
  bool ends = false;
  std::thread thread;
};

}  // namespace simulator
