# The panel on the machine's screen: drawn through the kernel's frame buffer, touched through its input
# devices. A picture of each page is left outside.
adapters 4
access_points

outside() { # outside WORD...: asks the host, and waits for it
    printf '\2%s\n' "$*" >&3
    read -r _ <&3
}
screen() {
    cksum </dev/fb0
}
has_changed() { # has_changed SCREEN
    [ "$(screen)" != "$1" ]
}
still() { # waits until nothing has moved for a second
    local last
    until last=$(screen) && sleep 1 && ! has_changed "$last"; do :; done
}
page() { # page NAME NUMBER: touches its name on the rail
    local before
    before=$(screen)
    outside touch 60 $((72 + 48 * $2))
    check "a touch opens the page: $1" until_true 20 has_changed "$before"
    sleep 1
    outside picture "$1"
}

is_shown() { # the header is white; a console is black, and the picture before the window grey
    [ "$(dd if=/dev/fb0 bs=4 skip=300 count=8 2>/dev/null | tr -cd '\377' | wc -c)" -ge 24 ]
}

check "there is a screen" until_true 10 test -c /dev/fb0
systemctl start panel
check "the panel draws on it" until_true 60 is_shown
still
outside picture Measure
number=1
for name in Record Lists WiFi USB Sound Settings Accessories About; do
    page $name $number
    number=$((number + 1))
done

# --- what is touched reaches the drivers
is_up() {
    ifconfig | grep -q ^wlan0
}
check "the adapter is on" until_true 10 is_up
page WiFi 3
searching=$(screen)
check "the networks in reach are shown" until_true 20 has_changed "$searching"
still
outside picture WiFi
outside touch 672 384
check "a touch switches the adapter off" until_true 20 sh -c '! ifconfig | grep -q ^wlan0'
outside touch 672 384
check "and on again" until_true 20 is_up
check "the panel runs as ever" systemctl is-active panel
finish
