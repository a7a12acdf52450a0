# shellcheck shell=bash
# Sourced by ./test and scripts/try, at the root of the checkout: runs tests apart from the user's own session.

# run_apart FOLDER BUS_LOG COMMAND...: runs the command with a home and a folder for temporary files below FOLDER, which
# the caller removes, and a session bus of its own. What the bus says goes to its log; the command keeps our standard
# error, as number 5. Programs that are started side by side on that bus are instances of their own, and speak English
# in every locale. Tests that become another user reach their temporary files.
run_apart() {
    local folder=$1 log=$2
    shift 2
    mkdir -p "$folder/home" "$folder/runtime" "$folder/tmp"
    chmod 711 "$folder"
    chmod 700 "$folder/runtime"
    chmod 1777 "$folder/tmp"
    env -u DISPLAY -u WAYLAND_DISPLAY -u XDG_CONFIG_HOME -u XDG_DATA_HOME -u XDG_CACHE_HOME -u XDG_STATE_HOME \
        LANGUAGE=en HOME="$folder/home" TMPDIR="$folder/tmp" XDG_RUNTIME_DIR="$folder/runtime" FRAMEKEEPER_OWN_INSTANCE=1 \
        dbus-run-session -- sh -c 'exec "$@" 2>&5 5>&-' sh "$@" 5>&2 2>"$log"
}
