// Change the sample rate safely.
//
// usage: change_sample_rate HZ
//
// The rate must be one that the module supports, it is read back, and transmission is disabled
// meanwhile, so that no receiver plays the transition. The daemon defines the unit of rates: the
// simulated device uses Hz.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "DantegRPC.h"

namespace {

bool Supported(int rate) {
  std::vector<int> rates;
  if (!DantegRPC::GetAvailableSampleRates(rates)) return false;
  if (std::find(rates.begin(), rates.end(), rate) != rates.end()) return true;
  std::cerr << "the sample rate is not one of";
  for (const int supported : rates) std::cerr << ' ' << supported;
  std::cerr << '\n';
  return false;
}

bool SetAndReadBack(int rate) {
  // After a failure, too: the daemon may have made the change.
  const bool confirmed = DantegRPC::SetSampleRate(rate);
  int now = 0;
  if (!DantegRPC::GetSampleRate(now)) return false;
  std::cout << "the sample rate is " << now << std::endl;
  return confirmed && now == rate;
}

}  // namespace

int main(int argc, char** argv) {
  const int rate = argc == 2 ? std::atoi(argv[1]) : 0;
  bool was_disabled = false;
  if (!Supported(rate)) return 1;
  // Use the output only after `true`: GetDisableTx sets it to false on failure.
  if (!DantegRPC::GetDisableTx(was_disabled) || !DantegRPC::SetDisableTx(true)) return 1;
  const bool done = SetAndReadBack(rate);
  if (!DantegRPC::SetDisableTx(was_disabled)) {
    std::cerr << "transmission may still be disabled\n";
    return 1;
  }
  return done ? 0 : 1;
}
