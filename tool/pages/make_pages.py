#!/usr/bin/env python3
"""Writes the manual (Markdown for pandoc -s -t man) and the completions for bash and zsh, as the program itself describes its
commands and the filters: make_pages.py FOLDER PROGRAM [ARGUMENT...]"""

import re
import sys
from pathlib import Path

from cli import Command, Option, Program, every


def escaped(text: str) -> str:
    return re.sub(r"([\\`*_{}\[\]<>#|~^$'\"-])", r"\\\1", text)


def definition(option: Option) -> str:
    names = ", ".join(f"**{escaped(name)}**" for name in option.names)
    return f"{names} {escaped(option.value)}".rstrip() + f"\n:   {escaped(option.text)}\n"


def page(program: Program, command: Command) -> str:
    name = f"zvfilter {command.name}".strip()
    title = name.replace(" ", "-")
    parts = [f"% {title.upper()}(1) zvfilter {program.version} | Filters for depth images\n",
             f"# NAME\n\n{title} - {escaped(command.summary[0].lower() + command.summary[1:])}\n",
             f"# SYNOPSIS\n\n{escaped(command.usage)}\n"]
    for heading, options in (("ARGUMENTS", command.positionals), ("OPTIONS", command.options)):
        if options:
            parts.append(f"# {heading}\n\n" + "\n".join(map(definition, options)))
    if command.notes:
        parts.append("# NOTES\n\n" + "\n".join(f"    {line}".rstrip() for line in command.notes.split("\n")) + "\n")
    if command.commands:
        parts.append("# COMMANDS\n\n" + "\n".join(f"**{escaped(sub.name)}**\n:   {escaped(sub.summary)}\n"
                                                   for sub in command.commands))
    if not command.name:
        parts.append("# FILTERS\n\n" + "\n".join(f"**{each['name']}**\n:   {escaped(each['summary'])}\n"
                                                  for each in program.filters))
        parts.append("# ENVIRONMENT\n\n**FILTERPROCESSOR\\_CPU**\n:   The processor level of the kernels, to lower it: scalar, avx2, "
                     "avx512 or neon\n")
        parts.append("# EXIT STATUS\n\n0: done. 1: something went wrong on the way. 2: what was asked makes no sense. 130: stopped after "
                     "whole frames.\n")
    others = [f"zvfilter {sub.name}".strip().replace(" ", "-") for sub in every(program.top)]
    parts.append("# SEE ALSO\n\n" + ", ".join(f"**{escaped(other)}**(1)" for other in others if other != title) + "\n")
    return "\n".join(parts)


def cases(rows: dict[str, list[str]]) -> str:
    return "\n".join(f"    '{key}') found='{' '.join(words)}' ;;" for key, words in rows.items())


def completion(program: Program, template: str) -> str:
    commands = every(program.top)
    words = {}
    for command in commands:
        options = [name for option in command.options for name in option.names]
        words[command.name] = [sub.name.split()[-1] for sub in command.commands] + options
    filters = [each["name"] for each in program.filters]
    words["help"] += filters
    words["schema"] += filters
    words["presets"] += program.presets
    values = {"--preset": program.presets, "-f": [f"{name}:" for name in filters], "--filter": [f"{name}:" for name in filters]}
    values |= {option.names[-1]: option.words for command in commands for option in command.options if option.words}
    keys = {each["name"]: [f"{parameter['name']}=" for parameter in each["parameters"]] for each in program.filters}
    nested = [command.name for command in commands if command.commands and command.name]
    for name, text in (("WORDS", cases(words)), ("VALUES", cases(values)), ("KEYS", cases(keys)), ("NESTED", "|".join(nested))):
        template = template.replace(f"@{name}@", text)
    return template


def main() -> None:
    folder, program = Path(sys.argv[1]), Program(sys.argv[2:])
    folder.mkdir(parents=True, exist_ok=True)
    for command in every(program.top):
        name = f"zvfilter {command.name}".strip().replace(" ", "-")
        (folder / f"{name}.1.md").write_text(page(program, command))
    for shell in ("bash", "zsh"):
        template = (Path(__file__).parent / f"completion.{shell}").read_text()
        (folder / f"zvfilter.{shell}").write_text(completion(program, template))


main()
