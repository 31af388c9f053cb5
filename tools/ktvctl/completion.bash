# bash completion for ktvctl. Services, commands and options are read from the output of ktvctl
# --help.

_ktvctl() {
    local current=${COMP_WORDS[COMP_CWORD]} word
    local -a before=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word == -* ]] || before+=("$word")
    done
    COMPREPLY=()

    if [[ $current == -* ]]; then
        # The first two words are the command; more are its arguments.
        local options
        options=$(ktvctl "${before[@]:0:2}" --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]*' | sort -u)
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
        return
    fi

    # The words that may follow; names of arguments, in capital letters, are left out.
    local words
    words=$(ktvctl --help 2>/dev/null | awk -v depth="${#before[@]}" -v before="${before[*]}" '
        /^  ktvctl / {
            sub(/^ +/, "")
            sub(/  .*/, "") # the description of the command
            line = ""
            for (i = 2; i < depth + 2; ++i)
                line = line (i > 2 ? " " : "") $i
            if (line == before && $i ~ /^[a-z][a-z|-]*$/) {
                gsub(/\|/, " ", $i)
                print $i
            }
        }' | sort -u)
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    [ ${#COMPREPLY[@]} -gt 0 ] || mapfile -t COMPREPLY < <(compgen -f -- "$current")
}
complete -o filenames -F _ktvctl ktvctl
