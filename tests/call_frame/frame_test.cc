#include "call_frame/call_frame.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "ostrevan/networkmanager.pb.h"
#include "support/captured_stderr.h"

namespace {

using call_frame::ExceptionLine;
using call_frame::Frame;
using ostrevan::networkmanager::Success;
using support::CapturedStderr;

Success Answer(bool success) {
  Success reply;
  reply.set_success(success);
  return reply;
}

TEST(Frame, BodySucceeds_GivesTrueAndPrintsNothing) {
  CapturedStderr captured;

  EXPECT_TRUE((Frame{"Name", ExceptionLine::kNameOnly}.Run([] { return true; })));
  EXPECT_EQ(captured.Take(), "");
}

TEST(Frame, BodyThrowsStandardException_PrintsNameAndText) {
  CapturedStderr captured;
  const Frame frame{"SetName", ExceptionLine::kNameAndText};

  EXPECT_FALSE(frame.Run([]() -> bool { throw std::runtime_error("no more %s"); }));
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: C++ exception in SetName(): no more %s\n");
}

TEST(Frame, BodyThrowsStandardException_PrintsNameOnly) {
  CapturedStderr captured;
  const Frame frame{"GetTapping", ExceptionLine::kNameOnly};

  EXPECT_FALSE(frame.Run([]() -> bool { throw std::bad_alloc(); }));
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: ERROR: exception in GetTapping\n");
}

TEST(Frame, BodyThrowsAnythingElse_PassesItOnAndPrintsNothing) {
  CapturedStderr captured;
  bool flag = true;
  const Frame frame{"SetName", ExceptionLine::kNameAndText, &flag};

  EXPECT_THROW(frame.Run([]() -> bool { throw 7; }), int);
  EXPECT_EQ(captured.Take(), "");
  EXPECT_TRUE(flag);
}

TEST(Frame, Fail_FillsTheNameInAndGivesFalse) {
  CapturedStderr captured;

  EXPECT_FALSE((Frame{"SetName", ExceptionLine::kNameOnly}.Fail("failed in %s\n")));
  EXPECT_EQ(captured.Take(), "failed in SetName\n");
}

TEST(Frame, FailWithoutALine_IsSilent) {
  CapturedStderr captured;

  EXPECT_FALSE((Frame{"GetName", ExceptionLine::kNameOnly}.Fail(call_frame::kNoLine)));
  EXPECT_EQ(captured.Take(), "");
}

TEST(Frame, FailWithAnOutputToReset_ResetsIt) {
  CapturedStderr captured;
  bool flag = true;

  EXPECT_FALSE((Frame{"GetDisableTx", ExceptionLine::kNameOnly, &flag}.Fail("%s\n")));
  EXPECT_FALSE(flag);
}

TEST(Frame, ExceptionWithAnOutputToReset_ResetsIt) {
  CapturedStderr captured;
  bool flag = true;
  const Frame frame{"GetDisableTx", ExceptionLine::kNameOnly, &flag};

  EXPECT_FALSE(frame.Run([]() -> bool { throw std::bad_alloc(); }));
  EXPECT_FALSE(flag);
}

TEST(Confirmed, NeedsBothTheStatusAndTheFlag) {
  const grpc::Status failed(grpc::StatusCode::UNAVAILABLE, "");

  EXPECT_TRUE(call_frame::Confirmed(grpc::Status::OK, Answer(true)));
  EXPECT_FALSE(call_frame::Confirmed(grpc::Status::OK, Answer(false)));
  EXPECT_FALSE(call_frame::Confirmed(failed, Answer(true)));
  EXPECT_FALSE(call_frame::Confirmed(failed, Answer(false)));
}

}  // namespace
