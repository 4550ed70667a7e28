// Whether the size of this process tells of the program: a sanitizer keeps what is
// freed, an emulator the code that it has translated.
#pragma once

namespace support {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(NETWORKGRPC_EMULATED)
constexpr bool kMemoryTells = false;
#else
constexpr bool kMemoryTells = true;
#endif

}  // namespace support
