"""What a zvfilter program offers, asked of the program itself."""

import json
import re
import subprocess
from dataclasses import dataclass, field


@dataclass
class Option:
    names: list[str]
    value: str  # what follows it; empty: nothing
    text: str

    @property
    def words(self) -> list[str]:
        """The values that its text lists, as in "depth (default), disparity, linear or a number"."""
        if not self.value:
            return []
        parts = self.text.split(": ")
        for part in [": ".join(parts[i:]) for i in range(len(parts))]:
            listed = re.sub(r" \(.*?\)", "", re.split(r"[;.]", part)[0])
            words = [word for word in re.split(r", | or |,or ", listed) if word]
            first_other = next((i for i, word in enumerate(words) if not re.fullmatch("[a-z]+", word)), len(words))
            if first_other > 1:
                return words[:first_other]
        return []


@dataclass
class Command:
    name: str  # "chain convert"; empty: the program
    summary: str
    usage: str
    positionals: list[Option] = field(default_factory=list)
    options: list[Option] = field(default_factory=list)
    commands: list["Command"] = field(default_factory=list)
    notes: str = ""  # what follows the options


class Program:
    def __init__(self, call: list[str]):
        self.call = call
        self.version = self.ask("--version").split()[1]
        self.filters = json.loads(self.ask("list", "--json"))
        self.presets = re.findall(r"^(\S+)$", self.ask("presets"), re.MULTILINE)
        self.top = self.command("")

    def ask(self, *arguments: str) -> str:
        return subprocess.run([*self.call, *arguments], check=True, capture_output=True, text=True).stdout

    def command(self, name: str) -> Command:
        summary, usage, *rest = self.ask(*name.split(), "--help").split("\n")
        command = Command(name, summary.rstrip("."), usage.removeprefix("Usage: "))
        section, last = "", None
        for number, line in enumerate(rest):
            if line in ("Positionals:", "Options:", "Subcommands:"):
                section = line[:-1]
            elif section and re.match(r"\S", line):
                command.notes = "\n".join(rest[number:]).rstrip()
                break
            elif match := re.fullmatch(r"  (\S.*?)(?:\s{2,}(\S.*))?", line):
                head, text = match[1], match[2] or ""
                if section == "Subcommands":
                    command.commands.append(self.command(f"{name} {head}".strip()))
                    continue
                head = re.sub(r" (REQUIRED|Excludes:.*)", "", head)
                names, _, value = head.partition(" ")
                last = Option(names.split(","), value, text)
                (command.positionals if section == "Positionals" else command.options).append(last)
            elif line.strip() and last is not None:
                last.text = f"{last.text} {line.strip()}".strip()
        return command


def every(command: Command) -> list[Command]:
    return [command, *(each for sub in command.commands for each in every(sub))]
