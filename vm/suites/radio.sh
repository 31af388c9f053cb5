# Four simulated WiFi adapters. One is the meter's wlan0; the others are access points of hostapd in
# a separate network namespace, "air", with a DHCP server.

air() {
    ip netns exec air "$@"
}

# access_point INTERFACE CHANNEL LINE...: settings of hostapd; further names on the same radio follow
# after a line bss=NAME
access_point() {
    local interface=$1 channel=$2
    shift 2
    {
        printf '%s\n' "interface=$interface" driver=nl80211 "channel=$channel" hw_mode=g ieee80211n=1 \
            ctrl_interface=/run/hostapd bridge=br0
        printf '%s\n' "$@"
    } >"/run/air/$interface.conf"
    air hostapd -B -P "/run/air/$interface.pid" "/run/air/$interface.conf" >"/run/air/$interface.log" 2>&1
}

protected() { # protected PASS-PHRASE
    printf '%s\n' wpa=2 wpa_key_mgmt=WPA-PSK rsn_pairwise=CCMP "wpa_passphrase=$1"
}

# adapters NUMBER: loads the simulated adapters; moves all but the first to "air"
adapters() {
    mkdir -p /run/air
    modprobe mac80211_hwsim radios="$1"
    ip netns add air
    local number=1 radio
    while [ $number -lt "$1" ]; do
        until_true 5 test -e /sys/class/net/wlan$number
        radio=$(cat /sys/class/net/wlan$number/phy80211/name)
        iw phy "$radio" set netns name air
        number=$((number + 1))
    done
    air ip link set lo up
    air ip link add br0 type bridge
    air ip address add 192.168.44.1/24 dev br0
    air ip link set br0 up
    cat >/run/air/udhcpd.conf <<'TEXT'
start 192.168.44.100
end 192.168.44.199
interface br0
lease_file /run/air/leases
pidfile /run/air/udhcpd.pid
option subnet 255.255.255.0
option router 192.168.44.1
TEXT
    : >/run/air/leases
    air busybox udhcpd /run/air/udhcpd.conf
}

# The networks of the suites: protected, open, with spaces, with UTF-8, with quotation marks,
# hidden; and a second access point with the first name.
# shellcheck disable=SC2046 # words without blanks
access_points() {
    access_point wlan1 1 "ssid=Substation North" $(protected ohm-law-1827) \
        bss=wlan1_1 bridge=br0 'ssid=Workshop Guest' \
        bss=wlan1_2 bridge=br0 'ssid2="Köln"' $(protected Stromrichter2)
    access_point wlan2 11 'ssid2="a"b"' \
        bss=wlan2_1 bridge=br0 'ssid=Control Room' ignore_broadcast_ssid=1 $(protected four-wire-kelvin) \
        bss=wlan2_2 bridge=br0 'ssid=  two  blanks  '
    access_point wlan3 6 "ssid=Substation North" $(protected ohm-law-1827)
}
