// What all Python functions share: release the interpreter's lock during the call,
// return what was read, raise CallFailed if the C++ function returned false.
#pragma once

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <string>
#include <type_traits>
#include <utility>

namespace python {

namespace py = pybind11;

/// Raises networkgrpc.CallFailed.
[[noreturn]] inline void Raise(const std::string& function, const py::dict& arguments) {
  const py::object type = py::module_::import("networkgrpc.failure").attr("CallFailed");
  PyErr_SetObject(type.ptr(), py::make_tuple(function, arguments).ptr());
  throw py::error_already_set();
}

/// The functions of one module.
class Functions {
 public:
  explicit Functions(py::module_& to) : module(to) {}

  /// Adds a function that reads a value or a list.
  template <class Value>
  const Functions& Reads(const char* name, bool (*function)(Value&), const char* doc) const {
    module.def(
        name,
        [function, full = FullName(name)] {
          Value value{};
          Make(full, [&] { return function(value); });
          return value;
        },
        doc);
    return *this;
  }

  /// Adds a function that reads a value selected by an argument.
  template <class Value, class Key>
  const Functions& Reads(const char* name, bool (*function)(Key, Value&), py::arg key,
                         const char* doc) const {
    module.def(
        name,
        [function, full = FullName(name), key](const std::decay_t<Key>& about) {
          Value value{};
          Make(
              full, [&] { return function(about, value); }, std::pair(key, about));
          return value;
        },
        key, doc);
    return *this;
  }

  /// Adds a function that changes something.
  template <class... Arguments, class... Names>
  const Functions& Changes(const char* name, bool (*function)(Arguments...), const char* doc,
                           const Names&... names) const {
    static_assert(sizeof...(Arguments) == sizeof...(Names), "a name for each argument");
    module.def(
        name,
        [function, full = FullName(name), names...](const std::decay_t<Arguments>&... arguments) {
          Make(
              full, [&] { return function(arguments...); }, std::pair(names, arguments)...);
        },
        names..., doc);
    return *this;
  }

 private:
  std::string FullName(const char* name) const {
    return module.attr("__name__").cast<std::string>() + "." + name;
  }

  template <class Call, class... Named>
  static void Make(const std::string& function, Call&& call, const Named&... arguments) {
    const bool done = [&] {
      const py::gil_scoped_release unlocked;
      return call();
    }();
    if (done) return;
    py::dict by_name;
    ((by_name[arguments.first.name] = arguments.second), ...);
    Raise(function, by_name);
  }

  py::module_& module;
};

/// Adds a record class that is constructed, compared and printed like a dataclass.
template <class Record, class... Types>
void Define(py::module_& module, const char* name, const char* doc,
            std::pair<const char*, Types Record::*>... fields) {
  // The default metaclass is enough: these classes have no static properties.
  py::class_<Record> type(module, name, doc,
                          py::metaclass(reinterpret_cast<PyObject*>(&PyType_Type)));
  type.def(py::init([fields...](const Types&... values) {
             Record record;
             ((record.*fields.second = values), ...);
             return record;
           }),
           py::kw_only(), (py::arg(fields.first) = Record().*fields.second)...);
  (type.def_readwrite(fields.first, fields.second), ...);
  type.def(
      "__eq__",
      [fields...](const Record& one, const Record& other) {
        return ((one.*fields.second == other.*fields.second) && ...);
      },
      py::is_operator());
  type.attr("__hash__") = py::none();
  type.def("__repr__", [name, fields...](const Record& record) {
    std::string text;
    ((text += (text.empty() ? "" : ", ") + std::string(fields.first) + "=" +
              py::repr(py::cast(record.*fields.second)).template cast<std::string>()),
     ...);
    return std::string(name) + "(" + text + ")";
  });
}

template <class Record, class Type>
std::pair<const char*, Type Record::*> Field(const char* name, Type Record::*member) {
  return {name, member};
}

}  // namespace python
