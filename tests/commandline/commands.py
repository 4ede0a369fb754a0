#!/usr/bin/python3
"""What commands answer: arguments, statuses, reports, files."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

host, broken = os.environ["KESTREL_HOST"], os.environ["KESTREL_BROKEN_DIR"]
scratch = pathlib.Path(tempfile.mkdtemp())
failures = []


def check(what, holds):
    if not holds:
        failures.append(str(what))


def run(*arguments, given="", **options):
    done = subprocess.run([host, *map(str, arguments)], input=given.encode(), capture_output="stdout" not in options,
                          timeout=100, **options)
    return done.returncode, (done.stdout or b"").decode(), (done.stderr or b"").decode()


def file(name, text):
    path = scratch / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)
    return path


# Arguments, what is given to standard input, status, output, a part of what standard error says.
table = [
    (["eval", "-1", "--", "--1"], "", 0, "-1\n1\n", ""),
    (["eval", "[1,2]"], "", 1, "", "error 1211"),
    (["eval", "-$x"], "", 0, "0\n", ""),
    (["eval", "--for=0", "--", "2"], "", 0, "2\n", ""),
    (["eval", "-f", file("one.txt", "1 +\n2"), "4", "-f", "-"], "5", 0, "3\n4\n5\n", ""),
    (["eval", "-f", file("bad.txt", "1 +\n+"), "2"], "", 1, "2\n", "bad.txt, line 2: error 1204"),
    (["eval", "-f", scratch / "none"], "", 2, "", "none cannot be read"),
    (["eval", "-f"], "", 2, "", "-f needs a value"),
    (["eval"], "", 2, "", "needs a calculation"),
    (["eval", "--jsno", "1"], "", 2, "", "--jsno"),
    (["eval", "--plugin", "", "1"], "", 2, "", "no plug-in is named"),
    (["nonsense"], "", 2, "", "no command nonsense"),
    (["help", "nonsense"], "", 2, "", "no command and no function"),
    (["help", "GetThumbnail"], "", 0, None, ""),
    (["expect", file("none.md", "# Nothing\n```kestrel-like\n1\n```\n")], "", 1, None, ""),
    (["expect", scratch / "none"], "", 2, "", "none cannot be read"),
    (["check", file("text.so", "no library")], "", 2, None, ""),
    (["check", "--level", "9"], "", 2, "", "--level"),
    (["repl"], "1 +\n2\n", 0, "2\n", "error 1204"),
    (["repl"], "Let ( x = 1 ;\n\nx )\n3", 0, "1\n3\n", ""),
    (["repl"], ":nonsense\n:run Nobody\n:type maybe\n", 0, "", "there is no script Nobody"),
]
for arguments, given, status, output, error in table:
    answer = run(*arguments, given=given)
    check((arguments, answer), answer[0] == status and output in (None, answer[1]) and error in answer[2])

# Output that cannot be written.
for arguments in [["eval", "1"], ["eval", "--json", "1"], ["repl"], ["functions"], ["html", "-"], ["check", "--level", "1"],
                  ["expect", "README.md"], ["help"], ["help", "eval"], ["help", "Left"], ["eval", "--help"],
                  ["--version"], ["completion"]]:
    with open("/dev/full", "w") as full:
        answer = subprocess.run([host, *arguments], input=b"1\n", stdout=full, stderr=subprocess.PIPE)
    check(arguments, answer.returncode == 2 and b"cannot be written" in answer.stderr)
check("closed output", run("eval", "1", preexec_fn=lambda: os.close(1))[0] == 2)

# Scripts that fail, and what they have done.
solution = file("failing/solution.toml", """
[[script]]
name = "Wrong"
calculations = ['Let ( $$done = 1 ; "" )', '''Let ( a = 1 ;
  Uper ( a ) )''', 'Let ( $$done = 2 ; "end" )']
""").parent
start = 'Kestrel_DoFileMakerScript ( "Wrong" ; "p" )'
status, output, error = run("eval", "--solution", solution, start, "--then", "$$done")
check((status, output, error), status == 1 and output == "0\n2\n" and error.endswith(
    'script "Wrong" of "Untitled", calculation 2: error 1208: function `Uper` is not known; did you mean `Upper`?\n'
    "      Uper ( a ) )\n      ^^^^\n"))
objects = [json.loads(line) for line in run("eval", "--json", "--trace", "--solution", solution, start)[1].splitlines()]
check(objects, [entry.get("event") for entry in objects] == [None, None, "start", "error", "end"])
check(objects, objects[3] == {"script": "Wrong", "file": "Untitled", "event": "error", "calculation": 2, "error": 1208,
                              "message": "function `Uper` is not known; did you mean `Upper`?", "line": 2,
                              "column": 3, "near": "Uper"})
check(objects, objects[4]["result"] == "end")

# Examples that differ, with file and line, for people and for CI.
examples = [file("a.md", "```kestrel\n1\n→ 1\n2 &\n¶\n→ 2\n→\n```\n\n```kestrel\nUpper ( \"x¶\t\" )\n→ Y\n3\n```\n"),
            file("b.tsv", "# comment\n\nset\tLet ( $$a = 1 ; \"a¶b\" & Char ( 9 ) )\ta\\rb\\t\nset\t$$a & 1 / 0\t?\n"
                          "set\t1 +\tERROR 1204\nset\tonly two\nset\t\"a\\b\"\ta\\b\n")]
status, output, error = run("expect", "--junit", scratch / "report.xml", *examples)
check((status, output, error), status == 1 and output == (
    f"{examples[0]}:12: Upper ( \"x¶\\t\" )\n  expected: Y\n  result:   X\\r\\t\n"
    f"{examples[0]}:14: 3\n  a calculation without a result\n"
    f"{examples[1]}:6: set\\tonly two\n  2 columns instead of three\n6 passed, 3 failed\n"))
report = xml.etree.ElementTree.parse(scratch / "report.xml").getroot()
check("JUnit", [suite.attrib["failures"] for suite in report] == ["2", "1"])
check("JUnit", "result:   X" in report[0][2][0].attrib["message"])

# Checks that have no ground are skipped.
status, output, error = run("check", "--level", "2", "--json", pathlib.Path(broken) / "RefusesVersion.so")
rows = [json.loads(line) for line in output.splitlines()]
check(output, status == 1 and rows[-1] == {"plugIn": "RefusesVersion.so", "passed": 4, "failed": 1, "skipped": 4})
check(error, error == "" and "made-up arguments" in run("check", "--help")[1])

# A large document with a centred paragraph takes time in proportion to its size.
def processor_time(paragraphs):
    text = "<center>Title</center>\n" + "<p>The quick brown <b>fox</b> jumps over the lazy dog.</p>\n" * paragraphs
    converter = subprocess.Popen([host, "html", file("large.html", text)], stdout=subprocess.DEVNULL)
    return os.wait4(converter.pid, 0)[2].ru_utime


growth = processor_time(24000) / processor_time(6000)
check(f"four times the document takes {growth:.1f} times as long", growth < 8)

# Completion, as bash does it.
script = file("completion.bash", run("completion", "bench")[1] + """
complete_at() { COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kestrel; echo "${COMPREPLY[@]}"; }
complete_at ./kestrel ev; complete_at ./kestrel be; complete_at ./kestrel html --pa; complete_at ./kestrel help Kestrel_GetT
complete_at ./kestrel eval --solution examples/h
""")
completed = subprocess.run(["bash", script], capture_output=True, text=True).stdout.split("\n")
check(completed, completed == ["eval", "bench", "--page", "Kestrel_GetTimestamp", "examples/hello", ""])

if failures:
    sys.exit("\n".join(failures))
