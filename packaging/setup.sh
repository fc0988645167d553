# Sourced by ./run, ./test and the scripts of this folder in the root of the project: installs missing packages and
# configures the build.
# shellcheck shell=bash

readonly install_log=build/install.log

# as_root COMMAND ...: runs the command as root. sudo may ask for a password on the terminal.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "sudo is not installed; run this as root: $*" >&2
        return 1
    fi
}

# logged COMMAND ...: redirects the output to the installation log. If the command fails, prints the end of the log.
logged() {
    "$@" >>"$install_log" 2>&1 || {
        tail -n 20 "$install_log" >&2
        echo "This failed: $* (the complete log is $install_log)" >&2
        return 1
    }
}

# missing_packages SECTION ...: prints the lines in these sections of packaging/apt-packages.txt whose packages are not
# installed.
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
    # Unlike "install", "satisfy" accepts alternatives: it installs the first package that this Debian release has.
    count=$(apt-get satisfy --simulate --no-install-recommends "$missing" 2>/dev/null | grep -c '^Inst ' || true)
    echo "Installing them with their dependencies, $count packages. 200 packages take a minute or two; see $install_log"
    logged as_root env DEBIAN_FRONTEND=noninteractive apt-get satisfy --yes --no-install-recommends "$missing"
}

# configure PRESET with-tests|without-tests. Does not remove tests that are already configured. If CI is set, compiler
# warnings are errors.
configure() {
    local folder=build/$1 tests=OFF options
    if [ "$2" = with-tests ] || grep -qs '^BUILD_TESTING:BOOL=ON$' "$folder/CMakeCache.txt"; then
        tests=ON
    fi
    options=(-DBUILD_TESTING=$tests ${CI:+-DORVO_WARNINGS_AS_ERRORS=ON})
    # Only if it was never done or the options have changed: Ninja notices changed CMake files itself.
    if [ ! -f "$folder/build.ninja" ] || [ "${options[*]}" != "$(cat "$folder/.options" 2>/dev/null)" ]; then
        cmake --preset "$1" "${options[@]}" && echo "${options[*]}" >"$folder/.options"
    fi
}
