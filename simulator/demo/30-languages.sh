#!/bin/bash
# Languages and help: one switch changes every text
set -e
trap 'echo "30-languages: line $LINENO failed" >&2' ERR
before=$(ktvctl settings get MAIN_Lang EN)
for code in $(ktvctl lang list --serial CH1180042); do
    ktvctl lang set "$code"
    printf '%s  %-24s %-30s %s\n' "$code" "$(ktvctl lang text Main title)" \
        "$(ktvctl lang text Main cardFull)" "$(ktvctl lang text Lang dataFormat)"
done
echo "A language that is not there: $(ktvctl lang set XY 2>&1 || true)"
ktvctl lang set "$before"
echo
echo "Offered by a KTV-4400: $(ktvctl lang list --serial DW1180042 | xargs)"
echo "Help topics of a KTV-420: $(ktvctl help topics --serial CH1180042 --lang EN | xargs)"
for code in EN PL; do
    echo "Pages on 'Measure' ($code):"
    ktvctl help list Measure --serial CH1180042 --lang "$code" | sed 's/^/    /'
done
