#!/bin/bash
# Checks every shell program of the repository: shellcheck.sh SHELLCHECK
set -euo pipefail
repository=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
cd "$repository"
shellcheck=${1:-shellcheck}

mapfile -t bash_programs < <(grep -rlE '^#!/bin/bash' meter .ci packaging panel simulator tests tools vm)
mapfile -t sh_programs < <(grep -rlE '^#!/bin/(busybox )?sh' simulator)
"$shellcheck" -x -P SCRIPTDIR -s bash "${bash_programs[@]}"
# Programs of the meter refer to each other by their paths inside it. busybox sh supports ${x//a/b}
# and read -t, which plain dash does not; functions are passed as callbacks.
"$shellcheck" -s dash vm/init vm/image/usr/bin/* vm/image/usr/lib/machine/login
"$shellcheck" -s bash vm/suites/*.sh
simulator/meter-run -- "$shellcheck" -x -s dash -e SC3045,SC3060,SC2317 \
    "${sh_programs[@]/#simulator//opt/meter}"
