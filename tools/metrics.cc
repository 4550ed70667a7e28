// networkgrpc metrics: what a monitoring system collects, in the text format of Prometheus.
#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <vector>

#include "state_document/names.h"
#include "state_document/save_file.h"
#include "terminal/joined.h"
#include "tools/call.h"
#include "tools/commands.h"
#include "tools/dante.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/parallel.h"
#include "tools/probe.h"
#include "tools/routing_json.h"
#include "tools/switch.h"

namespace tool {
namespace {

constexpr int kBytesPerMegabit = 125000;
constexpr mode_t kReadableByAll = 0644;
const Json kNoLabels = Json::object();

class Metrics {
 public:
  /// One with samples to come.
  Metrics& Begin(const std::string& name, const std::string& help) {
    list.push_back({{"name", "networkgrpc_" + name},
                    {"help", help},
                    {"type", "gauge"},
                    {"samples", Json::array()}});
    return *this;
  }
  /// A sample of the last one.
  void Add(const Json& labels, const Json& value) {
    list.back()["samples"].push_back({{"labels", labels}, {"value", value}});
  }
  void AddOne(const std::string& name, const std::string& help, const Json& value) {
    Begin(name, help).Add(kNoLabels, value);
  }
  void AddAll(const Metrics& more) {
    std::copy(more.list.begin(), more.list.end(), std::back_inserter(list));
  }

  const Json& List() const { return list; }

 private:
  Json list = Json::array();
};

// What one daemon reports; of one that fails, nothing.
struct Part {
  bool up = false;
  double round_trip = 0;  // seconds
  Metrics metrics;
};

void AddInterfaces(Metrics& metrics, const std::vector<Interface>& interfaces) {
  const auto labels = [](const Interface& it) {
    return Json{{"interface", it.name}, {"role", it.role}};
  };
  metrics.Begin("interface_active", "Whether the interface is active: 1 or 0.");
  for (const Interface& it : interfaces) metrics.Add(labels(it), it.IsActive() ? 1 : 0);
  metrics.Begin("interface_link_speed_bytes_per_second",
                "Speed of the interface's link; 0 without a link.");
  for (const Interface& it : interfaces) {
    const Json in_effect = ToJson(it)["in_effect"];
    if (in_effect.is_null() || in_effect["speed_mbit_s"].is_null()) continue;
    metrics.Add(labels(it), in_effect["speed_mbit_s"].get<int>() * kBytesPerMegabit);
  }
}

void ReadNetwork(Metrics& metrics) {
  AddInterfaces(metrics, ReadInterfaces());
  metrics.Begin("network_info", "Settings of the host, as labels; always 1.")
      .Add({{"hostname", ReadHostname()},
            {"switch_mode", ReadSwitchModeInEffect().name()},
            {"ntp", terminal::Joined(ReadNtpServers(), ",")},
            {"dns", terminal::Joined(ReadDnsServers(), ",")},
            {"gateway", ReadGateway()}},
           1);
}

// One sample for each state: that of the current one is 1. A daemon may have others.
void AddClock(Metrics& metrics, const Json& clock) {
  if (clock.is_null()) return;  // the daemon does not report it
  metrics.Begin("ptp_clock_state", "State of the PTP clock: 1 for the current one, else 0.");
  for (const char* state : state_document::kClocks)
    metrics.Add({{"state", state}}, clock == state ? 1 : 0);
  if (clock.is_number()) metrics.Add({{"state", clock.dump()}}, 1);
}

void AddChannels(Metrics& metrics) {
  const auto links = ReadRouting(ReadRxChannels());
  const auto subscribed = std::count_if(links.begin(), links.end(), [](const auto& link) {
    return !SourceText(ToJson(link)).empty();
  });
  metrics.AddOne("tx_channels", "Number of transmit channels.", ReadTxChannels().channels_size());
  metrics.AddOne("rx_channels", "Number of receive channels.", links.size());
  metrics.AddOne("rx_channels_subscribed", "Number of receive channels with a subscription.",
                 subscribed);
}

void ReadDante(Metrics& metrics) {
  const Json ptp = ReadPtp();
  AddClock(metrics, ptp["clock"]);
  AddChannels(metrics);
  metrics.AddOne("sample_rate", "Sample rate, in the daemon's unit.", ReadSampleRate());
  metrics.AddOne("latency", "Latency, in the daemon's unit.", ReadLatency());
  metrics.Begin("dante_info", "Settings of the Dante module, as labels; always 1.")
      .Add({{"name", ReadDeviceName()},
            {"aes67", OnOff(ReadAes67())},
            {"transmit", OnOff(!ReadTransmitDisabled())},
            {"ptp_slave_only", OnOff(ptp["slave_only"])},
            {"software", Read(rpc::kGetSoftwareVersion, "read the software version").version()},
            {"firmware", Read(rpc::kGetFirmwareVersion, "read the firmware version").version()}},
           1);
}

Part ReadPart(Daemon daemon) {
  const Reply reply = Probe(daemon);
  if (reply.failure.has_value()) return {};
  Part part{true, reply.seconds, {}};
  try {
    (daemon == Daemon::kDante ? ReadDante : ReadNetwork)(part.metrics);
  } catch (const Failure&) {
    return {};
  }
  return part;
}

Json ReadMetrics() {
  constexpr std::array<Daemon, 2> kDaemons{Daemon::kNetworkManager, Daemon::kDante};
  std::array<Part, 2> parts;
  Parallel(parts.size(), [&](std::size_t i) { parts.at(i) = ReadPart(kDaemons.at(i)); });
  Metrics metrics;
  const auto labels = [&](std::size_t i) { return Json{{"daemon", Name(kDaemons.at(i))}}; };
  metrics.Begin("up", "Whether every reading of the daemon succeeded: 1 or 0.");
  for (std::size_t i = 0; i < parts.size(); ++i) metrics.Add(labels(i), parts.at(i).up ? 1 : 0);
  metrics.Begin("round_trip_seconds", "Duration of one call of the daemon.");
  for (std::size_t i = 0; i < parts.size(); ++i)
    if (parts.at(i).up) metrics.Add(labels(i), parts.at(i).round_trip);
  for (const Part& part : parts) metrics.AddAll(part.metrics);
  return {{"metrics", metrics.List()}};
}

// --- Text ------------------------------------------------------------------------

// The format escapes three characters. A terminal may show the file: other characters
// that are not printable are escaped as everywhere.
std::string LabelValue(const std::string& value) {
  std::string text;
  std::size_t begin = 0;
  for (std::size_t end = 0; end <= value.size(); ++end) {
    const char character = end < value.size() ? value[end] : '\0';
    if (end < value.size() && character != '\n' && character != '"' && character != '\\') continue;
    std::string plain = terminal::Printable(value.substr(begin, end - begin));
    for (std::size_t at = 0; (at = plain.find('\\', at)) != std::string::npos; at += 2)
      plain.insert(at, 1, '\\');
    text += plain;
    if (end < value.size())
      text += character == '\n' ? std::string("\\n") : std::string({'\\', character});
    begin = end + 1;
  }
  return text;
}

std::string ShowMetrics(const Json& result) {
  std::string text;
  for (const Json& metric : result["metrics"]) {
    const std::string name = metric["name"];
    if (metric["samples"].empty()) continue;
    text += "# HELP " + name + " " + metric["help"].get<std::string>() + "\n";
    text += "# TYPE " + name + " " + metric["type"].get<std::string>() + "\n";
    for (const Json& sample : metric["samples"]) {
      std::vector<std::string> labels;
      for (const auto& [label, value] : sample["labels"].items())
        labels.push_back(label + "=\"" + LabelValue(value) + "\"");
      text += name + (labels.empty() ? "" : "{" + terminal::Joined(labels, ",") + "}") + " " +
              sample["value"].dump() + "\n";
    }
  }
  return text;
}

// A file that cannot be written is named before the daemons are asked.
Json WriteMetrics(const std::string& file) {
  try {
    if (!file.empty()) state_document::CheckSavable(file);
    Json metrics = ReadMetrics();
    if (!file.empty()) state_document::SaveFile(file, ShowMetrics(metrics), kReadableByAll);
    return metrics;
  } catch (const std::runtime_error& error) {
    throw Failure(ExitStatus::kFailed, error.what());
  }
}

}  // namespace

void AddMetrics(Tool& tool) {
  const auto output = std::make_shared<std::string>();
  Command verb = tool.AddVerb(
      tool.Top(), "metrics",
      {"Print measurements and settings for Prometheus",
       [output] { return WriteMetrics(*output); },
       [output](const Json& result) { return output->empty() ? ShowMetrics(result) : ""; },
       {"networkgrpc metrics", "networkgrpc metrics --output networkgrpc.prom"}});
  verb.Option("--output", "FILE", output.get(),
              "Write them to this file instead, which is replaced as a whole or not at all and "
              "which everyone can read")
      .Offer(Candidates::kFiles);
}

}  // namespace tool
