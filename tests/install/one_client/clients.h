// What every module of this process reports about the clients that it sees.
#pragma once

struct Clients {
  const void* dapi;
  const void* network_manager;
};
inline bool operator==(const Clients& a, const Clients& b) {
  return a.dapi == b.dapi && a.network_manager == b.network_manager;
}

extern "C" {
Clients ClientsOfProgram();
__attribute__((visibility("default"))) Clients ClientsOfLinked();
__attribute__((visibility("default"))) Clients ClientsOfLoaded();
}
