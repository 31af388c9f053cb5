# USB port: real gadget drivers on a simulated controller; this kernel is also the connected
# computer.
modprobe dummy_hcd
modprobe cdc_acm
modprobe cdc_ether
# usb WORD...: runs `ktvctl usb` and prints its answer. The answer goes through a file, because a
# calibration tool that ktvctl has started goes on running and would keep a pipe open.
usb() {
    ktvctl usb "$@" >/run/usb-answer 2>&1
    cat /run/usb-answer
}

# --- network
equal "nothing is loaded" none "$(usb status)"
equal "the network gadget is loaded" network "$(usb set network)"
check "usb0 is up" sh -c 'ifconfig usb0 | grep -q UP'
computer() { # prints the network interface at the computer's end, which a driver for hosts has
    for interface in /sys/class/net/*; do
        case $(readlink "$interface/device/driver") in */cdc_ether | */cdc_subset | */rndis_host)
            basename "$interface" ;;
        esac
    done
}
check "the computer has found a network adapter" until_true 10 test -n "$(until_true 10 computer; sleep 2; computer)"
ip netns add computer
ip link set "$(computer)" netns computer
ip netns exec computer ifconfig "$(ip netns exec computer ls /sys/class/net | grep -v '^lo$' | head -n 1)" 10.9.0.1 up
ifconfig usb0 10.9.0.2
check "packets reach the meter" ip netns exec computer busybox ping -c 2 -W 5 10.9.0.2
ip netns del computer

# --- serial line
equal "the serial gadget replaces it" "serial, owned by nobody" "$(usb set serial nobody)"
check "usb0 is gone" test ! -e /sys/class/net/usb0
check "the computer has found a serial line" until_true 10 test -c /dev/ttyACM0
equal "a gadget's line has one speed, whatever is asked for" 9600 "$(stty speed -F /dev/ttyGS0)"

# --- console
ask() { # ask DEVICE TEXT: writes a line, prints what comes back within two seconds
    stty -F "$1" raw -echo 19200 parenb cs8
    exec 5<>"$1"
    printf '%s\r' "$2" >&5
    timeout 2 cat <&5 | tr -d '\r'
    exec 5>&-
}
equal "the console gets it" "serial, owned by console" "$(usb set serial console)"
ask /dev/ttyACM0 '' >/dev/null
has "who logs in is told the version" "$(cat /etc/version)" "$(ask /dev/ttyACM0 'cat /etc/version')"

# --- bridge
ktvctl usb set serial bridge >/run/bridge 2>&1 &
bridge=$!
check "the bridge gets it" until_true 20 grep -q 'owned by bridge' /run/bridge
stty -F /dev/hardware raw -echo
stty -F /dev/ttyACM0 raw -echo
carried() { # carried FROM TO TEXT: writes a line at one end, prints the line that reaches the other
    exec 5<>"$2"
    printf '%s\n' "$3" >"$1"
    timeout 4 head -n 1 <&5
    exec 5>&-
}
equal "what the computer writes reaches the hardware" 'MEASURE?' \
    "$(carried /dev/ttyACM0 /dev/hardware 'MEASURE?')"
equal "and its answer the computer" '1.2517E-3' "$(carried /dev/hardware /dev/ttyACM0 '1.2517E-3')"
killall socat
check "a bridge that was killed comes back" until_true 5 sh -c 'ps | grep -q "[s]ocat /dev/ttyGS0"'
kill -TERM $bridge
wait $bridge
check "it ends with its owner" until_true 5 sh -c '! ps | grep -q "[s]ocat /dev/ttyGS0"'

# --- calibration tool, and back to the network
equal "the calibration tool gets it" "serial, owned by calibration" "$(usb set serial calibration)"
equal "and back to the network" network "$(usb set network)"
check "the tool has ended" sh -c '! ps | grep -q "[m]actool"'

# --- another program on the line
usb set serial nobody >/dev/null
sleep 1000 9</dev/ttyGS0 &
stranger=$!
answer=$(usb set network)
has "a stranger holds the line: it stays serial" "serial, owned by nobody" "$answer"
check "and is named" grep -q "held by sleep ($stranger)" <<<"$answer"
kill $stranger
check "once it has gone the network is back" until_true 10 sh -c 'ktvctl usb set network | grep -qx network'
finish
