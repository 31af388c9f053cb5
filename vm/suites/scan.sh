# Scans that give the library nothing at first: of an adapter that scans already, and of one with so many
# channels that it takes longer than the library waits.
adapters 4
access_points
until_true 5 test -e /sys/class/net/wlan0
ifconfig wlan0 up

scan() { # what ktvctl finds, and what it remarks
    ktvctl wifi scan >/run/found 2>/run/remarks
}
name_is() { [ "$(iwgetid wlan0 -r)" = "$1" ]; }

# --- busy
check "a scan of the adapter has begun" iw dev wlan0 scan trigger passive
scan
has "an adapter that scans already is asked again" "ktvctl: no network was heard; scanning again" \
    "$(cat /run/remarks)"
check "and then the networks are listed" grep -q "Substation North" /run/found

# --- slow: while it is joined, the adapter goes back to its network after each channel
ktvctl wifi add "Substation North" ohm-law-1827
check "joined" until_true 30 name_is "Substation North"
SECONDS=0
iwlist wlan0 scan >/dev/null
check "a scan of two bands takes longer than 5 s ($SECONDS s)" test $SECONDS -gt 5
watched=$(ktvctl wifi watch --scan --seconds 45)
has "watch says why there is no list" "scan    took longer than 5 s; scanning again" "$watched"
scans=$(printf '%s\n' "$watched" | grep -c "^scan")
check "and scanning goes on ($scans scans)" test "$scans" -gt 1
check "the network stays joined" name_is "Substation North"

# --- what one band takes, as docs/device-image.md asks for
SECONDS=0
iw dev wlan0 scan freq $(seq 2412 5 2462) >/dev/null
check "a scan of one band takes less than 5 s ($SECONDS s)" test $SECONDS -lt 5
finish
