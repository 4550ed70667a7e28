#include "bench/peers/dbus.h"

#include <systemd/sd-bus.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "bench/peers/forked_server.h"

namespace bench {
namespace {

constexpr const char* kService = "bench.Device";
constexpr const char* kPath = "/bench/device";

class Folder {
 public:
  Folder() {
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("no temporary folder");
  }
  ~Folder() { std::filesystem::remove_all(path); }

  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string File(const std::string& file) const { return path + "/" + file; }

 private:
  std::string path = std::filesystem::temp_directory_path() / "networkgrpc-bench-XXXXXX";
};

struct Connection {
  Connection() = default;
  ~Connection() { sd_bus_flush_close_unref(bus); }

  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool Open(const std::string& address) {
    return sd_bus_new(&bus) >= 0 && sd_bus_set_address(bus, address.c_str()) >= 0 &&
           sd_bus_set_bus_client(bus, 1) >= 0 && sd_bus_start(bus) >= 0;
  }

  sd_bus* bus = nullptr;
};

// Everything is allowed on a bus that only this process knows.
void WriteConfiguration(const std::string& file, const std::string& address) {
  std::ofstream(file) << "<busconfig><type>session</type><listen>" << address
                      << "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                         "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";
}

// A pipe on which a child process reports to its parent that it is ready.
class ReadyPipe {
 public:
  ReadyPipe() {
    if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  }
  ~ReadyPipe() { close(ends[0]); }

  ReadyPipe(const ReadyPipe&) = delete;
  ReadyPipe& operator=(const ReadyPipe&) = delete;

  int DescriptorToWriteTo() const { return ends[1]; }

  /// In the parent; throws with this message when the child ends before.
  void Await(const char* message) {
    close(ends[1]);
    char byte = 0;
    if (read(ends[0], &byte, 1) != 1) throw std::runtime_error(message);
  }

 private:
  std::array<int, 2> ends{};
};

int ReplyWithName(sd_bus_message* call, void*, sd_bus_error*) {
  return sd_bus_reply_method_return(call, "s", "after, and longer than a small string");
}

void ServeName(const std::string& address, const ReadyPipe& ready) {
  static const std::array<sd_bus_vtable, 3> methods = {{
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("GetName", "", "s", ReplyWithName, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_VTABLE_END,
  }};
  Connection connection;
  if (!connection.Open(address) ||
      sd_bus_add_object_vtable(connection.bus, nullptr, kPath, kService, methods.data(), nullptr) <
          0 ||
      sd_bus_request_name(connection.bus, kService, 0) < 0 ||
      write(ready.DescriptorToWriteTo(), "", 1) != 1)
    return;
  for (;;) {
    const int handled = sd_bus_process(connection.bus, nullptr);
    if (handled < 0 || (handled == 0 && sd_bus_wait(connection.bus, UINT64_MAX) < 0)) return;
  }
}

void BecomeDaemon(const std::string& configuration, const ReadyPipe& ready) {
  const std::string file = "--config-file=" + configuration;
  const std::string output = "--print-address=" + std::to_string(ready.DescriptorToWriteTo());
  execlp("dbus-daemon", "dbus-daemon", "--nofork", "--nopidfile", file.c_str(), output.c_str(),
         nullptr);
}

// A process that serves once this is constructed.
struct Started {
  Started(const std::function<void(const ReadyPipe&)>& serve, const char* message)
      : process([&] { serve(ready); }) {
    ready.Await(message);
  }

  ReadyPipe ready;
  ForkedServer process;
};

}  // namespace

struct DBus::Parts {
  Folder folder;
  std::string address = "unix:path=" + folder.File("bus");
  Started daemon{[this](const ReadyPipe& ready) {
                   WriteConfiguration(folder.File("configuration"), address);
                   BecomeDaemon(folder.File("configuration"), ready);
                 },
                 "dbus-daemon does not start; is it installed?"};
  Started service{[this](const ReadyPipe& ready) { ServeName(address, ready); },
                  "the service cannot join the bus"};
  Connection connection;
};

DBus::DBus() : parts(std::make_unique<Parts>()) {
  if (!parts->connection.Open(parts->address)) throw std::runtime_error("cannot join the bus");
}

DBus::~DBus() = default;

bool DBus::ReadName(std::string& name) {
  sd_bus_message* reply = nullptr;
  const char* text = nullptr;
  const bool answered = sd_bus_call_method(parts->connection.bus, kService, kPath, kService,
                                           "GetName", nullptr, &reply, "") >= 0 &&
                        sd_bus_message_read(reply, "s", &text) >= 0;
  if (answered) name = text;
  sd_bus_message_unref(reply);
  return answered;
}

}  // namespace bench
