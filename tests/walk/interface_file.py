"""How addrtool edits the IPv6 addresses of an interface's file, as docs/changes.md tells it."""

import errno
import ipaddress
import re

LARGEST_PREFIX = 65535
PIECE_CHARACTERS = 8095  # a longer line is read as several
PRIMARY, LIST = "IPV6ADDR", "IPV6ADDR_SECONDARIES"
BLANKS, QUOTES = " \t\n\v\f\r", "\"'"


class CannotEdit(Exception):
    """The message says why; the file stays as it is."""


def split_lines(text):
    return re.findall(rf"[^\n]{{0,{PIECE_CHARACTERS - 1}}}\n|[^\n]{{1,{PIECE_CHARACTERS}}}", text)


def entries_of(line, errors):
    """An entry is (address, prefix length). The last number of a quoted list ends in the quote.

    errors gets the number of a system error that reading leaves behind.
    """
    entries = []
    for text in re.split(f"[{BLANKS}]+", line.partition("=")[2].lstrip(QUOTES)):
        if not text:
            continue
        address, slash, number = text.partition("/")
        if not slash or "/" in number:
            raise CannotEdit(f"{text}: cannot parse IPv6 address")
        prefix = parse_number(number)
        if prefix is not None and prefix > LARGEST_PREFIX:
            errors.append(errno.ERANGE)
        entries.append((address, parse_prefix(number) or 0))
    return entries


def primary_of(line):
    return line.partition("=")[2].strip(BLANKS + QUOTES).partition("/")[0]


def parse_prefix(text):
    """None if it is not a number from 0 to 65535."""
    number = parse_number(text)
    return number if number is not None and number <= LARGEST_PREFIX else None


def parse_number(text):
    digits = re.fullmatch(f"[{BLANKS}]*[+]?([0-9]+)[{BLANKS}]*", text)
    return int(digits[1]) if digits else None


def is_same_address(text, ip):
    try:
        return ipaddress.IPv6Address(text) == ipaddress.IPv6Address(ip)
    except ValueError:
        return False


def joined(entries):
    return " ".join(f"{address}/{prefix}" for address, prefix in entries)


def add_to_list(text, errors, address, prefix):
    """The file's text with the address in front of the list."""
    new_list, lines = "", []
    for line in split_lines(text):
        # An add takes any name that starts with the list's. A second list goes on behind the first
        # one, and its line repeats both.
        if line.startswith(LIST) and "=" in line:
            entries = entries_of(line, errors)
            if entries:
                new_list = new_list or f'{LIST}="{address}/{prefix}'
                new_list += f' {joined(entries)}"\n'
                line = new_list
        lines.append(line)
    if not new_list:
        lines.append(f'{LIST}="{address}/{prefix}"\n')
    return "".join(lines)


def delete_from_lists(text, errors, ip):
    """The file's text without the address; a deleted primary is replaced by the first entry."""
    lines = [(line, line.partition("=")[0] if "=" in line else None) for line in split_lines(text)]
    primaries = [primary_of(line) for line, name in lines if name == PRIMARY]
    entries = [entry for line, name in lines if name == LIST for entry in entries_of(line, errors)]
    new_lines = {}
    if primaries and is_same_address(primaries[-1], ip):
        if not entries:
            raise CannotEdit(f"Cannot remove last IPv6 address {ip}")
        new_lines[PRIMARY] = f"{PRIMARY}={joined([entries.pop(0)])}\n"
    entries = [entry for entry in entries if not is_same_address(entry[0], ip)]
    new_lines[LIST] = f'{LIST}="{joined(entries)}"\n' if entries else ""
    return "".join(new_lines.get(name, line) for line, name in lines)
