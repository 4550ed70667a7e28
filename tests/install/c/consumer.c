/* A C program that uses the installed C functions to call the daemon of daemon.cc. */
#include <NetworkgRPC_c.h>
#include <stdio.h>

static int failures = 0;

static void expect(int holds, const char* what) {
  if (holds) return;
  printf("failed: %s\n", what);
  ++failures;
}

int main(void) {
  static const char name[] = "Amp 7";
  cInterfaceInfo info[2];
  int mode = -1;

  expect(cGetCurrentSwitchMode(&mode) == 0 && mode == 2, "the switch mode in effect is 2");
  expect(setampname(name, sizeof name - 1) == 0, "the daemon accepts the host name amp7");
  expect(cGetControlInterface(info, 2) == -1, "the control interface is unresolved");
  return failures;
}
