#include "simulator/program/program_help.h"

#include "terminal/help.h"

namespace simulator {
namespace {

std::string FaultsSection() {
  using terminal::Entry;
  return terminal::Section(
      "Faults",
      terminal::Wrapped(
          "METHOD is a method, such as GetName or DAPI.GetName; DAPI.* and NetworkManager.* stand "
          "for all methods of a daemon, * for all of both; a path, /package.Service/Name, for a "
          "method that the schemas lack. FAULT is one of the words below, or several separated by "
          "commas: one for what the call meets, and any of those with a value. If several faults "
          "match a call, the first one given applies. JSON is an object with some of the fields of "
          "the message.",
          2) +
          "\n" + Entry("status=CODE", "the call fails with this gRPC status") +
          Entry("reject", "the reply reports that the request was rejected") +
          Entry("ignore", "the reply reports success, but nothing changes") +
          Entry("empty", "the reply has no bytes") +
          Entry("malformed", "the reply cannot be parsed") +
          Entry("oversize", "the reply exceeds the client's limit of 4 MiB") +
          Entry("freeze", "no reply, until the fault is cleared") +
          Entry("drop", "the connection is closed") +
          Entry("stop", "the daemon is stopped; for DAPI.* and NetworkManager.*") +
          Entry("goaway",
                "connections without a call for the time of delay are closed with GOAWAY; for "
                "DAPI.* and NetworkManager.*") +
          Entry("none", "the call is answered as usual; can be left out before the words below") +
          Entry("request=JSON", "the device receives these values instead of those sent") +
          Entry("answer=JSON", "the reply has these values, and status OK") +
          Entry("then=METHOD", "after the call, the device receives this one, without parameters") +
          Entry("when=JSON", "the fault applies to calls whose request has these values") +
          Entry("delay=MS", "all of this happens MS milliseconds later") +
          Entry("after=N", "the fault does not apply to the first N calls") +
          Entry("times=N", "the fault applies to N calls; default: to all") +
          Entry("message=TEXT", "message of a status; last, because it may contain commas"));
}

std::string ExitStatusSection() {
  using terminal::Entry;
  return terminal::Section(
      "Exit status",
      Entry("0", "ended by SIGTERM, SIGINT or SIGHUP; with ctl: done") +
          Entry("1",
                "a port or file cannot be used, a state is invalid, or calls came that were not in "
                "the recording; with ctl: no simulator can "
                "be reached, or it rejected the command") +
          Entry("2", "the command line is wrong") +
          Entry("3", "the time limit of ctl wait has passed") +
          Entry("N",
                "with run, record and replay: the exit status of COMMAND, or 128 plus the signal "
                "that ended it; 127 "
                "if it is not found, 126 if it cannot be run"));
}

std::string EnvironmentAndFilesSections() {
  using terminal::Entry;
  return terminal::Section(
             "Environment",
             Entry("XDG_RUNTIME_DIR", "the folder of the control socket 'auto'") +
                 Entry("TMPDIR",
                       "without XDG_RUNTIME_DIR, where a private folder is made for that socket; "
                       "default /tmp") +
                 Entry("control", "unix:PATH, the control socket of ctl, as in the ready line") +
                 Entry("GRPC_VERBOSITY", "what gRPC prints on standard error; default NONE")) +
         terminal::Section(
             "Files",
             Entry("$XDG_RUNTIME_DIR/networkgrpc-simulator/control", "the control socket 'auto'") +
                 Entry("$TMPDIR/networkgrpc-simulator.XXXXXX/control",
                       "the same without XDG_RUNTIME_DIR; removed at exit") +
                 Entry("PREFIX/share/NetworkgRPC/simulator/state.json",
                       "a state with every member, its meaning and default"));
}

}  // namespace

std::string MoreHelp(const CLI::App& command, bool /*all*/) {
  if (command.get_parent() != nullptr) return "";
  return FaultsSection() + ExitStatusSection() + EnvironmentAndFilesSections() +
         terminal::Examples({
             "networkgrpc-simulator run -- networkgrpc status",
             "networkgrpc-simulator",
             "eval \"$(networkgrpc-simulator --export)\"",
             "networkgrpc-simulator --dapi unix:dapi.sock --socket-mode 660",
             "networkgrpc-simulator --name hall --address-book devices.toml",
             "networkgrpc-simulator --save hall.json",
             "networkgrpc-simulator --state hall.json --save hall.json",
             "networkgrpc-simulator --fault SetName:reject,times=1",
             "networkgrpc-simulator --fault 'DAPI.*:delay=250' --fault '*:drop,times=1'",
             "networkgrpc-simulator --devices 3",
             "networkgrpc-simulator record --log hall.jsonl --redact -- networkgrpc status",
             "networkgrpc-simulator replay hall.jsonl -- networkgrpc status",
             "networkgrpc-simulator --control auto",
             "networkgrpc-simulator ctl fault 'GetName:status=INTERNAL,message=busy'",
             "networkgrpc-simulator ctl calls",
             "networkgrpc-simulator ctl set 'network.interfaces[lan0].speed' none",
             "networkgrpc-simulator ctl wait GetName --timeout 5 || [ $? = 3 ]",
             "networkgrpc-simulator ctl stop DAPI",
             "networkgrpc-simulator ctl start DAPI",
             "networkgrpc-simulator ctl clear all",
         });
}

}  // namespace simulator
