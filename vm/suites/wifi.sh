# WiFi: simulated adapters, real access points, the real supplicant and wireless tools.
adapters 4
access_points
check "the adapter is there" until_true 5 test -e /sys/class/net/wlan0
for log in /run/air/*.log; do
    check "the access points of $(basename "$log" .log) are on the air" grep -q AP-ENABLED "$log"
done

state_of() { # state_of [SECONDS]: state, network and address, once connected or after SECONDS
    ktvctl wifi status --wait "${1:-20}" --json |
        python3 -c 'import json, sys; a = json.load(sys.stdin); print(a["stateName"], "/", a["name"], "/",
            a["address"].rpartition(".")[0] and a["address"].rpartition(".")[0] + ".x")'
}
joined() { # joined TEXT NAME: connected to NAME, with an address
    equal "$1" "Connect_4 / $2 / 192.168.44.x" "$(state_of)"
}

# --- switched on, and what is in reach
ktvctl wifi power on >/dev/null
check "switched on, the interface is up" until_true 5 sh -c 'ifconfig | grep -q ^wlan0'
reach=$(ktvctl wifi scan --json | python3 -c '
import json, sys
for network in json.load(sys.stdin):
    print(network["name"], "/", "protected" if network["protected"] else "open")')
has "in reach: a protected network" "Substation North / protected" "$reach"
has "in reach: an open network" "Workshop Guest / open" "$reach"
has "in reach: a name beyond ASCII, as iwlist prints it" 'K\xC3\xB6ln / protected' "$reach"
has "in reach: a name with a quotation mark, without it" "ab / open" "$reach"
has "in reach: a name with blanks, trimmed" "two  blanks / open" "$reach"
lacks "a hidden network is not listed" "Control Room / protected" "$reach"
equal "two access points of one name are listed once" 1 "$(printf '%s\n' "$reach" | grep -c Substation)"

# --- joining
ktvctl wifi add "Substation North" wrong-phrase
# The supplicant tries again and again. While the access point refuses, iwgetid prints the name of the
# network; between two tries it prints only a line feed.
watched=$(ktvctl wifi watch --seconds 12)
has "a wrong pass phrase: on, without a name" "detail  ON" "$watched"
lacks "and never connecting without a name" "detail  Connecting" "$watched"
equal "and never connected" "" "$(printf '%s\n' "$watched" | grep Connect_)"
ktvctl wifi add "Substation North" ohm-law-1827
joined "joins a protected network" "Substation North"
ktvctl wifi add --open "Workshop Guest"
name_is() { [ "$(iwgetid wlan0 -r)" = "$1" ]; }
check "joins the network that was added last" until_true 20 name_is "Workshop Guest"
ktvctl wifi prefer "Substation North"
check "joins the network that is preferred" until_true 20 name_is "Substation North"
ktvctl wifi delete "Substation North"
joined "joins an open network" "Workshop Guest"
ktvctl wifi add "Köln" Stromrichter2
joined "joins a network with a name beyond ASCII" "Köln"
ktvctl wifi delete "Köln"
ktvctl wifi delete "Workshop Guest"
ktvctl wifi add --open 'a"b'
joined "joins a network with a quotation mark in its name" 'a"b'
ktvctl wifi delete 'a"b'
ktvctl wifi add --open '  two  blanks  '
joined "joins a network whose name begins and ends with blanks" "two  blanks"
ktvctl wifi delete '  two  blanks  '
ktvctl wifi add "Control Room" four-wire-kelvin
equal "a hidden network is not joined" "ON /  / " "$(state_of 8)"
ktvctl wifi delete "Control Room"

# --- what comes and goes
ktvctl wifi add "Substation North" ohm-law-1827
joined "joins the first network again" "Substation North"
kill "$(cat /run/air/wlan1.pid)" "$(cat /run/air/wlan3.pid)"
check "an access point that goes is left" until_true 20 name_is ""
equal "and the state is on, without a name" "ON /  / " "$(state_of 3)"
ktvctl wifi power off >/dev/null
check "switched off, the interface is down" sh -c '! ifconfig | grep -q ^wlan0'
equal "and the state is off" OFF "$(ktvctl wifi status --json |
    python3 -c 'import json, sys; print(json.load(sys.stdin)["stateName"])')"
finish
