# Read by an interactive zsh: loads what completes commands, and lets a tab write what the last word can become
# into the file $FOUND, and end the shell.
fpath=($FOLDER $fpath)
autoload -Uz compinit
compinit -u -D

# Whatever completes calls this with what fits; with -O, -A or -D it only asks, to choose itself.
compadd() {
    local -a fitting
    if [[ " ${@[1,(i)(-|--)]} " != *' -'[OAD]' '* ]]; then
        builtin compadd -O fitting "$@"
        print -rl -- $fitting >>$FOUND
    fi
    builtin compadd "$@"
}

tell() { _main_complete "$@"; exit; }
zle -C tell .complete-word tell
bindkey '^I' tell
