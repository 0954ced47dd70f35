#!/usr/bin/env python3
# MIT License. Plants one small fault at a time into copies of the sources and shows which ones no test notices.
import argparse, collections, filecmp, itertools, os, queue, random, re, shutil, subprocess, time
from multiprocessing.pool import ThreadPool
from pathlib import Path
ROOT = Path(__file__).resolve().parent.parent
# Comments and literals; directives and lines that only name something; assertions, attributes; template arguments.
NO_CODE = [r'//[^\n]*|/\*.*?\*/|R"\(.*?\)"|"(?:\\.|[^"\\\n])*"|(?<!\w)\'(?:\\.|[^\'\\\n])+\'',
           r"(?m)^ *#(?:[^\n]*\\\n)*[^\n]*|^ *(?:using|typedef|namespace|extern|friend|template)\b[^\n]*",
           r"\bstatic_assert\s*\(.*?\);|\[\[.*?\]\]|\balignas\(\d+\)|__attribute__.*?\)\)",
           *[r"(?<=\w)<[^<>;{}=&|]*>"] * 3]
NUMBER = r"(?<![\w.'])(?:0x[\da-fA-F]+|\d+(?:\.\d*)?(?:e[-+]?\d+)?)(?![\d'])"
SIGN = r"(?:(?<=[(!,=?:{] )|(?<=[({])|(?<=return ))[-!](?=[\w(.])"
PAIRS = "<< >> <= < >= > == != && || & | + - * / left right modulator carrier min max sin cos true false".split()
SWAPPED = {text: PAIRS[i ^ 1] for i, text in enumerate(PAIRS)}
OPERATOR = f"(?<= )(?:{'|'.join(map(re.escape, PAIRS[:16]))})(?==? )"
WORD = f"(?<![a-z])(?:{'|'.join(PAIRS[16:])})(?![a-z])"
STATEMENT = (r"\s*(?:if \(.*\) .*|(?:else )?(?:[\w.:>\[\]-]+\(.*\)|\*?[\w.:>()\[\]*-]+ [-+*/%|&^<>]*= .*|"
             r"(?:\+\+|--)[\w.>\[\]-]+|break|continue|return));\s*$")

def wrong_number(text, rng):
    """Off by one if whole and short, else with one of its first three digits changed."""
    digits = [m.start() for m in re.finditer(r"\d", text.split("e")[0]) if text[:m.end()].strip("0.")][:3]
    if not digits or text.isdigit() and len(text) < 3:
        return str(int(text) + rng.choice([-1, 1])) if digits else text.replace("0", "1", 1)
    place = rng.choice(digits)
    return text[:place] + rng.choice([digit for digit in "123456789" if digit != text[place]]) + text[place + 1:]

def faults_of(name, rng):
    """(file, line index, line, line with a fault) for each kind of fault that a line of the file has a place for."""
    text = code = (ROOT / name).read_text()
    for pattern in NO_CODE:  # blanks around it would make an operator of the & behind a template
        code = re.sub(pattern, lambda m: re.sub(r".", "_" if m[0][0] == "<" else " ", m[0]), code, flags=re.S)
    kinds = {NUMBER: lambda text: wrong_number(text, rng), SIGN: lambda _: "", OPERATOR: SWAPPED.get, WORD: SWAPPED.get}
    before = ";"
    for index, (line, bare) in enumerate(zip(text.split("\n"), code.split("\n"))):
        for pattern, new in kinds.items():
            for place in rng.sample(found := list(re.finditer(pattern, bare)), min(len(found), 1)):
                yield name, index, line, line[:place.start()] + new(place[0]) + line[place.end():]
        if before[-1] in ";{}:)" and re.match(STATEMENT, bare) and bare.count("(") == bare.count(")"):
            yield name, index, line, re.match(r"\s*", line)[0] + ";"
        before = bare.strip() or before

class Copy:
    """A copy of the tree with its build, that build again to restore it from, and a home for the tests."""
    def __init__(self, base, folders):
        self.tree, self.good, self.home, self.out = (base / p for p in ("tree", "good", "home", "tree/build/mutate"))
        shutil.rmtree(base, ignore_errors=True)
        shutil.copytree(ROOT, self.tree, ignore=shutil.ignore_patterns("build", "out", ".git"))
        subprocess.run(["cmake", "--preset", "mutate"], cwd=self.tree, stdout=subprocess.DEVNULL, check=True)
        programs = re.findall(r"(?m)^bin/\S+_tests(?=:)", self.ninja("-t", "targets", "all").stdout)
        inputs = {program: self.ninja("-t", "inputs", program).stdout for program in programs}
        self.programs = [p for p in programs if any(f"{self.tree}/{folder}/" in inputs[p] for folder in folders)]
        self.ninja(*self.programs).check_returncode()
        shutil.copytree(self.out, self.good)
    def ninja(self, *arguments):
        return subprocess.run(["ninja", "-C", self.out, *arguments], text=True, stdout=subprocess.PIPE)
    def passes(self, program, tests, seconds):
        """Runs tests in an empty home within limits of time, memory and file size."""
        shutil.rmtree(self.home, ignore_errors=True)
        self.home.mkdir()
        limits = f'ulimit -c 0 -t {round(3 * seconds) + 5} -v 8000000 -f 1000000; exec "$@" >/dev/null 2>&1'
        command = ["timeout", "-s", "KILL", str(10 * seconds + 60), "bash", "-c", limits, "", self.out / program, tests]
        homes = dict.fromkeys(("HOME", "TMPDIR", "XDG_DATA_HOME"), str(self.home))
        return subprocess.run(command, env=os.environ | homes | {"GTEST_FAIL_FAST": "1"}).returncode == 0

def trial(fault, copies, stages):
    """Finds how a fault ends and leaves the copy as it was. Quick tests come first, its folder's own before others."""
    copy, (name, index, _, planted), outcome = copies.get(), fault, "same program"
    source, own = copy.tree / name, f"_{name.split('/')[0]}_"
    times, lines = source.stat().st_mtime_ns, source.read_text().split("\n")
    source.write_text("\n".join([*lines[:index], planted, *lines[index + 1:]]))
    for _, program, tests, seconds, parts in sorted(stages, key=lambda s: (s[0], own not in s[1], s[3])):
        if copy.ninja(program).returncode:
            outcome = "no program"
        elif not all(filecmp.cmp(copy.out / part, copy.good / part, shallow=False) for part in parts):
            outcome = "survived" if copy.passes(program, tests, seconds) else "caught"
        if outcome in ("no program", "caught"):
            break
    shutil.copytree(copy.good, copy.out, dirs_exist_ok=True)
    source.write_text("\n".join(lines))
    os.utime(source, ns=(times, times))
    copies.put(copy)
    return *fault, outcome

def main():
    parser = argparse.ArgumentParser(prog="./dev mutate")
    parser.add_argument("folders", nargs="*", default=["engine", "dsp"], help="[engine dsp]")
    for name, default in (("--count", 200), ("--seed", random.randrange(10**6)), ("--jobs", os.cpu_count())):
        parser.add_argument(name, type=int, default=default, help=f"[{default}]")
    options = parser.parse_args()
    rng, folders = random.Random(options.seed), [folder.rstrip("/") for folder in options.folders]
    paths = [path for folder in folders for path in sorted((ROOT / folder).rglob("*")) if path.suffix in (".cpp", ".h")]
    faults = [fault for path in paths for fault in faults_of(str(path.relative_to(ROOT)), rng)]
    rng.shuffle(faults or parser.error("no code in these folders"))
    print(f"seed {options.seed}, {len(faults)} places", flush=True)
    copies, stages, score, tried = queue.Queue(), [], collections.defaultdict(collections.Counter), 0
    for number in range(options.jobs):
        copies.put(copy := Copy(ROOT / "build/mutate" / str(number), folders))
    for program, slow in itertools.product(copy.programs, (False, True)):
        tests = f"--gtest_filter={'' if slow else '-'}*Endurance*"
        inputs, start = copy.ninja("-t", "inputs", program).stdout, time.monotonic()
        if not copy.passes(program, tests, 600):
            parser.exit(1, f"{program} fails without a fault\n")
        seconds, parts = time.monotonic() - start, [program, *re.findall("(?m)^bin/.*", inputs)]
        stages.append((slow, program, tests, seconds, parts))
    with ThreadPool(options.jobs) as pool:
        for name, index, line, fault, outcome in pool.imap_unordered(lambda f: trial(f, copies, stages), faults):
            score[name][outcome] += 1
            tried += outcome in ("caught", "survived")
            if outcome == "survived":
                print(f"{name}:{index + 1} (of {tried})\n  - {line.strip()}\n  + {fault.strip()}", flush=True)
            if tried == options.count:
                break
    print(f"{'':36}  caught survived  per cent  not compiled  same program")
    for name, n in [*sorted(score.items()), ("all", sum(score.values(), collections.Counter()))]:
        rate = 100 * n["survived"] / max(n["caught"] + n["survived"], 1)
        print(f"{name:36} {n['caught']:7} {n['survived']:8} {rate:9.1f} {n['no program']:13} {n['same program']:13}")

main()
