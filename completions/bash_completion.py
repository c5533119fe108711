"""The completion of bash."""

from command_table import argument_kinds, commands, kinds_of

SCRIPT = r"""# bash completion for @NAME@, made from what @NAME@ says of its options

_@NAME@() {
  local -A commands=(
@COMMANDS@  )
  local -A options=(
@OPTIONS@  )
  # What an option's value is, and what a command takes.
  local -A takes=(
@TAKES@  )
  local settings='@SETTINGS@'

  local command=@NAME@ value='' word i
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ $word == = ]]; then # KEY=VALUE and --option=VALUE come as three words
      value=${value:-nothing}
    elif [[ $value ]]; then
      value=
    elif [[ $word == -* ]]; then
      value=${takes["$command $word"]-}
    elif [[ " ${commands["$command"]-} " == *" $word "* ]]; then
      command+=" $word"
    fi
  done
  local current=${COMP_WORDS[COMP_CWORD]}
  if [[ $current == = ]]; then
    current=
    value=${value:-nothing}
  fi
  # As typed, without its quoting.
  local plain=${current#[\"\']}
  [[ $current == [\"\']* ]] || plain=${current//\\/}

  COMPREPLY=()
  if [[ ! $value && $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${options["$command"]}" -- "$current")
    return
  elif [[ ! $value && ${commands["$command"]-} ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${commands["$command"]}" -- "$current")
    return
  fi
  value=${value:-${takes["$command"]-}}
  if [[ $value == *settings* ]]; then
    [[ $current =~ ^light\.([0-9]+)\. ]] && settings=${settings//light.N./light.${BASH_REMATCH[1]}.}
    mapfile -t COMPREPLY < <(compgen -W "${settings//light.N./light.0.}" -S = -- "$current")
    compopt -o nospace
  fi
  if [[ $value == *styles* ]]; then
    while IFS= read -r word; do
      [[ ${word,,} == "${plain,,}"* ]] && COMPREPLY+=("$word")
    done < <("@LISTER@" styles 2> /dev/null)
  fi
  if [[ $value == *files* ]]; then
    mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "$plain")
  elif [[ $value == *folders* ]]; then
    mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -d -- "$plain")
  fi
  # Quotes what has spaces, and goes into folders.
  [[ $value == *settings* ]] || compopt -o filenames
} && complete -F _@NAME@ @NAME@
"""


def table(entries):
    return "".join(f"    [\"{key}\"]='{value}'\n" for key, value in entries if value)


def script(program, lister):
    options, takes = [], []
    for path, command in commands(program):
        names = [name for option in command["options"] for name in option["names"]]
        options.append((path, " ".join(names)))
        takes.append((path, " ".join(sorted(argument_kinds(command)))))
        for option in command["options"]:
            kinds = " ".join(sorted(kinds_of(option["value"]))) or ("nothing" if option["value"] else "")
            takes.extend((f"{path} {name}", kinds) for name in option["names"])
    below = [(path, " ".join(inner["name"] for inner in command["commands"])) for path, command in commands(program)]
    parts = {"NAME": program["name"], "COMMANDS": table(below), "OPTIONS": table(options), "TAKES": table(takes),
             "SETTINGS": " ".join(program["settings"]), "LISTER": lister}
    text = SCRIPT
    for name, part in parts.items():
        text = text.replace(f"@{name}@", part)
    return text
