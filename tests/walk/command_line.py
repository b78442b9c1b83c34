"""How addrtool reads its command line, by getopt_long(3) and the options of the manual page."""

import dataclasses

LONG_OPTIONS = dict(zip("list add del qv-assigned-ip help main".split(), "ladvhm"))
TAKES_ARGUMENT = "adv"
SHORT_OPTIONS = "ladvh"


@dataclasses.dataclass
class CommandLine:
    options: list = dataclasses.field(default_factory=list)  # of (letter, argument)
    operands: list = dataclasses.field(default_factory=list)
    complaints: str = ""

    def complain(self, text):
        self.complaints += f"addrtool: {text}\n"


def parse(arguments, operands_end_options):
    """operands_end_options: the environment has POSIXLY_CORRECT."""
    line, rest = CommandLine(), list(arguments)
    while rest:
        argument = rest.pop(0)
        if argument == "--":
            break
        if argument.startswith("--"):
            parse_long(line, argument[2:], rest)
        elif argument.startswith("-") and argument != "-":
            parse_short(line, argument[1:], rest)
        else:
            line.operands.append(argument)
            if operands_end_options:
                break
    line.operands += rest
    return line


def parse_long(line, text, rest):
    name, equals, value = text.partition("=")
    matches = [long for long in LONG_OPTIONS if long.startswith(name)]
    if name in LONG_OPTIONS:
        matches = [name]
    if len(matches) != 1:
        line.complain(f"unrecognized option '--{text}'")
        return
    letter = LONG_OPTIONS[matches[0]]
    if letter not in TAKES_ARGUMENT:
        if equals:
            line.complain(f"option '--{matches[0]}' doesn't allow an argument")
        else:
            line.options.append((letter, None))
    elif equals or rest:
        line.options.append((letter, value if equals else rest.pop(0)))
    else:
        line.complain(f"option '--{matches[0]}' requires an argument")


def parse_short(line, letters, rest):
    while letters:
        letter, letters = letters[0], letters[1:]
        if letter not in SHORT_OPTIONS:
            line.complain(f"invalid option -- '{letter}'")
        elif letter not in TAKES_ARGUMENT:
            line.options.append((letter, None))
        elif letters or rest:
            line.options.append((letter, letters or rest.pop(0)))
            return
        else:
            line.complain(f"option requires an argument -- '{letter}'")
