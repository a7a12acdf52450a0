# shellcheck shell=bash
# Sourced by ./run and ./test: sees that Debian's packages are installed.

# list_packages FILE...: the names in these lists.
list_packages() {
    sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "$@" | sort -u
}

# missing_packages NAME...: those that are not installed, by one call of dpkg-query.
missing_packages() {
    # dpkg-query ends with 1 when it knows nothing of a package; such a one is missing, so its status is of no use here.
    { dpkg-query -W -f '${binary:Package} ${db:Status-Status}\n' -- "$@" 2>/dev/null || true; } |
        sed -n 's/^\([^ :]*\)[^ ]* installed$/\1/p' | sort -u | comm -13 - <(printf '%s\n' "$@" | sort -u)
}

# run_as_root COMMAND...
run_as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif ! command -v sudo >/dev/null; then
        echo "Installing needs root, and there is no sudo. As root: $*" >&2
        return 1
    elif [ -t 0 ]; then
        sudo "$@"
    else
        sudo -n "$@"
    fi
}

# need_packages FILE...: names what is missing of these lists and installs it; asks first where there is a terminal.
need_packages() {
    local wanted missing answer
    mapfile -t wanted < <(list_packages "$@")
    if ! command -v dpkg-query >/dev/null; then
        echo "This is no Debian: what is needed must be there already (${wanted[*]})."
        return 0
    fi
    mapfile -t missing < <(LC_ALL=C missing_packages "${wanted[@]}")
    [ ${#missing[@]} -gt 0 ] || return 0

    echo "Needed and not installed: ${missing[*]}"
    if [ -t 0 ] && [ -t 1 ] && [ -z "${CI:-}" ]; then
        read -r -p "Install them now with apt-get? [Y/n] " answer
        case $answer in
        "" | [Yy]*) ;;
        *) echo "Nothing was installed." && return 1 ;;
        esac
    fi
    run_as_root apt-get update -q || return 1
    run_as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}
