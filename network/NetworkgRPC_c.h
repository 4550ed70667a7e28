/**
 * @file
 * Three functions of the library for C, and for code that cannot use its C++ records.
 *
 * Each function makes RPCs to the network-manager daemon, at the endpoint in the environment
 * variable network_manager_url (default "localhost:50007"), and blocks until the last has ended.
 * RPCs have no deadline. NetworkgRPC.h documents the connection, the role interfaces and how long
 * an RPC to an absent, frozen or silent daemon lasts.
 *
 * On success a function returns 0 or a count. On failure it returns -1 and leaves its outputs
 * unchanged. Error lines go to standard error; each comment lists the failures that print none.
 */
#ifndef NETWORKGRPC_C_H
#define NETWORKGRPC_C_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/**
 * The addresses of one interface as NUL-terminated strings, empty if there is none. A string that
 * does not fit is cut; the rest of a field is filled with NUL.
 *
 * @code
 * if (cGetControlInterface(&control, 1) != 1 || cGetCurrentSwitchMode(&mode) != 0) return 1;
 * printf("control %s netmask %s MAC %s\n", control.ip, control.netmask, control.mac);
 * @endcode
 */
typedef struct cInterfaceInfo {
  char ip[16];      /**< Dotted IPv4 address, up to 15 characters. */
  char netmask[16]; /**< Dotted IPv4 netmask, up to 15 characters. */
  char mac[18];     /**< MAC address exactly as the daemon sent it, up to 17 characters. */
} cInterfaceInfo;

/**
 * Reads the addresses of the control interface by NetworkgRPC::GetControlInterfacesInfo: those in
 * use, otherwise those of a stored static configuration, otherwise empty strings.
 *
 * RPCs: GetNetworkConfig, GetNetworkStatus. Blocks without a deadline, thread-safe.
 * @param[out] out  Array of `max` entries; the first is written. Unchanged on failure.
 * @param[in] max  Number of entries in `out`, at least 1.
 * @return
 *   - 1: the number of entries written.
 *   - -1: the configuration or the status request failed (an error line is printed).
 *   - -1: one of them returned an empty list (an error line is printed).
 *   - -1: a std::exception was caught (an error line is printed).
 *   - -1: the control interface is unresolved (no RPC is made, nothing is printed).
 *   - -1: `max` is less than 1 (the RPCs are made; nothing is printed if they succeed).
 */
int cGetControlInterface(cInterfaceInfo* out, int max);

/**
 * Reads the id of the switch mode in effect by NetworkgRPC::GetCurrentSwitchMode.
 *
 * RPC: GetSwitchModeStatus. Blocks without a deadline, thread-safe.
 * @param[out] mode  Id as the daemon reports it. Must not be null. Unchanged on failure.
 * @return
 *   - 0: `mode` was set.
 *   - -1: the request failed (an error line is printed).
 *   - -1: a std::exception was caught (an error line is printed).
 */
int cGetCurrentSwitchMode(int* mode);

/**
 * Makes a host name from `name` and sets it by NetworkgRPC::SetHostname. ASCII letters, converted
 * to lower case, and digits are kept; all other characters, hyphens included, are discarded. The
 * host name is "unknown" if `length` is 0, if `name` is null or empty, or if no character is left.
 *
 * Only the first 255 characters of `name` are read. If it has that many and some were discarded,
 * the host name ends with what the library's buffer held before: characters of an earlier call, or
 * of "unknown" at the first.
 *
 * Prints to standard error one line for every discarded character, then one line that names the
 * host name or reports that the default is set.
 *
 * RPC: SetHostname. Blocks without a deadline. Not thread-safe: all calls share one buffer. If
 * there is no memory for the host name, std::bad_alloc passes to the caller; a C program then ends.
 * @param[in] name  NUL-terminated string, or at least 255 characters; may be null.
 * @param[in] length  0: no name. Any other value: there is a name; the value has no other effect.
 * @return
 *   - 0: the daemon confirmed the change.
 *   - -1: the daemon rejected it (an error line is printed).
 *   - -1: the request failed (an error line is printed).
 *   - -1: a std::exception was caught (an error line is printed).
 */
int setampname(const char* name, size_t length);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif /* NETWORKGRPC_C_H */
