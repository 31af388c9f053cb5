# Counters on cards of a real file system: one that is full, and a file that cannot be replaced.
counter=$(ktvctl counters show | head -n 1 | cut -d: -f1)
up() {
    ktvctl counters up "$counter"
}
count() {
    ktvctl counters show | sed -n "s/^$counter: //p"
}

for kind in ext4 vfat; do
    truncate -s 16M "/run/$kind.img"
    "mkfs.$kind" "/run/$kind.img" >/dev/null 2>&1
    mount -o loop "/run/$kind.img" /media/sdcard
    mkdir -p /media/sdcard/{Clients,Log,Update,UserData}
    equal "$kind: the first count" 1 "$(up)"

    dd if=/dev/zero of=/media/sdcard/filler bs=64k 2>/dev/null
    dd if=/dev/zero of=/media/sdcard/rest bs=512 2>/dev/null
    check "$kind: the card is full" sh -c '! (echo more >/media/sdcard/more) 2>/dev/null'
    equal "$kind: counted on a full card" 2 "$(up)"
    sync
    umount /media/sdcard
    mount -o loop "/run/$kind.img" /media/sdcard
    equal "$kind: and it is on the card" 2 "$(count)"
    rm /media/sdcard/filler /media/sdcard/rest

    # A file that cannot be removed or replaced, since something is mounted on it.
    cp /media/sdcard/Log/liczniki.bin /run/counters
    mount --bind /run/counters /media/sdcard/Log/liczniki.bin
    equal "$kind: counted in a file that cannot be replaced" 3 "$(up)"
    umount /media/sdcard/Log/liczniki.bin
    equal "$kind: the file beneath it is as it was" 2 "$(count)"
    umount /media/sdcard
done
finish
