#!/bin/bash
# Usage counters: 64 bytes that outlive a pulled battery
set -e
trap 'echo "35-counters: line $LINENO failed" >&2' ERR
for _ in 1 2 3; do
    ktvctl counters up Demagnetyzacja >/dev/null
done
ktvctl counters up PomiarObiektowRezystancyjnych >/dev/null
ktvctl counters show
echo
od -A d -t x1 /media/sdcard/Log/liczniki.bin
