#!/usr/bin/env python3
"""Runs the vocoder in hosts that Debian has, and compares what they record with the effect's own output.

  run.py BIN WORK [--quick] [--only WORD]

BIN is the folder of the built programs and plug-ins, WORK one that is emptied and then keeps sessions and recordings for
a closer look. Hosts see nothing but these plug-ins, and a home of their own. --quick leaves out the repetitions at other
rates and in less common formats; --only runs the groups in whose names WORD occurs.

Prints a table of what was checked. Exit status: 0 all is well, 1 something isn't.
"""
import argparse
import base64
import contextlib
import dataclasses
import math
import os
import re
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

from ardour_session import add_recording

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
LV2_URI = "https://www.quorvant.example/kvme"
VST2_ID = int.from_bytes(b"KV4M", "big")

CORE_RATE = 44100
RATES = [44100, 48000, 88200, 96000, 176400, 192000]

# The default bank's first program sounds in a new instance. What sessions hold is another one, changed as well.
PRESET, SWITCH_OFF = "Detuned Sawtooth B", "Octave"
SESSION_PROGRAM = ["--program", PRESET, "--no-octave"]
NEW_INSTANCE = ["--program", "0"]
# MIDI plays this chord; its notes are the keys' numbers and 36.
NOTES = [50, 55, 59]

# What agrees with the effect's output to the last bit but for rounding.
ALLOWED_DIFFERENCE_DB = -100.0
# At other rates the oscillators' phases aren't known, so that the beats of detuned voices differ.
ALLOWED_LOUDNESS_LU = 0.4
ALLOWED_ESTOI = 0.05
LEAST_SPECTRUM = 0.95
LEAST_ESTOI = 0.6  # of the reference itself, for the voice to be understood

# Ardour runs LV2 plug-ins for one block of its own to learn their latency, before it restores their states.
ARDOUR_TRIAL_FRAMES = {"LV2": 1024}

# The bank's image begins with the same bytes in every file that holds it.
IMAGE = re.compile(rb"Q2NuS[A-Za-z0-9+/=]+")


class Fault(Exception):
    pass


@dataclasses.dataclass
class Row:
    host: str
    form: str
    rate: int
    figures: dict
    faults: list


def run(command, env=None, check=True, **options):
    """Runs a command in silence, and returns its output; its errors become part of a fault."""
    result = subprocess.run([str(word) for word in command], env=env, text=True, stdin=subprocess.DEVNULL,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60, **options)
    if check and result.returncode != 0:
        last = [line for line in result.stdout.splitlines() if line.strip()][-4:]
        raise Fault(f"{Path(str(command[0])).name}: status {result.returncode}: " + " / ".join(last))
    return result.stdout


def values_in(text):
    """The NAME=VALUE words of a text, as numbers."""
    return {name.strip(): float(value) for name, value in re.findall(r"([\w ]+?)=(-?(?:[\d.]+|nan|inf))", text)}


@contextlib.contextmanager
def running(command, log, env):
    """A program in the background. It is asked to end, and waited for."""
    with open(log, "w") as output:
        process = subprocess.Popen([str(word) for word in command], env=env, stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=subprocess.STDOUT)
    try:
        yield process
        if process.poll() is not None:
            raise Fault(f"{command[0]} ended by itself, with status {process.returncode}")
    finally:
        if process.poll() is None:
            process.send_signal(signal.SIGTERM)
        try:
            process.wait(10)
        except subprocess.TimeoutExpired:
            process.kill()
            raise Fault(f"{command[0]} doesn't end when it is asked to")
    if process.returncode not in (0, -signal.SIGTERM):
        raise Fault(f"{command[0]} ended with status {process.returncode}")


def wait_for(condition, what, seconds=10):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise Fault(f"in vain waiting for {what}")
        time.sleep(0.1)


class Hosts:
    def __init__(self, binaries: Path, work: Path, quick: bool):
        self.bin, self.work, self.quick = binaries, work, quick
        self.rows = []
        shutil.rmtree(work, ignore_errors=True)
        for folder in ["home", "vst", "vst3", "lv2", "none"]:
            (work / folder).mkdir(parents=True)
        # Ardour only uses what it has found out about modules when that is newer than they are.
        self.vst2 = Path(shutil.copy(self.bin / "KesrelVocoder4ME-AnyHost.so", work / "vst"))
        shutil.copytree(self.bin / "KesrelVocoder4ME.vst3", work / "vst3/KesrelVocoder4ME.vst3")
        shutil.copytree(self.bin / "KesrelVocoder4ME.lv2", work / "lv2/KesrelVocoder4ME.lv2")
        for module in [self.vst2, *work.glob("vst3/**/*.so")]:
            os.utime(module, (time.time() - 3600, time.time() - 3600))
        home = work / "home"
        self.env = {
            **{name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")},
            "HOME": str(home), "XDG_CONFIG_HOME": str(home / "config"), "XDG_DATA_HOME": str(home / "data"),
            "XDG_CACHE_HOME": str(home / "cache"), "LXVST_PATH": str(work / "vst"),
            "VST3_PATH": str(work / "vst3"), "LV2_PATH": f"{work / 'lv2'}:/usr/lib/lv2",
            "LADSPA_PATH": str(work / "none"), "JACK_DEFAULT_SERVER": f"kesrel-{os.getpid()}",
            "JACK_NO_AUDIO_RESERVATION": "1", "LC_ALL": "C.UTF-8"}
        self.voice = work / "voice.wav"
        run(["sox", "-D", ROOT / "resources/demo/voice.flac", self.voice])

    def state(self, name, options):
        """A bank that the effect itself has saved."""
        path = self.work / f"{name}.fxb"
        run([self.bin / "kesrel-render", *options, "--save-state", path])
        return path

    def voice_at(self, rate, *effects, channels=1):
        path = self.work / f"voice-{rate}-{channels}{'-'.join(effects)}.wav".replace(" ", "")
        if not path.exists():
            run(["sox", "-D", self.voice, "-r", rate, "-c", channels, "-e", "float", "-b", 32, path, *effects])
        return path

    def compare(self, state, recording, start, run_in=0, earlier=0):
        return values_in(run([self.bin / "kesrel_recording_compare", self.bin / "KesrelVocoder4ME.so", state, self.voice,
                              recording, start, run_in, earlier]))

    def judge(self, host, form, rate, figures, exact):
        """Adds a row to the table, with whatever is wrong about these figures."""
        faults = []
        if not figures["lufs"] > -60:
            faults.append("silent")
        elif abs(figures["lufs"] - figures["own_lufs"]) > ALLOWED_LOUDNESS_LU:
            faults.append("other loudness")
        if figures["own_estoi"] < LEAST_ESTOI or abs(figures["estoi"] - figures["own_estoi"]) > ALLOWED_ESTOI:
            faults.append("voice isn't understood as well")
        if figures["spectrum"] < LEAST_SPECTRUM:
            faults.append("other spectrum")
        if exact and not figures["difference_db"] <= ALLOWED_DIFFERENCE_DB:
            faults.append("other sound")
        # What is told is a whole number.
        if not math.isnan(figures["lag"]) and abs(figures["lag"]) > (0.01 if rate == CORE_RATE else 0.51):
            faults.append("other latency")
        self.rows.append(Row(host, form, rate, figures, faults))

    def note(self, host, form, what, ok):
        self.rows.append(Row(host, form, 0, {"note": what}, [] if ok else ["failed"]))

    @contextlib.contextmanager
    def attempt(self, host, form, rate=0):
        """A fault inside becomes a row of the table."""
        try:
            yield
        except (Fault, subprocess.TimeoutExpired, OSError, KeyError) as fault:
            self.rows.append(Row(host, form, rate, {}, [f"{type(fault).__name__}: {fault}"]))

    # Ardour: sessions made, reopened and exported by its command-line tools.

    def ardour(self):
        libraries = "/usr/lib/ardour7"
        scan_env = {**self.env, "LD_LIBRARY_PATH": libraries, "ARDOUR_DATA_PATH": "/usr/share/ardour7",
                    "ARDOUR_CONFIG_PATH": "/etc/ardour7", "ARDOUR_DLL_PATH": libraries}
        run([f"{libraries}/ardour-vst-scanner", self.vst2], scan_env)
        wanted = self.state("session", SESSION_PROGRAM)
        formats = {"VST2": ("LXVST", VST2_ID), "LV2": ("LV2", LV2_URI)}
        if not self.quick:
            scanned = run([f"{libraries}/ardour-vst3-scanner", self.work / "vst3/KesrelVocoder4ME.vst3"], scan_env)
            uid = re.search(r'uid="(\w+)"', scanned + "".join(
                path.read_text() for path in self.work.glob("home/cache/ardour7/vst/*.v3i")))
            formats["VST3"] = ("VST3", uid[1] if uid else "")
        for form, (kind, identity) in formats.items():
            for rate in [44100] if self.quick else [44100, 48000]:
                with self.attempt("Ardour", form, rate):
                    self.ardour_session(form, kind, identity, rate, wanted)

    def ardour_session(self, form, kind, identity, rate, wanted):
        folder = self.work / f"ardour-{form}-{rate}"
        take = self.voice_at(rate, "pad", "1", "1", channels=2)
        script = ["ardour7-lua"]
        run([*script, HERE / "ardour_create.lua", folder, folder.name, rate, 2], self.env)
        frames = int(run(["soxi", "-s", take]))
        add_recording(folder, folder.name, take, 2, frames)
        told = values_in(run([*script, HERE / "ardour_insert.lua", folder, folder.name, kind, identity, PRESET,
                              f"{SWITCH_OFF}=0"], self.env))["latency"]
        reopened = values_in(run([*script, HERE / "ardour_reopen.lua", folder, folder.name], self.env))
        if reopened[SWITCH_OFF] != 0:
            raise Fault("the session forgets a switch")
        image = self.image_in(folder)
        if image != wanted.read_bytes():
            raise Fault("the session's image isn't that of the same state")
        if reopened["latency"] != told:
            raise Fault(f"the latency is {told}, and {reopened['latency']} in the reopened session")
        recording = self.work / f"{folder.name}.wav"
        self.export(folder, recording)
        state = self.work / f"{folder.name}.fxb"
        state.write_bytes(image)
        figures = self.compare(state, recording, rate, 0, ARDOUR_TRIAL_FRAMES.get(form, 0))
        self.judge("Ardour", form, rate, {**figures, "latency": told}, exact=rate == CORE_RATE)
        if form == "VST2" and rate == CORE_RATE:
            self.put_image_into_session(folder)

    def export(self, folder, recording):
        """Ardour 7.3 corrupts its own memory in one export of ten, without any plug-in too. A plug-in that does the same
        each time is still found."""
        for attempts_left in (3, 2, 1, 0):
            try:
                run(["ardour7-export", "-b", "float", "-o", recording, folder, folder.name], self.env)
                return
            except Fault as fault:
                if attempts_left == 0 or f"status -{signal.SIGABRT.value}" not in str(fault):
                    raise

    def image_in(self, folder):
        """The image in a session, as docs/hosts.md gets it. VST3 hosts wrap it a second time."""
        states = sorted(folder.glob("plugins/*/state*/state.ttl"), key=lambda path: path.stat().st_mtime)
        text = (states[-1] if states else folder / f"{folder.name}.ardour").read_bytes()
        found = IMAGE.search(text)
        if not found:
            for chunk in re.findall(rb"<chunk[^>]*>([^<]+)<", text):
                found = found or IMAGE.search(base64.b64decode(chunk))
        if not found:
            raise Fault("there is no image in the session")
        return base64.b64decode(found[0])

    def put_image_into_session(self, folder):
        """The way back, by the commands in docs/hosts.md."""
        other = self.state("other", ["--program", "6", "--chorus", "--keys", "5,9,24"])
        session = folder / f"{folder.name}.ardour"
        run(["sh", "-c", 'sed -i "s|Q2NuS[A-Za-z0-9+/=]*|$(base64 -w0 "$1")|; s|chunk program=\\"[0-9]*\\"|chunk '
             'program=\\"6\\"|" "$2"', "sh", other, session])
        # The host's own values of the switches, which it would set.
        text = session.read_text()
        for name, value in {"ChorusOn": 1, "ReverbOn": 0, "OctaveOn": 0}.items():
            text = re.sub(rf'(<Controllable name="{name}"[^>]* value=")[^"]*', rf"\g<1>{value}", text)
        session.write_text(text)
        run(["ardour7-lua", HERE / "ardour_reopen.lua", folder, folder.name], self.env)
        self.note("Ardour", "VST2", "state of kesrel-render in a session", self.image_in(folder) == other.read_bytes())

    # LV2 by lilv: runs that can be repeated, in any blocks and at any rate. lilv's own programs, lv2apply and lv2bench,
    # refuse plug-ins that have event ports or that need a worker.

    def lilv(self):
        wanted = self.state("lilv", SESSION_PROGRAM)
        load = self.work / "lilv.ttl"
        load.write_text(
            "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n@prefix pset: <http://lv2plug.in/ns/ext/presets#> .\n"
            f"@prefix state: <http://lv2plug.in/ns/ext/state#> .\n<> a pset:Preset ;\n  lv2:appliesTo <{LV2_URI}> ;\n"
            f'  state:state [ <{LV2_URI}#bank> "{base64.b64encode(wanted.read_bytes()).decode()}" ] .\n')
        runs = [(rate, 512) for rate in RATES]
        if not self.quick:
            runs += [(44100, 0), (44100, 1), (48000, 0)]
        for rate, block in runs:
            host = f"lilv, blocks of {block or '1 to 4096'}"
            with self.attempt(host, "LV2", rate):
                recording = self.work / f"lilv-{rate}-{block}.wav"
                saved = self.work / f"lilv-{rate}-{block}.lv2"
                told = values_in(run([self.bin / "kesrel_lv2_render", LV2_URI, self.voice_at(rate), recording, rate,
                                      block, load, saved], self.env))["latency"]
                figures = self.compare(wanted, recording, rate + int(told), CORE_RATE)
                if base64.b64decode(IMAGE.search((saved / "state.ttl").read_bytes())[0]) != wanted.read_bytes():
                    raise Fault("the plug-in saves another image than it was given")
                self.judge(host, "LV2", rate, {**figures, "latency": told}, exact=rate == CORE_RATE)

    # JACK, on its driver without a device: jalv and the stand-alone program.

    def jack(self):
        for rate in [44100] if self.quick else [44100, 48000]:
            server = ["jackd", "--no-realtime", "-d", "dummy", "-r", rate, "-p", 256]
            with self.attempt("JACK", "", rate), running(server, self.work / f"jackd-{rate}.log", self.env):
                wait_for(lambda: "system:playback_1" in run(["jack_lsp"], self.env, check=False), "JACK")
                jalv = ["jalv", "-i", "-x", "-n", "jalv-kesrel", LV2_URI]
                self.jack_client("jalv", "LV2", jalv, "jalv-kesrel", rate, self.env)
                with self.display() as display:
                    self.jack_client("stand-alone", "JACK", [self.bin / "kesrel-vocoder"], "Kesrel", rate,
                                     {**self.env, "DISPLAY": display}, window="Kesrel Vocoder 4 ME")

    def jack_client(self, host, form, command, name, rate, env, window=None):
        def clients():
            return run(["jack_lsp"], self.env, check=False)

        chord = ["--program", "0", "--keys", ",".join(str(note - 36) for note in NOTES)]
        for what, options, notes in [(host, NEW_INSTANCE, []), (f"{host}, notes", chord, NOTES)]:
            if self.quick and notes and host == "jalv":
                continue
            with self.attempt(what, form, rate):
                recording = self.work / f"{what.replace(', ', '-')}-{rate}.wav"
                log = recording.with_suffix(".log")
                with running(command, log, env):
                    wait_for(lambda: name in clients(), f"the ports of {host}")
                    told = values_in(run([self.bin / "kesrel_jack_session", name, self.voice_at(rate), recording, rate,
                                          ",".join(map(str, notes))], self.env))
                    latency = self.latency_at(rate) if host == "jalv" else int(told["latency"])
                    if window:
                        self.picture(window, env, recording.with_suffix(".png"))
                wait_for(lambda: name not in clients(), f"the end of {host}")
                state = self.state(f"{what}-{rate}", options)
                figures = self.compare(state, recording, rate + latency, CORE_RATE if notes else 0)
                if notes:  # the keys' phases aren't known
                    figures["difference_db"] = figures["lag"] = math.nan
                self.judge(what, form, rate, {**figures, "latency": latency}, exact=rate == CORE_RATE and not notes)

    def latency_at(self, rate):
        """What the plug-in reports, for jalv, which doesn't pass it on to JACK."""
        told = run([self.bin / "kesrel_lv2_render", LV2_URI, self.voice_at(rate), self.work / "latency.wav", 0, 512],
                   self.env)
        return int(values_in(told)["latency"])

    @contextlib.contextmanager
    def display(self):
        read_end, write_end = os.pipe()
        command = ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x900x24", "-nolisten", "tcp"]
        with subprocess.Popen(command, pass_fds=[write_end], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL) as server:
            os.close(write_end)
            try:
                with os.fdopen(read_end) as numbers:
                    yield ":" + numbers.readline().strip()
            finally:
                server.terminate()

    def picture(self, window, env, path):
        def found():
            return run(["xdotool", "search", "--onlyvisible", "--name", window], env, check=False).split()

        wait_for(found, f"a window '{window}'")
        run(["import", "-window", found()[0], path], env)
        colours = int(run(["identify", "-format", "%k", path]))
        if colours < 100:
            raise Fault(f"the window has {colours} colours")

    def report(self):
        header = ["host", "format", "rate", "LUFS", "effect's", "ESTOI", "effect's", "difference", "latency", "lag", ""]
        table = [header]
        for row in self.rows:
            figure = row.figures

            def text(name, form):
                value = figure.get(name, math.nan)
                return "" if math.isnan(value) else form.format(value)

            difference = "none" if figure.get("difference_db", 0) <= -300 else text("difference_db", "{:.1f} dB")
            table.append([row.host, row.form, str(row.rate or ""), text("lufs", "{:.2f}"), text("own_lufs", "{:.2f}"),
                          text("estoi", "{:.2f}"), text("own_estoi", "{:.2f}"), difference, text("latency", "{:.0f}"),
                          text("lag", "{:.2f}"), figure.get("note", "") if not row.faults else
                          " ".join([figure.get("note", "")] + row.faults).strip() + " <--"])
        widths = [max(len(line[column]) for line in table) for column in range(len(header))]
        for line in table:
            print("  ".join(word.ljust(width) for word, width in zip(line, widths)).rstrip())
        faulty = sum(bool(row.faults) for row in self.rows)
        print(f"{len(self.rows)} checks, {faulty} failed; recordings are in {os.path.relpath(self.work)}")
        return faulty == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("bin", type=Path)
    parser.add_argument("work", type=Path)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    hosts = Hosts(options.bin.resolve(), options.work.resolve(), options.quick)
    for group in [hosts.ardour, hosts.lilv, hosts.jack]:
        if options.only in group.__name__:
            with hosts.attempt(group.__name__, ""):
                group()
    return 0 if hosts.report() and hosts.rows else 1


if __name__ == "__main__":
    sys.exit(main())
