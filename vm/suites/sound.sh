# Sound: aplay plays on the kernel's loopback card, whose other end is recorded; beep plays on an
# input device whose tones are written to a file.
sound_card

record() { # record SECONDS: starts to record at the other end, in the background
    rm -f /run/sound/heard.raw
    arecord -q -D hw:Loopback,1,0 -t raw -f S16_LE -r 44100 -c 1 -d "$1" /run/sound/heard.raw &
    recorder=$!
    sleep 0.3
}

# recorded SAMPLE: waits for the recording; sets $times to how often it holds a piece of the sample
recorded() {
    wait "$recorder"
    times=$(python3 - "/etc/wav/$1.raw" /run/sound/heard.raw <<'TEXT'
import sys
sample = open(sys.argv[1], "rb").read()
heard = open(sys.argv[2], "rb").read()
print(heard.count(sample[len(sample) // 8 * 2:][:8000]) if any(heard) else "silence")
TEXT
    )
}

check "volume: the first sound creates its control" timeout 20 sh -c 'ktvctl sound play set_accept'
ktvctl sound volume 100
check "volume: the codec is at 100 %" sh -c 'amixer get "DAC R&L" | grep -qF "[100%]"'
for sample in meas_end_with_pass error; do
    record 4
    ktvctl sound play $sample
    recorded "SOUND_${sample^^}"
    equal "$sample is heard once, sample for sample" 1 "$times"
done
record 8
ktvctl sound loop set_accept --seconds 5
recorded SOUND_SET_ACCEPT
check "a repeated sample is heard again and again ($times times)" test "$times" -gt 3
check "and no aplay goes on running" sh -c '! ps | grep -q "[a]play"'
record 3
ktvctl sound volume 40
check "volume: the codec is at 40 %" sh -c 'amixer get "DAC R&L" | grep -qF "[40%]"'
ktvctl sound play error
recorded SOUND_ERROR
equal "at 40 % the recording is not the sample" 0 "$times"

# --- the buzzer, of a model without a codec
buzzer
tones() { # prints the tones since the last call, in order: HERTZ/MILLISECONDS
    sleep 1
    python3 - <<'TEXT'
lines = [line.split() for line in open("/run/sound/tones", errors="replace")]
out = []
for (begin, hertz), (end, _) in zip(lines, lines[1:]):
    if hertz != "0":
        out.append(f"{hertz}/{round((float(end) - float(begin)) / 0.05) * 50}")
print(" ".join(out))
TEXT
    : >/run/sound/tones
}
ktvctl beep 1 --serial CH0001
equal "one tone" "1400/100" "$(tones)"
ktvctl beep 6 --serial CH0001
equal "three of a kind" "1400/100 1400/100 1400/100" "$(tones)"
ktvctl beep 9 --serial CH0001
equal "three that rise" "750/100 1000/100 1400/100" "$(tones)"
finish
