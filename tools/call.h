// Calls of the library that throw a Failure which tells apart: rejected, not
// found, cannot be reached. The library's functions return only true or false.
#pragma once

#include <grpcpp/support/status.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tools/daemon.h"
#include "tools/failure.h"
#include "tools/time_limit.h"

namespace tool {

/// One cheap call of the daemon, through its client class.
grpc::Status Probe(Daemon daemon);

/// True if a call with this status got no reply: also if the endpoint is empty,
/// when no call is made. An error status is a reply.
bool IsUnreachable(Daemon daemon, const grpc::Status& status);

/// Why `action`, such as "set the host name", failed: what a probe shows.
Failure Explain(Daemon daemon, const std::string& action);

/// Calls a function of the library, and throws if it returns false.
template <class Function>
void Do(Daemon daemon, const std::string& action, Function&& function) {
  time_limit::Calling(daemon);
  if (!std::forward<Function>(function)()) throw Explain(daemon, action);
}

/// The same for a function with one output.
template <class Value, class Function>
Value Get(Daemon daemon, const std::string& action, Function&& function) {
  Value value{};
  Do(daemon, action, [&] { return function(value); });
  return value;
}

/// Where a person finds which objects there are, and whether the one in question
/// is among them; also true if they cannot be listed.
struct Listing {
  const char* command;  // such as "channel list"
  std::function<bool()> has_object;
};

/// The same as Do for a request about one object. If the daemon answers and has
/// no such object, the failure is kNotFound.
void DoTo(const Listing& listing, Daemon daemon, const std::string& action,
          const std::function<bool()>& function);

/// The first record with this id; null if there is none.
template <class Record>
const Record* FindById(const std::vector<Record>& records, std::int32_t id) {
  for (const Record& record : records)
    if (record.id == id) return &record;
  return nullptr;
}

/// The listing that a function of the library reads.
template <class Record>
Listing ListedBy(bool (*read)(std::vector<Record>&), std::int32_t id, const char* command) {
  return {command, [read, id] {
            std::vector<Record> records;
            return !read(records) || FindById(records, id) != nullptr;
          }};
}

}  // namespace tool
