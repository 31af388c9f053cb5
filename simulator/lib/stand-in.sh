# The first steps of every stand-in program: it writes its call to the journal, then behaves as a
# test has requested. Sourced, never run; `program` is the stand-in's name.
# Written in shell alone, so that a call is a single process and `killall PROGRAM` ends it.

program=${0##*/}
meter=/run/meter
# Stand-ins work with Debian's own tools, whatever a test records or hides.
PATH=/usr/bin:/usr/sbin

tab='	'
newline='
'

# Sets $escaped: backslash doubled, tab and line feed as \t and \n.
escape() {
    escaped=$1
    case $escaped in
    *[\\"$tab$newline"]*) ;;
    *) return 0 ;;
    esac
    escaped=${escaped//\\/\\\\}
    escaped=${escaped//"$tab"/\\t}
    escaped=${escaped//"$newline"/\\n}
}

# One line in one write, so that calls at the same moment never mix.
journal() {
    line=$program
    for argument in "$@"; do
        escape "$argument"
        line=$line$tab$escaped
    done
    printf '%s\n' "$line" >>$meter/journal
}

# Sets $padded: NUMBER with zeros in front, WIDTH digits at least. Without a child process, which
# would carry the stand-in's name for a moment: killall would find it, and miss it when it kills.
pad() {
    padded=$2
    while [ ${#padded} -lt "$1" ]; do padded=0$padded; done
}

# Sleeps without a child process; a fraction of a second is fine.
pause() {
    case $1 in
    '' | 0 | 0.0 | 0.000) return 0 ;;
    esac
    read -r -t "$1" _ <>$meter/private/never || return 0
}

wait_for_ever() {
    read -r _ <>$meter/private/never
}

behaviour_exit=
behaviour_silent=
behaviour_stdout=

# Reads the behaviour file; delays, hangs and noise happen here. Requests for the program's output
# and exit code are kept in behaviour_* for say and leave.
behave() {
    [ -e "$meter/behaviour/$program" ] || return 0
    behaviour_noise=
    behaviour_hang=
    while IFS= read -r setting || [ -n "$setting" ]; do
        value=${setting#*=}
        case $setting in
        delay=*) pause "$value" ;;
        hang=1) behaviour_hang=1 ;;
        noise=*) behaviour_noise=$value ;;
        stdout=*) behaviour_stdout=set:$value ;;
        silent=1) behaviour_silent=1 ;;
        exit=*) behaviour_exit=$value ;;
        esac
    done <"$meter/behaviour/$program"
    [ -z "$behaviour_noise" ] || printf '%b\n' "$behaviour_noise"
    [ -z "$behaviour_hang" ] || wait_for_ever
    # If a test has set the output, the program does nothing else.
    if [ -n "$behaviour_stdout" ]; then
        printf '%b\n' "${behaviour_stdout#set:}"
        leave 0
    fi
}

# Prints the program's own standard output.
say() {
    [ -n "$behaviour_silent" ] || printf '%s\n' "$@"
}

complain() {
    printf '%s\n' "$*" >&2
}

leave() {
    exit "${behaviour_exit:-$1}"
}

journal "$@"
behave
