# bash completion for ktvctl. Services, commands and options are those that ktvctl itself tells of.

_ktvctl() {
    local current=${COMP_WORDS[COMP_CWORD]} word
    local -a before=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word == -* ]] || before+=("$word")
    done
    COMPREPLY=()

    if [[ $current == -* ]]; then
        # Two words choose a command: more would be its arguments.
        local options
        options=$(ktvctl "${before[@]:0:2}" --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]*' | sort -u)
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
        return
    fi

    # The words that may follow those before; names of arguments are in capital letters.
    local words
    words=$(ktvctl --help 2>/dev/null | awk -v depth="${#before[@]}" -v before="${before[*]}" '
        /^  ktvctl / {
            sub(/^ +/, "")
            sub(/  .*/, "") # what the command does
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
