"""Power cuts. While the machine writes to a card, QEMU records every write and flush that reaches it, in
order. From that record the card is made as it would be after a cut at any moment: it has everything
that was written before the last flush. Each later write is kept or lost at random, because a card may
keep writes in its own memory, and in any order, until it gets a flush.
"""

import importlib.util
import json
import pathlib
import random
import shutil
import sqlite3
import struct
import subprocess
import tempfile

from machine import Failed

SECTOR = 512
MIB = 1 << 20
# Offset and size of: the data, the device's own files, the marks (see writer.py).
PARTITIONS = [(1 * MIB, 36 * MIB), (37 * MIB, 16 * MIB), (53 * MIB, 2 * MIB)]
SIZE = 55 * MIB
# Flags of an entry in the record. FUA, "force unit access": that write is not kept in memory.
FLUSH, FUA, DISCARD = 1, 2, 4
KINDS = ("settings", "lists", "networks", "counters", "reset", "factory reset", "first start",
         "full card")
# The stores that a command may change. All others must stay as the last mark says.
TOUCHES = {
    "settings": ("settings",),
    "lists": ("lists",),
    "networks": ("networks", "supplicant"),
    "counters": ("counters",),
    "reset": ("settings",),
    "factory reset": ("settings", "lists", "networks", "supplicant"),
    "full card": ("counters",),
}
# Queries that count what a user has entered. A factory reset removes all of it in one step.
OF_THE_USER = {
    "settings": ["SELECT COUNT(*) FROM CONFIG_STR WHERE CON_Key <> 'MAIN_MeterSN'"],
    "lists": ["SELECT COUNT(*) FROM OBIECT_TYP WHERE NOT OBT_ReadOnly",
              "SELECT COUNT(*) FROM OBIECT_NAME WHERE NOT OBN_ReadOnly",
              "SELECT COUNT(*) FROM MATERIALS WHERE NOT MAT_ReadOnly",
              "SELECT COUNT(*) FROM LIMITS_R", "SELECT COUNT(*) FROM LIMITS_T"],
    "networks": ["SELECT COUNT(*) FROM NETWORKS"],
}
FACTORY = {"OBIECT_TYP": "OBT", "OBIECT_NAME": "OBN", "MATERIALS": "MAT"}  # table: prefix of its columns
FILES = {
    "settings": "UserData/interfaceConfig.db",
    "lists": "UserData/dataList.db",
    "networks": "UserData/wifi.db",
    "counters": "Log/liczniki.bin",
}


def run(*command, allowed=(0,)):
    """Runs a command on the host; an exit code other than the allowed ones is a failure."""
    done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=False)
    if done.returncode not in allowed:
        raise Failed(f"{command[0]} ended with {done.returncode}: "
                     + done.stdout.decode(errors="replace")[-400:])


def make_card(file, kind):
    """Makes a card with three partitions: data (ext4 or vfat), the device's own files (ext4), marks."""
    card = bytearray(SIZE)
    for index, (offset, size) in enumerate(PARTITIONS):
        code = 0x0c if kind == "vfat" and index == 0 else 0x83
        struct.pack_into("<8BII", card, 446 + 16 * index, 0, 0, 0, 0, code, 0, 0, 0,
                         offset // SECTOR, size // SECTOR)
    card[510:512] = b"\x55\xaa"
    for index, name in ((0, kind), (1, "ext4")):
        offset, size = PARTITIONS[index]
        with tempfile.NamedTemporaryFile() as part:
            part.truncate(size)
            options = [] if name == "vfat" else ["-q", "-F"]
            run("mkfs." + name, *options, part.name)
            card[offset:offset + size] = pathlib.Path(part.name).read_bytes()
    pathlib.Path(file).write_bytes(card)


def read_log(file):
    """Reads the record of QEMU's blklogwrites. Returns its entries: (offset, bytes or None, flags)."""
    entries = []
    with open(file, "rb") as log:
        magic, version, count, sector_size = struct.unpack("<QQQI", log.read(28))
        if magic != 0x6a736677736872 or version != 1:
            raise Failed("not a record of writes: " + str(file))
        position = sector_size
        while True:
            log.seek(position)
            head = log.read(32)
            if len(head) < 32:
                break
            sector, sectors, flags, _ = struct.unpack("<QQQQ", head)
            if (sector, sectors, flags) == (0, 0, 0):
                break
            position += sector_size
            data = None
            if sectors and not flags & DISCARD:
                log.seek(position)
                data = log.read(sectors * sector_size)
                position += len(data)
            entries.append((sector * sector_size, data, flags))
    if len(entries) < count:
        raise Failed(f"the record tells of {count} entries and has {len(entries)}")
    return entries


def record(system, kind, folder, rounds, seed):
    """Runs writer.py in the machine, on a fresh card. Returns the card as it was before, and the entries
    of the record."""
    state = system.booted()
    card, log = folder / "card", folder / "log"
    make_card(card, kind)
    log.write_bytes(b"")
    fresh = card.read_bytes()
    here = pathlib.Path(__file__).resolve().parent
    with system.machine("writer") as machine:
        machine.resume(state)
        machine.plug("card", **{
            "driver": "blklogwrites", "log-sector-size": SECTOR,
            "file": {"driver": "file", "filename": str(card)},
            "log": {"driver": "file", "filename": str(log)}})
        answer = machine.output("""
            set -e
            for try in $(seq 50); do
                [ ! -e /dev/disk/by-id/virtio-card-part3 ] || break
                sleep 0.2
            done
            mount /dev/disk/by-id/virtio-card-part1 /media/sdcard
            mkdir -p /var/flash
            mount /dev/disk/by-id/virtio-card-part2 /var/flash
            mkdir -p /var/flash/supplicant /media/sdcard/{Clients,Log,Update,UserData}
            mount --bind /var/flash/supplicant /etc/wpa_supplicant
            sync
            cat >/run/writer.py <<'WRITER'
""" + (here / "writer.py").read_text(encoding="utf-8") + f"""
WRITER
            python3 /run/writer.py {rounds} {seed}
            """)
        print(f"       {kind}: {answer.strip()}, {machine.processor_time():.0f} s "
              "of processor time", flush=True)
        machine.control("stop")
        machine.control("quit")
        machine.process.wait()
    return fresh, read_log(log)


def read_marks(entries):
    """The marks among the entries, in order: (index of the entry, mark)."""
    begin, size = PARTITIONS[2]
    marks = []
    for index, (offset, data, _) in enumerate(entries):
        if data and begin <= offset < begin + size:
            marks.append((index, json.loads(data[:SECTOR])))
    return marks


class Card:
    """Makes the card as it is after a cut, from the record. The moments must be in rising order."""

    def __init__(self, fresh, entries):
        self.kept = bytearray(fresh)
        self.entries = entries
        self.flushed = 0  # entries that are in `kept`

    def at(self, moment, dice):
        """The card after a cut at `moment`, the number of entries before the cut, and how many writes
        were lost."""
        last_flush = self.flushed
        for index in range(self.flushed, moment):
            if self.entries[index][2] & FLUSH:
                last_flush = index + 1
        for offset, data, _ in self.entries[self.flushed:last_flush]:
            if data:
                self.kept[offset:offset + len(data)] = data
        self.flushed = last_flush
        card = bytearray(self.kept)
        all_of_it = dice.random() < 0.3
        lost = 0
        for offset, data, flags in self.entries[last_flush:moment]:
            if not data:
                continue
            if all_of_it or flags & FUA or dice.random() < 0.5:
                card[offset:offset + len(data)] = data
            else:
                lost += 1
        return card, lost


def database_state(path, digest):
    """Checks a database and returns its digest. Opening it rolls an unfinished change back, as at the
    library's next start."""
    database = sqlite3.connect(path)
    answer = database.execute("PRAGMA integrity_check").fetchall()
    database.close()
    if answer != [("ok",)]:
        raise Failed(f"{path.name}: integrity_check says {answer[:2]}")
    return digest(str(path))


def look(card, kind, work, digest):
    """Repairs the card's file systems and copies their files to `work`. Returns the digest of each
    store."""
    for name in ("data", "device"):
        shutil.rmtree(work / name, ignore_errors=True)
        (work / name).mkdir()
    for index, name in ((0, "data"), (1, "device")):
        offset, size = PARTITIONS[index]
        image = work / (name + ".img")
        image.write_bytes(card[offset:offset + size])
        if kind == "vfat" and index == 0:
            run("fsck.vfat", "-a", "-w", image, allowed=(0, 1))
            # mcopy ends with 1 where there is nothing to copy
            run("mcopy", "-s", "-n", "-Q", "-i", image, "::/", work / name, allowed=(0, 1))
        else:
            run("e2fsck", "-fy", image, allowed=(0, 1))
            run("debugfs", "-R", f"rdump / {work / name}", image)
    stores = {}
    for store, file in FILES.items():
        path = work / "data" / file
        if not path.exists():
            stores[store] = "absent"
        elif path.suffix == ".db":
            stores[store] = database_state(path, digest)
        else:
            size = path.stat().st_size
            stores[store] = digest(str(path)) if size == 64 else f"{size} bytes"
    stores["supplicant"] = digest(str(work / "device/supplicant/wpa_supplicant-wlan0.conf"))
    return stores


def is_anew(work, store):
    """Does the store hold nothing that a user has entered?"""
    path = work / "data" / FILES[store]
    if not path.exists():
        return True
    database = sqlite3.connect(path)
    try:
        return all(database.execute(question).fetchone() == (0,)
                   for question in OF_THE_USER[store]
                   if database.execute("SELECT 1 FROM sqlite_master WHERE name = ?",
                                       (question.split("FROM ")[1].split()[0],)).fetchone())
    finally:
        database.close()


def judge(stores, mark, following, work):
    """Fails unless every store is as the last finished command left it (`mark`), or as the command that
    was interrupted would have left it (`following`, the mark after it)."""
    kind = following["kind"] if following else None
    for store, seen in stores.items():
        promised = mark["stores"][store]
        if seen == promised:
            continue
        if kind == "prepared":
            continue  # interrupted was no command: the writer was removing everything
        if store == "counters" and seen.endswith(" bytes"):
            # FAT writes the size of a new file after its name, so that the file may be empty. The
            # library then starts with no counts, as before the file was made.
            if (promised, seen) == ("absent", "0 bytes") and kind in ("counters", "first start"):
                continue
            raise Failed(f"the counters' file has {seen}")
        if kind == "first start" or (kind == "reset" and store == "settings"):
            continue  # anything sound will do: the next start adds what is missing
        if kind == "factory reset" and store in OF_THE_USER and is_anew(work, store):
            continue  # the user's data are gone; the next start adds what is missing
        if store in TOUCHES.get(kind, ()) and "absent" == promised:
            continue  # a command first makes a store that is absent
        if store in TOUCHES.get(kind, ()) and seen == following["stores"][store]:
            continue
        raise Failed(f"{store} is lost: {seen} instead of {promised}; "
                     f"finished: {mark['kind']}, interrupted: {kind}")


def factory_rows(path):
    """Number of factory rows in the lists, by table and language."""
    database = sqlite3.connect(path)
    tables = {name for name, in database.execute("SELECT name FROM sqlite_master")}
    rows = {(table, language): count
            for table, prefix in FACTORY.items() if table in tables
            for language, count in database.execute(
                f"SELECT {prefix}_Lang, COUNT(*) FROM {table} WHERE {prefix}_ReadOnly GROUP BY 1")}
    database.close()
    return rows


def starts_again(repository, work):
    """Fails unless the library starts with this card and can write to it."""
    (work / "data" / "UserData").mkdir(exist_ok=True)
    (work / "data" / "Log").mkdir(exist_ok=True)
    run(repository / "simulator/meter-run", "--bind", f"{work / 'data'}:/media/sdcard",
        "--path", repository / "build/release/tools/ktvctl", "--", "sh", "-ec",
        "ktvctl settings set MAIN_MeterSN DV0001; ktvctl lists names add next; "
        "ktvctl lists materials list; ktvctl wifi add --open next; ktvctl counters show")


def moments(entries, marks, number, dice):
    """Moments to cut at, `number` for each kind of command: half of them during the command, half right
    after its end. Returns (moment, kind), in rising order."""
    chosen = []
    for kind in KINDS:
        spans = [(marks[i - 1][0] + 1, marks[i][0] + 1) for i in range(1, len(marks))
                 if marks[i][1]["kind"] == kind]
        for turn in range(number):
            begin, end = dice.choice(spans)
            if turn % 2:
                chosen.append((dice.randint(begin, end - 1), kind))
            else:
                # The command has ended; nothing, or little, has been written since.
                chosen.append((min(end + dice.randint(0, 2), len(entries)), kind))
    return sorted(chosen)


def campaign(system, number, repository, seed):
    """Cuts the power `number` times for each kind of command and each kind of card. Returns the number
    of failures."""
    spec = importlib.util.spec_from_file_location(
        "writer", pathlib.Path(__file__).resolve().parent / "writer.py")
    writer = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(writer)
    failures = 0
    for kind in ("ext4", "vfat"):
        dice = random.Random(seed)
        folder = pathlib.Path(system.images) / "cuts" / kind
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        fresh, entries = record(system, kind, folder, 9, seed)
        marks = read_marks(entries)
        flushes = sum(1 for entry in entries if entry[2] & FLUSH)
        print(f"       {kind}: {len(entries)} writes and {flushes} flushes reached the card",
              flush=True)
        card = Card(fresh, entries)
        counts = {name: [0, 0] for name in KINDS}
        dropped = 0
        whole = None
        with tempfile.TemporaryDirectory(prefix="cuts.", dir="/dev/shm") as shm:
            work = pathlib.Path(shm)
            everything = Card(fresh, entries)
            look(everything.at(len(entries), random.Random(seed))[0], kind, work, writer.digest)
            whole = factory_rows(work / "data" / FILES["lists"])
            for moment, cut_kind in moments(entries, marks, number, dice):
                image, lost = card.at(moment, dice)
                dropped += lost > 0
                answered = [mark for index, mark in marks if index < moment]
                following = marks[len(answered)][1] if len(answered) < len(marks) else None
                counts[cut_kind][0] += 1
                try:
                    stores = look(image, kind, work, writer.digest)
                    if answered:
                        judge(stores, answered[-1], following, work)
                    lists = work / "data" / FILES["lists"]
                    if lists.exists():
                        for key, rows in factory_rows(lists).items():
                            if rows != whole[key]:
                                raise Failed(f"{key} has {rows} of {whole[key]} factory rows")
                    starts_again(repository, work)
                except Failed as failure:
                    counts[cut_kind][1] += 1
                    failures += 1
                    print(f"FAILED {kind}, {cut_kind}, after write {moment} of {len(entries)}: "
                          f"{failure}", flush=True)
        for name, (cuts, bad) in counts.items():
            print(f"{'ok' if not bad else 'FAILED':6} {kind}, {name}: {cuts} cuts, "
                  f"{bad} with a loss", flush=True)
        print(f"       {kind}: {dropped} of the cuts lost writes that were not flushed", flush=True)
    return failures
