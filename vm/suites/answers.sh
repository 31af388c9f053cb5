# Runs the commands of simulator/answers with the real tools; their output is kept there, in real.txt.
# vm/vm replaces the lines that begin with "#include".

#include simulator/answers/questions.sh

recorded=$(
    cat <<'RECORDED'
#include simulator/answers/real.txt
RECORDED
)

scene() {
    case $1 in
    apart)
        adapters 4
        access_points
        until_true 10 test -e /sys/class/net/wlan0
        ifconfig wlan0 up
        # iwlist prints the networks in the order in which they were heard first, and some of them only
        # after a scan of all channels. A passive scan hears only beacons, whose order is fixed.
        iw dev wlan0 scan passive >/dev/null
        ;;
    joined)
        {
            echo "ap_scan=1"
            wpa_passphrase "Substation North" ohm-law-1827
        } >/etc/wpa_supplicant/wpa_supplicant-wlan0.conf
        systemctl restart wpa_supplicant@wlan0
        until_true 30 sh -c 'ifconfig wlan0 | grep -q "inet "'
        ;;
    down) ifconfig wlan0 down ;;
    serial)
        modprobe dummy_hcd
        modprobe-usb-gadget g_serial
        ;;
    mixer)
        sound_card
        buzzer
        aplay -q -t raw -f S16_LE -r 44100 /etc/wav/SOUND_SET_ACCEPT.raw # creates the control
        ;;
    esac
}
questions >/run/answers 2>/dev/null
check "the real tools were asked" grep -q 'beep -f 1' /run/answers
check "they answer as recorded" diff <(printf '%s\n' "$recorded") /run/answers
# shellcheck disable=SC2154 # of lib.sh
if [ "$failures" != 0 ]; then
    echo ">>> answers"
    cat /run/answers
    echo "<<< answers"
fi
finish
