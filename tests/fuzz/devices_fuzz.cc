// The file of devices for --on.
//
// Input: the text of the file.
#include <cstdlib>

#include "tests/fuzz/fuzz.h"
#include "tools/devices.h"
#include "tools/failure.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::File file({reinterpret_cast<const char*>(data), size});
  setenv("NETWORKGRPC_DEVICES", file.Path().c_str(), 1);
  try {
    for (const tool::Device& device : tool::ReadDevices()) {
      fuzz::Check(!device.name.empty() && device.name != "all", "a device can be named");
      fuzz::Check(device.host.compare(0, 1, "-") != 0, "a host is no option of ssh");
      fuzz::Check(!device.network_manager.empty() && !device.dapi.empty(), "it has endpoints");
      fuzz::Check(tool::FindDevices(device.name).size() == 1, "it is found");
    }
  } catch (const tool::Failure& failure) {
    fuzz::Check(failure.message.compare(0, file.Path().size() + 1, file.Path() + ":") == 0,
                "an error names file and line");
  }
  return 0;
}
