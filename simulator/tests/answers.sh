#!/bin/bash
# The stand-ins answer what the real tools have answered in the virtual machine.
set -euo pipefail
repository=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
diff "$repository/simulator/answers/real.txt" \
    <("$repository/simulator/meter-run" -- "$repository/simulator/answers/ask-stand-ins")
