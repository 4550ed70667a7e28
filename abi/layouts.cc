// The memory layout of the public records. Programs that were compiled with an earlier
// header of this major version share these records with the library, so the numbers
// never change within a major version: if an assertion fails, change the record back.
#include <cstddef>
#include <cstdint>

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"

namespace {

// An offset or size on 64-bit processors and on 32-bit ARM.
constexpr std::size_t At(std::size_t wide, std::size_t narrow) {
  return sizeof(void*) == 8 ? wide : narrow;
}

using Info = NetworkgRPC::InterfaceInfo;
static_assert(offsetof(Info, mode) == 0);
static_assert(offsetof(Info, name) == At(8, 4));
static_assert(offsetof(Info, ip) == At(40, 28));
static_assert(offsetof(Info, netmask) == At(72, 52));
static_assert(offsetof(Info, gateway) == At(104, 76));
static_assert(offsetof(Info, mac) == At(136, 100));
static_assert(offsetof(Info, dns) == At(168, 124));
static_assert(offsetof(Info, active) == At(200, 148));
static_assert(offsetof(Info, id) == At(204, 152));
static_assert(sizeof(Info) == At(208, 156));

using Mode = NetworkgRPC::SwitchMode;
static_assert(offsetof(Mode, id) == 0);
static_assert(offsetof(Mode, name) == At(8, 4));
static_assert(sizeof(Mode) == At(40, 28));

using Channel = DantegRPC::Channel;
static_assert(offsetof(Channel, id) == 0);
static_assert(offsetof(Channel, name) == At(8, 4));
static_assert(sizeof(Channel) == At(40, 28));

using Link = DantegRPC::ChannelLink;
static_assert(offsetof(Link, rxChannelId) == 0);
static_assert(offsetof(Link, channelName) == At(8, 4));
static_assert(offsetof(Link, deviceName) == At(40, 28));
static_assert(offsetof(Link, isRaw) == At(72, 52));
static_assert(offsetof(Link, ip) == At(80, 56));
static_assert(offsetof(Link, value2) == At(112, 80));
static_assert(offsetof(Link, value3) == At(116, 84));
static_assert(offsetof(Link, value4) == At(120, 88));
static_assert(offsetof(Link, value5) == At(124, 92));
static_assert(offsetof(Link, value6) == At(128, 96));
static_assert(offsetof(Link, encoding) == At(132, 100));
static_assert(offsetof(Link, sip) == At(136, 104));
static_assert(offsetof(Link, hasSessionId) == At(168, 128));
static_assert(offsetof(Link, sessionId) == At(176, 136));
static_assert(sizeof(Link) == At(184, 144));

static_assert(offsetof(cInterfaceInfo, ip) == 0);
static_assert(offsetof(cInterfaceInfo, netmask) == 16);
static_assert(offsetof(cInterfaceInfo, mac) == 32);
static_assert(sizeof(cInterfaceInfo) == 50);

}  // namespace
