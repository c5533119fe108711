"""Writes a manual page: a text written by hand, with the program's options where it says @OPTIONS@ and its
commands where it says @COMMANDS@.
usage: generate.py DESCRIPTION.json PAGE.in PAGE DATE   (the JSON of PROGRAM --describe-options)"""

import json
import re
import sys
import textwrap


def escaped(text):
    """Text for a line of its own."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return "\\&" + text if text[:1] in (".", "'") else text


def option_lines(option):
    value = option["value"].split(":")[0]
    names = [f"\\fB{escaped(name)}\\fR" for name in option["names"]]
    if value:
        names[-1] += f" \\fI{escaped(value)}\\fR"
    needed = " Required." if option["required"] else ""
    text = " ".join(option["text"].split())
    return [".TP", ", ".join(names), escaped(text) + ("." if not text.endswith(".") else "") + needed]


def paragraphs(footer):
    """The footer of a command's help but for what stands elsewhere in a manual."""
    for paragraph in footer.split("\n\n"):
        if not paragraph.startswith("Exit codes:") and "--help tells more" not in paragraph:
            yield paragraph.split("\n")


def footer_lines(footer):
    for paragraph in paragraphs(footer):
        yield ".PP"
        within = False
        for line in paragraph:
            indented = line.startswith("  ")
            if indented and not within:
                yield from (".RS", ".nf")
            if within and not indented:
                yield from (".fi", ".RE")
            within = indented
            yield escaped(line.strip())
        if within:
            yield from (".fi", ".RE")


def argument_words(command):
    for argument in command["arguments"]:
        name = f"\\fI{escaped(argument['name'])}\\fR" + (" ..." if argument["repeated"] else "")
        yield name if argument["required"] else f"[{name}]"


def commands(program, path):
    for command in program["commands"]:
        yield f"{path} {command['name']}", command
        yield from commands(command, f"{path} {command['name']}")


def command_lines(path, command):
    if command["commands"]:
        return
    yield f'.SS "{escaped(path)}"'
    yield " ".join([f"\\fB{escaped(path)}\\fR", "[\\fIOPTIONS\\fR]", *argument_words(command)])
    yield ".PP"
    yield escaped(" ".join(command["text"].split()) + ".")
    for argument in command["arguments"]:
        yield from (".TP", f"\\fI{escaped(argument['name'])}\\fR", escaped(argument["text"] + "."))
    for option in command["options"]:
        if "--help" not in option["names"]:
            yield from option_lines(option)
    yield from footer_lines(command["footer"])


def wrapped(page):
    """The page with its running text in short lines."""
    filled = True
    for line in page.splitlines():
        if line in (".nf", ".TS"):
            filled = False
        if line in (".fi", ".TE"):
            filled = True
        if filled and not line.startswith((".", "'")):
            for part in textwrap.wrap(line, 72, break_long_words=False, break_on_hyphens=False):
                yield "\\&" + part if part[0] in ".'" else part
        else:
            yield line


def main(description, template, page, date):
    with open(description, encoding="utf-8") as file:
        program = json.load(file)
    options = [line for option in program["options"] for line in option_lines(option)]
    told = [line for path, command in commands(program, program["name"]) for line in command_lines(path, command)]
    parts = {"VERSION": program["version"], "DATE": date, "OPTIONS": "\n".join(options), "COMMANDS": "\n".join(told)}
    with open(template, encoding="utf-8") as file:
        text = re.sub(r"@(\w+)@", lambda match: parts[match.group(1)], file.read())
    with open(page, "w", encoding="utf-8") as file:
        file.write("\n".join(wrapped(text)) + "\n")


if __name__ == "__main__":
    main(*sys.argv[1:])
