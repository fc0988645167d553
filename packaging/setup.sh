# Sourced by ./run and ./test, from the project's root: installs what is missing and builds a preset.
# shellcheck shell=bash

# The lines of packaging/apt-packages.txt of which this machine has no package.
missing_packages() {
    local line name
    sed 's/#.*//' packaging/apt-packages.txt | while IFS= read -r line; do
        for name in ${line//|/ }; do
            dpkg-query --show --showformat='${db:Status-Status}\n' "$name" 2>/dev/null | grep -qx installed && continue 2
        done
        [ -z "$line" ] || echo "$line"
    done
}

install_missing_packages() {
    local missing as_root=()
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "This is not a Debian system: install the equivalents of packaging/apt-packages.txt yourself." >&2
        return 0
    fi
    missing=$(missing_packages | paste -sd,)
    [ -z "$missing" ] && return 0
    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
        if ! command -v sudo >/dev/null; then
            echo "Missing packages, and no right to install them: $missing" >&2
            return 1
        fi
    fi
    echo "Installing: $missing"
    # Unlike "install" this chooses between packages: of two names the first that this Debian has.
    if ! { "${as_root[@]}" apt-get update -qq &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get satisfy -y -qq --no-install-recommends "$missing"; }
    then
        echo "These packages are missing and could not be installed: $missing" >&2
        return 1
    fi
}

# build_preset PRESET [TARGET ...], without a target everything. Where CI is set, compiler warnings end the build.
build_preset() {
    local preset=$1 options=${CI:+-DORVO_WARNINGS_AS_ERRORS=ON}
    shift
    # Configuring anew is needed only where it was never done or the options differ; Ninja sees changed CMake files.
    if [ ! -f "build/$preset/build.ninja" ] || [ "$options" != "$(cat "build/$preset/.options" 2>/dev/null)" ]; then
        cmake --preset "$preset" ${options:+"$options"} && printf '%s' "$options" >"build/$preset/.options" || return 1
    fi
    cmake --build --preset "$preset" ${1:+--target} "$@"
}
