#!/bin/bash
# Disk: the alert as the card fills
set -e
trap 'echo "90-disk: line $LINENO failed" >&2' ERR
clients=/media/sdcard/Clients
# A small card in place of the real one, so that it can be filled.
mount -t tmpfs -o size=4m tmpfs $clients
trap 'umount -l $clients' EXIT
ktvctl disk
echo

coproc watching { exec ktvctl watch --check 1; }
# coproc sets it, and forgets it as soon as the program ends.
# shellcheck disable=SC2154
process=$watching_PID
trap 'kill "$process" 2>/dev/null || true; umount -l $clients' EXIT
read -r line <&"${watching[0]}"
echo "$line"
for size in 3000k 3400k 3000k 1000k; do
    truncate -s $size $clients/measurements.csv
    fallocate -l $size $clients/measurements.csv
    printf '%6s of 4m written: ' $size
    read -r -t 20 line <&"${watching[0]}"
    echo "$line"
done
kill -TERM "$process"
wait "$process"
echo
touch "$clients/report.pdf"
printf 'Free name for %s: %s\n' report.pdf "$(ktvctl filename free $clients report.pdf)" \
    'a/b:c*.csv' "$(ktvctl filename valid 'a/b:c*.csv')"
