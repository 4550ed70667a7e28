// What all Python functions share: copy the arguments, release the interpreter's lock
// during the call, return what was read, raise CallFailed if the C++ function returned
// false.
#pragma once

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <type_traits>
#include <utility>

namespace python {

namespace py = pybind11;

/// The docstring of a function, a record or "Record.member" in the type stub of the module, "" of
/// the module itself. Throws std::out_of_range if it has none. Generated for each module.
const char* Doc(const std::string& name);

/// An argument, copied before the interpreter's lock is released: another thread may
/// change a record during the call. Nothing is converted: by itself, pybind11 makes a
/// string from bytes, a flag from None and a whole number from a fraction.
template <class Value>
struct Copied {
  Value value{};
};

/// Takes the interpreter's lock again. If the interpreter is ending, it ends the thread by
/// unwinding, at which C++ would end the process. Instead, the thread waits for the end of
/// the process, as Python itself lets it from 3.14 on.
inline void TakeLock(PyThreadState* state) {
  try {
    PyEval_RestoreThread(state);
  } catch (...) {
    for (;;) pause();
  }
}

/// Raises networkgrpc.CallFailed.
[[noreturn]] inline void Raise(const std::string& function, const py::dict& arguments) {
  const py::object type = py::module_::import("networkgrpc.failure").attr("CallFailed");
  PyErr_SetObject(type.ptr(), py::make_tuple(function, arguments).ptr());
  throw py::error_already_set();
}

/// The functions of one module.
class Functions {
 public:
  explicit Functions(py::module_& to) : module(to) {
    // For networkgrpc.configure, which is too late after the first call.
    module.def("_called", [] { return called.load(); });
  }

  /// Adds a function that reads a value or a list.
  template <class Value>
  const Functions& Reads(const char* name, bool (*function)(Value&)) const {
    module.def(
        name,
        [function, full = FullName(name)] {
          Value value{};
          Make(full, [&] { return function(value); });
          return value;
        },
        Doc(name));
    return *this;
  }

  /// Adds a function that reads a value selected by an argument.
  template <class Value, class Key>
  const Functions& Reads(const char* name, bool (*function)(Key, Value&), py::arg key) const {
    module.def(
        name,
        [function, full = FullName(name), key](const Copied<std::decay_t<Key>>& about) {
          Value value{};
          Make(
              full, [&] { return function(about.value, value); }, std::pair(key, about.value));
          return value;
        },
        key, Doc(name));
    return *this;
  }

  /// Adds a function that changes something.
  template <class... Arguments, class... Names>
  const Functions& Changes(const char* name, bool (*function)(Arguments...),
                           const Names&... names) const {
    static_assert(sizeof...(Arguments) == sizeof...(Names), "a name for each argument");
    module.def(
        name,
        [function, full = FullName(name),
         names...](const Copied<std::decay_t<Arguments>>&... arguments) {
          Make(
              full, [&] { return function(arguments.value...); },
              std::pair(names, arguments.value)...);
        },
        names..., Doc(name));
    return *this;
  }

 private:
  std::string FullName(const char* name) const {
    return module.attr("__name__").cast<std::string>() + "." + name;
  }

  template <class Call, class... Named>
  static void Make(const std::string& function, Call&& call, const Named&... arguments) {
    called = true;
    PyThreadState* const state = PyEval_SaveThread();
    const bool done = call();
    TakeLock(state);
    if (done) return;
    py::dict by_name;
    ((by_name[arguments.first.name] = arguments.second), ...);
    Raise(function, by_name);
  }

  inline static std::atomic<bool> called{false};
  py::module_& module;
};

/// Makes a record class copyable and picklable. What a derived class adds is kept.
template <class Record, class... Types>
void DefinePickling(py::class_<Record>& type, std::pair<const char*, Types Record::*>... fields) {
  type.def(py::pickle(
      [fields...](const py::object& self) {
        const auto& record = self.cast<const Record&>();
        py::dict members;
        ((members[fields.first] = record.*fields.second), ...);
        return py::make_tuple(members, py::getattr(self, "__dict__", py::dict()).attr("copy")());
      },
      [fields...](const py::tuple& state) {
        const py::dict members = state[0];
        Record record;
        ((record.*fields.second = members[fields.first].template cast<Copied<Types>>().value), ...);
        return std::pair(record, py::dict(state[1]));
      }));
  // Older protocols cannot create an object of C++; with them, Python ends the process.
  type.def("__reduce_ex__", [](const py::object& self, int protocol) {
    const py::object object = py::module_::import("builtins").attr("object");
    return object.attr("__reduce_ex__")(self, std::max(protocol, 2));
  });
}

/// Adds a record class that is constructed, copied, compared and printed like a dataclass.
template <class Record, class... Types>
void Define(py::module_& module, const char* name,
            std::pair<const char*, Types Record::*>... fields) {
  // The default metaclass is enough: these classes have no static properties.
  py::class_<Record> type(module, name, Doc(name),
                          py::metaclass(reinterpret_cast<PyObject*>(&PyType_Type)));
  type.def(py::init([fields...](const Copied<Types>&... arguments) {
             Record record;
             ((record.*fields.second = arguments.value), ...);
             return record;
           }),
           py::kw_only(), (py::arg(fields.first) = Record().*fields.second)...);
  (type.def_property(
       fields.first, [member = fields.second](const Record& record) { return record.*member; },
       py::cpp_function([member = fields.second](
                            Record& record, const Copied<Types>& to) { record.*member = to.value; },
                        py::name(fields.first)),
       Doc(std::string(name) + '.' + fields.first)),
   ...);
  DefinePickling(type, fields...);
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

namespace pybind11::detail {

template <class Value>
struct type_caster<python::Copied<Value>> {
  PYBIND11_TYPE_CASTER(python::Copied<Value>, make_caster<Value>::name);

  bool load(handle source, bool /*convert*/) {
    if (std::is_same_v<Value, std::string> && !PyUnicode_Check(source.ptr())) return false;
    make_caster<Value> unconverted;
    if (!unconverted.load(source, false)) return false;
    value.value = cast_op<const Value&>(unconverted);
    return true;
  }
};

}  // namespace pybind11::detail
