// Tells whether an allocation is the library's own.
//
// gRPC ends the process when it gets no memory, so a test of the library's own
// handling must fail none of gRPC's allocations, nor those of protobuf. An
// allocation belongs to whoever stands first on the stack above operator new
// and the C++ runtime: a string that the runtime grows for the library is the
// library's. Within the shared object, generated message code and what is
// instantiated of gRPC's and protobuf's headers count as theirs; told apart by
// the object's full symbol table, as most of its functions are not exported.
#pragma once

namespace allocation {

/// To be asked from within operator new. Allocates nothing itself after its
/// first use, which reads the shared object's symbols.
bool CalledByOwnCode();

}  // namespace allocation
