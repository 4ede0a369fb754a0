#!/usr/bin/python3
"""Other people's plug-ins: one that uses the whole interface beside the product, and faulty ones, which `check` names."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

host, product = os.environ["KESTREL_HOST"], os.environ["KESTREL_PLUGIN"]
broken = pathlib.Path(os.environ["KESTREL_BROKEN_DIR"])
foreign = pathlib.Path(os.environ["KESTREL_FOREIGN_DIR"])
everything = foreign / "UsesEverything.so"
both = ["--plugin", product, "--plugin", everything]
scratch = pathlib.Path(tempfile.mkdtemp())
failures = []


def check(what, *pairs):
    for got, wanted in pairs:
        if got != wanted:
            failures.append(f"{what}: {got!r} instead of {wanted!r}")


def run(*arguments, given="", **environment):
    done = subprocess.run([host, *map(str, arguments)], input=given, capture_output=True, text=True, timeout=200,
                          env={**os.environ, **environment})
    return done.returncode, done.stdout, done.stderr


def symbols(library, option):
    """The names that a library exports (--defined-only) or needs (--undefined-only)."""
    listing = subprocess.run(["nm", "-D", option, "--format=posix", library], capture_output=True, text=True).stdout
    return {line.split()[0] for line in listing.splitlines()}


# The library of the interface exports the interface and the main queue, and the plug-in needs the whole interface.
exported = symbols(pathlib.Path(host).parent / "libFMWrapper.so", "--defined-only")
queue = {"dispatch_after", "dispatch_get_main_queue", "dispatch_time"}
interface = {name for name in exported if name.startswith("FM_")}
check("exports", (exported - interface, queue), (len(interface), 251))
check("uses", ({name for name in symbols(everything, "--undefined-only") if name.startswith("FM_")}, interface))

# Each function checks the effects of a class; `check` passes, and no object is left.
groups = ["Types", "Text", "Styles", "Numbers", "Dates", "Containers", "Values", "Engine", "Threads", "Encodings"]
answer = run("eval", "--objects", *both, *(f"Uses_{group}" for group in groups), "Kestrel_ValueType ( 1 )")
check("effects", (answer[:2], (0, "ok\n" * len(groups) + "Number\n")), ("host objects left: none" in answer[2], True),
      ('refused to register 0 "Uses_Twin": its identifier is taken' in answer[2], True),
      ('refused to register 3 "Broken": the definition\'s root is not PluginStep' in answer[2], True))
# The same built with the other standard library: both kinds of exceptions work in one process.
other = foreign / "UsesEverything-libc++.so"
check("libc++", (run("eval", "--plugin", other, *(f"Uses_{group}" for group in groups))[1], "ok\n" * len(groups)))
check("known-calls", ("FM_ExprEnv_EvaluateGetFunction (since 60)" in
                      run("check", everything, "--level", 1, "--host-version", 57)[1], True))

# A plug-in gets the messages that it asks for, and what the host says about itself can be chosen.
tells = {"USES_EVERYTHING_TELLS": "1"}
answer = run("repl", "--plugin", everything, "--host-version", 62, "--application", "server",
             given="Uses_Messages\n:preferences\n", **tells)
strings = "string128 string129 string131 string132 "
check("messages", (answer[1].startswith(strings + "init3/62 "), True), ("idle0 " in answer[2], True),
      (answer[2].split("idle0 ")[-1].split(), ["file", "session", "shutdown"]), ("preferences " in answer[2], True))
check("help", (run("help", "Uses_Messages", "--plugin", everything)[1].splitlines()[1:],
               ["The messages that the plug-in has received.", "0 parameters", "https://example.org/help?id=22"]),
      (run("help", "Join Values", "--plugin", everything)[1].splitlines(),
       ["Join Values (script step)", "Joins.", "  First", "  Loud", "  Number", "  Sign: plus, minus",
        "  Result (receives the result)", "https://example.org/help?id=1"]),
      (run("repl", "--plugin", everything, given=":functions protocol\n")[1], "Uses_Messages\n"))

# Errors of functions and steps, and the parameters of steps.
answer = run("eval", *both, 'Uses_Fail ( 1553 ) & "!"', "Get ( LastError )", "Get ( LastExternalErrorDetail )",
             "EvaluationError ( Uses_Fail ( 5 ) )", "Uses_Fail ( 0 )")
check("errors", (answer[:2], (0, "?!\n1553\nit was asked to\n5\nit was asked to\n")),
      ("Uses_Fail answers error 1553: it was asked to" in answer[2], True))
for parameters, status, output in [
        (['"a"'], 0, "a|1|7|\n"), (['"a"', "0", '"12 kg"', '"minus"'], 0, "a|0|12|minus\n"),
        (['Sign: "plus"', 'first: "b"', '"off"'], 0, "b|0|7|plus\n"), (['"a"', "1", "2", '"minus"', "5"], 1, ""),
        (['Sign: "times"'], 1, ""), (['"fail"'], 1, ""), (["1 +"], 1, "")]:
    check(parameters, (run("eval", *both, "--step", "join values", *parameters)[:2], (status, output)))
check("after a step", (run("eval", *both, "--step", "Join Values", '"fail"', "--then", "Get ( LastError )",
                           "Get ( LastExternalErrorDetail )")[1], "1553\nfail|1|7|\n"))
check("no such step", (run("eval", *both, "--step", "Other")[0], 2))

# Steps of plug-ins in a script: labels, targets, words, errors, and a step that no plug-in has.
solution = scratch / "steps"
(solution / "scripts").mkdir(parents=True)
(solution / "solution.toml").write_text('name = "Steps"\n[[table]]\nname = "Notes"\nfields = [{ name = "Text" }]\n'
                                        'records = "Notes.tsv"\n')
(solution / "Notes.tsv").write_text("Text\nold\n")
(solution / "scripts" / "Join.txt").write_text("""Set Error Capture [ On ]
Set Variable [ $a ; Value: "a" ]
Join Values [ $a & "b" ; Result: $joined ; Sign: "plus" ; Loud: Off ; Number: Length ( "a;b]" ) ]
join values [ "x" ; Result: Notes::Text ]
Join Values [ "fail" ; Result: $kept ]
Set Variable [ $error ; Value: Get ( LastError ) & Get ( LastExternalErrorDetail ) & Length ( $kept ) ]
Join Values [ 1 + ]
Join Values [ Unknown: 1 ]
Join Values
Exit Script [ Text Result: List ( $joined ; Notes::Text ; $error ; Get ( LastError ) ) ]
""")
answer = run("eval", *both, "--solution", solution, "--trace", 'Kestrel_DoFileMakerScript ( "Join" )',
             "--then", "Get ( ScriptResult )")
check("steps in a script", (answer[:2], (0, "0\nab|0|4|plus\nx|1|7|\n1553fail|1|7|0\n0\n")),
      ([line.split(": ")[1] for line in answer[2].splitlines() if ": error" in line],
       [f'script "Join" of "Steps", line {line}, Join Values' for line in (5, 7, 8)]))
(solution / "scripts" / "Next.txt").write_text("\nJoin All Values [ 1 ]\n")
check("unknown step", (run("eval", *both, "--solution", solution, "1"),
                       (2, "", f'kestrel: {solution}/scripts/Next.txt, line 2: there is no step "Join All Values"\n')))

# What cannot be used is named with its reason.
needs = run("eval", "--plugin", foreign / "NeedsTheFuture.so", "1")
check("missing", (needs[0], 2), ("FM_Text_Foresee (in no version up to 71)" in needs[2], True),
      ("FM_Data_Foresee (in no version up to 71)" in needs[2], True))
dead = run("eval", "--plugin", broken / "NoOptions.so", "1")
check("dead", (dead[:2], (2, "")), ("there is no options string (string 131)" in dead[2], True))

# Each faulty plug-in has one finding, the same in every report, with what to do about it.
for library, fault, words in [
        ("NoEntryPoint", "loads", "no entry point"), ("RefusesVersion", "accepts-host", "answers init with -1"),
        ("RegistersDuplicate", "registers-cleanly", "its identifier is taken"),
        ("LeaksText", "gives-back", "keeps host objects"), ("ThrowsFromHandler", "survives-calls", "an exception left"),
        ("CrashesInHandler", "survives-calls", "ended the process"), ("OverrunsName", "name-string", "past the end"),
        ("NoOptions", "options-string", "never answered"), ("Sound", None, ""), ("RecordsMessages", None, "")]:
    report = scratch / f"{library}.xml"
    path = broken / f"{library}.so"
    text = run("check", path, "--junit", report)
    rows = [json.loads(line) for line in run("check", path, "--json")[1].splitlines()]
    failed = [row for row in rows if row.get("verdict") == "fail"]
    suite = xml.etree.ElementTree.parse(report).getroot()
    cases = [case for case in suite.iter("testcase") if case.find("failure") is not None]
    check(library, (text[0], 0 if fault is None else 2 if fault == "loads" else 1), (text[1].count("FAIL"), len(failed)),
          ([row["check"] for row in failed], [fault] if fault else []), ([case.get("name") for case in cases], [fault] if fault else []),
          (rows[-1]["failed"], len(failed)), (suite.get("failures"), str(len(failed))))
    for row, case in zip(failed, cases):
        message = case.find("failure").get("message")
        check(library, (words in row["words"] and words in message, True), (row["remedy"] in message, True),
              ("To do: " + row["remedy"] in text[1], True))
called = [json.loads(line)["check"] for line in run("check", broken / "CrashesInHandler.so", "--no-calls", "--json")[1].splitlines()[:-1]]
check("--no-calls", ("survives-calls" in called, False), ("loads-again" in called, True))
answer = run("check", everything, product, "--level", 4)
check("check", (answer[1].count("FAIL"), 1), ("Uses_Twin" in answer[1], True))

if failures:
    sys.exit("\n".join(failures))
