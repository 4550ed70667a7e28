// Faults of the simulator, as strings.
//
// Input: the string.
#include "simulator/fault.h"
#include "tests/fuzz/fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const simulator::Fault fault =
        simulator::ParseFault({reinterpret_cast<const char*>(data), size});
    const std::string written = simulator::ToString(fault);
    fuzz::Check(simulator::ToString(simulator::ParseFault(written)) == written,
                "a fault is read as it was written");
    simulator::Check(fault);
    simulator::Matches(fault.method, "DAPI.GetName");
  } catch (const simulator::BadFault&) {
  }
  return 0;
}
