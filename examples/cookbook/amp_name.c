/* Set the host name from a display name; print the control address and the switch mode, in C.
 *
 * usage: amp_name NAME
 *
 * setampname keeps ASCII letters, in lower case, and digits, and prints every character that it
 * discards. It is not thread-safe, and with 255 or more characters the rest of an earlier name can
 * get into the host name: so the length is checked before.
 */
#include <stdio.h>
#include <string.h>

#include "NetworkgRPC_c.h"

enum { kLongestName = 63 };

int main(int argc, char** argv) {
  if (argc != 2 || strlen(argv[1]) > kLongestName) {
    fprintf(stderr, "usage: amp_name NAME, at most %d characters\n", kLongestName);
    return 2;
  }
  /* An empty name would set "unknown". */
  if (argv[1][0] != '\0' && setampname(argv[1], strlen(argv[1])) != 0) return 1;

  cInterfaceInfo control;
  int mode = 0;
  /* -1 also without an error line: the role of the control interface is unknown. */
  if (cGetControlInterface(&control, 1) != 1 || cGetCurrentSwitchMode(&mode) != 0) return 1;
  printf("control %s netmask %s MAC %s\n", control.ip, control.netmask, control.mac);
  printf("switch mode %d\n", mode);
  return 0;
}
