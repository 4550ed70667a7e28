#include "simulator/method_table.h"

#include <algorithm>

#include "ostrevan/grpcdapi.grpc.pb.h"
#include "ostrevan/networkmanager.grpc.pb.h"
#include "simulator/service.h"

namespace simulator {

const char* ServiceOf(Daemon daemon) {
  return daemon == Daemon::kNetworkManager
             ? ostrevan::networkmanager::NetworkManager::service_full_name()
             : ostrevan::grpcdapi::DAPI::service_full_name();
}

const std::vector<Method>& MethodsOf(Daemon daemon) {
  static const std::vector<Method> network = NetworkMethods();
  static const std::vector<Method> dante = DanteMethods();
  return daemon == Daemon::kNetworkManager ? network : dante;
}

const Method* FindMethod(Daemon daemon, const std::string& name) {
  const std::vector<Method>& methods = MethodsOf(daemon);
  const auto found = std::find_if(methods.begin(), methods.end(),
                                  [&](const Method& method) { return method.name == name; });
  return found != methods.end() ? &*found : nullptr;
}

const Method* FindWithoutParameters(const std::string& name) {
  for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDapi})
    if (const Method* const method = FindMethod(daemon, name))
      if (method->request->fields.empty()) return method;
  return nullptr;
}

}  // namespace simulator
