// Every RPC of the two daemons in one table: its path, the method of the generated stub
// and, where the library has one, the method of its client.
#pragma once

#include <grpcpp/channel.h>

#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "ostrevan/grpcdapi.grpc.pb.h"
#include "ostrevan/networkmanager.grpc.pb.h"

namespace support {

/// The generated stubs of both daemons, which do not use the library.
struct DaemonStubs {
  DaemonStubs(const std::shared_ptr<grpc::Channel>& network_manager,
              const std::shared_ptr<grpc::Channel>& dapi);

  std::unique_ptr<ostrevan::networkmanager::NetworkManager::Stub> network;
  std::unique_ptr<ostrevan::grpcdapi::DAPI::Stub> dante;
};

/// A call with its request. Stores the bytes of the reply in `reply`, unless that is null.
using PreparedCall = std::function<grpc::Status(std::string* reply)>;

struct Rpc {
  std::string path;
  bool has_parameters;  // its request is not Empty

  /// A call through the stub. The stubs must outlive it; `request` must parse.
  std::function<PreparedCall(const DaemonStubs& stubs, const std::string& request)> through_stub;
  /// The same through the library's client; null when that has no method for it.
  std::function<PreparedCall(const std::string& request)> through_client;
};
std::ostream& operator<<(std::ostream& out, const Rpc& rpc);

std::vector<Rpc> NetworkManagerRpcs();
std::vector<Rpc> DapiRpcs();
/// Both.
const std::vector<Rpc>& AllRpcs();
/// The one with this path; throws std::out_of_range when there is none.
const Rpc& RpcAt(const std::string& path);

// --- How entries are made ----------------------------------------------

template <class Message>
Message Parse(const std::string& bytes) {
  Message message;
  if (!message.ParseFromString(bytes))
    throw std::invalid_argument("not a " + message.GetTypeName());
  return message;
}

/// One call of a function that takes a pointer to the reply.
template <class Reply, class Call>
grpc::Status CallAndStore(const Call& call, std::string* bytes) {
  Reply reply;
  const grpc::Status status = call(&reply);
  if (bytes != nullptr) *bytes = reply.SerializeAsString();
  return status;
}

/// An RPC for which the library has no method.
template <class Stub, class Request, class Reply>
Rpc MakeRpc(std::string path, const std::unique_ptr<Stub> DaemonStubs::*stub,
            grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Reply*)) {
  return {std::move(path), !std::is_same_v<Request, ostrevan::common::Empty>,
          [=](const DaemonStubs& stubs, const std::string& bytes) -> PreparedCall {
            return [method, to = (stubs.*stub).get(),
                    request = Parse<Request>(bytes)](std::string* out) {
              grpc::ClientContext context;
              return CallAndStore<Reply>(
                  [&](Reply* reply) { return (to->*method)(&context, request, reply); }, out);
            };
          },
          nullptr};
}

/// One whose method of the client takes no parameters.
template <class Stub, class Reply, class Client>
Rpc MakeRpc(std::string path, const std::unique_ptr<Stub> DaemonStubs::*stub,
            grpc::Status (Stub::*method)(grpc::ClientContext*, const ostrevan::common::Empty&,
                                         Reply*),
            grpc::Status (Client::*client_method)(Reply*)) {
  Rpc rpc = MakeRpc(std::move(path), stub, method);
  rpc.through_client = [=](const std::string&) -> PreparedCall {
    return [=](std::string* out) {
      return CallAndStore<Reply>(
          [&](Reply* reply) { return (Client::GetInstance().*client_method)(reply); }, out);
    };
  };
  return rpc;
}

/// One whose method of the client takes a request.
template <class Stub, class Request, class Reply, class Client>
Rpc MakeRpc(std::string path, const std::unique_ptr<Stub> DaemonStubs::*stub,
            grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Reply*),
            grpc::Status (Client::*client_method)(const Request&, Reply*)) {
  Rpc rpc = MakeRpc(std::move(path), stub, method);
  rpc.through_client = [=](const std::string& bytes) -> PreparedCall {
    return [client_method, request = Parse<Request>(bytes)](std::string* out) {
      return CallAndStore<Reply>(
          [&](Reply* reply) { return (Client::GetInstance().*client_method)(request, reply); },
          out);
    };
  };
  return rpc;
}

}  // namespace support
