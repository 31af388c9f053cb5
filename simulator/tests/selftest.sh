#!/bin/bash
# Tests of the simulated meter itself: what the stand-ins do, that the host is
# left alone, and that nothing stays behind.
#
# Scripts in single quotes are meant for the shell in the meter.
# shellcheck disable=SC2016
set -uo pipefail
simulator=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd -P)
meter_run=$simulator/meter-run
passed=0
failed=0

# check NAME COMMAND...: the command must succeed
check() {
    local name=$1 log
    shift
    if log=$("$@" 2>&1); then
        passed=$((passed + 1))
        echo "PASS   $name"
    else
        failed=$((failed + 1))
        echo "FAIL!  $name"
        printf '%s\n' "$log" | sed 's/^/       | /'
    fi
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mark=ktv-selftest-$$

# inside SCRIPT: runs a shell script in a fresh meter; stops at its first failure. The script is
# passed in a file, because its text must not appear in the process list.
inside() {
    printf '%s' "$helpers$1" >"$scratch/script"
    "$meter_run" --fresh --bind "$scratch/script:/tmp/script" -- sh -eu /tmp/script
}

# For the scripts inside. `soon` waits for a condition, a minute at most.
helpers='
    soon() { n=0; until "$@"; do n=$((n + 1)); [ $n -lt 3000 ] || return 1; usleep 20000; done; }
    fails() { ! "$@"; }
    journal_has() { grep -qxF "$(printf "$1")" /run/meter/journal; }
    address() { ifconfig wlan0 | grep -q "inet addr:$1 *Bcast:.* *Mask:255.255.255.0"; }
    joined() { [ "$(iwgetid wlan0 -r)" = "$1" ]; }
    no_link() { [ "$(iwgetid wlan0 -r; echo $?)" = "
0" ]; }
    bridge() { ps | grep -q "[s]ocat /dev/ttyGS0 /dev/ttycommunication"; }
    milliseconds() { python3 -c "import time; print(int(time.monotonic() * 1000))"; }
    configure() { { echo ap_scan=1; "$@"; } >/etc/wpa_supplicant/wpa_supplicant-wlan0.conf; }
    radio() { printf "$1" >/run/meter/radio.new; mv /run/meter/radio.new /run/meter/radio; }
'

echo "--- the command and its surroundings"

check "the command's exit code comes out" \
    bash -c "'$meter_run' -- sh -c 'exit 7'; [ \$? = 7 ]"
check "arguments arrive as they were given" \
    bash -c "[ \"\$('$meter_run' -- printf '%s|' \"it's\" 'a  b' '' '*')\" = \"it's|a  b||*|\" ]"
check "programs know that they are in the meter" \
    inside '[ -e /run/meter/inside ] && [ "$KTV_METER" = 1 ] && [ "$PWD" = /home/root ]'
check "the caller's environment stays outside, but for sanitizers and Qt Test" \
    env PAGER=less ASAN_OPTIONS=a=1 QTEST_FUNCTION_TIMEOUT=5 bash -c "[ \"\$('$meter_run' -- \
        sh -c 'echo \${PAGER-none} \$ASAN_OPTIONS \$QTEST_FUNCTION_TIMEOUT')\" = 'none a=1 5' ]"
check "standard input reaches the command" \
    bash -c "[ \"\$(echo hello | '$meter_run' -- cat)\" = hello ]"
check "busybox serves ps, ifconfig, killall and grep" inside '
    for program in ps ifconfig killall grep ls cat sh; do
        [ "$(readlink "$(command -v $program)")" = /bin/busybox ] ||
            [ "$(readlink -f "$(command -v $program)")" = /usr/bin/busybox ]
    done'
check "the command line shows on no process but its own" "$meter_run" -- sh -c '
    : needle; [ "$(grep -la "[n]eedle" /proc/[0-9]*/cmdline)" = /proc/$$/cmdline ]'
check "file permissions count" inside '
    echo x >/home/root/locked; chmod 0 /home/root/locked; fails cat /home/root/locked'
check "a small volume can be mounted and made read-only" inside '
    mount -t tmpfs -o size=1m tmpfs /media/sdcard/Clients
    fails dd if=/dev/zero of=/media/sdcard/Clients/big bs=1k count=2000 2>/dev/null
    rm /media/sdcard/Clients/big
    mount -o remount,bind,ro /media/sdcard/Clients
    fails touch /media/sdcard/Clients/x'

echo "--- the host and what stays behind"

interfaces_before=$(ls /sys/class/net)
check "what is written inside does not reach the host" bash -c "
    '$meter_run' -- sh -euc 'for folder in /etc /home/root /media/sdcard /run /tmp /var /dev/shm; do
        : >\$folder/$mark; done; : >/home/$mark'
    for folder in /etc /home /home/root /media /media/sdcard /run /tmp /var /dev/shm; do
        [ ! -e \$folder/$mark ] || exit 1
    done"
check "the repository cannot be written from inside" \
    bash -c "! '$meter_run' -- touch '$simulator/$mark' 2>/dev/null && [ ! -e '$simulator/$mark' ]"
# gone PATTERN: no process of the host has it on its command line (any more)
gone() {
    for _ in {1..100}; do
        pgrep -f -- "$1" >/dev/null || return 0
        sleep 0.05
    done
    return 1
}
ends_with_command() {
    "$meter_run" -- sh -c "setsid sleep 7654$$ >/dev/null 2>&1 & setsid mactool & until pgrep sleep && pgrep mactool; do usleep 10000; done"
    gone "^sleep 7654$$"
}
check "no process is left when the command ends" ends_with_command
ends_with_caller() {
    "$meter_run" -- sh -c "setsid sleep 8765$$ & sleep 60" &
    local meter=$!
    for _ in {1..200}; do
        pgrep -f "^sleep 8765$$" >/dev/null && break
        sleep 0.05
    done
    pgrep -f "^sleep 8765$$" || return 1
    kill -KILL $meter
    gone "^sleep 8765$$"
}
check "no process is left when the caller is killed" ends_with_caller
check "the host's network interfaces are as before" \
    [ "$(ls /sys/class/net)" = "$interfaces_before" ]

echo "--- a state that is kept"

kept() {
    "$meter_run" --state "$scratch/state" -- sh -euc "$helpers$1"
}
check "first start: marker, image and folders are there" kept '
    [ "$(cat /etc/korva/system-boot.status)" = 1 ] && rm /etc/korva/system-boot.status
    [ -e /home/root/globalInfo.xml ] && [ -d /media/sdcard/UserData ]
    echo mine >/home/root/globalInfo.xml; echo card >/media/sdcard/Log/file
    radio "-50\tKept\t-\n"; echo 9.9 >/etc/version; amixer set "DAC R&L" 70% >/dev/null'
check "later: what was written is there, the marker is not, the image's own is new" kept '
    [ ! -e /etc/korva/system-boot.status ]
    [ "$(cat /home/root/globalInfo.xml)" = mine ] && [ "$(cat /media/sdcard/Log/file)" = card ]
    [ "$(cat /etc/version)" != 9.9 ] && [ ! -s /run/meter/journal ]
    iwlist wlan0 scan | grep -q "ESSID:\"Kept\""
    amixer get "DAC R&L" | grep -q "\[70%\]"'
check "one state serves one meter at a time" bash -c "
    '$meter_run' --state '$scratch/state' -- '$meter_run' --help >/dev/null || exit 1
    '$meter_run' --state '$scratch/state' -- sh -c 'touch /home/root/up; sleep 20' &
    for i in {1..200}; do [ -e '$scratch/state/home-root/up' ] && break; sleep 0.05; done
    '$meter_run' --state '$scratch/state' -- true 2>/dev/null; status=\$?
    kill -KILL \$!; wait \$!
    [ \$status = 70 ] && '$meter_run' --state '$scratch/state' -- true"

echo "--- journal and behaviours"

check "calls are written down, odd arguments escaped" inside '
    beep -f 1 -l 0 2>/dev/null; iwgetid "a	b\\c
d" || true
    journal_has "beep\t-f\t1\t-l\t0" && journal_has "iwgetid\ta\\\\tb\\\\\\\\c\\\\nd"'
check "calls at the same moment do not mix" inside '
    for i in 1 2 3 4 5 6 7 8 9 10; do (for j in 1 2 3 4 5; do iwgetid wlan0 word-$i-$j || true; done) & done; wait
    [ "$(grep -cE "^iwgetid	wlan0	word-[0-9]+-[0-9]+$" /run/meter/journal)" = 50 ]'
check "delay and exit" inside '
    printf "delay=0.3\nexit=9\n" >/run/meter/behaviour/iwlist
    start=$(milliseconds); status=0; iwlist wlan0 scan >/dev/null || status=$?
    [ $status = 9 ] && [ $(($(milliseconds) - start)) -ge 300 ]'
check "noise, silent, stdout" inside '
    echo "noise=a\tb" >/run/meter/behaviour/modprobe-usb-gadget
    [ "$(modprobe-usb-gadget g_ether)" = "a	b" ] && [ -e /sys/class/net/usb0 ]
    echo silent=1 >/run/meter/behaviour/iwconfig
    [ -z "$(iwconfig wlan0)" ]
    echo "stdout=one\ntwo" >/run/meter/behaviour/iwgetid
    [ "$(iwgetid wlan0 -r)" = "one
two" ]'
check "hang lasts until the program is killed by its name" inside '
    echo hang=1 >/run/meter/behaviour/iwlist
    iwlist wlan0 scan & hanging=$!
    soon journal_has "iwlist\twlan0\tscan"; sleep 0.1
    kill -0 $hanging && killall iwlist && fails wait $hanging'
check "hidden programs cannot be started, and come back" inside '
    meter-hide iwlist socat ps aplay
    for program in iwlist socat ps aplay; do fails $program --help 2>/dev/null; done
    meter-show iwlist socat ps aplay
    iwlist wlan0 scan >/dev/null && socat -V >/dev/null && ps >/dev/null && aplay --version >/dev/null'
check "programs can be hidden from the start" \
    env KTV_METER_HIDE=beep,socat "$meter_run" -- sh -c '! beep -l 0 2>/dev/null && ! socat -V 2>/dev/null'
check "real programs are recorded when asked" inside '
    wpa_passphrase a 12345678 >/dev/null; meter-record wpa_passphrase; hash -r
    wpa_passphrase "net name" 12345678 | grep -q "ssid=\"net name\""
    [ "$(cat /run/meter/journal)" = "wpa_passphrase	net name	12345678" ]
    echo exit=3 >/run/meter/behaviour/wpa_passphrase; fails wpa_passphrase x 12345678
    meter-show wpa_passphrase; hash -r; wpa_passphrase x 12345678 >/dev/null'

echo "--- USB port"

check "one gadget at a time, silently" inside '
    [ ! -e /dev/ttyGS0 ] && [ ! -e /sys/class/net/usb0 ]
    [ -z "$(modprobe-usb-gadget g_serial 2>&1)" ] && [ -c /dev/ttyGS0 ]
    [ -z "$(modprobe-usb-gadget g_ether 2>&1; ifconfig usb0 up 2>&1)" ]
    [ -e /sys/class/net/usb0 ] && [ ! -e /dev/ttyGS0 ]
    modprobe-usb-gadget g_serial; [ ! -e /sys/class/net/usb0 ] && [ -e /dev/ttyGS0 ]'
check "the real socat carries data both ways, and is all that killall finds" inside '
    modprobe-usb-gadget g_serial
    socat /dev/ttyGS0 /dev/ttycommunication & soon bridge
    head -n 1 /run/meter/hardware >/tmp/up & reader=$!
    echo "?ID" >/run/meter/usb-host; wait $reader; [ "$(cat /tmp/up)" = "?ID" ]
    head -n 1 /run/meter/usb-host >/tmp/down & reader=$!
    echo "KTV" >/run/meter/hardware; wait $reader; [ "$(cat /tmp/down)" = "KTV" ]
    killall socat; soon fails bridge
    [ -c /dev/ttyGS0 ] && [ -c /dev/ttycommunication ]
    stty -F /dev/ttyGS0 19200 && [ "$(stty -F /dev/ttyGS0 speed)" = 19200 ]'
check "the console answers on the serial line" inside '
    modprobe-usb-gadget g_serial; unit=busybox.getty@ttyGS0.service
    status=0; systemctl status $unit >/tmp/status || status=$?
    [ $status = 3 ] && grep -q " Active: inactive (dead)" /tmp/status
    cat /run/meter/usb-host >/tmp/seen 2>/dev/null &
    [ -z "$(systemctl start $unit 2>&1)" ]
    systemctl status $unit | grep -q " Active: active (running)"
    soon grep -q "root@meter" /tmp/seen
    printf "cat /etc/version\n" >/run/meter/usb-host
    soon grep -q "$(cat /etc/version)" /tmp/seen
    [ -z "$(systemctl stop $unit 2>&1)" ]
    fails systemctl status $unit >/dev/null; soon fails pgrep getty
    head -n 1 /dev/ttyGS0 >/tmp/line & reader=$!
    echo "after the console" >/run/meter/usb-host; wait $reader; grep -q after /tmp/line'
check "a console that is stopped at its start is gone" inside '
    modprobe-usb-gadget g_serial; unit=busybox.getty@ttyGS0.service
    for i in $(seq 30); do
        systemctl start $unit; usleep $((i * 200)); systemctl stop $unit
        fails pgrep -f "[t]tyGS0 *$|[l]ib/console"
    done'
check "mactool stays until it is killed" inside '
    is_listed() { ps | grep -q "[m]actool"; }
    mactool & soon is_listed; killall mactool; soon fails pgrep mactool'

echo "--- WiFi"

check "scan: names as the tool prints them, hidden ones, several of one name" inside '
    radio "-40\tÄ \"x\"\\\\\\\\x41\t-\n# no\n-70\tTwin\tpassphrase\n-71\tTwin\tpassphrase\thidden\n-72\tQ\t-\thidden=2\n"
    iwlist wlan0 scan >/tmp/scan
    [ "$(grep -c "Cell " /tmp/scan)" = 4 ]
    grep -qF "ESSID:\"\\xC3\\x84 \"x\"\\x5Cx41\"" /tmp/scan || grep -qF "ESSID:\"\\xC3\\x84 \"x\"\\x41\"" /tmp/scan
    [ "$(grep -c "ESSID:\"\"" /tmp/scan)" = 1 ] && grep -qF "ESSID:\"\\x00\\x00\"" /tmp/scan
    grep -q "Quality=70/70  Signal level=-40 dBm" /tmp/scan
    [ "$(grep -c "Encryption key:on" /tmp/scan)" = 2 ]'
check "an interface that is down does not scan" inside '
    ifconfig wlan0 down; [ -z "$(iwlist wlan0 scan 2>/dev/null)" ]'
check "join: first without an address, then with one; then the point is lost" inside '
    echo address=/tmp/address >/run/meter/behaviour/wpa_supplicant
    radio "-48\tLab\tohm-law-1827\n"
    configure wpa_passphrase Lab ohm-law-1827
    [ -z "$(systemctl restart wpa_supplicant@wlan0 2>&1)" ]
    soon joined Lab; fails address 192.168.44.100; : >/tmp/address; soon address 192.168.44.100
    iwconfig wlan0 | grep -q "Signal level=-48 dBm"
    radio "-77\tLab\tohm-law-1827\n"; iwconfig wlan0 | grep -q "Signal level=-77 dBm"
    radio ""; soon no_link; soon fails address ".*"
    iwconfig wlan0 | grep -q "ESSID:off/any"'
check "restarts at the same moment leave one supplicant" inside '
    one_supplicant() { [ "$(pgrep -cx supplicant)" = 1 ]; }
    configure true
    for i in $(seq 8); do systemctl restart wpa_supplicant@wlan0 & done
    wait; soon one_supplicant; systemctl status wpa_supplicant@wlan0 >/dev/null'
check "a wrong pass phrase does not join, the next network does" inside '
    radio "-40\tLab\tright-phrase\n-60\tOpen\t-\tsubnet=10.1.2\n"
    configure sh -c "wpa_passphrase Lab wrong-phrase; printf \"network={\n\tssid=\\\"Open\\\"\n\tkey_mgmt=NONE\n}\n\""
    systemctl restart wpa_supplicant@wlan0
    soon address 10.1.2.100; joined Open'
check "priority wins over signal, and a hidden network is not found by itself" inside '
    radio "-40\tNear\t-\n-80\tFar\t-\n-30\tGhost\t-\thidden\n"
    block() { printf "network={\n\tssid=\"%s\"\n\tkey_mgmt=NONE\n%s}\n" "$1" "${2-}"; }
    configure sh -c "true"
    { block Ghost "	priority=100
"; block Near; block Far "	priority=100
"; } >>/etc/wpa_supplicant/wpa_supplicant-wlan0.conf
    systemctl restart wpa_supplicant@wlan0
    soon joined Far'
check "power: down loses the network, up finds it again" inside '
    radio "-40\tOpen\t-\n"
    configure printf "network={\n\tssid=\"Open\"\n\tkey_mgmt=NONE\n}\n"
    systemctl restart wpa_supplicant@wlan0; soon address ".*"
    ifconfig wlan0 down; no_link; ifconfig wlan0 up; soon joined Open; soon address ".*"'
check "the adapter can be taken away, and one with a longer name added" inside '
    ip link add wlan0mon type veth peer name air1
    [ "$(ls /sys/class/net | grep "wlan0")" = "wlan0
wlan0mon" ]
    ip link delete wlan0; [ "$(ls /sys/class/net | grep "wlan0")" = wlan0mon ]
    ip link add wlan0 type veth peer name air0; ip link set air0 up; ip link set wlan0 up
    radio "-40\tOpen\t-\n"; iwlist wlan0 scan | grep -q Open'
check "the supplicant sees what the file held at its start" inside '
    block() { printf "network={\n\tssid=\"%s\"\n\tkey_mgmt=NONE\n}\n" "$1"; }
    radio "-40\tOpen\t-\n"
    configure block Weak; systemctl restart wpa_supplicant@wlan0
    block Open >>/etc/wpa_supplicant/wpa_supplicant-wlan0.conf
    radio "-40\tOpen\t-\n-80\tWeak\t-\n"; soon joined Weak
    systemctl restart wpa_supplicant@wlan0; soon joined Open'
check "a file that ends within a block ends the supplicant" inside '
    radio "-40\tOpen\t-\n"
    configure printf "network={\n\tssid=\"Open\"\n"
    systemctl restart wpa_supplicant@wlan0
    soon fails systemctl status wpa_supplicant@wlan0 >/dev/null'

echo "--- sound"

check "aplay is real, plays in real time, and what it played is kept" inside '
    start=$(milliseconds); aplay -q -t raw -f S16_LE -r 44100 /etc/wav/SOUND_ERROR.raw
    took=$(($(milliseconds) - start)); echo "took $took ms"
    [ $took -ge 700 ]
    cmp -n "$(stat -c %s /etc/wav/SOUND_ERROR.raw)" /etc/wav/SOUND_ERROR.raw /run/meter/audio/0001.raw'
check "a player that is killed is gone at once, the next sound is its own" inside '
    heard() { stat -c %s /run/meter/audio/0001.raw; }
    is_ending() { fails grep -q "^SigCgt:.*[4-7c-f]...$" /proc/$player/status; } # without its handler of SIGTERM
    head -c 5292000 /dev/zero >/tmp/minute.raw
    aplay -q -t raw -f S16_LE -r 44100 /tmp/minute.raw & player=$!
    soon test -s /run/meter/audio/0001.raw
    killall -STOP loudspeaker; before=$(heard)
    killall aplay; soon is_ending
    killall -CONT loudspeaker; soon fails pgrep loudspeaker
    echo "heard $before, then $(heard) bytes"
    [ $(($(heard) - before)) -le 3528 ] # two slices
    aplay -q -t raw -f S16_LE -r 44100 /etc/wav/SOUND_SET_ACCEPT.raw
    cmp -n "$(stat -c %s /etc/wav/SOUND_SET_ACCEPT.raw)" /etc/wav/SOUND_SET_ACCEPT.raw /run/meter/audio/0002.raw'
check "every sample is there, in 16 bit and shorter than two seconds" inside '
    for name in SOUND_DELETED_BANK SOUND_ERROR SOUND_ERROR_SHORT SOUND_ESC_STOP_MEAS SOUND_FUSE_TEST \
        SOUND_MEAS_END_WITH_FAIL SOUND_MEAS_END_WITH_PASS SOUND_MEM_WRITE SOUND_Riso_CURRENT_LIMIT \
        SOUND_SET_ACCEPT SOUND_SET_DECLINE SOUND_USER_MUST_DECIDE intro sheep; do
        size=$(stat -c %s /etc/wav/$name.raw)
        [ $((size % 2)) = 0 ] && [ $size -gt 0 ] && [ $size -lt 176400 ]
    done'
check "amixer keeps the volume" inside '
    amixer set "DAC R&L" 30% | grep -q "\[30%\]"; amixer get "DAC R&L" | grep -q "\[30%\]"
    fails amixer set Master 10% 2>/dev/null'
check "beep lasts as long as its tone, and ends when killed" inside '
    start=$(milliseconds); beep -f 440 -l 150 -d 50 -r 2; took=$(($(milliseconds) - start))
    [ $took -ge 350 ]
    beep -f 440 -l 20000 -d 0 -r 1 & beeping=$!; soon pgrep beep; killall beep; fails wait $beeping'

echo "--- the image"

check "languages, lists and help are complete" inside '
    cd /home/root/Langs
    for code in EN PL US DE; do
        for key in smallKeyboard bigKeyboard regionalSmallKeyboard regionalBigKeyboard timeFormat dataFormat; do
            grep -q "<$key value=" $code/$code.xml
        done
        sed -n "s/^ *<\([A-Za-z]*\).*/\1/p" $code/$code.xml >/tmp/$code.keys; cmp /tmp/EN.keys /tmp/$code.keys
        for list in obiectTyp obiectName materials; do [ "$(wc -l <$code/default_$list.txt)" -ge 20 ]; done
        fails grep -vE "^[^?]+\?0\.[0-9]+$" $code/default_materials.txt
    done
    for list in obiectTyp obiectName materials; do
        [ -z "$(cat */default_$list.txt | cut -d"?" -f1 | sort | uniq -d)" ]
    done
    for model in KTV_410 KTV_420 KTV_4200; do ls /home/root/Help/$model/Measure/01_*_EN.html >/dev/null; done
    for file in */*.xml /home/root/globalInfo.xml; do
        python3 -c "import sys, xml.dom.minidom; xml.dom.minidom.parse(sys.argv[1])" $file
    done'

echo
echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
