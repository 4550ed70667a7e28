// Calls of the daemons. Each ends within the time limit, and a failure says what has
// become of it: not done, or not known.
#pragma once

#include <grpcpp/channel.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include "ostrevan/common.pb.h"
#include "tools/call_options.h"
#include "tools/daemon.h"
#include "tools/failure.h"
#include "tools/rpc.h"

namespace tool {

/// What the failure of a call reports.
struct Asked {
  Daemon daemon;
  const char* rpc;
  std::string action;  // such as "set the host name"
  bool changes = false;
};

/// The channel to a daemon, made when it is first needed.
const std::shared_ptr<grpc::Channel>& ChannelTo(Daemon daemon);

/// Calls and returns; throws a Failure unless the status is OK.
void Call(const Asked& asked, const std::function<grpc::Status(grpc::ClientContext&)>& call);

/// For a change that the daemon's reply declines.
[[noreturn]] void ThrowRejected(const Asked& asked);

template <class Stub>
Stub& StubOf() {
  static Stub stub(ChannelTo(kDaemonOf<Stub>));
  return stub;
}

/// An RPC that changes nothing.
template <class Stub, class Request, class Reply>
Reply Read(const Rpc<Stub, Request, Reply>& rpc, const std::string& action,
           const Request& request = {}) {
  Reply reply;
  Call({kDaemonOf<Stub>, rpc.name, action}, [&](grpc::ClientContext& context) {
    return (StubOf<Stub>().*rpc.method)(&context, request, &reply);
  });
  return reply;
}

/// Null if the daemon does not implement it, as daemons may those that the library does
/// not call.
template <class Stub, class Request, class Reply>
std::optional<Reply> ReadIfImplemented(const Rpc<Stub, Request, Reply>& rpc,
                                       const std::string& action, const Request& request = {}) {
  try {
    return Read(rpc, action, request);
  } catch (const Failure& failure) {
    if (failure.grpc_status != "UNIMPLEMENTED") throw;
    return std::nullopt;
  }
}

/// An RPC that changes something, which the daemon must confirm.
template <class Stub, class Request, class Reply>
void Change(const Rpc<Stub, Request, Reply>& rpc, const std::string& action,
            const Request& request = {}) {
  Reply reply;
  const Asked asked{kDaemonOf<Stub>, rpc.name, action, true};
  Call(asked, [&](grpc::ClientContext& context) {
    return (StubOf<Stub>().*rpc.method)(&context, request, &reply);
  });
  if constexpr (!std::is_same_v<Reply, ostrevan::common::Empty>)
    if (!reply.success()) ThrowRejected(asked);
}

/// Where a person finds which objects there are, and whether the one in question is
/// among them.
struct Listing {
  const char* command;  // such as "channel list"
  std::function<bool()> has_object;
};

Failure NotFound(const Asked& asked, const Listing& listing);

/// The same as Change, for a change of one object. If the daemon answers but does not do
/// it, and has no such object, the failure is kNotFound.
template <class Stub, class Request, class Reply>
void ChangeObject(const Listing& listing, const Rpc<Stub, Request, Reply>& rpc,
                  const std::string& action, const Request& request) {
  try {
    Change(rpc, action, request);
  } catch (const Failure& failure) {
    const bool is_answer =
        failure.status == ExitStatus::kRejected || failure.status == ExitStatus::kErrorStatus;
    if (!is_answer || listing.has_object()) throw;
    throw NotFound({kDaemonOf<Stub>, rpc.name, action, true}, listing);
  }
}

/// The first entry with this id; null if there is none.
template <class List>
auto FindById(const List& entries, std::int32_t id) -> decltype(&*entries.begin()) {
  for (const auto& entry : entries)
    if (entry.id() == id) return &entry;
  return nullptr;
}

}  // namespace tool
