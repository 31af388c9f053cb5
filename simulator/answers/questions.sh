# Commands ("questions") of the tools that the library uses. They are run with the stand-ins in the
# simulated meter and with the real tools in the virtual machine.
#
# A script that sources this file must define a function scene, which prepares a situation:
#     scene apart   the interface is up, networks are in reach, none is joined
#     scene joined  "Substation North" is joined, with an address
#     scene down    the interface is down
#     scene serial  the serial gadget is loaded
#     scene mixer   the codec's control is there

# Replaces what differs from run to run.
masked() {
    sed -E -e 's/([0-9A-Fa-f]{2}:){5}[0-9A-Fa-f]{2}/MM:MM:MM:MM:MM:MM/' \
        -e 's/(tsf=|Last beacon: ?)[0-9a-f]+/\1N/' -e '/IE: Unknown/d' \
        -e 's/(Bit Rate[=:])[0-9.]+ (Mb.s   Tx)/\1N \2/' -e 's#(/lib/modules/).*#\1N#' \
        -e 's/(Quality=|level=|excessive retries:|misc:|beacon:)-?[0-9]+/\1N/g' \
        -e 's/ since .*/ since T/' -e 's/192\.168\.44\.[0-9]+/192.168.44.N/' -e 's/  *$//'
}

# ask COMMAND: runs one command and prints its output, its errors and its exit code
ask() {
    printf '\n$ %s\n' "$1"
    sh -c "$1" >/tmp/answer 2>/tmp/complaint </dev/null
    code=$?
    masked </tmp/answer
    masked </tmp/complaint | sed 's/^/complains: /'
    echo "ends with $code"
}

questions() {
    printf '== no such interface\n'
    ask 'iwgetid wlan9 -r'
    ask 'iwconfig wlan9'
    ask 'iwlist wlan9 scan'
    ask 'ifconfig wlan9 down'

    scene apart
    printf '\n== the interface is up, no network is joined\n'
    ask 'iwgetid wlan0 -r'
    ask 'iwgetid wlan0'
    ask 'iwconfig wlan0'
    ask 'ifconfig wlan0 | grep -e "inet "'
    ask 'iwlist wlan0 scan'
    ask 'iwlist wlan0 nonsense'

    scene joined
    printf '\n== a network is joined\n'
    ask 'iwgetid wlan0 -r'
    ask 'iwgetid wlan0'
    ask 'iwconfig wlan0'
    ask 'ifconfig wlan0 | grep -e "inet "'
    ask 'systemctl is-active wpa_supplicant@wlan0'
    ask 'systemctl status wpa_supplicant@wlan0.service | grep Active'

    scene down
    printf '\n== the interface is down\n'
    ask 'iwgetid wlan0 -r'
    ask 'iwconfig wlan0'
    ask 'iwlist wlan0 scan'
    ask 'ifconfig | grep -e "wlan0"'

    scene serial
    printf '\n== the USB port\n'
    ask 'modprobe-usb-gadget g_serial'
    ask 'modprobe-usb-gadget g_nonsense'
    ask 'systemctl status busybox.getty@ttyGS0.service | grep Active'
    ask 'systemctl start busybox.getty@ttyGS0.service'
    ask 'systemctl status busybox.getty@ttyGS0.service | grep Active'
    ask 'systemctl stop busybox.getty@ttyGS0.service'
    ask 'systemctl is-active busybox.getty@ttyGS0.service'
    ask 'systemctl start nonsense.service'
    ask 'systemctl nonsense busybox.getty@ttyGS0.service'
    ask 'modprobe-usb-gadget g_ether; ls /sys/class/net | grep usb0'

    scene mixer
    printf '\n== sound\n'
    ask 'amixer set "DAC R&L" 40% | grep -o "\[[0-9]*%\]"'
    ask 'amixer set "DAC R&L" 200% | grep -o "\[[0-9]*%\]"'
    ask 'amixer set "Nonsense" 40%'
    ask 'beep -f 1 -l 0'
}
