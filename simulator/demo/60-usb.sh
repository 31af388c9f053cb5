#!/bin/bash
# The USB port: network, console, calibration bridge, network
set -euo pipefail
computer=/run/meter/usb-host # the connected computer's end of the serial line
hardware=/run/meter/hardware # the measuring hardware's

tell() {
    printf '  %-42s ' "$1"
}

# has_lines PROCESS: whether it has both serial lines open
has_lines() {
    local file count=0
    for file in "/proc/$1/fd/"*; do
        [[ $(readlink "$file") != /dev/pts/* ]] || count=$((count + 1))
    done
    [ $count -ge 2 ]
}

# exchange LINE FROM TO: writes a line on one side and reads it on the other
exchange() {
    local received
    exec 5<>"$2" 6<>"$3"
    printf '%s\n' "$1" >&5
    IFS= read -r -t 5 received <&6
    exec 5>&- 6>&-
    printf '%s\n' "$received"
}

tell 'to the network:' && ktvctl usb set network
tell 'to a serial line with a console:' && ktvctl usb set serial console

tell 'the computer types "hostname", and reads:'
exec 5<>"$computer"
printf 'hostname\r' >&5
name=$(hostname)
said=
# Reads up to the prompt after the answer: the shell ends each prompt by asking for the cursor
# position.
until [[ $said == *$'\n'"$name"$'\n'*$'\e[6n' ]]; do
    IFS= read -r -t 5 -dn part <&5 || {
        echo "nothing"
        exit 1
    }
    said+=${part//$'\r'/$'\n'}n
done
exec 5>&-
echo "$name"

tell 'to the calibration bridge:'
exec 7< <(exec ktvctl usb set serial bridge)
bridge=$!
IFS= read -r -t 60 state <&7
echo "$state"
tell 'computer to hardware:' && exchange 'CAL? 100A' "$computer" "$hardware"
tell 'hardware to computer:' && exchange 'CAL 0.99998' "$hardware" "$computer"
tell 'the bridge breaks, and comes back as:'
before=$(pgrep -x socat)
killall socat
until now=$(pgrep -x socat) && [ "$now" != "$before" ]; do
    sleep 0.1
done
echo "process $now instead of $before"
until has_lines "$now"; do
    sleep 0.1
done
tell 'computer to hardware again:' && exchange 'CAL? 10A' "$computer" "$hardware"
kill -INT "$bridge"
wait "$bridge" || true
tell 'bridges left when its program has ended:' && { pgrep -cx socat || true; }

tell 'back to the network:' && ktvctl usb set network
