#!/bin/bash
# Pick lists: search, add, rename, and what the factory keeps
say() {
    printf '\n$ ktvctl'
    printf ' %q' "$@"
    echo
    ktvctl "$@" 2>&1
}
refused() {
    say "$@" && return 1
    echo "  (refused, as it should be)"
}
number_of() {
    ktvctl lists types list --user --filter "$1" | awk '{ print $1; exit }'
}
set -e
# First removes what an earlier tour has left.
id=$(number_of "Tract")
[ -z "$id" ] || ktvctl lists types delete "$id"

say lists types list --filter cable --limit 5
say lists types add "Tracton motor"
refused lists types add "Tracton motor"
id=$(number_of "Tracton")
say lists types update "$id" "Traction motor"
say lists types list --user
refused lists types delete 1
echo
echo "Another language has lists of its own:"
say lists types list --lang PL --limit 3
echo
echo "Temperature limits are kept in degrees Celsius and shown in the user's unit:"
say lists limits-t add "Winding" 212 32 --unit fahrenheit
say lists limits-t list --unit kelvin
limits=$(ktvctl lists limits-t list --filter Winding | awk '{ print $1 }')
for id in $limits; do
    ktvctl lists limits-t delete "$id"
done
