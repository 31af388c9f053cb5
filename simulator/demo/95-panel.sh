#!/bin/bash
# The panel: the library behind a touch screen
export XDG_RUNTIME_DIR=/run/user
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
export QT_LOGGING_RULES='*.debug=false' # the library's own lines are for developers

# For the accessories: a stick with an update, a code in front of the reader.
mkdir -p /media/usb /run/platform
: >/media/usb/KTV-3.9.0.update
echo "Transformer T1" >/run/platform/qr-code

if [ -n "${KTV_DISPLAY-}" ]; then
    echo "The panel is open; close its window to go on."
    QT_QPA_PLATFORM=$KTV_DISPLAY ktvpanel && exit
    echo "The display of this machine cannot be used."
fi
ktvpanel-tour ${KTV_PICTURES:+--pictures "$KTV_PICTURES"} &&
    echo "${KTV_PICTURES:+Pictures: $KTV_PICTURES}"
