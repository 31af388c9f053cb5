# Serial lines made of two connected pseudo terminals. Sourced by /bin/sh programs.
#
# The copying is done by socat under another name, so that `killall socat` and
# `ps | grep socat` see only what the meter itself has started.

line_program=/run/meter/private/serial-line

# line_open NAME METER_SIDE OTHER_SIDE
line_open() {
    [ -x $line_program ] || cp /usr/bin/socat $line_program
    # Started from a subshell that ends at once: the line becomes a child of the
    # meter's first process, not of the command that happens to run.
    (
        setsid $line_program "PTY,link=$2,raw,echo=0" "PTY,link=$3,raw,echo=0" \
            <>/dev/null >&0 2>&0 &
        echo $! >"/run/meter/private/line-$1.pid"
    )
    line_wait "$2" && line_wait "$3" || return 1
    # Held open for good: a terminal whose last user left would end the line.
    (
        setsid /bin/busybox sh -c 'exec 3<>"$1" 4<>"$2"; read -r _ <>/run/meter/private/never' \
            line-holder "$2" "$3" <>/dev/null >&0 2>&0 &
        echo $! >"/run/meter/private/line-$1-holder.pid"
    )
}

line_wait() {
    tries=0
    while [ ! -e "$1" ]; do
        tries=$((tries + 1))
        [ $tries -lt 1000 ] || return 1
        sleep 0.005
    done
}

# line_close NAME METER_SIDE OTHER_SIDE
line_close() {
    for who in "$1-holder" "$1"; do
        pid_file=/run/meter/private/line-$who.pid
        [ -e "$pid_file" ] || continue
        kill -KILL "$(cat "$pid_file")" 2>/dev/null
        rm -f "$pid_file"
    done
    rm -f "$2" "$3"
}
