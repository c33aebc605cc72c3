# Prints the completions that zsh offers for the last word of a line, one a line. Completion works only in an
# interactive shell, so one is started on a pseudo-terminal.
# zsh -f complete.zsh DIRECTORY_OF_COMPLETIONS LINE
zmodload zsh/zpty
zpty shell "TERM=dumb zsh -f -i"
zpty -w shell "PROMPT=; stty -echo; fpath=(${(q)1} \$fpath); autoload -Uz compinit; compinit -u -D
compadd() { local -a found; builtin compadd -O found \"\$@\"; print -rl -- \$found }
gather() { print begin; _main_complete; print end; compstate[insert]=; compstate[list]= }
zle -C gather complete-word gather; bindkey '^X' gather; print is''ready"
zpty -r shell output '*isready*'
zpty -w -n shell "$2"$'\x18'
zpty -r shell output $'*end\r*'
zpty -d shell
output=${output##*begin$'\r\n'}
print -rl -- ${(ou)${(f)${${output%end*}//$'\r'/}}}
