# Functions for the suites; put before each one. A check prints one line: "ok" or "FAILED", the
# expectation, and after a failure what was found.

failures=0

report() { # report ok|FAILED TEXT [SEEN]
    printf '%-6s %s\n' "$1" "$2"
    [ "$1" = ok ] && return
    failures=$((failures + 1))
    printf '%s\n' "${3-}" | sed 's/^/         | /'
}

# check TEXT COMMAND...: the command succeeds
check() {
    local text=$1 seen
    shift
    if seen=$("$@" 2>&1); then report ok "$text"; else report FAILED "$text" "$seen"; fi
}

# equal TEXT WANTED SEEN
equal() {
    if [ "$2" = "$3" ]; then report ok "$1"; else report FAILED "$1" "wanted: $2
seen:   $3"; fi
}

# has TEXT WANTED SEEN: the line WANTED is among the lines SEEN
has() {
    if printf '%s\n' "$3" | grep -qxF -- "$2"; then report ok "$1"; else report FAILED "$1" "wanted: $2
seen:   $3"; fi
}

lacks() {
    if printf '%s\n' "$3" | grep -qxF -- "$2"; then report FAILED "$1" "$3"; else report ok "$1"; fi
}

# until_true SECONDS COMMAND...
until_true() {
    local left=$(($1 * 2))
    shift
    until "$@" >/dev/null 2>&1; do
        left=$((left - 1))
        [ $left -gt 0 ] || return 1
        sleep 0.5
    done
}

finish() {
    exit $((failures > 0))
}
