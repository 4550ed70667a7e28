/*
 * Calls one function of the C interface and prints its result and outputs:
 *   c_program control MAX | mode | ampname NAME LENGTH | ampname-null LENGTH
 */
#include <NetworkgRPC_c.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kEntries = 4 };

static int Control(int max) {
  cInterfaceInfo entries[kEntries];
  memset(entries, '#', sizeof entries);
  const int count = cGetControlInterface(entries, max);
  printf("result %d\n", count);
  for (int i = 0; i < count; ++i)
    printf("ip=%s netmask=%s mac=%s\n", entries[i].ip, entries[i].netmask, entries[i].mac);
  const char* bytes = (const char*)entries;
  size_t written = 0;
  for (size_t i = 0; i < sizeof entries; ++i)
    if (bytes[i] != '#') written = i + 1;
  printf("bytes %zu\n", written);
  return 0;
}

static int Mode(void) {
  int mode = -7;
  const int result = cGetCurrentSwitchMode(&mode);
  printf("result %d\nmode %d\n", result, mode);
  return 0;
}

static int Ampname(const char* name, size_t length) {
  printf("result %d\n", setampname(name, length));
  return 0;
}

int main(int argc, char** argv) {
  if (argc == 3 && strcmp(argv[1], "control") == 0) return Control(atoi(argv[2]));
  if (argc == 2 && strcmp(argv[1], "mode") == 0) return Mode();
  if (argc == 4 && strcmp(argv[1], "ampname") == 0)
    return Ampname(argv[2], (size_t)strtoul(argv[3], NULL, 10));
  if (argc == 3 && strcmp(argv[1], "ampname-null") == 0)
    return Ampname(NULL, (size_t)strtoul(argv[2], NULL, 10));
  return 2;
}
