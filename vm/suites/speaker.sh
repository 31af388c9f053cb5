# Sound card and buzzer: the kernel's loopback card, whose other end can be recorded, and an input
# device that accepts tones.

sound_card() {
    modprobe snd-aloop
    mkdir -p /run/sound
    cat >/etc/asound.conf <<'TEXT'
pcm.!default {
    type plug
    slave.pcm "volume"
}
pcm.volume {
    type softvol
    slave.pcm "plughw:Loopback,0,0"
    control { name "DAC R&L Playback Volume"; card Loopback; }
}
ctl.!default { type hw; card Loopback; }
TEXT
}

buzzer() {
    modprobe uinput
    mkdir -p /run/sound
    python3 - >>/run/sound/tones 2>/run/sound/buzzer.log <<'TEXT' &
# An input device that accepts tones, at the path where beep looks for one; prints each change:
# time, frequency.
import fcntl, glob, os, struct, time
device = os.open("/dev/uinput", os.O_RDWR)
fcntl.ioctl(device, 0x40045564, 0x12)      # UI_SET_EVBIT EV_SND
for code in (1, 2):
    fcntl.ioctl(device, 0x4004556a, code)  # UI_SET_SNDBIT SND_BELL, SND_TONE
os.write(device, struct.pack("80sHHHHi", b"buzzer", 0x10, 0, 0, 0, 0) + bytes(64 * 4 * 4))
fcntl.ioctl(device, 0x5501)                # UI_DEV_CREATE
node = None
while not node:
    for name in glob.glob("/sys/class/input/event*/device/name"):
        if open(name).read().strip() == "buzzer":
            node = "/dev/input/" + name.split("/")[4]
    time.sleep(0.1)
while not os.path.exists(node):
    time.sleep(0.1)
os.makedirs("/dev/input/by-path", exist_ok=True)
os.symlink(node, "/dev/input/by-path/buzzer")
os.replace("/dev/input/by-path/buzzer", "/dev/input/by-path/platform-pcspkr-event-spkr")
size = struct.calcsize("llHHi")
while True:
    seconds, micro, kind, code, value = struct.unpack("llHHi", os.read(device, size))
    if kind == 0x12:
        print(f"{seconds + micro / 1e6:.3f} {value}", flush=True)
TEXT
    until_true 10 sh -c 'readlink /dev/input/by-path/platform-pcspkr-event-spkr | grep -q ^/'
}
