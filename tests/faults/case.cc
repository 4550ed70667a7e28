#include "tests/faults/case.h"

#include <set>

namespace faults {

using support::Answer;
using support::Function;

namespace {

Case WithAnswer(const Function& function, std::size_t k, Answer answer,
                const std::set<std::size_t>& failing) {
  Case made{"call " + std::to_string(k), {}, support::Expected(function, failing), 0};
  for (const support::Step& step : function.steps)
    made.answers.push_back({{step.path, step.request}, {step.reply}});
  made.answers[k].second = std::move(answer);
  return made;
}

}  // namespace

Case CallFails(const Function& function, std::size_t k, Answer answer) {
  return WithAnswer(function, k, std::move(answer), {k});
}

Case CallSucceeds(const Function& function, std::size_t k, std::string reply) {
  return WithAnswer(function, k, {std::move(reply)}, {});
}

}  // namespace faults
