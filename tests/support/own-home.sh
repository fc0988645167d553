# Sourced by own-home and with-xvfb.
# shellcheck shell=bash

# own_home FOLDER: creates the folder and makes it the home folder, so that programs store their settings there.
own_home() {
    mkdir -m 700 "$1"
    export HOME=$1 XDG_CACHE_HOME=$1/cache XDG_CONFIG_HOME=$1/config XDG_DATA_HOME=$1/data XDG_STATE_HOME=$1/state
    export XDG_RUNTIME_DIR=$1
}
