# How the commands of ./meter start programs in the simulated meter. Sourced by bash, after common.sh.

# meter_options [--fresh]: sets $meter_options and $rest
meter_options() {
    meter_options=(--state "$repository/.meter/state")
    rest=("$@")
    if [ "${1-}" = --fresh ]; then
        meter_options=(--fresh)
        rest=("${@:2}")
    fi
    meter_options+=(--path "$repository/build/release/tools/ktvctl")
}

# show_inside PATH: adds to $meter_options the options that make the folder of a file on this
# machine available. If the meter has its own folder at that path, only the file is.
show_inside() {
    case $1 in
    /usr/* | /bin/* | /sbin/* | /lib*/* | "$repository"/*) return 0 ;;
    esac
    local folder
    folder=$(dirname -- "$1")
    case $folder in
    / | /etc | /home | /home/root | /media | /media/sdcard | /opt | /run | /tmp | /var)
        meter_options+=(--show "$1")
        ;;
    *) meter_options+=(--show "$folder") ;;
    esac
}

# client_options BUILD: if $rest begins with the path of a program on this machine, adds to
# $meter_options what it needs in the meter: its folder and those of its libraries. The libraries of
# the build tree BUILD take precedence over those that it was linked with.
client_options() {
    local program=${rest[0]} library
    local search=$1/src:$1/src/platform/standin${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
    [[ $program == */* ]] || return 0
    program=$(cd -- "$caller_folder" && realpath -- "$program" 2>/dev/null) || return 0
    [ -f "$program" ] || return 0 # a path in the meter
    rest[0]=$program
    meter_options+=(--setenv LD_LIBRARY_PATH "$search")
    show_inside "$program"
    while read -r library; do
        show_inside "$library"
    done < <(LD_LIBRARY_PATH=$search ldd "$program" 2>/dev/null | awk '$2 == "=>" && $3 ~ /^\// { print $3 }')
}

# display_cookies: adds to $meter_options what gives the meter access to this machine's X server.
# Cookies are looked up by host name, and the meter has another one, so they are copied with a
# wildcard in its place.
display_cookies() {
    local cookies=${XAUTHORITY-$HOME/.Xauthority} copy=$repository/.meter/Xauthority
    [ -f "$cookies" ] || return 0
    rm -f "$copy"
    xauth -f "$cookies" nlist "$DISPLAY" 2>/dev/null | sed 's/^..../ffff/' |
        xauth -q -f "$copy" nmerge - 2>/dev/null || true
    [ -f "$copy" ] || cp "$cookies" "$copy" # there is no cookie for this display
    meter_options+=(--bind "$copy:/tmp/Xauthority" --setenv XAUTHORITY /tmp/Xauthority)
}

# display_options: adds to $meter_options what a window in the meter needs of this machine's
# display; returns 1 if there is no display
display_options() {
    local number=${DISPLAY-} socket=${XDG_RUNTIME_DIR-}/${WAYLAND_DISPLAY-}
    number=${number#:}
    number=${number%.*}
    if [[ ${DISPLAY-} == :* && -S /tmp/.X11-unix/X$number ]]; then
        # The meter does not share memory with this machine.
        meter_options+=(--bind "/tmp/.X11-unix/X$number" --setenv DISPLAY "$DISPLAY"
            --setenv QT_X11_NO_MITSHM 1 --setenv KTV_DISPLAY xcb)
        display_cookies
    elif [ -n "${WAYLAND_DISPLAY-}" ] && [ -S "$socket" ] &&
        compgen -G '/usr/lib/*/qt5/plugins/platforms/libqwayland*' >/dev/null; then
        meter_options+=(--bind "$socket:/tmp/wayland" --setenv WAYLAND_DISPLAY /tmp/wayland
            --setenv KTV_DISPLAY wayland)
    else
        return 1
    fi
}

