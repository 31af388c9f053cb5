# The access points in reach, read from /run/meter/radio. Sourced by sh programs.
# The file's format is described in docs/simulated-meter.md.

radio_file=/run/meter/radio

# for_each_access_point FUNCTION: calls FUNCTION with these set:
#   ap_number, ap_level (dBm), ap_name (bytes), ap_key (- when open), ap_options
for_each_access_point() {
    ap_number=0
    [ -e $radio_file ] || return 0
    while IFS='	' read -r ap_level ap_name ap_key ap_options || [ -n "$ap_level" ]; do
        case $ap_level in
        -[0-9]* | [0-9]*) ;;
        *) continue ;; # comments, blank lines
        esac
        ap_number=$((ap_number + 1))
        case $ap_name in
        *\\*)
            ap_name=$(printf '%b.' "$ap_name") # the dot keeps a final line feed
            ap_name=${ap_name%.}
            ;;
        esac
        "$1"
    done <$radio_file
}

# ap_option NAME DEFAULT: sets $option to the value of NAME=VALUE, 1 for a bare NAME
ap_option() {
    option=$2
    for word in $ap_options; do
        case $word in
        "$1") option=1 ;;
        "$1"=*) option=${word#*=} ;;
        esac
    done
}

# Sets further values that the tools print for the current access point.
ap_describe() {
    ap_option channel $(((ap_number * 5 - 5) % 13 + 1))
    ap_channel=$option
    ap_option address "02:4B:54:56:00:$(printf '%02X' $ap_number)"
    ap_address=$option
    ap_frequency=$(printf '2.%d' $((407 + 5 * ap_channel)))
    [ "$ap_channel" != 14 ] || ap_frequency=2.484
    ap_quality=$((ap_level + 110))
    [ $ap_quality -ge 0 ] || ap_quality=0
    [ $ap_quality -le 70 ] || ap_quality=70
}

# Sets $printed to NAME as the wireless tools print it: bytes beyond printable ASCII, and a
# backslash that would look like such an escape, become \xNN.
print_name() {
    printed=$1
    case $1 in
    *[!\ -~]* | *\\x[0-9A-Fa-f][0-9A-Fa-f]*) ;;
    *) return 0 ;;
    esac
    printed=$(printf %s "$1" | python3 -c '
import re, sys
name = sys.stdin.buffer.read()
escapes = [m.start() for m in re.finditer(rb"\\(?=x[0-9A-Fa-f]{2}.)", name, re.S)]
print("".join(chr(b) if 32 <= b < 127 and i not in escapes else f"\\x{b:02X}"
              for i, b in enumerate(name)), end="")')
}

# interface_up IFACE
interface_up() {
    [ -r "/sys/class/net/$1/flags" ] || return 1
    read -r flags <"/sys/class/net/$1/flags"
    [ $((flags & 1)) = 1 ]
}

# read_link IFACE: sets $link_name and $link_key of the network that the interface
# is associated with; fails when there is none
read_link() {
    link_file=/run/meter/private/link-$1
    [ -e "$link_file" ] || return 1
    {
        IFS= read -r link_key
        IFS= read -r -d '' link_name # to the end of the file, because a name may have line feeds
    } <"$link_file" 2>/dev/null
    [ -n "$link_name" ] && interface_up "$1"
}
