// The calls that a device records.
#include "simulator/call_log.h"

#include <gmock/gmock.h>
#include <grpcpp/generic/generic_stub.h>

#include <future>

#include "tests/simulator/simulated_device.h"
#include "wire_schema/byte_buffer.h"

namespace {

using grpc::StatusCode;
using testing::IsEmpty;
using testing::SizeIs;

class CallLog : public support::SimulatedDevice {
 protected:
  // Calls a method of the Dante API daemon with these bytes.
  StatusCode CallWithBytes(const std::string& method, const std::string& bytes) {
    return CallPath("/ostrevan.grpcdapi.DAPI/" + method, bytes);
  }
  StatusCode CallPath(const std::string& path, const std::string& bytes) {
    grpc::GenericStub stub(support::ChannelTo(device.DapiUrl()));
    const grpc::ByteBuffer request = wire_schema::ToByteBuffer(bytes);
    grpc::ByteBuffer reply;
    grpc::ClientContext context;
    context.set_deadline(support::In20Seconds());
    std::promise<grpc::Status> status;
    stub.UnaryCall(&context, path, {}, &request, &reply,
                   [&](grpc::Status ended) { status.set_value(std::move(ended)); });
    return status.get_future().get().error_code();
  }
  void SetName(const std::string& to) {
    ostrevan::grpcdapi::Name request;
    request.set_name(to);
    Ask(&DanteStub::SetName, request);
  }
};

TEST_F(CallLog, Calls_HaveNumberMethodRequestAndFault) {
  device.Inject("SetName:reject,times=1");

  SetName("x");
  SetName("y");

  const auto calls = device.Calls();
  ASSERT_THAT(calls, SizeIs(2));
  EXPECT_EQ(calls[0].method, "DAPI.SetName");
  EXPECT_EQ(calls[0].request, R"({"name":"x"})");
  EXPECT_EQ(calls[0].fault, "SetName:reject,times=1");
  EXPECT_EQ(calls[0].number, 1U);
  EXPECT_EQ(calls[1].number, 2U);
  EXPECT_EQ(calls[1].fault, "");
}

TEST_F(CallLog, CallsForgotten_NextCallHasTheNextNumber) {
  Ask(&DanteStub::GetName);

  device.ForgetCalls();
  EXPECT_FALSE(device.WaitForCalls("GetName", 1, std::chrono::milliseconds(0)));
  Ask(&NetworkStub::GetHostname);

  const auto calls = device.Calls();
  ASSERT_THAT(calls, SizeIs(1));
  EXPECT_EQ(calls[0].number, 2U);
  EXPECT_EQ(calls[0].method, "NetworkManager.GetHostname");
}

TEST_F(CallLog, WaitForCalls_CountsThoseOfTheMethodAlone) {
  constexpr std::chrono::milliseconds kNow{0};
  Ask(&DanteStub::GetName);
  Ask(&DanteStub::GetName);
  Ask(&NetworkStub::GetHostname);

  EXPECT_TRUE(device.WaitForCalls("GetName", 2, kNow));
  EXPECT_FALSE(device.WaitForCalls("GetName", 3, kNow));
  EXPECT_TRUE(device.WaitForCalls("DAPI.*", 2, kNow));
  EXPECT_FALSE(device.WaitForCalls("DAPI.*", 3, kNow));
  EXPECT_TRUE(device.WaitForCalls("NetworkManager.GetHostname", 1, kNow));
  EXPECT_FALSE(device.WaitForCalls("DAPI.GetHostname", 1, kNow));
  EXPECT_TRUE(device.WaitForCalls("*", 3, kNow));
}

TEST_F(CallLog, RequestThatCannotBeParsed_IsAnsweredSoAndRecordedAsNull) {
  EXPECT_EQ(CallWithBytes("SetName", "\x0a\x7f"), StatusCode::INTERNAL);
  EXPECT_EQ(CallWithBytes("SetName", "\x0a\x01\xff"), StatusCode::INTERNAL);  // not UTF-8

  for (const auto& call : device.Calls()) EXPECT_EQ(call.request, "null");
  EXPECT_THAT(device.Calls(), SizeIs(2));
}

TEST_F(CallLog, UnknownMethod_IsUnimplementedEvenWithAFaultAndNotRecorded) {
  device.Inject("*:status=ABORTED");

  EXPECT_EQ(CallWithBytes("GetBogus", ""), StatusCode::UNIMPLEMENTED);
  EXPECT_EQ(CallWithBytes("GetHostname", ""), StatusCode::UNIMPLEMENTED);
  EXPECT_THAT(device.Calls(), IsEmpty());
}

TEST_F(CallLog, PathOfAnotherService_IsUnimplementedAndNotRecorded) {
  ASSERT_EQ(CallPath("/ostrevan.grpcdapi.DAPI/GetName", ""), StatusCode::OK);
  device.ForgetCalls();

  for (const char* path :
       {"/ostrevan.networkmanager.NetworkManager/GetName", "/ostrevan.grpcdapi.dapi/GetName",
        "/ostrevan.grpcdapi.DAPI/getname", "/ostrevan.grpcdapi.DAPI/", "/ostrevan.grpcdapi.DAPI",
        "/ostrevan.grpcdapi.DAPI/GetName/", "/ostrevan.grpcdapi.DAPI//GetName",
        "//ostrevan.grpcdapi.DAPI/GetName", "/x/ostrevan.grpcdapi.DAPI/GetName",
        "/xostrevan.grpcdapi.DAPI/GetName", "/ostrevan.grpcdapi.DAPI.GetName",
        "/ostrevan.grpcdapi/GetName", "/grpcdapi.DAPI/GetName", "/DAPI/GetName", "/GetName",
        "ostrevan.grpcdapi.DAPI/GetName", "GetName", "/"})
    EXPECT_EQ(CallPath(path, ""), StatusCode::UNIMPLEMENTED) << path;

  EXPECT_THAT(device.Calls(), IsEmpty());
}

TEST(CallLogAlone, MoreBytesThanTheLimit_ForgetsTheOldestButNeverTheLatest) {
  constexpr std::size_t kMiB = std::size_t{1024} * 1024;
  simulator::CallLog log;
  for (int i = 0; i < 100; ++i) log.Record({0, "DAPI.SetName", std::string(kMiB, 'x'), ""});
  EXPECT_THAT(log.Calls(), SizeIs(15));  // and their other members
  EXPECT_EQ(log.Calls().back().number, 100U);

  log.Record({0, "DAPI.SetName", std::string(20 * kMiB, 'x'), ""});
  EXPECT_THAT(log.Calls(), SizeIs(1));

  log.Record({0, "DAPI.GetName", "{}", std::string(kMiB, 'x')});
  EXPECT_THAT(log.Calls(), SizeIs(1));

  log.Clear();
  log.Record({0, "DAPI.GetName", "{}", ""});
  log.Record({0, "DAPI.GetName", "{}", ""});
  EXPECT_THAT(log.Calls(), SizeIs(2));
}

TEST(CallLogAlone, MoreCallsThanTheLimit_ForgetsTheOldest) {
  simulator::CallLog log;
  for (int i = 0; i < 10002; ++i) log.Record({0, "DAPI.GetName", "{}", ""});

  const auto calls = log.Calls();
  ASSERT_THAT(calls, SizeIs(10000));
  EXPECT_EQ(calls.front().number, 3U);
  EXPECT_EQ(calls.back().number, 10002U);
}

}  // namespace
