# Twenty changes of the known networks in a row: each restarts the supplicant, and systemd refuses the sixth
# start of a unit within ten seconds, unless a drop-in lifts that limit.
adapters 4
access_points
until_true 5 test -e /sys/class/net/wlan0
unit=wpa_supplicant@wlan0
drop_in=/usr/lib/systemd/system/wpa_supplicant@.service.d/supplicant-restarts.conf

change() { # change TIMES
    local number
    for number in $(seq "$1"); do
        ktvctl wifi add "Substation North" "ohm-law-182$((number % 10))"
    done
}
name_is() { [ "$(iwgetid wlan0 -r)" = "$1" ]; }

check "the library's drop-in is installed" test -e $drop_in
since=$(cut -d. -f1 /proc/uptime)
change 20
took=$(($(cut -d. -f1 /proc/uptime) - since))
check "twenty changes took $took s, less than five restarts in each ten seconds" test $took -lt 40
equal "the supplicant runs" active "$(systemctl is-active $unit)"
ktvctl wifi add "Substation North" ohm-law-1827
check "the network is joined" until_true 30 name_is "Substation North"

# --- the limit is there: without the drop-in the same leaves WiFi off
mv $drop_in /run/
systemctl daemon-reload
systemctl reset-failed
change 6
equal "without the drop-in the supplicant is refused" failed "$(systemctl is-active $unit)"
check "by the start limit" sh -c "systemctl status $unit | grep -q start-limit-hit"
mv /run/supplicant-restarts.conf $drop_in
systemctl daemon-reload
change 1
equal "with it the next change brings it back" active "$(systemctl is-active $unit)"
finish
