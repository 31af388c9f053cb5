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

# display_cookies: adds to $meter_options what opens this machine's X server to the meter.
# Cookies are looked up by host name, and the meter has its own: they are made to fit any.
display_cookies() {
    local cookies=${XAUTHORITY-$HOME/.Xauthority} copy=$repository/.meter/Xauthority
    [ -f "$cookies" ] || return 0
    rm -f "$copy"
    xauth -f "$cookies" nlist "$DISPLAY" 2>/dev/null | sed 's/^..../ffff/' |
        xauth -q -f "$copy" nmerge - 2>/dev/null || true
    [ -f "$copy" ] || cp "$cookies" "$copy" # no cookie of this display
    meter_options+=(--bind "$copy:/tmp/Xauthority" --setenv XAUTHORITY /tmp/Xauthority)
}

# display_options: adds to $meter_options what a window inside needs of this machine's
# display; returns 1 when there is none
display_options() {
    local number=${DISPLAY-} socket=${XDG_RUNTIME_DIR-}/${WAYLAND_DISPLAY-}
    number=${number#:}
    number=${number%.*}
    if [[ ${DISPLAY-} == :* && -S /tmp/.X11-unix/X$number ]]; then
        # Shared memory does not reach across the meter's walls.
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

