#!/bin/bash
# Counts the flushes (fsync, fdatasync) of the lists' first start with strace. usage, inside the
# meter: first-start-flushes.sh KTVCTL
set -euo pipefail
[ -e /run/meter/inside ] || {
    echo "This test runs in the simulated meter only: ./meter test" >&2
    exit 1
}
ktvctl=${1:?}
lines=100
most=20

folder=/home/root/Langs/EN
store=/media/sdcard/UserData/dataList.db
mkdir -p "$folder"
for ((i = 0; i < lines; i++)); do echo "entry $i"; done >"$folder/default_obiectTyp.txt"
cp "$folder/default_obiectTyp.txt" "$folder/default_obiectName.txt"
sed 's/$/?0.00393/' "$folder/default_obiectTyp.txt" >"$folder/default_materials.txt"
rm -f "$store"

export ASAN_OPTIONS=${ASAN_OPTIONS-}:detect_leaks=0 # no leak check under another tracer
strace -f -o /tmp/trace -e trace=fsync,fdatasync -- "$ktvctl" lists types list --lang EN >/tmp/rows
rows=$(wc -l </tmp/rows)
flushes=$(grep -c 'sync(' /tmp/trace || true)
echo "$flushes flushes (fsync, fdatasync) for three lists of $lines entries"
[ "$rows" = $lines ] || {
    echo "but there are $rows rows" >&2
    exit 1
}
[ "$flushes" -gt 0 ] && [ "$flushes" -le $most ]
