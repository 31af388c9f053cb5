#!/bin/bash
# Tests of the simulated meter itself: what the stand-ins do, that the host is
# left alone, and that nothing stays behind.
#
# Scripts in single quotes are meant for the shell in the meter.
# shellcheck disable=SC2016
set -uo pipefail
simulator=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd -P)
meter_run=$simulator/meter-run
passed=0
failed=0

# check NAME COMMAND...: the command must succeed
check() {
    local name=$1 log
    shift
    if log=$("$@" 2>&1); then
        passed=$((passed + 1))
        echo "PASS   $name"
    else
        failed=$((failed + 1))
        echo "FAIL!  $name"
        printf '%s\n' "$log" | sed 's/^/       | /'
    fi
}

# inside SCRIPT: runs a shell script in a fresh meter; stops at its first failure
inside() {
    "$meter_run" --fresh -- sh -euc "$1"
}

check "the command's exit code comes out" \
    bash -c "'$meter_run' -- sh -c 'exit 7'; [ \$? = 7 ]"
check "arguments arrive as they were given" \
    bash -c "[ \"\$('$meter_run' -- printf '%s|' \"it's\" 'a  b' '' '*')\" = \"it's|a  b||*|\" ]"
check "programs know that they are in the meter" \
    inside '[ -e /run/meter/inside ] && [ "$KTV_METER" = 1 ] && [ "$PWD" = /home/root ]'

echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
