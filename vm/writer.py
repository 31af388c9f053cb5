"""Runs in the machine: changes every store on the card by commands of ktvctl, one after the other. After
each one it writes a mark to the card's third partition, bypassing all caches. So in the record of the
card, every write between two marks belongs to the command of the second.

A mark holds the number of the command, its kind and a digest of each store after it.
"""

import errno
import hashlib
import json
import mmap
import os
import random
import sqlite3
import subprocess
import sys

SECTOR = 512
DATA = "/media/sdcard/UserData/"
STORES = {
    "settings": DATA + "interfaceConfig.db",
    "lists": DATA + "dataList.db",
    "networks": DATA + "wifi.db",
    "counters": "/media/sdcard/Log/liczniki.bin",
    "supplicant": "/etc/wpa_supplicant/wpa_supplicant-wlan0.conf",
}


def digest(path):
    """A short checksum of a store's contents: of a database's rows, or of a file's bytes."""
    if not os.path.exists(path):
        return "absent"
    result = hashlib.sha256()
    if path.endswith(".db"):
        database = sqlite3.connect(path)
        tables = [name for name, in database.execute(
            "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name")]
        for table in tables:
            result.update(repr((table, database.execute(
                f'SELECT * FROM "{table}" ORDER BY rowid').fetchall())).encode())
        database.close()
    else:
        with open(path, "rb") as file:
            result.update(file.read())
    return result.hexdigest()[:12]


class Marks:
    def __init__(self):
        self.device = os.open("/dev/disk/by-id/virtio-card-part3", os.O_WRONLY | os.O_DIRECT)
        self.block = mmap.mmap(-1, 4096)
        self.number = 0

    def write(self, kind):
        mark = {"number": self.number, "kind": kind,
                "stores": {name: digest(path) for name, path in STORES.items()}}
        text = json.dumps(mark).encode()
        assert len(text) < SECTOR
        self.block[:SECTOR] = text.ljust(SECTOR)
        os.pwrite(self.device, memoryview(self.block)[:SECTOR], self.number * SECTOR)
        self.number += 1


def ktvctl(*words):
    done = subprocess.run(["ktvctl", *words], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                          check=False, text=True)
    if done.returncode != 0:
        sys.exit(f"ktvctl {' '.join(words)}: {done.stderr}")


def forget_everything():
    """Removes every store, for a first start."""
    for path in STORES.values():
        if os.path.exists(path):
            os.unlink(path)
    os.sync()


def fill():
    """Fills the card until there is no room even for a short file."""
    number = 0
    for size in (1 << 20, 4096, SECTOR):
        try:
            while True:
                number += 1
                with open(f"{DATA}filler.{number}", "wb", buffering=0) as file:
                    if file.write(bytes(size)) < size:
                        break
        except OSError as error:
            assert error.errno == errno.ENOSPC
    os.sync()


def main():
    rounds = int(sys.argv[1])
    dice = random.Random(int(sys.argv[2]))
    counter = subprocess.run(["ktvctl", "counters", "show"], stdout=subprocess.PIPE, check=True,
                             text=True).stdout.split(":")[0].strip()
    marks = Marks()
    number = 0

    def text():
        return "".join(dice.choice("abcdefghij ÄÖÜ'\"") for _ in range(dice.randint(3, 200))) + "."

    commands = {
        "settings": lambda: ("settings", "set", dice.choice(("PRINT_Customer_Label", "MAIN_Pin")), text()),
        "lists": lambda: dice.choice((
            ("lists", "names", "add", f"{number} {text()[:60]}"),
            ("lists", "types", "add", f"{number} {text()[:60]}"),
            ("lists", "materials", "add", f"{number} {text()[:40]}", "0.00393"),
            ("lists", "limits-r", "add", f"{number} {text()[:40]}", "2", "1"))),
        "networks": lambda: ("wifi", "add", f"Network {number % 7}", text()[:40].ljust(8, "x")),
        "counters": lambda: ("counters", "up", counter),
        "reset": lambda: ("settings", "reset"),
        "factory reset": lambda: ("factory-reset",),
        "first start": lambda: ("watch", "--seconds", "1"),
    }
    commands["full card"] = commands["counters"]
    marks.write("begin")
    for turn in range(rounds):
        kinds = ["settings", "lists", "networks", "counters"] * 3
        kinds.append(("reset", "factory reset", "first start")[turn % 3])
        dice.shuffle(kinds)
        for kind in kinds:
            number += 1
            if kind == "first start":
                forget_everything()
                marks.write("prepared")
            ktvctl(*commands[kind]())
            marks.write(kind)
    fill()
    marks.write("filled")
    for _ in range(8):
        ktvctl(*commands["full card"]())
        marks.write("full card")
    print(marks.number, "marks")


if __name__ == "__main__":
    main()
