# Opens and closes serial lines (see serial-line). Sourced by sh programs.

# line_open NAME METER_SIDE OTHER_SIDE
line_open() {
    # Started from a subshell that ends at once, so that the line becomes a child of the meter's
    # first process, not of the command that is running.
    (
        setsid /opt/meter/lib/serial-line "$2" "$3" <>/dev/null >&0 2>&0 &
        echo $! >"/run/meter/private/line-$1.pid"
    )
    tries=0
    while [ ! -e "$3" ]; do
        tries=$((tries + 1))
        [ $tries -lt 2000 ] || return 1
        sleep 0.005
    done
}

# line_close NAME METER_SIDE OTHER_SIDE
line_close() {
    pid_file=/run/meter/private/line-$1.pid
    [ -e "$pid_file" ] || return 0
    kill -KILL "$(cat "$pid_file")" 2>/dev/null
    rm -f "$pid_file" "$2" "$3"
}
