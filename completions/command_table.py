"""A program's commands and options, as its --describe-options prints them, and what their values are."""


def commands(program, path=""):
    """Every command with its path, such as "limn style show"; the program itself first."""
    path = f"{path} {program['name']}".strip()
    yield path, program
    for command in program["commands"]:
        yield from commands(command, path)


def kinds_of(value, is_argument=False):
    """What a value of this name in the help can be completed with: a set of "styles", "files", "folders" and
    "settings", empty for numbers and the like."""
    kinds = set()
    for word in value.split(":")[0].split("|"):
        if word == "NAME" or (word == "STYLE" and is_argument):
            kinds.add("styles")
        if word in ("FILE", "IMAGE", "LIST", "STYLE"):
            kinds.add("files")
        if word == "FOLDER/":
            kinds.add("folders")
        if word == "KEY=VALUE":
            kinds.add("settings")
    if "files" in kinds:
        kinds.discard("folders")  # names of files are completed through folders
    return kinds


def argument_kinds(command):
    """The same for what a command takes beside its options."""
    return set().union(*(kinds_of(argument["name"], is_argument=True) for argument in command["arguments"]), set())


def summary(text):
    """What comes before the details, in one line."""
    return " ".join(text.split(";")[0].split())
