#!/bin/bash
# WiFi: what is in reach, joining a network, losing it
set -euo pipefail
radio=/run/meter/radio
joining=/run/meter/behaviour/wpa_supplicant
events=$(mktemp)
before=$(mktemp)
address=$events.address # the meter gets its address when this file exists
cp $radio "$before"

# until_seen TEXT: waits until the watch prints it, after the texts seen before
seen=0
until_seen() {
    local line
    for _ in $(seq 200); do
        line=$(tail -n +$((seen + 1)) "$events" | grep -n -m 1 -- "$1" | cut -d: -f1 || true)
        if [ -n "$line" ]; then
            seen=$((seen + line))
            return
        fi
        sleep 0.1
    done
    echo "never signalled: $1" >&2
    return 1
}

finish() {
    kill "$watch" 2>/dev/null || true
    wait "$watch" 2>/dev/null || true
    cp "$before" $radio
    ktvctl wifi delete "Substation North" >/dev/null 2>&1 || true
    rm -f "$events" "$before" "$address" $joining
}

echo "In reach (bars, protection, name; a network that hides its name is not listed):"
ktvctl wifi scan
echo
echo "The interface's view, as it is signalled:"
ktvctl wifi watch >"$events" &
watch=$!
trap finish EXIT
until_seen "state   ON"
echo "address=$address" >$joining
echo "  add 'Substation North', which is protected"
echo ohm-law-1827 | ktvctl wifi add "Substation North" -
until_seen "state   Connecting"
: >"$address"
until_seen "detail  Connect_4  Substation North  192.168.44.100"
echo "  its access points go off the air"
sed -i '/Substation North/d' $radio
until_seen "detail  ON"
sed 's/^/    /' "$events"
echo
echo "The supplicant was given:"
sed -n '/^network/,$p' /etc/wpa_supplicant/wpa_supplicant-wlan0.conf |
    sed -e 's/psk=.*/psk=(not shown)/' -e 's/^/    /'
