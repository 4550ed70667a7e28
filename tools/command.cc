#include "tools/command.h"

#include <type_traits>

#include "terminal/arguments.h"
#include "tools/command_line.h"

namespace tool {
namespace {

template <class T>
struct WithoutOptional {
  using Type = T;
};
template <class T>
struct WithoutOptional<std::optional<T>> {
  using Type = T;
};

template <class T>
T FromText(const std::string& text) {
  if constexpr (std::is_same_v<T, std::string>)
    return text;
  else if constexpr (std::is_same_v<T, bool>)
    return text == "on";
  else if constexpr (std::is_signed_v<T>)
    return static_cast<T>(std::stoll(text));
  else
    return static_cast<T>(std::stoull(text));
}

template <class T>
CLI::Option* AddOption(CLI::App& app, const std::string& name, T* value,
                       const std::string& description) {
  if constexpr (std::is_same_v<T, std::vector<std::string>>) {
    return app.add_option(name, *value, description);
  } else {
    using Inner = typename WithoutOptional<T>::Type;
    CLI::Option* const option = app.add_option_function<std::string>(
        name, [value](const std::string& text) { *value = FromText<Inner>(text); }, description);
    if constexpr (std::is_same_v<Inner, bool>)
      option->check(terminal::OneOf({"on", "off"}));
    else if constexpr (std::is_integral_v<Inner>)
      option->check(
          terminal::Integer(std::numeric_limits<Inner>::min(), std::numeric_limits<Inner>::max()));
    return option;
  }
}

}  // namespace

Parameter& Parameter::Offer(Candidates what) {
  command_line.candidates[option] = what;
  return *this;
}

Parameter& Parameter::Reject(std::string (*fault)(const std::string& value)) {
  option->check(CLI::Validator([fault](const std::string& value) { return fault(value); }, ""));
  return *this;
}

Parameter& Parameter::Required() {
  option->required();
  return *this;
}

Parameter& Parameter::OneOf(const std::vector<std::string>& words) {
  option->check(terminal::OneOf(words));
  return *this;
}

Parameter Command::Add(const std::string& name, Value value, const std::string& description) {
  CLI::Option* const option =
      std::visit([&](auto* it) { return AddOption(*app, name, it, description); }, value);
  Parameter parameter(command_line, option);
  if (std::holds_alternative<std::optional<bool>*>(value)) parameter.Offer(Candidates::kOnOff);
  return parameter;
}

Parameter Command::Argument(const std::string& name, Value value, const std::string& description) {
  const Parameter parameter = Add(name, value, description);
  app->get_option(name)->required();
  return parameter;
}

Parameter Command::OptionalArgument(const std::string& name, Value value,
                                    const std::string& description) {
  return Add(name, value, description);
}

Parameter Command::Option(const std::string& name, const std::string& type, Value value,
                          const std::string& description) {
  const Parameter parameter = Add(name, value, description);
  CLI::Option* const option = app->get_option(name)->type_name(type);
  // One value each time it is given.
  if (std::holds_alternative<std::vector<std::string>*>(value)) option->expected(1)->take_all();
  return parameter;
}

Command& Command::Flag(const std::string& name, bool* value, const std::string& description) {
  app->add_flag(name, *value, description);
  return *this;
}

Command& Command::Seconds(const std::string& name, double* value, double least,
                          const std::string& description) {
  app->add_option(name, *value, description)->type_name("SECONDS")->check(terminal::Seconds(least));
  return *this;
}

Command& Command::AtMostOne(const std::vector<std::string>& options) {
  for (const std::string& one : options)
    for (const std::string& other : options)
      if (one != other) app->get_option(one)->excludes(app->get_option(other));
  return *this;
}

CommandLine::Found CommandLine::Selected() const {
  Found found;
  const CLI::App* at = &app;
  while (!at->get_subcommands().empty()) {
    at = at->get_subcommands().front();
    if (terminal::IsShown(at)) found.name += (found.name.empty() ? "" : " ") + at->get_name();
  }
  const auto noun = verb_of_noun.find(at);
  if (noun != verb_of_noun.end() && !noun->second.empty()) {
    found.name += " " + noun->second;
    at = const_cast<CLI::App*>(at)->get_subcommand(noun->second);
  }
  if (verbs.count(at) != 0) found.verb = at;
  return found;
}

}  // namespace tool
