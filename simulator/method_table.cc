#include "simulator/method_table.h"

#include <algorithm>

#include "simulator/service.h"

namespace simulator {

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

}  // namespace simulator
