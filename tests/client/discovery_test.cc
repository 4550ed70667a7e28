// How the network-manager client finds the three role interfaces.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "support/captured_stderr.h"
#include "support/device.h"

namespace {

namespace nm = ostrevan::networkmanager;
using support::Device;
using support::NetworkManagerPath;
using support::Request;

struct Role {
  int id;
  std::string mac;
  bool operator==(const Role& other) const { return id == other.id && mac == other.mac; }
};
std::ostream& operator<<(std::ostream& out, const Role& role) {
  return out << role.id << " '" << role.mac << "'";
}

const Role kUnresolved{-1, ""};
const Role kIsLan0{support::kLan0, support::kLan0Mac};
const Role kIsLan1{support::kLan1, support::kLan1Mac};
const Role kIsLan2{support::kLan2, support::kLan2Mac};
const Role kIsLan3{support::kLan3, support::kLan3Mac};

Role Primary() {
  auto& client = NetworkManagerClient::GetInstance();
  return {client.GetDantePrimaryInterfaceID(), client.GetDantePrimaryInterfaceMAC()};
}
Role Secondary() {
  auto& client = NetworkManagerClient::GetInstance();
  return {client.GetDanteSecondaryInterfaceID(), client.GetDanteSecondaryInterfaceMAC()};
}
Role Control() {
  auto& client = NetworkManagerClient::GetInstance();
  return {client.GetControlInterfaceID(), client.GetControlInterfaceMAC()};
}

void SetEnvironment(const char* variable, const std::string& value) {
  setenv(variable, value.c_str(), 1);
}

void Script(Device& device, const nm::Interfaces& interfaces) {
  device.network_manager->Script(NetworkManagerPath("GetAvailableInterfaces"),
                                 support::Reply(interfaces));
}

nm::Interfaces Named(const std::vector<std::pair<int, std::string>>& list) {
  nm::Interfaces interfaces;
  for (const auto& [id, name] : list) {
    auto& added = *interfaces.add_interfaces();
    added.set_id(id);
    added.set_name(name);
    added.set_mac("mac of " + std::to_string(id));
  }
  return interfaces;
}

TEST(Discovery, DefaultNames_ResolveAllThreeRolesWithOneCall) {
  Device device;
  support::CapturedStderr captured;

  EXPECT_EQ(Primary(), kIsLan0);
  EXPECT_EQ(Secondary(), kIsLan2);
  EXPECT_EQ(Control(), kIsLan1);
  EXPECT_EQ(device.TakeRequests(),
            (std::vector<Request>{{NetworkManagerPath("GetAvailableInterfaces"), ""}}));
  EXPECT_EQ(captured.Take(), "");
}

TEST(Discovery, NamesFromTheEnvironment_ReplaceTheDefaults) {
  Device device;
  SetEnvironment("dante_primary_interface_env", "lan3");
  SetEnvironment("dante_secondary_interface_env", "lan0");
  SetEnvironment("control_interface_env", "lan2");

  EXPECT_EQ(Primary(), kIsLan3);
  EXPECT_EQ(Secondary(), kIsLan0);
  EXPECT_EQ(Control(), kIsLan2);
}

TEST(Discovery, NameNobodyHas_LeavesThatRoleUnresolved) {
  Device device;
  SetEnvironment("dante_secondary_interface_env", "lan9");

  EXPECT_EQ(Primary(), kIsLan0);
  EXPECT_EQ(Secondary(), kUnresolved);
  EXPECT_EQ(Control(), kIsLan1);
}

TEST(Discovery, EmptyName_IsNotSearchedAlthoughANamelessInterfaceExists) {
  Device device;
  Script(device, Named({{5, ""}, {6, "lan0"}}));
  SetEnvironment("control_interface_env", "");

  EXPECT_EQ(Control(), kUnresolved);
  EXPECT_EQ(Primary(), (Role{6, "mac of 6"}));
}

TEST(Discovery, NameThatDiffersInCaseOrBlanks_DoesNotMatch) {
  Device device;
  Script(device, Named({{5, "LAN0"}, {6, "lan1 "}, {7, " lan2"}, {8, "lan"}, {9, "lan00"}}));

  EXPECT_EQ(Primary(), kUnresolved);
  EXPECT_EQ(Secondary(), kUnresolved);
  EXPECT_EQ(Control(), kUnresolved);
}

TEST(Discovery, NameTwiceInTheList_TakesTheFirst) {
  Device device;
  Script(device, Named({{5, "lan0"}, {6, "lan0"}}));

  EXPECT_EQ(Primary(), (Role{5, "mac of 5"}));
}

TEST(Discovery, EqualNames_GiveTwoRolesToOneInterface) {
  Device device;
  SetEnvironment("dante_secondary_interface_env", "lan0");

  EXPECT_EQ(Primary(), kIsLan0);
  EXPECT_EQ(Secondary(), kIsLan0);
}

TEST(Discovery, InterfaceWithIdZeroAndWithoutMac_IsResolved) {
  Device device;
  nm::Interfaces interfaces;
  interfaces.add_interfaces()->set_name("lan0");
  Script(device, interfaces);

  EXPECT_EQ(Primary(), (Role{0, ""}));
}

TEST(Discovery, AnyIdAndMac_AreTakenAsTheyAre) {
  Device device;
  nm::Interfaces interfaces = Named({{-5, "lan0"}, {INT_MIN, "lan1"}, {INT_MAX, "lan2"}});
  interfaces.mutable_interfaces(0)->set_mac("AB cd");
  Script(device, interfaces);

  EXPECT_EQ(Primary(), (Role{-5, "AB cd"}));
  EXPECT_EQ(Control(), (Role{INT_MIN, "mac of " + std::to_string(INT_MIN)}));
  EXPECT_EQ(Secondary(), (Role{INT_MAX, "mac of " + std::to_string(INT_MAX)}));
}

TEST(Discovery, NameWithNul_DoesNotMatchItsBeginning) {
  Device device;
  Script(device, Named({{5, std::string("lan0\0x", 6)}}));

  EXPECT_EQ(Primary(), kUnresolved);
}

TEST(Discovery, EmptyList_LeavesAllRolesUnresolved) {
  Device device;
  Script(device, nm::Interfaces());

  EXPECT_EQ(Primary(), kUnresolved);
  EXPECT_EQ(Secondary(), kUnresolved);
  EXPECT_EQ(Control(), kUnresolved);
}

TEST(Discovery, CallFails_LeavesAllRolesUnresolvedForGoodAndSilently) {
  Device device;
  device.network_manager->ScriptNext(NetworkManagerPath("GetAvailableInterfaces"),
                                     support::Failure(grpc::StatusCode::UNAVAILABLE));
  device.network_manager->Script(NetworkManagerPath("GetHostname"), {""});
  support::CapturedStderr captured;

  EXPECT_EQ(Primary(), kUnresolved);
  nm::Hostname hostname;
  EXPECT_TRUE(NetworkManagerClient::GetInstance().GetHostname(&hostname).ok());
  nm::Interfaces interfaces;
  EXPECT_TRUE(NetworkManagerClient::GetInstance().GetAvailableInterfaces(&interfaces).ok());

  EXPECT_EQ(interfaces.interfaces_size(), 4);
  EXPECT_EQ(Primary(), kUnresolved);
  EXPECT_EQ(Secondary(), kUnresolved);
  EXPECT_EQ(Control(), kUnresolved);
  EXPECT_EQ(captured.Take(), "");
}

// A daemon may send a reply although it fails the call.
TEST(Discovery, CallFailsWithAList_LeavesAllRolesUnresolved) {
  Device device;
  device.network_manager->ScriptNext(
      NetworkManagerPath("GetAvailableInterfaces"),
      {device.interfaces.bytes, grpc::Status(grpc::StatusCode::INTERNAL, "")});

  EXPECT_EQ(Primary(), kUnresolved);
  EXPECT_EQ(Secondary(), kUnresolved);
  EXPECT_EQ(Control(), kUnresolved);
}

TEST(Discovery, ListChangesLater_RolesStay) {
  Device device;
  device.BuildClients();
  Script(device, Named({{77, "lan0"}}));
  nm::Interfaces interfaces;
  EXPECT_TRUE(NetworkManagerClient::GetInstance().GetAvailableInterfaces(&interfaces).ok());

  EXPECT_EQ(Primary(), kIsLan0);
}

TEST(Discovery, DaemonComesUpAfterTheFirstUse_CallsWorkWithoutRoles) {
  const auto folder =
      std::filesystem::temp_directory_path() / ("networkgrpc-" + std::to_string(getpid()));
  std::filesystem::create_directory(folder);
  const std::string address = "unix:" + (folder / "daemon").string();
  SetEnvironment("network_manager_url", address);
  nm::Hostname hostname;

  EXPECT_EQ(Control(), kUnresolved);
  EXPECT_EQ(NetworkManagerClient::GetInstance().GetHostname(&hostname).error_code(),
            grpc::StatusCode::UNAVAILABLE);
  {
    support::ScriptedDaemon daemon(address);
    daemon.Script(NetworkManagerPath("GetHostname"), {"\x0a\x03"
                                                      "amp"});
    // gRPC waits about a second before it tries to connect again; until then calls fail
    // immediately.
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!NetworkManagerClient::GetInstance().GetHostname(&hostname).ok() &&
           std::chrono::steady_clock::now() < limit)
      std::this_thread::yield();
  }

  EXPECT_EQ(hostname.hostname(), "amp");
  EXPECT_EQ(Control(), kUnresolved);
  std::filesystem::remove_all(folder);
}

TEST(DapiClient, Building_MakesNoCall) {
  Device device;
  DAPIClient::GetInstance();

  EXPECT_TRUE(device.TakeRequests().empty());
}

TEST(DapiClient, DaemonDown_IsBuiltAndItsMethodsAreUnavailable) {
  const support::ReservedPort nobody;
  SetEnvironment("grpc_dapi_url", nobody.Url());
  ostrevan::grpcdapi::Name name;

  EXPECT_EQ(DAPIClient::GetInstance().GetName(&name).error_code(), grpc::StatusCode::UNAVAILABLE);
}

}  // namespace
