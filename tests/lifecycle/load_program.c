/*
 * load_program LIBRARY ROUNDS: loads the library, makes a call through it and
 * unloads it, ROUNDS times, and prints what has grown since the tenth round.
 */
#include <dirent.h>
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int Entries(const char* folder) {
  DIR* open = opendir(folder);
  int count = 0;
  while (open != NULL && readdir(open) != NULL) ++count;
  if (open != NULL) closedir(open);
  return count;
}

static long ResidentKilobytes(void) {
  long size = 0;
  char line[256];
  FILE* status = fopen("/proc/self/status", "r");
  while (status != NULL && fgets(line, sizeof line, status) != NULL)
    if (strncmp(line, "VmRSS:", 6) == 0) size = strtol(line + 6, NULL, 10);
  if (status != NULL) fclose(status);
  return size;
}

static int Round(const char* library) {
  void* loaded = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  if (loaded == NULL) return 0;
  int (*call)(int*) = NULL;
  void* const symbol = dlsym(loaded, "cGetCurrentSwitchMode");
  memcpy(&call, &symbol, sizeof call);
  int mode = -7;
  const int done = call != NULL && call(&mode) == 0 && mode == 2;
  return dlclose(loaded) == 0 && done;
}

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int rounds = atoi(argv[2]);
  int done = 0;
  int threads = 0;
  int descriptors = 0;
  long resident = 0;
  for (int i = 1; i <= rounds; ++i) {
    done += Round(argv[1]);
    if (i != 10) continue;
    threads = Entries("/proc/self/task");
    descriptors = Entries("/proc/self/fd");
    resident = ResidentKilobytes();
  }
  printf("%d of %d rounds worked\n", done, rounds);
  printf("more threads: %d\n", Entries("/proc/self/task") - threads);
  printf("more descriptors: %d\n", Entries("/proc/self/fd") - descriptors);
  printf("more kilobytes: %ld\n", ResidentKilobytes() - resident);
  return 0;
}
