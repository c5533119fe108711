"""The completion of fish."""

from command_table import argument_kinds, commands, kinds_of, summary

HELPERS = r"""# fish completion for @NAME@, made from what @NAME@ says of its options

# Whether the command is, or with `within` begins with, these words.
function __@NAME@_at
    set -l words (commandline -opc)[2..]
    test "$argv" = "$words"
end

function __@NAME@_within
    set -l words (commandline -opc)[2..]
    test (count $words) -ge (count $argv); and test "$argv" = "$words[1..$(count $argv)]"
end

function __@NAME@_styles
    @LISTER@ styles 2>/dev/null
end

function __@NAME@_settings
    set -l number (string match -r '^light\.(\d+)\.' -- (commandline -ct))[2]
    test -n "$number"; or set number 0
    printf '%s=\n' (string replace light.N. light.$number. -- @SETTINGS@)
end

complete -c @NAME@ -f
"""


def quoted(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def values(name, kinds):
    """The words of `complete` for a value."""
    words = ["-r"]
    if "styles" in kinds:
        words += ["-a", quoted(f"(__{name}_styles)")]
    if "settings" in kinds:
        words += ["-a", quoted(f"(__{name}_settings)")]
    if "folders" in kinds:
        words += ["-a", quoted("(__fish_complete_directories)")]
    return [*words, "-F" if "files" in kinds else "-f"]


def option_line(name, condition, option):
    words = ["complete", "-c", name, *condition]
    for option_name in option["names"]:
        words += ["-l", option_name[2:]] if option_name.startswith("--") else ["-s", option_name[1:]]
    if option["value"]:
        words += values(name, kinds_of(option["value"]))
    return " ".join([*words, "-d", quoted(summary(option["text"]))])


def script(program, lister):
    name = program["name"]
    lines = []
    for path, command in commands(program):
        words = path.split()[1:]
        if not program["commands"]:
            condition = []
        else:
            test = "at" if command["commands"] else "within"
            condition = ["-n", quoted(" ".join([f"__{name}_{test}", *words]))]
        lines += [option_line(name, condition, option) for option in command["options"]]
        for inner in command["commands"]:
            lines.append(" ".join(["complete", "-c", name, *condition, "-a", inner["name"], "-d",
                                   quoted(summary(inner["text"]))]))
        if command["arguments"]:
            kinds = [word for word in values(name, argument_kinds(command)) if word != "-r"]
            lines.append(" ".join(["complete", "-c", name, *condition, *kinds]))
    helpers = HELPERS.replace("@NAME@", name).replace("@LISTER@", lister)
    return helpers.replace("@SETTINGS@", " ".join(program["settings"]) or "''") + "\n".join(lines) + "\n"
