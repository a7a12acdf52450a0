# shellcheck shell=bash
# Sourced by ./run and ./test, at the root of the checkout.

# build PRESET [TARGET...]: configures when the preset is new or has changed, and builds; says so only when there is work.
build() {
    local folder=build/$1 targets=("${@:2}") start=$SECONDS
    if [ ! -f "$folder/build.ninja" ] || [ CMakePresets.json -nt "$folder/build.ninja" ]; then
        echo "Configuring $folder"
        cmake --preset "$1" -Wno-dev --log-level=WARNING >/dev/null || return 1
        touch "$folder/build.ninja"
    fi
    ninja -C "$folder" --quiet "${targets[@]:-all}" || return 1
    [ $((SECONDS - start)) -lt 2 ] || echo "Built $folder in $((SECONDS - start)) s"
}
