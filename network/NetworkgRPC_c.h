/**
 * @file
 * Three operations of the library for code that cannot use its C++ records.
 *
 * Each function asks the network-manager daemon, at the endpoint that the
 * environment variable network_manager_url names (default "localhost:50007"),
 * and blocks until the call ends; there is no deadline. See NetworkgRPC.h for
 * lifetime and for what an absent, frozen or silent daemon means.
 *
 * Results: a count or 0 on success, -1 on failure. On failure the outputs are
 * as they were. What went wrong is printed to standard error, one line each,
 * by the C++ function that a C function calls.
 */
#ifndef NETWORKGRPC_C_H
#define NETWORKGRPC_C_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/** The control interface's addresses as NUL-terminated texts, empty when there
 * is none. A text that does not fit is cut; the rest of a field is NUL. */
typedef struct cInterfaceInfo {
  char ip[16];      /**< dotted IPv4 address */
  char netmask[16]; /**< dotted IPv4 netmask */
  char mac[18];     /**< MAC address, 17 characters */
} cInterfaceInfo;

/**
 * Reads the control interface, which is one entry.
 * Calls NetworkgRPC::GetControlInterfacesInfo and prints what that prints.
 * RPCs: GetNetworkConfig, GetNetworkStatus.
 * May be called from several threads at once.
 * @param[out] out  an array of `max` entries; unchanged on failure
 * @param[in] max  number of entries that `out` has room for, 1 or more
 * @return the number of entries written; -1 when the interface is unresolved,
 *   when the daemon cannot be asked, and when `max` is less than 1
 */
int cGetControlInterface(cInterfaceInfo* out, int max);

/**
 * Reads the id of the switch mode in effect.
 * Calls NetworkgRPC::GetCurrentSwitchMode and prints what that prints.
 * RPC: GetSwitchModeStatus.
 * May be called from several threads at once.
 * @param[out] mode  the id as the daemon reports it; unchanged on failure; must
 *   not be null
 * @return 0; -1 when the daemon cannot be asked
 */
int cGetCurrentSwitchMode(int* mode);

/**
 * Makes a host name of `name` and sets it: ASCII letters in lower case and
 * digits are kept, all else, the hyphen included, is discarded. The name
 * "unknown" is set instead when `length` is 0, when `name` is null or empty, and
 * when nothing is left.
 *
 * Only the first 255 characters are looked at. When no NUL is among them and
 * some were discarded, the kept ones are followed by what the previous call left
 * in the library's buffer.
 *
 * Prints to standard error one line per discarded character and one with the
 * name that is set. Calls NetworkgRPC::SetHostname and prints what that prints.
 * RPC: SetHostname.
 * Not for several threads at once: calls share one buffer without a lock.
 * @param[in] name  NUL-terminated, or at least 255 characters long; null is allowed
 * @param[in] length  0 for no name; every other number says no more than that
 *   there is one
 * @return 0; -1 when the daemon fails or refuses
 */
int setampname(const char* name, size_t length);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif /* NETWORKGRPC_C_H */
