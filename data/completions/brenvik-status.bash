# bash completion for brenvik-status

_brenvik_status() {
    local cur prev
    cur=${COMP_WORDS[COMP_CWORD]}
    prev=${COMP_WORDS[COMP_CWORD-1]}
    if [[ $prev == --go ]]; then
        # A session's PID, or the one that waits or runs longest.
        local pids
        pids=$(brenvik-status --json 2>/dev/null | grep -o '"pid":[0-9]*' | cut -d: -f2)
        COMPREPLY=($(compgen -W "waiting running $pids" -- "$cur"))
        return
    fi
    COMPREPLY=($(compgen -W "--json --watch --go --verbose --help --version" -- "$cur"))
}
complete -F _brenvik_status brenvik-status
