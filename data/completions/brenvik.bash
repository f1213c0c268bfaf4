# bash completion for brenvik

_brenvik() {
    COMPREPLY=($(compgen -W "--autostart --verbose --help --version" -- "${COMP_WORDS[COMP_CWORD]}"))
}
complete -F _brenvik brenvik
