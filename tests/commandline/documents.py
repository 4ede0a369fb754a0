#!/usr/bin/python3
"""Every example in the documents is run: commands in ```console blocks here, calculations by `expect`."""

import os
import pathlib
import re
import subprocess
import sys

root = pathlib.Path.cwd()
host = os.environ["KESTREL_HOST"]
documents = [root / "README.md", *sorted((root / "docs").rglob("*.md"))]
failures = []


def run(command):
    """What a command prints at the root, errors included. Calls the host directly, because ./kestrel would build."""
    command = re.sub(r"\./kestrel ", "\"$KESTREL\" ", command)
    printed = subprocess.run(["bash", "-c", command], cwd=root, env={**os.environ, "KESTREL": host},
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout.decode()
    # Foundation reports a clock that was moved, when it happens to notice.
    return re.sub(r"WARNING: system time changed.*\n\n?", "", printed)


def commands(document):
    """Pairs of a command and the lines that it is to print."""
    for block in re.findall(r"^```console\n(.*?)^```$", document.read_text(), re.M | re.S):
        for part in re.split(r"^\$ ", block, flags=re.M)[1:]:
            command, _, output = part.partition("\n")
            yield command, output


def check_pattern(page, prototypes):
    """A function's page has these headings in this order, the prototype as it is registered."""
    text, at = page.read_text(), 0
    for part in [f"# {page.stem}\n", f"\n    {prototypes[page.stem]}\n", "## Parameters\n", "## Result\n", "## Errors\n",
                 "## Examples\n"]:
        at = text.find(part, at)
        if at < 0:
            failures.append(f"{page}: {part.strip()} is missing or not in its place")
            return


count = 0
for document in documents:
    for command, output in commands(document):
        count += 1
        printed = run(command)
        if printed != output:
            failures.append(f"{document}: $ {command}\n{printed}instead of\n{output}")

rows = [line.split(None, 4) for line in run("./kestrel functions").splitlines()]
prototypes = {row[1]: row[4] for row in rows}
pages = [page for page in documents if page.parent.name == "functions"]
for page in pages:
    if page.stem != "README":
        check_pattern(page, prototypes)

examples = [str(page) for page in documents if page in pages or "```kestrel\n" in page.read_text()]
expect = subprocess.run([host, "expect", *examples], text=True, stdout=subprocess.PIPE)
if expect.returncode != 0:
    failures.append(expect.stdout)

written = run("./kestrel help --functions-page")
if written != (root / "docs/host-functions.md").read_text():
    failures.append("docs/host-functions.md is not what ./kestrel help --functions-page writes")

print(f"{count} commands; {expect.stdout.splitlines()[-1]}")
if failures or count < 20 or len(prototypes) != len(pages) - 1:
    sys.exit("\n".join(failures) or "there are too few commands or pages")
