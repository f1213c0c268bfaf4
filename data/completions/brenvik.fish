# fish completion for brenvik
complete -c brenvik -f
complete -c brenvik -l autostart -d 'Start in the tray without opening the control panel'
complete -c brenvik -l verbose -d 'Turn on debug logging on standard error'
complete -c brenvik -s h -l help -d 'Show help and exit'
complete -c brenvik -l version -d 'Show the version and exit'
