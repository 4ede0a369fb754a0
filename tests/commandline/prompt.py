#!/usr/bin/python3
"""The prompt on a pseudo-terminal, as a user types and sees it, in the poorest locale."""

import os
import pathlib
import re
import sys
import tempfile

from terminal import CTRL_C, CTRL_D, ENTER, TAB, UP, Terminal

PROMPT, FURTHER = "kestrel> ", "     ... "
state = tempfile.TemporaryDirectory()
environment = {"PATH": os.environ["PATH"], "KESTREL_PLUGIN": os.environ["KESTREL_PLUGIN"], "LC_ALL": "C",
               "TERM": "xterm-256color", "HOME": state.name, "XDG_STATE_HOME": state.name,
               "LLVM_PROFILE_FILE": os.environ.get("LLVM_PROFILE_FILE", os.devnull)}


def start(*arguments, **size):
    terminal = Terminal([os.environ["KESTREL_HOST"], "repl", *arguments], environment, **size)
    terminal.wait_for_end(PROMPT.rstrip())
    return terminal


def enter(terminal, calculation, *shown):
    """Types a calculation; it and its result are the last lines before the next prompt."""
    terminal.type(calculation + ENTER)
    terminal.wait_for_end(PROMPT + calculation, *shown, PROMPT.rstrip())


def leave(terminal):
    terminal.type(CTRL_D)
    assert terminal.status() == 0


def typed_examples():
    terminal = start(columns=200)
    block = re.search(r"```kestrel\n(.*?)```", pathlib.Path("README.md").read_text(), re.S).group(1)
    examples = re.findall(r"(.+)\n→ (.*)\n", block)
    assert len(examples) > 5
    for calculation, result in examples:
        enter(terminal, calculation, result)
    enter(terminal, 'Upper ( "größer" )', "GRÖSSER")
    enter(terminal, 'Length ( "日本語 😀" )', "6")
    enter(terminal, "1 +", 'kestrel: error 1204: number, text constant, field name or "(" expected', "    1 +",
          "       ^")
    enter(terminal, ":type on")
    enter(terminal, "1 + 1", "[Number] 2")
    leave(terminal)


def several_lines():
    terminal = start()
    terminal.type("Let ( [" + ENTER)
    terminal.wait_for_end(PROMPT + "Let ( [", FURTHER.rstrip())
    terminal.type('a = "(" /* ' + ENTER + '" */ ] ; a & "b' + ENTER + 'c" )' + ENTER)
    terminal.wait_for(lambda lines: lines[-1:] == [PROMPT.rstrip()] and lines[-3:-1] == ["(b", "c"])
    # Ten lines without an open bracket at the first one's end: only the paste's mark holds them together.
    pasted = "1\n+ 2\n" + "\n".join(f"+ {number}" for number in range(3, 10)) + "\n+ Sum ( 10 )"
    terminal.paste(pasted.replace("Sum ( 10 )", "10") + "\n")
    terminal.wait_for_end("+ 10")
    terminal.type(ENTER)
    terminal.wait_for_end("+ 10", "55", PROMPT.rstrip())
    # The history gives it back as one entry, also in the next session.
    terminal.type(UP + ENTER)
    terminal.wait_for_end("+ 10", "55", PROMPT.rstrip())
    leave(terminal)
    terminal = start()
    terminal.type(UP + " + 1" + ENTER)
    terminal.wait_for_end("+ 10 + 1", "56", PROMPT.rstrip())
    leave(terminal)


def editing():
    """Characters of one and of two columns, in a line that wraps, are edited where the cursor stands."""
    terminal = start(columns=30)
    terminal.type('Length ( "äöü日本語äöü日本語äöü" )' + "\x1b[D" * 5 + "\x7f" + "ß語")
    terminal.wait_for_end('kestrel> Length ( "äöü日本語äö', 'ü日本語ß語öü" )')
    terminal.type(ENTER)
    terminal.wait_for_end("16", PROMPT.rstrip())
    leave(terminal)


def completion():
    terminal = start("--solution", "examples/contacts")
    for typed, completed in [
        ("Kestrel_Ve" + TAB + '"short" )', 'Kestrel_Version ( "short" )'),
        ("Get ( CurrentTimes" + TAB, "Get ( CurrentTimestamp )"),
        ("Let ( $längste = 1 ; $lä" + TAB + " )", "Let ( $längste = 1 ; $lä )"),
        ('Kestrel_DoFileMakerScript ( "Tidy' + TAB + '" )', 'Kestrel_DoFileMakerScript ( "Tidy up" )'),
        ("Kestrel_DoB" + TAB + '"', 'Kestrel_DoB"'),
        ('ExecuteSQL ( "select writ' + TAB, 'ExecuteSQL ( "select Written'),
        (":fun" + TAB + "CSS", ":functions CSS"),
    ]:
        terminal.type(typed)
        terminal.wait_for_end(PROMPT + completed)
        terminal.type(CTRL_C)
        terminal.wait_for_end(PROMPT + completed + "^C", PROMPT.rstrip())
    enter(terminal, "Let ( $längste = 1 ; 2 )", "2")
    terminal.type("$lä" + TAB)
    terminal.wait_for_end(PROMPT + "$längste")
    terminal.type(CTRL_C)
    terminal.wait_for_end(PROMPT + "$längste^C", PROMPT.rstrip())
    terminal.type("Kestrel_RegExp_" + TAB)
    terminal.wait_for_end("Kestrel_RegExp_PatternCount  Kestrel_RegExp_Substitute", PROMPT + "Kestrel_RegExp_")
    terminal.type(CTRL_C)
    terminal.wait_for_end(PROMPT + "Kestrel_RegExp_^C", PROMPT.rstrip())
    leave(terminal)


def working_while_waiting():
    """A delayed script runs while a line is typed, and its report does not destroy the line."""
    terminal = start("--solution", "examples/contacts", "--trace", columns=70)
    terminal.type('Kestrel_DoFileMakerScript ( "Remind" ; "Ada" ; 1 )' + ENTER)
    terminal.wait_for(lambda lines: PROMPT.rstrip() in lines[-1:] and "0" in lines)
    half = 'Upper ( "this line is quite a lot longer than the terminal is wide, rea'
    terminal.type(half)
    terminal.wait_for(lambda lines: 'kestrel: script "Remind" of "Contacts" ends, result ""' in lines)
    terminal.wait_for_end((PROMPT + half)[:70], (PROMPT + half)[70:])
    terminal.type('lly" )' + ENTER)
    terminal.wait_for_end("THIS LINE IS QUITE A LOT LONGER THAN THE TERMINAL IS WIDE, REALLY", PROMPT.rstrip())
    enter(terminal, "$$reminders", "Ada", "")
    enter(terminal, ":run Greet Ada B", 'kestrel: script "Greet" of "Contacts" starts, parameter "Ada B"',
          'kestrel: script "Greet" of "Contacts" ends, result "Hello, Ada B!"')
    leave(terminal)


def stopping():
    """Ctrl-C discards a line and the lines before it, and stops a calculation that runs; the prompt goes on."""
    terminal = start("--solution", "examples/contacts")
    terminal.type("Let (" + ENTER + "x")
    terminal.wait_for_end(PROMPT + "Let (", FURTHER + "x")
    terminal.type(CTRL_C)
    terminal.wait_for_end(PROMPT + "Let (", FURTHER + "x^C", PROMPT.rstrip())
    enter(terminal, "1 + 1", "2")
    endless = "SELECT COUNT ( * ) FROM " + ", ".join(f"contacts {alias}" for alias in "abcdefghijklmnop")
    terminal.type(f'Let ( a = ExecuteSQL ( "{endless}" ; "" ; "" ) ; 1 )' + ENTER)
    terminal.read(1)
    terminal.type(CTRL_C)
    terminal.wait_for(lambda lines: "kestrel: error 1200: the calculation was stopped" in lines, seconds=3)
    enter(terminal, "1 + 1", "2")
    leave(terminal)


for test in [typed_examples, several_lines, editing, completion, working_while_waiting, stopping]:
    try:
        test()
    except AssertionError as problem:
        sys.exit(f"{test.__name__}: {problem}")
