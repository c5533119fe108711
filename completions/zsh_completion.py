"""The completion of zsh."""

from command_table import argument_kinds, commands, kinds_of, summary

HELPERS = r"""
_@NAME@__styles() {
  local -a styles
  styles=(${(f)"$(_call_program styles @LISTER@ styles 2> /dev/null)"})
  compadd -M 'm:{[:lower:]}={[:upper:]}' -J styles -X 'styles' -a styles
}

_@NAME@__styles_files() {
  _alternative 'styles:style:_@NAME@__styles' 'files:file:_files'
}

_@NAME@__settings() {
  local -a settings
  local number=${${(M)PREFIX:#light.<->.*}[7,-1]%%.*}
  settings=(@SETTINGS@)
  compadd -S = -- ${settings//light.N./light.${number:-0}.}
}
"""


def escaped(text):
    """For a single-quoted description in brackets."""
    for letter in "\\[]:":
        text = text.replace(letter, "\\" + letter)
    return text.replace("'", "'\\''")


def action(name, kinds):
    if kinds == {"styles", "files"}:
        return f"_{name}__styles_files"
    return {"styles": f"_{name}__styles", "files": "_files", "folders": "_files -/",
            "settings": f"_{name}__settings"}.get("".join(kinds), " ")


def option_spec(name, option):
    text = escaped(summary(option["text"]))
    value = option["value"].split(":")[0]
    after = f":{escaped(value)}:{action(name, kinds_of(option['value']))}" if value else ""
    for word in option["names"]:
        sign = ("=" if word.startswith("--") else "+") if value else ""
        others = "*" if option["repeated"] else f"({' '.join(option['names'])})"
        yield f"'{others}{word}{sign}[{text}]{after}'"


def function(name, path, command):
    specs = [spec for option in command["options"] for spec in option_spec(name, option)]
    if command["commands"]:
        specs += ["'1: :->command'", "'*:: :->rest'"]
    for argument in command["arguments"]:
        where = "*" if argument["repeated"] else "1"
        kinds = action(name, argument_kinds(command))
        specs.append(f"'{where}:{escaped(argument['name'])}:{kinds}'")
    lines = [f"_{path.replace(' ', '_')}() {{"]
    if command["commands"]:
        lines += ["  local context state state_descr line", "  typeset -A opt_args"]
    lines.append("  _arguments -s -S" + (" -C" if command["commands"] else "") + " \\")
    lines += [f"    {spec} \\" for spec in specs[:-1]] + [f"    {specs[-1]}"]
    if command["commands"]:
        described = [f"'{inner['name']}:{escaped(summary(inner['text']))}'" for inner in command["commands"]]
        lines += ["  case $state in", "  command)",
                  f"    local -a commands=({' '.join(described)})",
                  "    _describe command commands ;;", "  rest)",
                  f"    (( $+functions[_{path.replace(' ', '_')}_$line[1]] )) && _{path.replace(' ', '_')}_$line[1] ;;",
                  "  esac"]
    return "\n".join([*lines, "}"])


def script(program, lister):
    name = program["name"]
    settings = " ".join(f"'{key}'" for key in program["settings"])
    helpers = HELPERS.replace("@LISTER@", lister)
    if not settings:
        helpers = helpers[: helpers.index(f"\n_@NAME@__settings")]
    parts = [f"#compdef {name}\n# Made from what {name} says of its options.",
             helpers.replace("@NAME@", name).replace("@SETTINGS@", settings)]
    parts += [function(name, path, command) + "\n" for path, command in commands(program)]
    parts.append(f'_{name} "$@"')
    return "\n".join(parts) + "\n"
