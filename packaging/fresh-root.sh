# Sourced by packaging/check-packages and packaging/check-fresh-roots: minimal Debian systems in temporary folders.
# shellcheck shell=bash

# DEBIAN_MIRROR selects a mirror other than debootstrap's default.

require_fresh_roots() {
    if [ "$(id -u)" -ne 0 ]; then
        echo "Only root can create a Debian system in a folder: run this with sudo." >&2
        return 1
    fi
    if ! command -v debootstrap >/dev/null; then
        echo "debootstrap is missing: apt-get install debootstrap" >&2
        return 1
    fi
}

# make_root SUITE FOLDER: creates a system. The packages of the base system are downloaded once to build/debootstrap.
make_root() {
    local cache
    cache=$PWD/build/debootstrap/$1
    mkdir -p "$cache"
    echo "Creating a $1 system in $2"
    debootstrap --variant=minbase --cache-dir="$cache" "$1" "$2" ${DEBIAN_MIRROR:+"$DEBIAN_MIRROR"} >"$2.log" 2>&1 || {
        tail -n 20 "$2.log" >&2
        return 1
    }
}

# in_root FOLDER COMMAND ...: runs the command in separate namespaces, so that no process and no mount outlives it. If
# DISPLAY is set, the command can use this machine's screens.
in_root() {
    local root=$1
    shift
    # The inner shell expands the variables in quotes.
    # shellcheck disable=SC2016
    unshare --mount --pid --ipc --fork --kill-child env --ignore-environment \
        root="$root" HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive PATH=/usr/sbin:/usr/bin:/sbin:/bin \
        ${CI:+CI="$CI"} ${DISPLAY:+DISPLAY="$DISPLAY"} sh -c '
            # The root must be a mount point, because otherwise the system could not create mount namespaces itself.
            mount --bind "$root" "$root" && mount -t proc proc "$root/proc" &&
                mount -t tmpfs tmpfs "$root/dev/shm" || exit
            if [ -n "${DISPLAY-}" ]; then
                mkdir -p "$root/tmp/.X11-unix" && mount --bind /tmp/.X11-unix "$root/tmp/.X11-unix" || exit
            fi
            exec chroot "$root" "$@"
        ' sh "$@"
}
