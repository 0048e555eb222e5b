#!/usr/bin/env python3
"""Makes small faults in the sources at random and lists those that no test finds: see mutate.sh."""

import argparse
import concurrent.futures
import dataclasses
import os
import pathlib
import random
import re
import resource
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "mutants"
DEFAULT = ["pathfinder/linking", "pathfinder/search", "pathfinder/planning", "pathfinder/learning"]
PROGRAMS = {"pathfinder": ["pathfinder_tests"], "catalogue": ["catalogue_tests", "store_fault_tests"],
            "tools": ["catalogue_tests"]}
MEMORY = 4 << 30  # bytes that a test program may take

FUNCTIONS = {"<": "less", "<=": "less_equal", ">": "greater", ">=": "greater_equal", "==": "equal_to",
             "!=": "not_equal_to", "+": "plus", "-": "minus"}
WRONG = {"<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
         "+": ["-"], "-": ["+"]}


@dataclasses.dataclass
class Mutant:
    path: str
    edits: list   # (start, end, text with # for the mutant's number): what is compiled
    shown: tuple  # (start, end, text): what it amounts to
    number: int = 0
    line: int = 0


def masked(text):
    """The text with comments, strings and preprocessor lines blanked out."""
    pattern = r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|^#[^\n]*'
    return re.sub(pattern, lambda found: re.sub(r"[^\n]", "~", found[0]), text, flags=re.S | re.M)


def end_of(code, start, stops):
    """Where, from start on, one of the characters stands outside brackets, or a bracket closes that opened before."""
    depth = 0
    for place in range(start, len(code)):
        if depth == 0 and any(code.startswith(stop, place) for stop in stops):
            return place
        depth += (code[place] in "([{") - (code[place] in ")]}")
        if depth < 0:
            return place
    return len(code)


def mutants_of(path, text):
    code = masked(text)
    is_on = "mutation::active == #"

    def wrapped(start, end, before, after, shown):
        return Mutant(path, [(start, start, before), (end, end, after)], (start, end, shown))

    for found in re.finditer(r"(?<= )(<|<=|>|>=|==|!=|\+|-)(?=\s)", code):
        operator = found[1]
        first, second = ("<", ">") if operator[0] in "<>" else ("==", "==") if operator[0] in "=!" else ("+", "+")
        for wrong in WRONG[operator]:
            functions = f"std::{FUNCTIONS[operator]}<>, std::{FUNCTIONS[wrong]}<>"
            yield Mutant(path, [(*found.span(), f"{first} mutation::Operator<#, {functions}>{{}} {second}")],
                         (*found.span(), wrong))
    for found in re.finditer(r"\b(if|while) \(", code):
        end = end_of(code, found.end(), [])
        if not re.search(r";|[^=!<>]=[^=]", code[found.end():end]):
            for value in ["true", "false"] if found[1] == "if" else ["false"]:
                yield wrapped(found.end(), end, f"{is_on} ? {value} : bool(", ")", value)
    for found in re.finditer(r"(?<=\s)(&&|\|\|)(?=\s)", code):
        end = end_of(code, found.end(), ["&&", "||", ";", "?", ",", " : "])
        neutral = "(mutation::active == # || (" if found[1] == "&&" else "(mutation::active != # && ("
        yield wrapped(found.end(), end, neutral, "))", " true" if found[1] == "&&" else " false")
    for found in re.finditer(r"(?<![\w.])\d+(?![\w.'])", code):
        for wrong in {int(found[0]) + 1, max(int(found[0]) - 1, 0)} - {int(found[0])}:
            yield Mutant(path, [(*found.span(), f"({is_on} ? {wrong} : {found[0]})")], (*found.span(), str(wrong)))
    for found in re.finditer(r"(?<=[\s({])-(?=[A-Za-z_])", code):
        yield Mutant(path, [(*found.span(), f"({is_on} ? 1 : -1) * ")], (*found.span(), ""))
    for found in re.finditer(r"\bstd::(min|max)(?:<([\w:]+)>)?\((?!\{)", code):
        kind = f"{str(found[1] == 'max').lower()}{', ' + found[2] if found[2] else ''}"
        wrong = f"std::{'min' if found[1] == 'max' else 'max'}("
        yield Mutant(path, [(*found.span(), f"mutation::extreme<#, {kind}>(")], (*found.span(), wrong))
    statement = r"(?:(?<=\n)[ ]+|(?<=\) ))(?!return\b|throw\b|if\b|for\b|while\b|switch\b|case\b|using\b|else\b|do\b)" \
                r"((?:\+\+|--)?[A-Za-z_][\w:.\[\]]*(?:->[\w.]+)*(?:\(| [-+|&*]?= |;|\[))"
    for found in re.finditer(statement, code):
        end = end_of(code, found.start(1), [";"]) + 1
        if code[end - 1] == ";" and code[:found.start(1)].rstrip(" \n~")[-1] in ";{})":
            yield wrapped(found.start(1), end, "{ if (mutation::active != #) ", " }", ";")


def write_if_other(path, content):
    if not path.exists() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def with_edits(text, edits):
    """Applies (start, end, text), the outermost first where several begin at one place."""
    result, done = [], 0
    for start, end, new in sorted(edits, key=lambda edit: (edit[0], edit[1])):
        if start < done:
            continue  # two mutants of one token: the caller keeps these apart
        result += [text[done:start], new]
        done = end
    return "".join(result + [text[done:]])


def write_sources(texts, mutants):
    for path, text in texts.items():
        edits = [(start, end, new.replace("#", str(mutant.number)))
                 for mutant in mutants if mutant.path == path for start, end, new in mutant.edits]
        write_if_other(WORK / "source" / path, with_edits(text, edits).encode())


def copy_tree(but):
    files = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, capture_output=True).stdout
    for name in filter(None, files.decode().split("\0")):
        if name not in but and (ROOT / name).is_file():
            write_if_other(WORK / "source" / name, (ROOT / name).read_bytes())
            shutil.copymode(ROOT / name, WORK / "source" / name)


def build(texts, mutants, programs):
    """Builds all mutants into one; those that do not compile are dropped. Returns the others."""
    header = ROOT / "scripts" / "mutation.hpp"
    write_sources(texts, mutants)
    subprocess.run(["cmake", "-G", "Ninja", "-S", WORK / "source", "-B", WORK / "build", "-DCMAKE_BUILD_TYPE=Release",
                    "-DCMAKE_CXX_FLAGS_RELEASE=-O1", "-DTARN_UNITY=ON", "-DTARN_BUILD_BENCHMARKS=OFF",
                    f"-DCMAKE_CXX_FLAGS=-w -Wno-narrowing -include {header}", "--log-level=WARNING"],
                   check=True, stdout=subprocess.DEVNULL)
    while True:
        command = ["cmake", "--build", WORK / "build", "--target", *programs, "--", "-k0"]
        done = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if done.returncode == 0:
            return mutants
        named = re.findall(r"\bsource/([\w/.]+):(\d+):\d+: +(?:error|required)", done.stdout)
        faulty = {(path, int(line)) for path, line in named}
        left = [mutant for mutant in mutants if not is_at(mutant, texts[mutant.path], faulty)]
        if len(left) == len(mutants):
            sys.exit(done.stdout)
        mutants = left
        write_sources(texts, mutants)


def is_at(mutant, text, places):
    """Whether a mutant touches one of the lines, (path, line)."""
    first, last = (text.count("\n", 0, place) + 1 for place in mutant.shown[:2])
    return any((mutant.path, line) in places for line in range(first, last + 1))


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


def run(program, mutant, cases, seconds, only):
    """Whether the program finds no fault in time. It is ended at the first one, lest it make its case smaller."""
    only += (":" if "-" in only else ":-") + "RandomRun.*"  # whose cases fail on purpose
    environment = dict(os.environ, TARN_MUTANT=str(mutant), GTEST_FAIL_FAST="1")
    if cases:
        environment["TARN_RANDOM_CASES"] = str(cases)
    command = ["timeout", "-s", "KILL", str(seconds), WORK / "build" / "tests" / program, "--gtest_filter=" + only]
    process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=environment,
                               errors="replace", text=True, preexec_fn=limit_memory, start_new_session=True)
    is_fault = False
    for line in process.stdout:
        if line.startswith(("[   FAILS  ]", "[  FAILED  ]")):
            is_fault = True
            os.killpg(process.pid, 9)
            break
    process.stdout.close()
    return process.wait() == 0 and not is_fault


def lines_of(text, mutant, new=None):
    """The lines that a mutant changes, as they are or with something else in its place."""
    start, end, _ = mutant.shown
    first, last = text.rfind("\n", 0, start) + 1, text.find("\n", end)
    return text[first:last] if new is None else text[first:start] + new + text[end:last]


def diff(mutant, text):
    was, now = lines_of(text, mutant), lines_of(text, mutant, mutant.shown[2])
    lines = [f"-{line}" for line in was.split("\n")] + [f"+{line}" for line in now.split("\n")]
    return f"{mutant.path}:{mutant.line}\n" + "\n".join(lines)


def chosen(texts, count, seed, pattern):
    """Mutants of which no two change the same token."""
    all_of_them = [mutant for path, text in texts.items() for mutant in mutants_of(path, text)
                   if re.search(pattern, lines_of(text, mutant))]
    random.Random(seed).shuffle(all_of_them)
    result, taken = [], set()
    for mutant in all_of_them:
        places = {(mutant.path, *edit[:2]) for edit in mutant.edits}
        if len(result) < count and not places & taken:
            taken |= places
            result.append(mutant)
    result.sort(key=lambda mutant: (mutant.path, mutant.shown[0]))
    for number, mutant in enumerate(result, 1):
        mutant.number = number
        mutant.line = texts[mutant.path].count("\n", 0, mutant.shown[0]) + 1
    print(f"Of {len(all_of_them)} mutants {len(result)}, chosen by --seed {seed}", flush=True)
    return result


def survivors_of(mutants, programs, cases, only, jobs, texts):
    started = time.monotonic()
    for program in programs:
        if not run(program, 0, cases, 3600, only):
            sys.exit(f"{program} fails without any mutant.")
    seconds = int(30 + 5 * jobs * (time.monotonic() - started))
    alive = []
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        lives = pool.map(lambda mutant: all(run(p, mutant.number, cases, seconds, only) for p in programs), mutants)
        for mutant, is_alive in zip(mutants, lives):
            if is_alive:
                alive.append(mutant)
                print(f"alive: {diff(mutant, texts[mutant.path])}", flush=True)
    return alive


def main():
    parser = argparse.ArgumentParser(prog="scripts/mutate.sh", description=__doc__)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(10**6))
    parser.add_argument("--count", type=int, default=50, help="how many mutants (50)")
    parser.add_argument("--matching", default="", help="a regular expression that the lines changed match")
    parser.add_argument("--tests", default="*", help="the tests that are to find them, as --gtest_filter takes them")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("sources", nargs="*", default=DEFAULT, help="files and folders; else the rooms of the search")
    arguments = parser.parse_args()
    listed = subprocess.run(["git", "ls-files", "--", *arguments.sources], cwd=ROOT, check=True, capture_output=True)
    paths = [path for path in listed.stdout.decode().split("\n") if path.endswith(".cpp")]
    if not paths:
        sys.exit("No sources: " + " ".join(arguments.sources))
    texts = {path: (ROOT / path).read_text() for path in paths}
    programs = sorted({program for path in paths for program in PROGRAMS[path.split("/")[0]]})
    copy_tree(texts)
    mutants = build(texts, chosen(texts, arguments.count, arguments.seed, arguments.matching), programs)
    print(f"{len(mutants)} compile; with few random cases:", flush=True)
    alive = survivors_of(mutants, programs, 50, arguments.tests, arguments.jobs, texts)
    if alive:
        print(f"{len(alive)} of {len(mutants)} live; with all cases:", flush=True)
        alive = survivors_of(alive, programs, None, arguments.tests, arguments.jobs, texts)
    print(f"{len(alive)} of {len(mutants)} mutants live.")
    return 1 if alive else 0


if __name__ == "__main__":
    sys.exit(main())
