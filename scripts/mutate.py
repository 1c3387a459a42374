#!/usr/bin/env python3
"""Makes small changes to sources one at a time, and runs what covers them. scripts/mutate calls this, see there."""
import argparse
import collections
import fnmatch
import glob
import json
import os
import random
import re
import shlex
import signal
import subprocess
import sys
import tempfile
import threading
import time

# The programs over what only Windows builds, quick ones first. Natively it is those that link the source.
PLAN = [line.split() for line in """
    src/exports/*                   test_module manage_sets_tests config_dialog_tests
    src/module/*                    test_module test_module_parts count_tests manage_sets_tests
    src/store/*                     test_module count_tests process_tests
    src/win32/*                     win32_tests manage_sets_tests config_dialog_tests
    src/manage/*                    manage_dialog_tests manage_sets_tests
    src/configure/ListTableCtrl.cpp list_control_tests config_dialog_tests
    src/configure/*                 config_dialog_tests
    refhost/app/*                   test_zonhost manage_sets_tests
    refhost/config/*                test_zonhost
    refhost/controls/list/*         list_control_tests config_dialog_tests
    refhost/controls/*              support_lib_tests
    refhost/documents/*             test_documents test_zonhost
    refhost/files/*                 settings_tests test_imaging test_zonhost
    refhost/folium/*                folium_tests config_dialog_tests
    refhost/imaging/*               test_imaging test_zonhost
    refhost/language/*              support_lib_tests language_tests
    refhost/settings/*              settings_tests test_zonhost
    refhost/support/*               support_lib_tests test_zonhost
    refhost/units/*                 units_class_tests""".strip().split("\n")]

# ---- The changes

TOKEN = re.compile(r"""//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*|
    ((?:u8|[LuU])?"(?:\\.|[^"\\])*"|[LuU]?'(?:\\.|[^'\\])+'|\d[\w']*(?:\.\d+)?|[A-Za-z_]\w*|->|::|<<=|>>=|<=>|[-+*/%&|^=!<>]=|
    &&|\|\||\+\+|--|<<|[^\s\w])""", re.X | re.S | re.M)
PAIRS = """min max,left right,top bottom,width height,begin end,front back,true false,x y,floor ceil,lower_bound upper_bound,< <=,
    > >=,== !=,&& ||,+ -,* /,& |,+= -=,|= &=,<< >>"""
SWAPPED = {a: b for pair in PAIRS.split(",") for a, b in (pair.split(), pair.split()[::-1])} | {"%": "*"}
NO_CALL = set("if while for switch catch".split())
NO_STATEMENT = NO_CALL | set("return throw const auto using static case default do else try constexpr public".split())


def changes(source):
    """(kind, begin, end, replacement) for each change that a source offers."""
    spans = [(m[1], m.start(), m.end()) for m in TOKEN.finditer(source) if m[1]]
    words = [word for word, _, _ in spans] + ["", ""]
    partner, opened, scopes, in_code, in_block = {}, [], [False], [], []
    for i, word in enumerate(words):
        if word in ("(", "[", "{"):
            opened.append(i)
        elif word in (")", "]", "}") and opened:
            partner[opened[-1]], partner[i] = i, opened[-1]
            opened.pop()
        if word == "{":
            head = next((j for j in range(i - 1, -1, -1) if words[j] in (";", "{", "}")), -1)
            body = words[i - 1] in (")", "const", "noexcept", "override", "else", "do", "try", ";", "{", "}")
            scopes.append(body and not {"namespace", "struct", "class", "enum"} & set(words[head + 1:i]))
        elif word == "}" and len(scopes) > 1:
            scopes.pop()
        in_code.append(scopes[-1])
        in_block.append(scopes[-1] and bool(opened) and words[opened[-1]] == "{")

    def until(stops, i):
        """Where one of them is, what stands in brackets left out."""
        while i < len(words) - 1 and words[i] not in stops:
            i = partner.get(i, i) + 1 if words[i] in ("(", "[", "{") else i + 1
        return i

    def replace(kind, first, last, make):
        begin, end = spans[first][1], spans[last][2]
        return kind, begin, end, make.replace("$", source[begin:end])

    for i, (word, begin, end) in enumerate(spans):
        apart = source[begin - 1].isspace() and source[end:end + 1].isspace()
        if word in SWAPPED and (apart or word.isalpha()):
            yield replace("swap" if word.isalpha() else "operator", i, i, SWAPPED[word])
        if number := re.fullmatch(r"(0x)?((?<=x)[\da-fA-F']+?|[\d']+)([uUlLzZ]*|\.\d+f?)", word):
            value = int(number[2].replace("'", ""), 16 if number[1] else 10)
            for other in {value + 1, abs(value - 1)}:
                yield replace("constant", i, i, (hex(other) if number[1] else str(other)) + number[3])
        if word == "?" and apart:
            yield replace("never", i, i, "&& false ?")
            yield replace("always", i, i, "|| true ?")
        close = partner.get(i + 1, i) if words[i + 1] == "(" else i
        if word in ("if", "while") and close > i and not {"=", ";"} & set(words[i:close]):
            yield replace("never", i + 2, close - 1, "false && ($)")
            if word == "if":
                yield replace("always", i + 2, close - 1, "true || ($)")
                yield replace("negate", i + 2, close - 1, "!($)")
        stop = until(";}", i) if in_code[i] else i
        if word == "return" and stop > i + 1 and words[i + 1] != "{":
            if stop > i + 2:
                yield replace("return", i + 1, stop - 1, "{}")
            if {"==", "!=", "&&", "||", "<", ">", "<=", ">="} & set(words[i:stop]):
                yield replace("return", i + 1, stop - 1, "!($)")
        behind_condition = words[i - 1] == ")" and words[partner.get(i - 1, 1) - 1] in NO_CALL
        starts = in_block[i] and (words[i - 1] in (";", "{", "}", "else") or behind_condition) and word not in NO_STATEMENT
        if starts and words[stop] == ";" and (word[0].isalpha() or word in ("*", "++", "--")):
            head = words[i:next(j for j in range(i, stop + 1) if words[j] in ("(", "=", "{", "[", ";", "+=", "-=", "|="))]
            if not any(b[0].isalpha() and (a[0].isalnum() or a in ">&*") for a, b in zip(head, head[1:]) if head[0] != "*"):
                yield replace("drop", i, stop, ";")
        if in_code[i] and close > i + 2 and word[0].isalpha() and word not in NO_CALL:
            first = i + 2
            while (comma := until((",", ")"), first)) < close and (after := until((",", ")"), comma + 1)) <= close:
                one, other = (source[spans[a][1]:spans[b - 1][2]] for a, b in ((first, comma), (comma + 1, after)))
                if one != other and one[0].isalpha() == other[0].isalpha() and "\n" not in one + other:
                    yield replace("arguments", first, after - 1, f"{other}, {one}")
                first = comma + 1


class Mutant:
    def __init__(self, path, source, kind, begin, end, to):
        self.path, self.kind, self.line = path, kind, source.count("\n", 0, begin) + 1
        self.source = source[:begin] + to + source[end:]
        line, line_end = source.rfind("\n", 0, begin) + 1, source.find("\n", end)
        change = kind if kind in ("never", "always", "negate", "drop") else f"-> {to}"
        self.label = " ".join(f"{source[line:begin]}[[{source[begin:end]} {change}]]{source[end:line_end]}".split())


def order(path, chance):
    """The changes of one source, the last first: kinds in turn, or constants would be most of them."""
    source, turns = open(path).read(), collections.Counter()
    found = list(changes(source))
    chance.shuffle(found)
    placed = []
    for change in found:
        turns[change[0]] += 1
        placed.append((turns[change[0]] + chance.random(), change))
    return [Mutant(path, source, *change) for _, change in sorted(placed, reverse=True)]


# ---- Building and running

SANITIZE = ["-fsanitize=address,undefined", "-fno-sanitize-recover=all"]  # natively, for what survives without


class Build:
    """What the build tree says about compiling and linking."""

    def __init__(self, kind):
        self.windows, self.folder = kind == "windows", os.path.abspath(f"build/mutate-{kind}")
        self.suffix = ".exe" if self.windows else ""
        entries = json.load(open(f"{self.folder}/compile_commands.json"))
        self.compile = {os.path.relpath(entry["file"]): entry["command"] for entry in entries}
        self.tests = [line.split()[0] for line in open(f"{self.folder}/tests.txt") if line.strip()]
        self.links, self.archives = {}, {}
        for part in subprocess.check_output(["ninja", "-C", self.folder, "-t", "commands"], text=True).replace(" && ", "\n").split("\n"):
            if made := re.search(r"\bar qc (\S+) +(.*)", part):
                self.archives[made[1]] = made[2].split()
            elif made := re.search(r" -o bin/(\S+\.(?:exe|dll)|\w+) ", part):
                self.links[made[1]] = part

    def object(self, path):
        return re.search(r" -o (\S+)", self.compile[path])[1]

    def holders(self, path):
        """The programs and DLLs that have the source in them."""
        names = {self.object(path)} | {a for a, objects in self.archives.items() if self.object(path) in objects}
        return {name for name, command in self.links.items() if names & set(command.split())}

    def programs(self, path):
        if self.windows:
            return next((names for pattern, *names in PLAN if fnmatch.fnmatch(path, pattern)), [])
        return [name for name in self.tests if name in self.holders(path)]


class Worker:
    """One processor, with a copy of the programs and, for Windows, a prefix and a screen that scripts/mutate made."""
    alive = set()

    def __init__(self, build, number, processor):
        self.build, self.processor, self.folder = build, processor, f"{build.folder}/worker-{number}"
        self.bin, self.object = f"{self.folder}/bin", f"{self.folder}/mutant.o"
        os.makedirs(f"{self.folder}/tmp", exist_ok=True)
        subprocess.run(["rm", "-rf", self.bin], check=True)
        subprocess.run(["cp", "-al", f"{build.folder}/bin", self.bin], check=True)
        self.env = dict(os.environ, CCACHE_DISABLE="1", TMPDIR=f"{self.folder}/tmp", ASAN_OPTIONS="hard_rss_limit_mb=4000")
        if build.windows:
            self.env.update(WINEPREFIX=f"{self.folder}/wine", DISPLAY=":" + open(f"{self.folder}/display").read().strip())

    def run(self, command, limit, folder="."):
        os.sched_setaffinity(0, {self.processor})
        with tempfile.TemporaryFile() as out:  # what the system starts for a Windows program outlives it and would hold a pipe
            process = subprocess.Popen(command, shell=isinstance(command, str), stdin=subprocess.DEVNULL, stdout=out,
                                       stderr=out, start_new_session=True, env=self.env, cwd=folder)
            Worker.alive.add(process.pid)
            try:
                status = process.wait(limit)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                status = process.wait() and "timeout"
            Worker.alive.discard(process.pid)
            out.seek(0)
            return status, out.read().decode(errors="replace")

    def test(self, program, limit):
        """None, or the test that failed, or how it ended."""
        # Processor time as well: on a busy machine the clock alone would take a slow program for one that hangs.
        command = ["prlimit", f"--cpu={limit:.0f}"] + ["/usr/lib/wine/wine64"] * self.build.windows
        command += [f"{self.bin}/{program}{self.build.suffix}", "--gtest_fail_fast", "--gtest_brief=1"]
        status, out = self.run(command, limit if self.build.windows else 4 * limit)
        if status == 0 and re.search(r"RESULT passed=[1-9]\d* failed=0\b", out):
            return None
        if self.build.windows and "RESULT" not in out:  # what it leaves behind goes with its server
            for option in "-k", "-p":
                self.run(["/usr/lib/wine/wineserver64", option], 60)
        first = re.search(r"(?<=\[  FAILED  \] )[\w./]+|ERROR: \w+Sanitizer: [\w-]+|runtime error: .*", out)
        return first[0] if first else f"exit {status}"

    def compile(self, path, source, extra=()):
        open(f"{self.folder}/mutant.cpp", "w").write(source)
        arguments = shlex.split(self.build.compile[path])
        arguments[arguments.index("-o") + 1] = self.object
        arguments[arguments.index("-c") + 1] = f"{self.folder}/mutant.cpp"
        arguments += ["-O1", "-w", "-D_GLIBCXX_ASSERTIONS", "-iquote", os.path.abspath(os.path.dirname(path)), *extra]
        return self.run(arguments, 300, self.build.folder)[0] == 0 and open(self.object, "rb").read()

    def link(self, path, name, extra=()):
        """Links a program or DLL with the changed object: in the old one's place, or ahead of the archive with it."""
        command = re.sub(r" -Wl,--out-implib,\S+", "", self.build.links[name]).replace(f" {self.build.object(path)} ", " ") + " "
        if self.build.windows and " -wrapper " not in command:
            extra = ["-fno-use-linker-plugin -wrapper", f"{os.getcwd()}/cmake/link-with-lld"]
        command = command.replace(f" -o bin/{name} ", f" {' '.join(extra)} -o {self.folder}/{name} {self.object} ")
        done = self.run(command, 300, self.build.folder)[0] == 0
        if done:
            self.place(name, lambda _: f"{self.folder}/{name}")
        return done

    def place(self, name, source):
        for place in glob.glob(f"{self.bin}/**/{name}", recursive=True):
            os.unlink(place)
            os.link(source(place), place)

    def run_all(self, path, times, extra=()):
        """None, or the first program and test that fails with the compiled change."""
        holders, programs, linked = self.build.holders(path), self.build.programs(path), []
        shared = [name for name in holders if name.removesuffix(".exe") not in self.build.tests]
        if not self.build.windows:
            programs.sort(key=times.get)
        try:
            for program in [None] + programs:
                for name in holders & {program + self.build.suffix} if program else shared:
                    linked.append(name)
                    if not self.link(path, name, extra):
                        return "no build"
                if program and (why := self.test(program, times[program] * (8 if extra else 4) + 5)):
                    return f"{program}: {why}"
        finally:
            for name in linked:
                self.place(name, lambda place: place.replace(self.bin, f"{self.build.folder}/bin"))

    def judge(self, mutant, times):
        """How it ended, and by which test."""
        if not (changed := self.compile(mutant.path, mutant.source)):
            return "no build", ""
        why = self.run_all(mutant.path, times)
        if not why and changed == self.compile(mutant.path, open(mutant.path).read()):
            return "equivalent", "the same code"
        if not why and not self.build.windows and self.compile(mutant.path, mutant.source, SANITIZE):
            why = self.run_all(mutant.path, times, SANITIZE)
        return ("no build" if why == "no build" else "killed" if why else "survived"), why or ""


def known_equivalents():
    known, path = {}, None
    for text in open("scripts/mutate-equivalent.txt"):
        if text.startswith(" "):
            label, reason = text.strip().split("  -  ", 1)
            known[path, label] = reason
        elif text.strip() and text[0] != "#":
            path = text.strip()
    return known


def report(results):
    for title, branches in ("Small changes", False), ("Whole branches", True):
        print(f"\n{title}")
        folders = collections.defaultdict(list)
        scored = [r for r in results if r["result"] in ("killed", "survived") and (r["kind"] in ("never", "always")) == branches]
        for r in scored:
            for folder in os.path.dirname(r["file"]), "~ all":
                folders[folder].append(r["result"] == "killed")
        for folder, killed in sorted(folders.items()):
            print(f"  {folder:28} {sum(killed):4} of {len(killed):4} killed {100 * sum(killed) // len(killed):4} %")
        for r in sorted((r for r in scored if r["result"] == "survived"), key=lambda r: (r["file"], r["line"])):
            print(f"  {r['file']}:{r['line']}: {r['label']}")
    print("\n" + ", ".join(f"{count} {result}" for result, count in collections.Counter(r["result"] for r in results).items()))


def main():
    parser = argparse.ArgumentParser(prog="scripts/mutate")
    parser.add_argument("kind", choices=["native", "windows"])
    parser.add_argument("--count", type=int, default=100)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--seconds", type=float, default=3600)
    parser.add_argument("--again")
    parser.add_argument("files", nargs="*")
    options = parser.parse_intermixed_args()
    build, known, chance = Build(options.kind), known_equivalents(), random.Random(options.seed)
    if lost := {name for _, *names in PLAN for name in names} - set(build.tests) if build.windows else None:
        sys.exit(f"The plan names programs that are no more: {' '.join(lost)}")
    native = Build("native").compile if build.windows else {}
    queues = {path: order(path, chance) for path in sorted(build.compile)
              if path.startswith(("src/", "refhost/")) and path not in native and build.programs(path)
              and (not options.files or any(path.endswith(name) for name in options.files))}
    if options.again:
        old = {(r["file"], r["label"]) for r in map(json.loads, open(options.again)) if r["result"] == "survived"}
        queues = {path: [m for m in queue if (path, m.label) in old] for path, queue in queues.items()}
    sizes = {path: len(open(path).readlines()) for path in queues}
    programs = sorted({name for path in queues if queues[path] for name in build.programs(path)})
    results, problems, times, lock = [], [], {}, threading.Lock()
    begin, log = time.time(), open(f"{build.folder}/results-{options.seed}.jsonl", "w")
    workers = [Worker(build, number, processor) for number, processor in enumerate(sorted(os.sched_getaffinity(0)))]

    def measure(worker):
        """The programs unchanged."""
        while programs and not problems:
            program, start = programs.pop(), time.time()
            if why := worker.test(program, 600):
                problems.append(f"{program} fails without a change: {why}")
            times[program] = time.time() - start

    def mutate(worker):
        while not problems:
            with lock:
                scored = sum(r["result"] in ("killed", "survived") for r in results)
                left = [path for path in queues if queues[path]]
                if scored >= options.count or time.time() - begin > options.seconds or not left:
                    return
                mutant = queues[chance.choices(left, [sizes[path] for path in left])[0]].pop()
            start = time.time()
            reason = known.get((mutant.path, mutant.label))
            result, why = ("equivalent", reason) if reason else worker.judge(mutant, times)
            with lock:
                results.append(dict(file=mutant.path, line=mutant.line, kind=mutant.kind, label=mutant.label, result=result,
                                    why=why, seconds=round(time.time() - start, 1)))
                print(json.dumps(results[-1]), file=log, flush=True)
                print(f"{result:10} {mutant.path}:{mutant.line}: {mutant.label}  {why}  {results[-1]['seconds']} s", flush=True)

    def guarded(step, worker):
        try:
            step(worker)
        except Exception as error:
            problems.append(repr(error))
            raise

    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    try:
        for step in measure, mutate:
            threads = [threading.Thread(target=guarded, args=[step, worker], daemon=True) for worker in workers]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
    finally:
        for pid in list(Worker.alive):
            os.killpg(pid, signal.SIGKILL)
        report(results)
        print(f"{time.time() - begin:.0f} s; {log.name}")
    sys.exit("\n".join(problems))


main()
