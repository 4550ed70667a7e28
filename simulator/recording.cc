#include "simulator/recording.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "simulator/base64.h"
#include "simulator/method_table.h"
#include "state_document/parse.h"
#include "state_document/table.h"

namespace simulator {
namespace {

using Clock = std::chrono::system_clock;

// "/ostrevan.grpcdapi.DAPI/GetName".
std::string PathOf(Daemon daemon, const std::string& method) {
  return '/' + std::string(ServiceOf(daemon)) + '/' + method;
}

// The daemon and method of "DAPI.GetName"; null for a method that the schemas lack.
const Method* FindByName(const std::string& name, Daemon& daemon) {
  for (const Daemon which : {Daemon::kNetworkManager, Daemon::kDapi}) {
    const std::string service = Name(which) + std::string(".");
    if (name.compare(0, service.size(), service) != 0) continue;
    daemon = which;
    return FindMethod(which, name.substr(service.size()));
  }
  return nullptr;
}

// In UTC, with milliseconds.
std::string TimeText(Clock::time_point time) {
  const auto since = time.time_since_epoch();
  const std::time_t seconds = std::chrono::duration_cast<std::chrono::seconds>(since).count();
  const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(since).count() % 1000;
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
  return text.data() + ("." + std::to_string(1000 + rest).substr(1)) + 'Z';
}

Json LineOf(const Query& query, const std::string& fault, const Outcome& outcome,
            Redactor* redactor) {
  Daemon daemon = query.daemon;
  const Method* const method = FindByName(query.name, daemon);
  const bool has_reply = outcome.status.ok() && !outcome.is_dropped;
  std::string request = query.request;
  std::string reply = has_reply ? outcome.reply : "";
  std::string message = outcome.status.error_message();
  std::string details = outcome.status.error_details();
  if (redactor != nullptr) {
    request = redactor->Request(method, request);
    reply = redactor->Reply(method, reply);
    message = redactor->Message(message);
    details.clear();
  }
  const std::chrono::duration<double, std::milli> taken = Clock::now() - query.received;
  Json line = {{"time", TimeText(query.received)},
               {"milliseconds", taken.count()},
               {"method", query.name},
               {"request", method != nullptr ? method->show(request) : Json(nullptr)},
               {"request_bytes", ToBase64(request)},
               {"fault", fault.empty() ? Json(nullptr) : Json(fault)}};
  if (outcome.is_dropped) {
    line["dropped"] = true;
    return line;
  }
  line["status"] = state_document::NameOf(state_document::kStatuses, outcome.status.error_code());
  line["message"] = message;
  if (!details.empty()) line["details_bytes"] = ToBase64(details);
  if (has_reply) {
    line["reply"] = method != nullptr ? method->show_reply(reply) : Json(nullptr);
    line["reply_bytes"] = ToBase64(reply);
  }
  return line;
}

std::string String(const Json& line, const char* member, const std::string& absent) {
  const Json value = line.value(member, Json(absent));
  if (!value.is_string()) throw std::runtime_error(std::string(member) + ": must be a string");
  return value.get<std::string>();
}

std::string Bytes(const Json& line, const char* member) {
  const std::optional<std::string> bytes = FromBase64(String(line, member, ""));
  if (!bytes.has_value()) throw std::runtime_error(std::string(member) + ": must be base64");
  return *bytes;
}

RecordedCall CallOf(const Json& line) {
  if (!line.is_object()) throw std::runtime_error("must be a JSON object");
  RecordedCall call;
  const std::string name = String(line, "method", "");
  Daemon daemon = Daemon::kDapi;
  const Method* const method = FindByName(name, daemon);
  if (method == nullptr && name.compare(0, 1, "/") != 0)
    throw std::runtime_error("method: unknown method '" + name + "'");
  call.path = method != nullptr ? PathOf(daemon, method->name) : name;
  call.is_change = method != nullptr && method->replies_success;
  call.request = Bytes(line, "request_bytes");
  call.outcome.is_dropped = line.value("dropped", Json(false)) == true;
  call.outcome.reply = Bytes(line, "reply_bytes");
  const Json status = line.value("status", Json("CANCELLED"));
  const std::int32_t code = state_document::NumberOf(state_document::kStatuses, status);
  if (code < 0 || code >= static_cast<std::int32_t>(state_document::kStatuses.size()))
    throw std::runtime_error("status: " + status.dump() + " is not a gRPC status");
  call.outcome.status = grpc::Status(static_cast<grpc::StatusCode>(code),
                                     String(line, "message", ""), Bytes(line, "details_bytes"));
  return call;
}

}  // namespace

RecordingFile::RecordingFile(const std::string& given, bool redacts)
    : name(given), file(open(given.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
  if (!file.IsOpen())
    throw std::runtime_error("cannot write " + name + ": " + std::strerror(errno));
  if (redacts) redactor = std::make_unique<Redactor>();
  WriteLine(Json({{"recording", 1}, {"redacted", redacts}}).dump());
  if (has_failed) throw std::runtime_error("cannot record");
}

void RecordingFile::Write(const Query& query, const std::string& fault, const Outcome& outcome) {
  const std::lock_guard<std::mutex> lock(mutex);
  Json line = {{"number", ++number}};
  line.update(LineOf(query, fault, outcome, redactor.get()));
  WriteLine(line.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void RecordingFile::WriteLine(const std::string& line) {
  const std::string bytes = line + '\n';
  for (std::size_t at = 0; at < bytes.size() && !has_failed;) {
    const ssize_t size = write(file.Get(), bytes.data() + at, bytes.size() - at);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return End(errno);
    at += static_cast<std::size_t>(size);
  }
  if (!has_failed) length += static_cast<off_t>(bytes.size());
}

void RecordingFile::End(int reason) {
  has_failed = true;
  std::cerr << "networkgrpc-simulator: cannot write " << name << ": " << std::strerror(reason)
            << "; the recording ends here\n";
  // Half a line would make the others useless; what cannot be cut back is no file.
  static_cast<void>(ftruncate(file.Get(), length) == 0);
}

bool RecordingFile::IsComplete() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return !has_failed;
}

std::vector<RecordedCall> ReadRecording(const std::string& file) {
  std::ifstream stream(file);
  std::vector<RecordedCall> calls;
  std::size_t number = 0;
  std::string text;
  while (std::getline(stream, text)) {
    ++number;
    try {
      const Json line = state_document::ParseJson(text);
      if (number == 1 && (!line.is_object() || line.value("recording", Json(0)) != 1))
        throw std::runtime_error("not a recording of this version");
      if (number > 1) calls.push_back(CallOf(line));
    } catch (const std::exception& error) {
      throw std::runtime_error(file + ':' + std::to_string(number) + ": " + error.what());
    }
  }
  if (number == 0)
    throw std::runtime_error("cannot read " + file + ": " +
                             (stream.is_open() ? "the file is empty" : std::strerror(errno)));
  return calls;
}

}  // namespace simulator
