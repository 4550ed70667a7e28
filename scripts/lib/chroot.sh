# shellcheck shell=bash
# Debian systems in folders, for another architecture or to keep this machine clean.
# Sourced after common.sh.

# The Debian release of this machine and the mirror that it installs from.
debian_release() {
  # shellcheck source=/dev/null
  (. /etc/os-release && echo "$VERSION_CODENAME")
}
debian_mirror() {
  # shellcheck disable=SC2016 # expanded by apt-get
  apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | head -n 1
}

# Programs in a chroot need /proc, and tests terminals.
mount_chroot() { mount -t proc proc "$1/proc" && mount -t devpts devpts "$1/dev/pts"; }
unmount_chroot() { umount "$1/proc" "$1/dev/pts" 2>/dev/null || true; }
# run_in_chroot FOLDER COMMAND...
run_in_chroot() {
  chroot "$1" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "${@:2}"
}

# emulator_of ARCHITECTURE: the name of its emulator in binfmt_misc. Fails for an
# architecture that is not supported.
emulator_of() {
  case "$1" in
    arm64) echo qemu-aarch64 ;;
    armhf) echo qemu-arm ;;
    *) return 1 ;;
  esac
}

# register_emulator ARCHITECTURE: the kernel runs programs of that architecture until
# this script ends. An existing registration is left alone.
register_emulator() {
  local entries=/proc/sys/fs/binfmt_misc
  entry=$(emulator_of "$1")
  [ -e "$entries/register" ] || as_root mount -t binfmt_misc binfmt_misc "$entries" ||
    fail "cannot run programs of $1: this kernel has no binfmt_misc"
  [ ! -e "$entries/$entry" ] || return 0
  trap 'echo -1 | as_root tee "/proc/sys/fs/binfmt_misc/$entry" >/dev/null' EXIT
  as_root tee "$entries/register" <"/usr/lib/binfmt.d/$entry.conf" >/dev/null ||
    fail "cannot register the emulator $entry with the kernel"
}

# make_sysroot ARCHITECTURE FOLDER: unless it exists, from the Debian packages of the group
# sysroot. They are unpacked but not configured: none of their programs has run. Absolute
# links become relative, so that they stay inside the sysroot.
make_sysroot() {
  local architecture="$1" sysroot="$2" packages link target
  [ ! -d "$sysroot" ] || return 0
  packages=$(listed sysroot | paste -sd,)
  say "creating $sysroot"
  rm -rf "$sysroot.new"
  mkdir -p "$sysroot.new"
  mmdebstrap --quiet --variant=extract --architectures="$architecture" --include="$packages" \
    "$(debian_release)" - "$(debian_mirror)" 2>"$sysroot.log" |
    tar -x -C "$sysroot.new" --exclude='./dev/*' --no-same-owner || {
    cat "$sysroot.log" >&2
    fail "cannot download the packages for $architecture"
  }
  find "$sysroot.new" -type l -lname '/*' -printf '%p\t%l\n' |
    while IFS=$'\t' read -r link target; do
      ln -sfnr "$sysroot.new$target" "$link"
    done
  mv "$sysroot.new" "$sysroot"
}
