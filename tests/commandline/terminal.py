"""A program on a pseudo-terminal, and the screen that a user sees of it."""

import fcntl
import os
import pty
import select
import signal
import struct
import termios
import time

import pyte

ENTER, TAB, CTRL_C, CTRL_D, UP = "\r", "\t", "\x03", "\x04", "\x1b[A"
PASTE_BEGIN, PASTE_END = "\x1b[200~", "\x1b[201~"


class Terminal:
    """Starts a program; `columns` and `rows` are the size of its window."""

    def __init__(self, arguments, environment, columns=100, rows=40):
        self.screen = pyte.Screen(columns, rows)
        self.stream = pyte.ByteStream(self.screen)
        self.process, self.descriptor = pty.fork()
        if self.process == 0:
            os.execve(arguments[0], arguments, environment)
        fcntl.ioctl(self.descriptor, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def type(self, keys):
        os.write(self.descriptor, keys.encode())

    def paste(self, text):
        """As a terminal sends a paste: marked, with returns for line ends."""
        self.type(PASTE_BEGIN + text.replace("\n", "\r") + PASTE_END)

    def lines(self):
        """The screen's lines down to the last one that is not empty."""
        shown = [line.rstrip() for line in self.screen.display]
        while shown and not shown[-1]:
            shown.pop()
        return shown

    def read(self, seconds):
        """Shows what comes until nothing has come for so long; False at the program's end."""
        while select.select([self.descriptor], [], [], seconds)[0]:
            try:
                output = os.read(self.descriptor, 65536)
            except OSError:
                return False
            if not output:
                return False
            self.stream.feed(output)
        return True

    def wait_for(self, holds, seconds=20):
        """Reads until the condition holds for the lines; fails with the screen when it never does."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if holds(self.lines()):
                return
            if not self.read(0.05):
                break
        if not holds(self.lines()):
            raise AssertionError("the screen stays at\n" + "\n".join(self.lines()))

    def wait_for_end(self, *endings):
        """Waits until the last lines are these."""
        self.wait_for(lambda lines: lines[-len(endings):] == list(endings))

    def status(self, seconds=20):
        """The exit status; a program that does not end is killed."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.read(0.05)
            ended, status = os.waitpid(self.process, os.WNOHANG)
            if ended:
                return os.waitstatus_to_exitcode(status)
        os.kill(self.process, signal.SIGKILL)
        os.waitpid(self.process, 0)
        raise AssertionError("the program does not end; its screen is\n" + "\n".join(self.lines()))
