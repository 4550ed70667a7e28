// networkgrpc-simulator: the simulated device as a program. It says where it
// listens in one line on standard output and serves until SIGTERM or SIGINT.
//
// Exit status: 0 ended by a signal, or --help or --version; 1 it cannot serve;
// 2 bad options.
#include <pthread.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "simulator/simulator.h"

namespace {

constexpr const char* kName = "networkgrpc-simulator";
constexpr int kCannotServe = 1;
constexpr int kBadOptions = 2;
constexpr int kLastPort = 65535;
constexpr int kMostChannels = 512;

void AddNumber(CLI::App& app, const std::string& name, int& value, int largest,
               const std::string& description) {
  app.add_option(name, value, description)
      ->check(CLI::Range(0, largest))
      ->option_text("N, 0 to " + std::to_string(largest) + ", default " + std::to_string(value));
}

void Describe(CLI::App& app, simulator::Options& options) {
  app.description(
      "Simulates a device: a network-manager daemon and a Dante API daemon on loopback.\n"
      "When both serve, one line on standard output tells their endpoints:\n"
      "  ready network_manager_url=127.0.0.1:PORT grpc_dapi_url=127.0.0.1:PORT\n"
      "SIGTERM and SIGINT end it.");
  app.set_version_flag("--version", std::string(kName) + " " + NETWORKGRPC_VERSION,
                       "Print the version and exit");
  AddNumber(app, "--network-manager-port", options.network_manager_port, kLastPort,
            "Port of the network-manager daemon; 0 is a free one");
  AddNumber(app, "--dapi-port", options.dapi_port, kLastPort,
            "Port of the Dante API daemon; 0 is a free one");
  AddNumber(app, "--tx-channels", options.tx_channels, kMostChannels,
            "Number of transmit channels");
  AddNumber(app, "--rx-channels", options.rx_channels, kMostChannels, "Number of receive channels");
  app.callback([&options] {
    if (options.dapi_port != 0 && options.dapi_port == options.network_manager_port)
      throw CLI::ValidationError("--dapi-port",
                                 "The same port as --network-manager-port, choose another");
  });
}

int Serve(const simulator::Options& options) {
  // Before any thread starts, so that every thread leaves the signals to sigwait.
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGTERM);
  sigaddset(&ending, SIGINT);
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);
  // A port that is taken is told below; gRPC's own lines about it tell less. Who
  // wants them sets the variable.
  setenv("GRPC_VERBOSITY", "NONE", 0);

  simulator::Simulator device(options);
  std::cout << "ready network_manager_url=" << device.NetworkManagerUrl()
            << " grpc_dapi_url=" << device.DapiUrl() << std::endl;
  int signal = 0;
  sigwait(&ending, &signal);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  simulator::Options options;
  CLI::App app("", kName);
  Describe(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
      return app.exit(error);  // prints the help or the version
    std::cerr << kName << ": " << error.what() << "; " << kName << " --help tells the options\n";
    return kBadOptions;
  }
  try {
    return Serve(options);
  } catch (const std::exception& error) {
    std::cerr << kName << ": " << error.what() << '\n';
    return kCannotServe;
  }
}
