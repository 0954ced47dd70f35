#!/usr/bin/env python3
# MIT License.
"""Plants one small fault at a time into copies of the sources and asks the tests whether they notice."""
import argparse, collections, contextlib, filecmp, json, os, queue, random, re, shutil, signal, subprocess
from multiprocessing.pool import ThreadPool
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
# Comments and literals; directives and lines that only name something; assertions, attributes; template arguments.
NO_CODE = [r'//[^\n]*|/\*.*?\*/|R"\(.*?\)"|"(?:\\.|[^"\\\n])*"|(?<!\w)\'(?:\\.|[^\'\\\n])+\'',
           r"(?m)^ *#(?:[^\n]*\\\n)*[^\n]*|^ *(?:using|typedef|namespace|extern|friend|template)\b[^\n]*",
           r"\bstatic_assert\s*\(.*?\);|\[\[.*?\]\]|\balignas\(\d+\)|__attribute__.*?\)\)", *[r"(?<=\w)<[^<>;{}=&|]*>"] * 3]
NUMBER = r"(?<![\w.'])(?:0x[\da-fA-F]+|\d+(?:\.\d*)?(?:e[-+]?\d+)?)(?![\d'])"
SIGN = r"(?:(?<=[(!,=?:{] )|(?<=[({])|(?<=return ))[-!](?=[\w(.])"
OPERATORS = r"(?<= )(?:[-+*/]|[<>=!]=|[<>]|&&|\|\||[&|]|<<|>>)(?==? )"
WORDS = r"(?<![a-z])(?:left|right|modulator|carrier|min|max|sin|cos|true|false)(?![a-z])"
PAIRS = [pair.split() for pair in ("+ -", "* /", "< <=", "> >=", "== !=", "&& ||", "& |", "<< >>", "left right",
                                   "modulator carrier", "min max", "sin cos", "true false")]
SWAP = dict(PAIRS + [pair[::-1] for pair in PAIRS])
STATEMENT = re.compile(r"\s*(?:if \(.*\) .*|(?:else )?(?:[\w.:>\[\]-]+\(.*\)|\*?[\w.:>()\[\]*-]+ [-+*/%|&^<>]*= .*|"
                       r"(?:\+\+|--)[\w.>\[\]-]+|break|continue|return));\s*$")

def wrong_number(text, rng):
    """Off by one if whole and short, else with one of its first three digits changed."""
    digits = [m.start() for m in re.finditer(r"\d", text.split("e")[0]) if text[:m.end()].strip("0.")][:3]
    if not digits or text.isdigit() and len(text) < 3:
        return str(int(text) + rng.choice([-1, 1])) if digits else text.replace("0", "1", 1)
    place = rng.choice(digits)
    return text[:place] + rng.choice([digit for digit in "123456789" if digit != text[place]]) + text[place + 1:]

def faults(line, code, starts_statement, rng):
    """The line with a fault of each kind that it has a place for; `code` has blanks for what is no code."""
    for pattern, new in [(NUMBER, lambda text: wrong_number(text, rng)), (SIGN, lambda text: ""),
                         (OPERATORS, SWAP.get), (WORDS, SWAP.get)]:
        if places := list(re.finditer(pattern, code)):
            place = rng.choice(places)
            yield line[:place.start()] + new(place[0]) + line[place.end():]
    if starts_statement and STATEMENT.match(code) and code.count("(") == code.count(")"):
        yield re.match(r"\s*", line)[0] + ";"

def plants(files, rng):
    """All faults as (file, line index, line with the fault), in random order."""
    found = []
    for name in files:
        text = code = (ROOT / name).read_text()
        for pattern in NO_CODE:
            code = re.sub(pattern, lambda m: re.sub(r"[^\n]", " ", m[0]), code, flags=re.S)
        before = ";"
        for index, (line, bare) in enumerate(zip(text.split("\n"), code.split("\n"))):
            found += [(name, index, fault) for fault in faults(line, bare, before[-1] in ";{}:)", rng)]
            before = bare.strip() or before
    return rng.sample(found, len(found))

class Copy:
    """A copy of the tree with its build, `good` to restore that from, and a home for the tests."""
    def __init__(self, base):
        self.tree, self.good, self.home, self.out = (base / p for p in ("tree", "good", "home", "tree/build/mutate"))
        shutil.rmtree(base, ignore_errors=True)
        shutil.copytree(ROOT, self.tree, ignore=shutil.ignore_patterns("build", "out", ".git"))
        launcher = {"CMAKE_CXX_COMPILER_LAUNCHER": "ccache"} if shutil.which("ccache") else {}
        self.env = os.environ | launcher | {"CCACHE_BASEDIR": str(self.tree), "CCACHE_NOHASHDIR": "1"}
        subprocess.run(["cmake", "--preset", "mutate"], cwd=self.tree, env=self.env, stdout=subprocess.DEVNULL, check=True)
        self.programs = re.findall(r"^bin/\S+_tests(?=:)", self.ninja("-t", "targets", "all").stdout, re.M)
        self.ninja(*self.programs).check_returncode()
        shutil.copytree(self.out, self.good)

    def ninja(self, *arguments):
        return subprocess.run(["ninja", "-C", self.out, *arguments], env=self.env, text=True, stdout=subprocess.PIPE)

    def passes(self, program, seconds, *arguments):
        """Runs tests in an empty home within limits of time, memory and file size; what hangs doesn't pass."""
        shutil.rmtree(self.home, ignore_errors=True)
        self.home.mkdir()
        limits = f'ulimit -c 0 -t {round(3 * seconds) + 5} -v 8000000 -f 1000000; exec "$@" </dev/null >/dev/null 2>&1'
        child = subprocess.Popen(["bash", "-c", limits, "", self.out / program, *arguments], start_new_session=True,
                                 env=os.environ | dict.fromkeys(("HOME", "TMPDIR", "XDG_DATA_HOME"), str(self.home)))
        with contextlib.suppress(subprocess.TimeoutExpired):
            child.wait(10 * seconds + 60)
        with contextlib.suppress(ProcessLookupError):
            os.killpg(child.pid, signal.SIGKILL)
        return child.wait() == 0

    def stages(self, folders):
        """Runs of tests that depend on the folders: (slow or not, program, filter, seconds, files that it loads)."""
        for program in self.programs:
            inputs = self.ninja("-t", "inputs", program).stdout.split("\n")
            if any(name.startswith(f"{self.tree}/{folder}/") for name in inputs for folder in folders):
                if not self.passes(program, 600, f"--gtest_output=json:{self.home}/times.json"):
                    raise SystemExit(f"{program} fails without a fault")
                suites = json.loads((self.home / "times.json").read_text())["testsuites"]
                times = {f"{suite['name']}.{t['name']}": float(t["time"][:-1]) for suite in suites for t in suite["testsuite"]}
                slow, parts = [name for name in times if times[name] > 1], [program, *(n for n in inputs if n.startswith("bin/"))]
                slow_seconds = sum(times[name] for name in slow)
                yield False, program, "-" + ":".join(slow), sum(times.values()) - slow_seconds, parts
                if slow:
                    yield True, program, ":".join(slow), slow_seconds, parts

    def trial(self, name, index, fault, stages):
        """Says what happens to a fault and leaves the copy as it was."""
        source, outcome = self.tree / name, "same program"
        times, text = source.stat(), source.read_text().split("\n")
        source.write_text("\n".join([*text[:index], fault, *text[index + 1:]]))
        own = f"_{name.split('/')[0]}_"
        for _, program, tests, seconds, parts in sorted(stages, key=lambda stage: (stage[0], own not in stage[1], stage[3])):
            if self.ninja(program).returncode:
                outcome = "no program"
            elif not all(filecmp.cmp(self.out / part, self.good / part, shallow=False) for part in parts):
                passed = self.passes(program, seconds, "--gtest_fail_fast", f"--gtest_filter={tests}")
                outcome = "survived" if passed else "caught"
            if outcome in ("no program", "caught"):
                break
        for good in filter(Path.is_file, self.good.rglob("*")):
            made = self.out / good.relative_to(self.good)
            if not made.exists() or made.stat().st_mtime_ns != good.stat().st_mtime_ns:
                shutil.copy2(good, made)
        source.write_text("\n".join(text))
        os.utime(source, ns=(times.st_atime_ns, times.st_mtime_ns))
        return outcome

def main():
    parser = argparse.ArgumentParser(prog="./dev mutate", description=__doc__)
    parser.add_argument("folders", nargs="*", default=["engine", "dsp"], metavar="FOLDER")
    parser.add_argument("--count", type=int, default=200, help="faults that count [200]")
    parser.add_argument("--seed", type=int, default=random.randrange(10**6))
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="copies at work at a time [all processors]")
    options = parser.parse_args()
    folders = [folder.rstrip("/") for folder in options.folders]
    files = sorted(str(path.relative_to(ROOT)) for folder in folders for path in (ROOT / folder).rglob("*.*")
                   if path.suffix in (".cpp", ".h") and not path.stem.endswith("_win32"))
    print(f"seed {options.seed}", flush=True)
    copies, score = queue.Queue(), collections.defaultdict(collections.Counter)
    for number in range(options.jobs):
        copies.put(copy := Copy(ROOT / "build/mutate" / str(number)))
    stages = list(copy.stages(folders))

    def attempt(fault):
        copy = copies.get()
        outcome = copy.trial(*fault, stages)
        copies.put(copy)
        return fault, outcome
    done = 0
    with ThreadPool(options.jobs) as pool:
        for (name, index, fault), outcome in pool.imap_unordered(attempt, plants(files, random.Random(options.seed))):
            score[name][outcome] += 1
            done += outcome in ("caught", "survived")
            if outcome == "survived":
                line = (ROOT / name).read_text().split("\n")[index]
                print(f"\n{name}:{index + 1}\n  - {line.strip()}\n  + {fault.strip()}", flush=True)
            if done == options.count:
                break
    print(f"\n{'file':36}  caught survived  per cent")
    for name, outcomes in [*sorted(score.items()), ("all", sum(score.values(), collections.Counter()))]:
        caught, survived = outcomes["caught"], outcomes["survived"]
        if caught + survived:
            print(f"{name:36} {caught:7} {survived:8} {100 * survived / (caught + survived):9.0f}")
    print(f"not counted: {outcomes['no program']} don't compile, {outcomes['same program']} make the same program")

if __name__ == "__main__":
    main()
