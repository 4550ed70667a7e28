// Whether the resident memory of this process is that of the program: a sanitizer keeps
// freed memory, an emulator keeps the code that it has translated.
#pragma once

namespace support {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(NETWORKGRPC_EMULATED)
constexpr bool kResidentMemoryIsMeaningful = false;
#else
constexpr bool kResidentMemoryIsMeaningful = true;
#endif

}  // namespace support
