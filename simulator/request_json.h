// The requests of both services as JSON, member by member with the names that
// they have in the schema. Written by hand: the lite runtime cannot tell them.
#pragma once

#include "ostrevan/grpcdapi.pb.h"
#include "ostrevan/networkmanager.pb.h"
#include "simulator/json.h"

namespace simulator {

Json ToJson(const ostrevan::common::Empty& request);

Json ToJson(const ostrevan::networkmanager::Ids& request);
Json ToJson(const ostrevan::networkmanager::Id& request);
Json ToJson(const ostrevan::networkmanager::InterfaceConfig& request);
Json ToJson(const ostrevan::networkmanager::Hostname& request);
Json ToJson(const ostrevan::networkmanager::NTPServer& request);

Json ToJson(const ostrevan::grpcdapi::Name& request);
Json ToJson(const ostrevan::grpcdapi::Channel& request);
Json ToJson(const ostrevan::grpcdapi::LinkInfo& request);
Json ToJson(const ostrevan::grpcdapi::Latency& request);
Json ToJson(const ostrevan::grpcdapi::SampleRate& request);
Json ToJson(const ostrevan::grpcdapi::Status& request);

}  // namespace simulator
