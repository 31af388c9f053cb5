#!/bin/bash
# Checks that the stand-ins print what the real tools have printed in the virtual machine.
set -euo pipefail
repository=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
diff "$repository/simulator/answers/real.txt" \
    <("$repository/simulator/meter-run" -- "$repository/simulator/answers/ask-stand-ins")
