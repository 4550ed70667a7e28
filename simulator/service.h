// What the two services are written in: a table with one entry for each RPC, its
// name and a lambda that answers it. An entry translates between the wire and the
// model; network_rules.h and dante_rules.h decide what is accepted. The device is
// locked while a lambda runs.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ostrevan/grpcdapi.pb.h"
#include "ostrevan/networkmanager.pb.h"
#include "simulator/method_table.h"

namespace simulator {

std::vector<Method> NetworkMethods();
std::vector<Method> DanteMethods();

/// Null if the bytes are no such message.
template <class Message>
Json ToJson(const std::string& bytes) {
  Message message;
  if (!message.ParseFromString(bytes)) return nullptr;
  return wire_schema::Decode(*wire_schema::FindMessage(message.GetTypeName()), bytes);
}

template <class Request, class Reply, class Answer>
Method MakeMethod(std::string name, bool replies_success, Answer answer) {
  return {std::move(name),
          replies_success,
          [answer](SharedDevice& shared, const std::string& bytes, std::string& reply_bytes) {
            Request request;
            if (!request.ParseFromString(bytes))
              return grpc::Status(grpc::StatusCode::INTERNAL, "malformed request");
            Reply reply;
            const auto [lock, device] = shared.Lock();
            const grpc::Status status = answer(device, request, reply);
            if (status.ok()) reply.SerializeToString(&reply_bytes);
            return status;
          },
          ToJson<Request>,
          ToJson<Reply>,
          wire_schema::FindMessage(Request().GetTypeName()),
          wire_schema::FindMessage(Reply().GetTypeName())};
}

template <class Reply>
Method ReadFrom(std::string name, void (*read)(const Device&, Reply&)) {
  using ostrevan::common::Empty;
  return MakeMethod<Empty, Reply>(std::move(name), false,
                                  [read](const Device& device, const Empty&, Reply& reply) {
                                    read(device, reply);
                                    return grpc::Status::OK;
                                  });
}

template <class Request, class Reply>
Method ReadFrom(std::string name, grpc::Status (*read)(const Device&, const Request&, Reply&)) {
  return MakeMethod<Request, Reply>(std::move(name), false, read);
}

template <class Success, class Request>
Method ChangeWith(std::string name, bool (*change)(Device&, const Request&)) {
  return MakeMethod<Request, Success>(
      std::move(name), true, [change](Device& device, const Request& request, Success& reply) {
        reply.set_success(change(device, request));
        return grpc::Status::OK;
      });
}

/// An RPC that reads: void(const Device&, Reply&) if its request is empty, else
/// grpc::Status(const Device&, const Request&, Reply&).
template <class Lambda>
Method Read(std::string name, Lambda lambda) {
  return ReadFrom(std::move(name), +lambda);
}

/// An RPC that changes: bool(Device&, const Request&) returns Success.success,
/// false if the request is rejected.
template <class Success, class Lambda>
Method Change(std::string name, Lambda lambda) {
  return ChangeWith<Success>(std::move(name), +lambda);
}

}  // namespace simulator
