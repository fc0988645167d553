# Sourced by ./run, ./test and the scripts of this folder, from the project's root: installs what is missing and builds.
# shellcheck shell=bash

readonly install_log=build/install.log

# as_root COMMAND ...: on the terminal sudo may ask for a password.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "There is no sudo here; only root can do: $*" >&2
        return 1
    fi
}

# logged COMMAND ...: what it prints goes into the log of installations, whose end is shown where the command fails.
logged() {
    "$@" >>"$install_log" 2>&1 || {
        tail -n 20 "$install_log" >&2
        echo "This failed: $* (all of it is in $install_log)" >&2
        return 1
    }
}

# missing_packages SECTION ...: the lines of these sections of packaging/apt-packages.txt of which this machine has no
# package.
missing_packages() {
    local section line name
    for section in "$@"; do
        sed -n "/^\[$section\]\$/,/^\$/ { /^[a-z]/p }" packaging/apt-packages.txt
    done | while IFS= read -r line; do
        for name in ${line//|/ }; do
            dpkg-query --show --showformat='${db:Status-Status}\n' "$name" 2>/dev/null | grep -qx installed && continue 2
        done
        echo "$line"
    done
}

# install_missing_packages SECTION ...
install_missing_packages() {
    local missing count
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "This is not a Debian system: install the equivalents of packaging/apt-packages.txt yourself." >&2
        return 0
    fi
    missing=$(missing_packages "$@" | paste -sd,)
    [ -n "$missing" ] || return 0
    echo "These packages are missing: ${missing//,/, }"
    mkdir -p "${install_log%/*}"
    : >"$install_log"
    logged as_root apt-get update || return 1
    # Unlike "install" this chooses between packages: of two names the first that this Debian has.
    count=$(apt-get satisfy --simulate --no-install-recommends "$missing" 2>/dev/null | grep -c '^Inst ' || true)
    echo "Installing them and what they depend on, $count packages. For 200 that takes a minute or two; see $install_log"
    logged as_root env DEBIAN_FRONTEND=noninteractive apt-get satisfy --yes --no-install-recommends "$missing"
}

# configure PRESET with-tests|without-tests. Tests that are configured already stay. Where CI is set, compiler warnings
# end the build.
configure() {
    local folder=build/$1 tests=OFF options
    if [ "$2" = with-tests ] || grep -qs '^BUILD_TESTING:BOOL=ON$' "$folder/CMakeCache.txt"; then
        tests=ON
    fi
    options=(-DBUILD_TESTING=$tests ${CI:+-DORVO_WARNINGS_AS_ERRORS=ON})
    # Needed only where it was never done or the options differ; Ninja sees changed CMake files by itself.
    if [ ! -f "$folder/build.ninja" ] || [ "${options[*]}" != "$(cat "$folder/.options" 2>/dev/null)" ]; then
        cmake --preset "$1" "${options[@]}" && echo "${options[*]}" >"$folder/.options"
    fi
}
