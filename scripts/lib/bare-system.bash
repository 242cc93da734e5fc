# A bare Debian 12 in a scratch folder, for scripts that prove what needs nothing else. To be sourced by
# bash; takes root and mmdebstrap or debootstrap. Packages come from the mirror that this machine's apt
# takes Debian 12 from; VORLANEPIC_MIRROR names another one.
#   bootstrap           makes it in $system; ends the script where that cannot be
#   in_system SCRIPT    runs a shell script in it
# $scratch is a folder beside it. Nothing of both is left when the script ends.

suite=bookworm

fail() { echo "$(basename "$0"): $*" >&2; exit 2; }
[ "$(id -u)" = 0 ] || fail "making a system of its own takes root."

# Everything runs in one process namespace with mounts of its own, so that ending it, on whichever
# path this script is left, leaves no process and no mount behind.
scratch=$(mktemp -d "${TMPDIR:-/tmp}/vorlanepic-system.XXXXXX")
system=$scratch/system
running=""
clean_up() {
  trap '' INT TERM HUP
  if [ -n "$running" ]; then
    kill -KILL "$running" 2>/dev/null || true
    wait "$running" 2>/dev/null || true
  fi
  local try
  for try in 1 2 3 4 5; do # files may vanish or come until the last process has ended
    rm -rf --one-file-system "$scratch" 2>/dev/null && return
    sleep "$try"
  done
  echo "$(basename "$0"): $scratch could not be removed" >&2
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

apart() { # command...: in namespaces of its own; in the background, so that signals are heard
  unshare --mount --pid --fork --kill-child "$@" &
  running=$!
  local status=0
  wait "$running" || status=$?
  running=""
  return "$status"
}

in_system() { # shell script
  # shellcheck disable=SC2016
  apart bash -euc '
    mount -t proc proc "$1/proc"
    mount -t sysfs -o ro sysfs "$1/sys"
    mount -t tmpfs -o mode=755 dev "$1/dev"
    for device in null zero full random urandom tty; do
      touch "$1/dev/$device"
      mount --bind "/dev/$device" "$1/dev/$device"
    done
    ln -s /proc/self/fd "$1/dev/fd"
    mkdir -m 1777 "$1/dev/shm"
    mkdir "$1/dev/pts"
    mount -t devpts -o newinstance,ptmxmode=0666 devpts "$1/dev/pts"
    ln -s pts/ptmx "$1/dev/ptmx"
    exec chroot "$1" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 \
      $(env | grep -i "^[a-z]*_proxy=" || true) bash -euc "$2"' in_system "$system" "$1" </dev/null
}

mirror_of_this_machine() {
  apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' |
    awk -v suite="$suite" '$2 == suite && $3 == "main" { print $1; exit }'
}

# How this machine's apt reaches its mirrors, as settings for the new system's.
apt_settings() { apt-config dump | grep -E '^Acquire::(http|https|Check-|[A-Za-z:]*Proxy)' || true; }

bootstrap() {
  local mirror=${VORLANEPIC_MIRROR:-$(mirror_of_this_machine)}
  [ -n "$mirror" ] || fail "this machine's apt has no $suite; VORLANEPIC_MIRROR can name a mirror."
  apt_settings > "$scratch/apt.conf"
  if command -v mmdebstrap >/dev/null; then
    apart mmdebstrap --quiet --mode=root --variant=minbase --aptopt="$scratch/apt.conf" \
      "$suite" "$system" "deb $mirror $suite main"
  elif command -v debootstrap >/dev/null; then
    apart debootstrap --variant=minbase "$suite" "$system" "$mirror" >"$scratch/log" ||
      { tail -n 20 "$scratch/log" >&2; return 1; }
    cp "$scratch/apt.conf" "$system/etc/apt/apt.conf.d/99mirror"
  else
    fail "neither mmdebstrap nor debootstrap is installed."
  fi
  cp /etc/resolv.conf "$system/etc/resolv.conf"
}

system_packages() { dpkg-query --admindir="$system/var/lib/dpkg" -W -f='${binary:Package}\n' | sort; }
