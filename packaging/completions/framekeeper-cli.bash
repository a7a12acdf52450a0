# shellcheck shell=bash
# Completion of framekeeper-cli for bash.

_framekeeper_cli() {
    local word=${COMP_WORDS[COMP_CWORD]} verb="" second="" i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        -*) ;;
        *) if [ -z "$verb" ]; then verb=${COMP_WORDS[i]}; elif [ -z "$second" ]; then second=${COMP_WORDS[i]}; fi ;;
        esac
    done
    COMPREPLY=()
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--json --null --csv --yes --help --version" -- "$word")
    elif [ -z "$verb" ]; then
        mapfile -t COMPREPLY < <(compgen -W "list info reveal quit trash restore delete swap-icon login places report" -- "$word")
    elif [ "$verb" = login ] && [ -z "$second" ]; then
        mapfile -t COMPREPLY < <(compgen -W "add remove" -- "$word")
    elif [ "$verb" = places ] && [ -z "$second" ]; then
        mapfile -t COMPREPLY < <(compgen -W "remove" -- "$word")
    elif [ "$verb" != list ]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}
complete -F _framekeeper_cli framekeeper-cli
