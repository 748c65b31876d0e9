# Bash completion for mensor. The program itself lists the units and packs.
_mensor() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local command= options='--pack --units --from --to --ucum --differences --dimensionless --strict --kinds --library --json --quiet --help --version'
    local i words packs=()
    COMPREPLY=()

    # Finds the command, and the options that add units.
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            --pack | --units) [ $((i + 1)) -lt "$COMP_CWORD" ] && packs+=("${COMP_WORDS[i]}" "${COMP_WORDS[i + 1]}"); ((i++)) ;;
            -*) ;;
            *) [ -n "$command" ] || command=${COMP_WORDS[i]} ;;
        esac
    done

    case $before in
        --pack)
            local done=
            [[ $word == *,* ]] && done=${word%,*},
            words=$("${COMP_WORDS[0]}" list packs 2>/dev/null | sed 's/ .*//')
            COMPREPLY=($(compgen -P "$done" -W "$words" -- "${word##*,}"))
            return ;;
        --from | --to)
            COMPREPLY=($(compgen -W 'unece opcua ucum senml opentelemetry' -- "$word"))
            return ;;
        --units)
            COMPREPLY=($(compgen -f -- "$word"))
            return ;;
    esac
    if [[ $word == -?* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$word"))
        return
    fi
    case $command in
        '') COMPREPLY=($(compgen -W 'convert explain list audit code' -- "$word")) ;;
        audit) COMPREPLY=($(compgen -f -- "$word")) ;;
        list)
            if [ "$before" = compatible ]; then
                words=$("${COMP_WORDS[0]}" list "${packs[@]}" 2>/dev/null | sed 's/ .*//')
                COMPREPLY=($(compgen -W "$words" -- "$word"))
            else
                COMPREPLY=($(compgen -W 'packs compatible' -- "$word"))
            fi ;;
        convert | explain | code)
            words=$("${COMP_WORDS[0]}" list "${packs[@]}" 2>/dev/null | sed 's/ .*//')
            COMPREPLY=($(compgen -W "$words" -- "$word")) ;;
    esac
}
complete -F _mensor mensor
