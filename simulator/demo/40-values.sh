#!/bin/bash
# Measured values: one resistance through every test current
# 1.2345 milliohms, as each model shows them; two models share a family's tables.
for model in 410 420 PLX 4200 4400; do
    printf '\nKTV-%s\n' "$model"
    printf '%s\n' "$(ktvctl value format 0.0012345 --model "$model" | paste - - - | expand -t 24)"
done | sed 's/KTV-PLX/PLX-420/'
printf '\nCompensated for temperature, a 4200 shows nothing from 190 A to 110 A:\n'
for current in 200 150 100; do
    printf '%5s A  %s\n' "$current" \
        "$(ktvctl value format 0.0005 --model 4200 --method RC --current "${current}A")"
done
printf '\nThe last decimal of each current, from 100 nanoohms to 10 megaohms:\n'
ktvctl value plot --model 420 --method RC
