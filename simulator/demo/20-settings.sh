#!/bin/bash
# Settings: kept across a restart, gone after a factory reset
set -e
trap 'echo "20-settings: line $LINENO failed" >&2' ERR
kept=$(ktvctl settings get PRINT_Customer_Label "nothing yet")
echo "Customer label found: $kept"
label="Müller & Söhne, 100% \"O'Brien\""
ktvctl settings set PRINT_Customer_Label "$label"
ktvctl settings set Power_Time1 15
ktvctl settings set MAIN_Pin 4711
echo "Stored by one process, read by the next:"
ktvctl settings list | sed 's/^/    /'
ktvctl settings delete MAIN_Pin
echo "Without the PIN: $(ktvctl settings get MAIN_Pin none)"

# Creates and destroys the whole facade, as the interface does: the settings stay.
ktvctl watch --seconds 1 --serial CH1180042 >/dev/null
echo "After a restart of all services:"
ktvctl settings list | sed 's/^/    /'
[ "$(ktvctl settings get PRINT_Customer_Label)" = "$label" ]

# A reset cannot be undone, so it is tried on a copy.
copy=$(mktemp)
cp /media/sdcard/UserData/interfaceConfig.db "$copy"
ktvctl settings reset
echo "After a factory reset: $(ktvctl settings list | wc -l) settings"
cp "$copy" /media/sdcard/UserData/interfaceConfig.db
