# bash completion for sweepctl. The words come from the program itself ("sweepctl complete WORD..."),
# so that they are those of its help and of the device that is named.

# Sets TYPED to the words before the cursor as the shell will read them, without quotes and
# backslashes, and OPEN to the quote that is still open. Readline's own words are also broken at "="
# and ":".
__sweepctl_typed() {
    local line=${COMP_LINE:0:COMP_POINT} c i begun=
    TYPED=('') OPEN=
    for ((i = 0; i < ${#line}; i++)); do
        c=${line:i:1}
        if [[ -z $OPEN && $c == [[:blank:]] ]]; then
            [[ -z $begun ]] || TYPED+=('')
            begun=
            continue
        fi
        begun=yes
        if [[ -n $OPEN && $c == "$OPEN" ]]; then
            OPEN=
        elif [[ -z $OPEN && ($c == \' || $c == \") ]]; then
            OPEN=$c
        elif [[ $c == \\ && $OPEN != \' ]]; then
            ((++i))
            TYPED[-1]+=${line:i:1}
        else
            TYPED[-1]+=$c
        fi
    done
}

# Sets REPLY to a word as it is typed within the quote that is open, or without one.
__sweepctl_quote() {
    REPLY=$1
    case $2 in
        \') REPLY=${REPLY//\'/\'\\\'\'} ;;
        \") REPLY=${REPLY//\\/\\\\} REPLY=${REPLY//\"/\\\"} REPLY=${REPLY//\$/\\\$} REPLY=${REPLY//\`/\\\`} ;;
        *) printf -v REPLY %q "$REPLY" ;;
    esac
}

_sweepctl() {
    local TYPED OPEN REPLY word line kept=
    COMPREPLY=()
    __sweepctl_typed
    # Variables may be set before the program is named.
    while [[ ${TYPED[0]} == *=* ]]; do TYPED=("${TYPED[@]:1}"); done
    local program=${TYPED[0]/#\~\//$HOME/} last=${TYPED[-1]}

    # Readline puts a word in only behind the last character at which it breaks words.
    if [[ -z $OPEN && $COMP_WORDBREAKS == *=* && $last == *=* ]]; then kept=${last%"${last##*=}"}; fi
    if [[ -z $OPEN && $COMP_WORDBREAKS == *:* && ${last#"$kept"} == *:* ]]; then
        kept=${last%"${last##*:}"}
    fi

    while IFS= read -r line; do
        word=${line%%$'\t'*}
        if [[ -z $word ]]; then
            compopt -o filenames 2> /dev/null
            mapfile -t COMPREPLY < <(compgen -d -- "${last#"$kept"}")
            return
        fi
        [[ $word == */ ]] && compopt -o nospace 2> /dev/null
        __sweepctl_quote "${word#"$kept"}" "$OPEN"
        COMPREPLY+=("$REPLY")
    done < <("$program" complete "${TYPED[@]:1}" 2> /dev/null < /dev/null)
}

complete -F _sweepctl sweepctl
