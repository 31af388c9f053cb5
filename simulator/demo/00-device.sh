#!/bin/bash
# The meter: a device of its own
interfaces=(/sys/class/net/*)
languages=(/home/root/Langs/*)
samples=(/etc/wav/*.raw)
printf '%-18s%s\n' \
    "System version" "$(cat /etc/version)" \
    "Interfaces" "${interfaces[*]##*/}" \
    "Languages" "${languages[*]##*/}" \
    "Sound samples" "${#samples[@]}" \
    "WiFi in reach" "$(iwlist wlan0 scan | grep -c Cell) access points"
