# shellcheck shell=bash
# Empty Debian 12 systems in folders, for building and trying packages. As root; with debootstrap and the network.

# emulate ARCHITECTURE: from here on the machine starts programs of another processor in an emulator.
emulate() {
  local processor=$1 formats=/proc/sys/fs/binfmt_misc
  [ "$processor" != arm64 ] || processor=aarch64
  [ -e $formats/register ] || mount -t binfmt_misc binfmt_misc $formats
  [ -e "$formats/qemu-$processor" ] || cat "/usr/lib/binfmt.d/qemu-$processor.conf" >$formats/register
}

# make_root FOLDER ARCHITECTURE
make_root() {
  [ "$2" = "$(dpkg --print-architecture)" ] || emulate "$2"
  mkdir -p "$1"
  debootstrap --arch="$2" --variant=minbase bookworm "$1" >"$1.log" || { tail "$1.log"; return 1; }
  echo 'APT::Install-Recommends "false";' >"$1/etc/apt/apt.conf.d/90recommends"
  cp /etc/resolv.conf "$1/etc/"
  mount -t proc proc "$1/proc"
}

# remove_root FOLDER
remove_root() {
  umount "$1/proc" 2>/dev/null || true
  rm -rf --one-file-system "$1" "$1.log"
}

# in_root FOLDER COMMAND...
in_root() { chroot "$1" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 HOME=/root "${@:2}"; }
