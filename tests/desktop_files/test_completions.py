"""The completions in the real shells: words are typed into each with a Tab after them, and what the command
then gets is compared."""

import os
import pty
import re
import select
import signal
import subprocess
import time
import unittest

import support
from support import LIMN, LimnTest

COMPLETIONS = os.path.join(os.environ["BUILD"], "completions")

# What is typed, and the words that the program is given then.
TYPED = [
    ("limn app\t", ["apply"]),
    ("limn style pa\t", ["style", "pack"]),
    ("limn apply --skip\t", ["apply", "--skip-existing"]),
    ("limn apply --style Even\t", ["apply", "--style", "Evening Lamp"]),
    ("limn apply -s even\t", ["apply", "-s", "Evening Lamp"]),
    ("limn apply --style=Twin\t", ["apply", "--style=Twin Spotlights"]),
    ("limn apply --style gall\t", ["apply", "--style", "gallery"]),
    ("limn style show 'Evening La\t", ["style", "show", "Evening Lamp"]),
    ("limn apply --set expo\t7", ["apply", "--set", "exposure=7"]),
    ("limn apply --set light.3.int\t7", ["apply", "--set", "light.3.intensity=7"]),
    ("limn apply --mask pain\t my\t -q\t", ["apply", "--mask", "painted mask.png", "my photo.jpg", "-q"]),
    ("limn apply --jobs 3 my\t", ["apply", "--jobs", "3", "my photo.jpg"]),
    ("limn preview my\t --unl\t", ["preview", "my photo.jpg", "--unlit"]),
    ("corvaline --style Even\t my\t", ["--style", "Evening Lamp", "my photo.jpg"]),
    ("corvaline --li\t", ["--light"]),
]

# The command's words between marks, the styles from the real one.
SHOW = "printf '<%s>' SHOWN \"$@\"; echo"
BASH = f"""PS1='$ '; bind 'set enable-bracketed-paste off'; bind 'set bell-style none'
for program in limn corvaline; do source {COMPLETIONS}/$program; done
limn() {{ if [ "$1" = styles ]; then {LIMN} styles; else {SHOW}; fi; }}
corvaline() {{ {SHOW}; }}
"""
ZSH = f"""PS1='$ '; fpath=({COMPLETIONS} $fpath); autoload -U compinit; compinit -u -D; unsetopt beep
limn() {{ if [ "$1" = styles ]; then {LIMN} styles; else {SHOW}; fi; }}
corvaline() {{ {SHOW}; }}
"""
FISH = f"""function fish_greeting; end; function fish_prompt; echo '$ '; end
set -g fish_autosuggestion_enabled 0
for program in limn corvaline; source {COMPLETIONS}/$program.fish; end
function limn; if test "$argv[1]" = styles; {LIMN} styles; else; printf '<%s>' SHOWN $argv; echo; end; end
function corvaline; printf '<%s>' SHOWN $argv; echo; end
"""


class Terminal:
    """A shell in a terminal of its own."""

    def __init__(self, words, environment):
        self.process, self.file = pty.fork()
        if self.process == 0:
            os.execvpe(words[0], words, environment)
        self.text = ""

    def read_until(self, found, seconds=200):
        deadline = time.monotonic() + seconds
        while not (answer := found(self.text)):
            if time.monotonic() > deadline:
                raise TimeoutError(self.text)
            if select.select([self.file], [], [], 0.1)[0]:
                self.text += os.read(self.file, 65536).decode(errors="replace")
        return answer

    def run(self, typed):
        """The words that a line gives its command."""
        self.text = ""
        os.write(self.file, (typed + "\r").encode())
        return self.read_until(lambda text: re.search(r"<SHOWN>(.*?)\r?\n", text)).group(1)

    def close(self):
        os.kill(self.process, signal.SIGKILL)
        os.waitpid(self.process, 0)
        os.close(self.file)


class Completions(LimnTest):
    def setUp(self):
        super().setUp()
        support.write_png("my photo.jpg", support.smooth(4, 4))
        support.write_png("painted mask.png", support.filled(4, 4, 9))
        os.mkdir("gallery")
        self.environment = {**os.environ, "TERM": "xterm", "HOME": self.folder, "LC_ALL": "C.UTF-8"}

    def start(self, words):
        terminal = Terminal(words, self.environment)
        self.addCleanup(terminal.close)
        os.write(terminal.file, b". ./begin; echo RE''ADY\r")
        terminal.read_until(lambda text: "READY" in text)
        return terminal

    def check(self, words, script):
        support.put("begin", script)
        terminal = self.start(words)
        for typed, wanted in TYPED:
            with self.subTest(typed=typed):
                try:
                    shown = terminal.run(typed).replace("/>", ">")
                except TimeoutError:
                    terminal = self.start(words)
                    raise
                self.assertEqual(shown, "".join(f"<{word}>" for word in wanted))

    def test_bash(self):
        self.check(["bash", "--norc", "--noprofile", "-i"], BASH)

    def test_zsh(self):
        self.check(["zsh", "-f", "-i"], ZSH)

    def test_fish(self):
        self.check(["fish", "--no-config", "-i"], FISH)

    def test_fish_describes_options(self):
        answer = subprocess.run(["fish", "--no-config", "-c", f"source {COMPLETIONS}/limn.fish; complete -C 'limn apply --st'"],
                                check=True, capture_output=True, text=True, env=self.environment)
        self.assertEqual(answer.stdout.split("\t")[0], "--style")
        self.assertIn("style", answer.stdout.split("\t")[1])


unittest.main()
