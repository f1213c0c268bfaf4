# fish completion for brenvik-status
complete -c brenvik-status -f
complete -c brenvik-status -l json -d 'Print JSON instead of text'
complete -c brenvik-status -l watch -d 'Print one line after every refresh until interrupted'
complete -c brenvik-status -l go -x -a 'waiting\t"Session waiting longest" running\t"Session running longest" (brenvik-status --json 2>/dev/null | string match -r -a -g \'"pid":(\d+)\')' -d 'Go to a session'
complete -c brenvik-status -l verbose -d 'Turn on debug logging on standard error'
complete -c brenvik-status -s h -l help -d 'Show help and exit'
complete -c brenvik-status -l version -d 'Show the version and exit'
