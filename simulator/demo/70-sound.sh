#!/bin/bash
# Signal tones: as beeps and as samples
set -euo pipefail
journal=/run/meter/journal

echo '  A KTV-420 beeps. Tone 9 in the journal:'
seen=$(wc -l <"$journal")
ktvctl beep 9 --serial CH0001
tail -n +$((seen + 1)) "$journal" | grep '^beep' | tr '\t' ' ' | sed 's/^/    /'

# newest: the loudspeaker's latest recording
newest() {
    local recordings=(/run/meter/audio/*.raw)
    printf '%s' "${recordings[-1]}"
}

echo '  A KTV-4200 plays samples. The same tone from the loudspeaker:'
ktvctl beep 9 --serial DV0001
recording=$(newest)
sample=/etc/wav/SOUND_ERROR.raw
bytes=$(stat -c %s "$sample")
cmp -n "$bytes" "$sample" "$recording"
printf '    %s: %d.%02d s, sample for sample what is in %s\n' "$recording" \
    $((bytes / 88200)) $((bytes % 88200 * 100 / 88200)) "$sample"

echo '  The same tone over and over, for three seconds:'
ktvctl beep 9 --loop --seconds 3 --serial DV0001
recording=$(newest)
printf '    %s: %d bytes, the sample has %d\n' "$recording" "$(stat -c %s "$recording")" "$bytes"
[ "$(stat -c %s "$recording")" -gt "$bytes" ]

echo '  The volume:'
ktvctl sound volume 80
printf '    %s %%\n' "$(cat /run/meter/volume)"
