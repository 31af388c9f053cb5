"""The virtual machine, seen from the host: QEMU's command line, its control socket (QMP), and the port
through which the machine gets scripts to run."""

import json
import os
import select
import shutil
import signal
import socket
import subprocess
import time


class Failed(Exception):
    pass


# "nokaslr": with a random address arm64's kernel isolates its page tables whatever "mitigations" says, and
# then QEMU empties its TLB at every system call, which takes more time than all else.
KERNEL_LINE = "quiet panic=-1 net.ifnames=0 systemd.show_status=0 mitigations=off nokaslr"
SCREEN = (800, 480)
# "slot": the bus to which a disk can be added while the machine runs.
ARCHITECTURES = {
    "amd64": {
        "program": "qemu-system-x86_64",
        "machine": ["-machine", "pc,usb=off", "-cpu", "max"],
        "console": "ttyS0",
        "slot": {},
    },
    "arm64": {
        "program": "qemu-system-aarch64",
        "machine": ["-machine", "virt", "-cpu", "cortex-a53",
                    "-device", "pcie-root-port,id=plug,chassis=1"],
        "console": "ttyAMA0",
        "slot": {"bus": "plug"},
    },
    "armhf": {
        "program": "qemu-system-arm",
        "machine": ["-machine", "virt", "-cpu", "cortex-a15",
                    "-device", "pcie-root-port,id=plug,chassis=1"],
        "console": "ttyAMA0",
        "slot": {"bus": "plug"},
    },
}
# Emulates every instruction. The machine's clock counts them, 2 ns for each, and jumps ahead to the next
# timeout when the machine idles.
TCG = ["-accel", "tcg", "-icount", "shift=1,sleep=off"]
# For people: while the machine idles, its clock goes as fast as theirs.
TCG_FOR_PEOPLE = ["-accel", "tcg", "-icount", "shift=1,sleep=on"]


class Machine:
    """One machine. `folder` is emptied for its sockets and the logs of QEMU and of its console."""

    def __init__(self, architecture, images, folder, accelerator, memory=1024):
        self.kind = ARCHITECTURES[architecture]
        self.images = images
        self.folder = folder
        self.accelerator = accelerator
        self.memory = memory
        self.process = None
        self.qmp = None
        self.port = None
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)

    def path(self, name):
        return os.path.join(self.folder, name)

    def command(self, extra_line=""):
        line = f"console={self.kind['console']} {KERNEL_LINE} {extra_line}"
        return [
            self.kind["program"], *self.kind["machine"], *self.accelerator,
            "-m", str(self.memory), "-nodefaults", "-no-reboot", "-nic", "none",
            "-rtc", "clock=vm",
            "-kernel", os.path.join(self.images, "vmlinuz"),
            "-initrd", os.path.join(self.images, "initrd"),
            "-append", line,
            "-drive", f"if=none,id=root,file={self.images}/root.ext4,format=raw,readonly=on",
            "-device", "virtio-blk-pci,drive=root,serial=root",
            "-drive", f"if=none,id=device,file={self.images}/device.ext4,format=raw,readonly=on",
            "-device", "virtio-blk-pci,drive=device,serial=device",
            "-device", f"virtio-gpu-pci,xres={SCREEN[0]},yres={SCREEN[1]}",
            "-device", "virtio-keyboard-pci", "-device", "virtio-tablet-pci",
            "-device", "virtio-serial-pci",
            "-chardev", f"socket,id=agent,path={self.path('agent')},server=on,wait=off",
            "-device", "virtserialport,chardev=agent,name=ktv.agent",
            "-chardev", f"socket,id=line,path={self.path('line')},server=on,wait=off",
            "-device", "pci-serial,chardev=line,addr=0xa",
            "-chardev", f"socket,id=hardware,path={self.path('line')}",
            "-device", "pci-serial,chardev=hardware,addr=0xb",
            "-chardev", f"socket,id=qmp,path={self.path('qmp')},server=on,wait=off",
            "-mon", "chardev=qmp,mode=control",
        ]

    def start(self, *options, terminal=None):
        """Starts QEMU. `terminal` is for people: options for QEMU's display; the console is then on this
        process's terminal instead of in a file."""
        console = ["-display", "none", "-chardev",
                   f"file,id=console,path={self.path('console')}", "-serial", "chardev:console"]
        if terminal is not None:
            console = [*terminal, "-serial", "mon:stdio"]
        with open(self.path("qemu.log"), "wb") as log:
            self.process = subprocess.Popen(
                [*self.command(), *console, *options],
                stdin=subprocess.DEVNULL if terminal is None else None,
                stdout=log if terminal is None else None, stderr=log)
        self.qmp = self._connect("qmp").makefile("rwb", buffering=0)
        self.qmp.readline()
        self.control("qmp_capabilities")
        self.port = self._connect("agent")
        self.received = b""

    def _connect(self, name):
        end = time.monotonic() + 20
        while True:
            link = socket.socket(socket.AF_UNIX)
            try:
                link.connect(self.path(name))
                return link
            except OSError:
                link.close()
                if self.process.poll() is not None or time.monotonic() > end:
                    with open(self.path("qemu.log"), encoding="utf-8", errors="replace") as log:
                        raise Failed("the emulator does not start: " + log.read())
                time.sleep(0.05)

    def _gone(self):
        return Failed("the machine has gone; see " + self.folder)

    def _read_line(self):
        """The next line from the port."""
        while b"\n" not in self.received:
            # While the machine idles, QEMU may not notice what we have sent until something wakes it; a
            # QMP command does.
            while not select.select([self.port], [], [], 0.3)[0]:
                self.control("query-status")
            data = self.port.recv(65536)
            if not data:
                raise self._gone()
            self.received += data
        line, self.received = self.received.split(b"\n", 1)
        return line

    def control(self, command, **arguments):
        """Carries out one QMP command and returns its answer. Events that come before it are dropped."""
        request = {"execute": command, "arguments": arguments}
        self.qmp.write(json.dumps(request).encode() + b"\n")
        while True:
            try:
                line = self.qmp.readline()
            except ConnectionError:
                line = b""
            if not line:
                raise self._gone()
            answer = json.loads(line)
            if "return" in answer:
                return answer["return"]
            if "error" in answer:
                raise Failed(f"{command}: {answer['error']['desc']}")

    def wait_for_agent(self):
        while self._read_line() != b"\1ready":
            pass

    def run(self, script, on_line=None, on_request=None):
        """Runs a bash script in the machine and returns its exit code. on_line is called with each line
        that it prints, as bytes. A line that begins with \\2 is a request to the host: on_request is
        called with its words, and then the script can read the line "done"."""
        data = script.encode()
        self.port.sendall(b"%d\n" % len(data) + data)
        self.control("query-status")
        while True:
            line = self._read_line()
            if line.startswith(b"\1"):
                return int(line[1:])
            if line.startswith(b"\2"):
                on_request(*line[1:].decode().split())
                self.port.sendall(b"done\n")
                self.control("query-status")
            elif on_line:
                on_line(line)

    def output(self, script):
        lines = []
        code = self.run(script, lines.append)
        text = b"\n".join(lines).decode(errors="replace")
        if code != 0:
            raise Failed(f"ended with {code}: {script}\n{text}")
        return text

    def wait_for(self, status):
        while self.control("query-status")["status"] != status:
            time.sleep(0.05)

    def save(self, file):
        """Halts the machine and saves the state of its memory and devices in a file."""
        self.control("stop")
        self.control("migrate", uri="exec:cat >" + file + ".new")
        while True:
            state = self.control("query-migrate")["status"]
            if state == "completed":
                break
            if state in ("failed", "cancelled"):
                raise Failed("the state cannot be saved")
            time.sleep(0.1)
        os.rename(file + ".new", file)

    def resume(self, file, terminal=None):
        """Starts QEMU with a saved state, which goes on where it was halted."""
        self.start("-incoming", "defer", terminal=terminal)
        self.control("migrate-incoming", uri="exec:cat " + file)
        while self.control("query-status")["status"] == "inmigrate":
            time.sleep(0.05)
        if self.control("query-status")["status"] != "running":
            self.control("cont")

    def plug(self, name, **file):
        """Adds a disk to the running machine. `file` are the options of QEMU's block driver; in the
        machine it is /dev/disk/by-id/virtio-NAME."""
        self.control("blockdev-add", **{"node-name": name, **file})
        self.control("device_add", driver="virtio-blk-pci", id=name, drive=name, serial=name,
                     **self.kind["slot"])

    def picture(self, file):
        """Writes a picture of the machine's screen to a PNG file."""
        self.control("screendump", filename=file, format="png")

    def touch(self, x, y):
        """Touches the screen at that point, for a moment."""
        place = [{"type": "abs", "data": {"axis": axis, "value": value * 0x7fff // (size - 1)}}
                 for axis, value, size in zip("xy", (x, y), SCREEN)]
        for down in (True, False):
            button = {"type": "btn", "data": {"button": "left", "down": down}}
            self.control("input-send-event", events=[*place, button])

    def processor_time(self):
        """Seconds of processor time that QEMU has used."""
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as file:
            user, system = file.read().rpartition(")")[2].split()[11:13]
        return (int(user) + int(system)) / os.sysconf("SC_CLK_TCK")

    def kill(self):
        if self.process and self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
            self.process.wait()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.kill()
