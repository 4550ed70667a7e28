/* Print the addresses of a device's control interface and the switch mode in effect. */
#include <stdio.h>

#include "NetworkgRPC_c.h"

int main(void) {
  cInterfaceInfo control;
  int mode = 0;
  if (cGetControlInterface(&control, 1) != 1 || cGetCurrentSwitchMode(&mode) != 0) return 1;
  printf("control %s netmask %s MAC %s\n", control.ip, control.netmask, control.mac);
  printf("switch mode %d\n", mode);
  return 0;
}
