# Completion of lumcv for bash.
_lumcv() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
    local commands="info absdiff detect inpaint segment track gallery help" options="-h --help"
    local IFS=$' \t\n'
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands -h --help --version" -- "$word")
        return
    fi
    case "$previous" in
    --method)
        mapfile -t COMPREPLY < <(compgen -W "front isophote" -- "$word")
        return
        ;;
    --radius | --seeds) return ;;
    esac
    case "$command" in
    help)
        mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word")
        return
        ;;
    absdiff | track) options="$options -o --output" ;;
    detect) options="$options -o --output --cascade" ;;
    inpaint) options="$options -o --output --method --radius" ;;
    segment) options="$options -o --output --seeds" ;;
    gallery) options="$options -o --output --full-size --pnm" ;;
    esac
    case "$word" in
    -*) mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word") ;;
    *)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        ;;
    esac
}
complete -F _lumcv lumcv
