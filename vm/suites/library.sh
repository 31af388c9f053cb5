# The library's own tests, natively: sources and built tests are a disk of their own. The host gives $place,
# where they belong, and $tests: a line for each, NAME, limit in seconds and COMMAND, separated by tabs.
# shellcheck disable=SC2154 # the host sets them
until_true 20 test -e /dev/disk/by-id/virtio-tests
mkdir -p /run/tests/{disk,top,work} "$place"
mount -o ro,noload /dev/disk/by-id/virtio-tests /run/tests/disk
mount -t overlay -o lowerdir=/run/tests/disk,upperdir=/run/tests/top,workdir=/run/tests/work overlay "$place"
cd "$place" || exit
# The simulated meter has busybox's tools of its own, and tests hide them; these would still be found.
rm /usr/local/bin/{ps,ifconfig,killall}
# No test waits for the disk: time would jump on.
find . -type f -exec cat {} + >/dev/null

while IFS=$'\t' read -r name limit command; do
    SECONDS=0
    export QTEST_FUNCTION_TIMEOUT=$((limit * 1000)) # Qt's own limit is five minutes
    if timeout --kill-after=5 "$limit" bash -c "$command" >/run/tests/log 2>&1 </dev/null; then
        report ok "$name ($(grep -hoE '[0-9]+ passed' /run/tests/log | tail -n 1), $SECONDS s)"
    else
        report FAILED "$name ($SECONDS s)" "$(grep -E -A3 '^(FAIL|XPASS|QFATAL)' /run/tests/log | tail -n 40
            tail -n 15 /run/tests/log)"
    fi
done <<<"$tests"
finish
