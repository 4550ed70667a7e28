# shellcheck shell=bash
# Systems of Debian's packages beside this machine's own, for another processor or only
# to try things in. Sourced, behind common.sh.

# This machine's release of Debian, and where it has its packages from.
debian_release() {
  # shellcheck source=/dev/null
  (. /etc/os-release && echo "$VERSION_CODENAME")
}
debian_mirror() {
  # shellcheck disable=SC2016 # apt-get's own variable
  apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | head -n 1
}

# A system of its own in a folder, for what would not do on a machine in use.
enter_system() { mount -t proc proc "$1/proc"; }
leave_system() { umount "$1/proc" 2>/dev/null || true; }
# inside FOLDER COMMAND...
inside() {
  chroot "$1" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "${@:2}"
}

# emulator_of ARCHITECTURE: what Debian calls the entry of its emulator.
emulator_of() {
  case "$1" in
    arm64) echo qemu-aarch64 ;;
    armhf) echo qemu-arm ;;
    *) return 1 ;;
  esac
}

# know_emulator ARCHITECTURE: lets the kernel start that processor's programs, until
# this script ends. Where it does so already, nothing is changed.
know_emulator() {
  local entries=/proc/sys/fs/binfmt_misc
  entry=$(emulator_of "$1")
  [ -e "$entries/register" ] || as_root mount -t binfmt_misc binfmt_misc "$entries" ||
    fail "this kernel has no binfmt_misc, by which it would start programs of $1"
  [ ! -e "$entries/$entry" ] || return 0
  trap 'echo -1 | as_root tee "/proc/sys/fs/binfmt_misc/$entry" >/dev/null' EXIT
  as_root tee "$entries/register" <"/usr/lib/binfmt.d/$entry.conf" >/dev/null ||
    fail "the kernel does not take $entry"
}
