"""Writes the completions of a program for bash, zsh and fish.
usage: generate.py DESCRIPTION.json FOLDER   (the JSON of PROGRAM --describe-options)"""

import json
import os
import sys

import bash_completion
import fish_completion
import zsh_completion

LISTER = "limn"  # the program whose command `styles` lists the styles


def main(description, folder):
    with open(description, encoding="utf-8") as file:
        program = json.load(file)
    name = program["name"]
    for shell, file_name in (bash_completion, name), (zsh_completion, "_" + name), (fish_completion, name + ".fish"):
        with open(os.path.join(folder, file_name), "w", encoding="utf-8") as file:
            file.write(shell.script(program, LISTER))


if __name__ == "__main__":
    main(*sys.argv[1:])
