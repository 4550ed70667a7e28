// What the generated clients never send, but others do.
#include "conformance/check.h"

namespace conformance {
namespace {

void ExpectUnimplemented(Session& it, const std::string& path) {
  const Reply reply = it.SendTo(path, "");
  Expect(reply.code == grpc::StatusCode::UNIMPLEMENTED,
         "the status of " + path + " is not UNIMPLEMENTED");
}

void UnknownField(Session& it) {
  constexpr const char* kField1000 = "\xc0\x3e\x01";
  const Reply reply = it.SendBytes(it.AnyRead(), kField1000);
  Expect(reply.IsOk(), "the call failed");
}

void UnreadableRequest(Session& it) {
  const char* const method =
      it.daemon == tool::Daemon::kDante ? "GetRxChannelLink" : "GetNetworkConfig";
  constexpr const char* kCutOff =
      "\x0a\x7f"
      "ab";  // a field of 127 bytes
  Expect(it.SendBytes(method, kCutOff).code != grpc::StatusCode::OK, "the status is OK");
  it.Read(it.AnyRead());
}

void UnpackedIds(Session& it) {
  Json ids = Json::array();
  std::string unpacked;
  for (const Json& interface : it.Member("GetAvailableInterfaces", "interfaces")) {
    ids.push_back(interface["id"]);
    const std::string id = wire_schema::Encode(
        *wire_schema::FindMessage("ostrevan.networkmanager.Id"), {{"id", interface["id"]}});
    unpacked += id.empty() ? std::string("\x08\x00", 2) : id;
  }
  const Json expected = it.Read("GetNetworkConfig", {{"ids", ids}});
  const Reply reply = it.SendBytes("GetNetworkConfig", unpacked);
  Expect(reply.IsOk() && reply.json == expected, "the reply differs from that for packed ids");
}

}  // namespace

Checks Wire() {
  constexpr Effect kReads = Effect::kReads;
  Checks checks = OfBoth({
      {"wire.UnknownMethod", tool::Daemon::kNone, kReads,
       "A method that the schema lacks is UNIMPLEMENTED",
       "leave it to the gRPC library: clients find out from this status what a daemon can do",
       [](Session& it) { ExpectUnimplemented(it, '/' + ServiceOf(it.daemon) + "/NoSuchMethod"); }},
      {"wire.UnknownService", tool::Daemon::kNone, kReads,
       "A service of another name is UNIMPLEMENTED",
       "register the service with its package; do not answer any path",
       [](Session& it) { ExpectUnimplemented(it, "/ostrevan.none.NoSuchService/GetName"); }},
      {"wire.UnknownField", tool::Daemon::kNone, kReads, "A field that the schema lacks is ignored",
       "clients of a later version send more fields", UnknownField},
      {"wire.UnreadableRequest", tool::Daemon::kNone, kReads,
       "A request that cannot be parsed fails, and calls after it work",
       "leave it to the gRPC library, or reply with INVALID_ARGUMENT", UnreadableRequest},
  });
  checks.push_back({"wire.UnpackedIds", tool::Daemon::kNetworkManager, kReads,
                    "Ids are also read in the form that is not packed",
                    "read repeated numbers in both forms, as Protocol Buffers require",
                    UnpackedIds});
  return checks;
}

}  // namespace conformance
