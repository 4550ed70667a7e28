/*
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

/* The control interface's addresses as NUL-terminated texts, empty when there
 * is none. A text that does not fit is cut; the rest of a field is NUL. */
typedef struct cInterfaceInfo {
  char ip[16];      /* dotted IPv4 address */
  char netmask[16]; /* dotted IPv4 netmask */
  char mac[18];     /* MAC address, 17 characters */
} cInterfaceInfo;

/*
 * Fills `out`, an array of `max` entries, with the control interface, which is
 * one entry, and returns the number of entries written. -1 when the interface
 * is unresolved, when the daemon cannot be asked, and when `max` is less than 1.
 * Calls NetworkgRPC::GetControlInterfacesInfo and prints what that prints.
 * May be called from several threads at once.
 */
int cGetControlInterface(cInterfaceInfo* out, int max);

/*
 * Stores the id of the switch mode in effect in `*mode`, which must not be
 * null, and returns 0.
 * Calls NetworkgRPC::GetCurrentSwitchMode and prints what that prints.
 * May be called from several threads at once.
 */
int cGetCurrentSwitchMode(int* mode);

/*
 * Makes a host name of `name` and sets it: ASCII letters in lower case and
 * digits are kept, all else, the hyphen included, is discarded. The name
 * "unknown" is set instead when `length` is 0, when `name` is null or empty, and
 * when nothing is left. `length` serves for no more than that: `name` must be
 * NUL-terminated, or at least 255 characters long.
 *
 * Only the first 255 characters are looked at. When no NUL is among them and
 * some were discarded, the kept ones are followed by what the previous call left
 * in the library's buffer.
 *
 * Prints to standard error one line per discarded character and one with the
 * name that is set. Calls NetworkgRPC::SetHostname and prints what that prints.
 * Not for several threads at once: calls share one buffer without a lock.
 */
int setampname(const char* name, size_t length);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif /* NETWORKGRPC_C_H */
