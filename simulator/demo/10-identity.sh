#!/bin/bash
# Identity: one library, five models, told apart by the serial number
ktvctl info
echo
for serial in JD1180042 CH1180042 EL1180042 JB1180042 DV1180042 DW1180042 ZZ1180042; do
    printf '%s is a %s\n' "$serial" "$(ktvctl info --serial "$serial" | sed -n 's/^Meter: *//p')"
done
echo
echo "First start after an installation: $(ktvctl first-start); asked again: $(ktvctl first-start)"
