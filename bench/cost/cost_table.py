#!/usr/bin/env python3
"""What the kernels cost on 64-bit Arm, from an emulated run: cost_table.py PROGRAM ROWS BLOCKS prints a Markdown table.

ROWS is what PROGRAM printed and BLOCKS what block_counter wrote beside it. Instructions are counted. Cycles are estimated:
llvm-mca repeats each block of instructions that ran, with every load in the first cache and every branch foretold, and
the blocks' cycles are added up as often as they ran. The blocks that make up the last 2 % are taken for average ones.
LLVM 14 has no table of the A76 and takes the A57's, whose divider is much slower.
"""
import collections
import re
import subprocess
import sys

CORES = ("cortex-a55", "cortex-a76")
COVERED = 0.98
REPEATS = 100


def disassembly(program):
    """Address to instruction. Targets become one unknown label: where a branch leads is of no matter."""
    text = subprocess.run(["llvm-objdump-14", "-d", "--no-show-raw-insn", program],
                          check=True, capture_output=True, text=True).stdout
    code = {}
    for line in text.splitlines():
        found = re.match(r" *([0-9a-f]+):\s+(.*)", line)
        if found:
            code[int(found[1], 16)] = re.sub(r"0x[0-9a-f]+ <.*>$", "elsewhere", found[2])
    return code


def read_blocks(path):
    """Stretch to blocks: (address, instructions) to how often it ran."""
    stretches = collections.defaultdict(collections.Counter)
    for line in open(path):
        stretch, address, instructions, times = line.split()
        stretches[int(stretch)][int(address, 16), int(instructions)] += int(times)
    return stretches


def joined(blocks):
    """Blocks that always ran one after the other are one block."""
    blocks = dict(blocks)
    for address, count in sorted(blocks):
        times = blocks.get((address, count))
        while times:
            after = [b for b, t in blocks.items() if b[0] == address + 4 * count and t == times]
            if not after:
                break
            del blocks[address, count], blocks[after[0]]
            count += after[0][1]
            blocks[address, count] = times
    return blocks


def hottest(blocks):
    total = sum(count * times for (_, count), times in blocks.items())
    seen = 0
    for block, times in sorted(blocks.items(), key=lambda item: -item[0][1] * item[1]):
        if seen >= COVERED * total:
            return
        seen += block[1] * times
        yield block, times


def cycles_of(wanted, code, core):
    """Cycles that each block takes in a loop of itself."""
    wanted = sorted(wanted)
    source = []
    for index, (address, count) in enumerate(wanted):
        source.append(f"# LLVM-MCA-BEGIN {index}")
        source += [code[address + 4 * i] for i in range(count)]
        source.append(f"# LLVM-MCA-END {index}")
    report = subprocess.run(["llvm-mca-14", "-mtriple=aarch64", f"-mcpu={core}", f"-iterations={REPEATS}",
                             "-resource-pressure=false", "-instruction-info=false"],
                            input="\n".join(source) + "\n", capture_output=True, text=True)
    if report.returncode != 0:
        sys.exit(report.stderr)
    names = re.findall(r"Code Region - (\d+)", report.stdout)
    cycles = re.findall(r"Total Cycles: +(\d+)", report.stdout)
    assert len(names) == len(cycles) == len(wanted)
    return {wanted[int(name)]: int(cycle) / REPEATS for name, cycle in zip(names, cycles)}


def main():
    program, rows, blocks = sys.argv[1:]
    code = disassembly(program)
    stretches = {stretch: joined(found) for stretch, found in read_blocks(blocks).items()}
    hot = {stretch: dict(hottest(found)) for stretch, found in stretches.items()}
    wanted = {block for found in hot.values() for block in found}
    cycles = {core: cycles_of(wanted, code, core) for core in CORES}

    table = collections.defaultdict(dict)
    for line in open(rows):
        number, name, form, pixels = line.rstrip("\n").split("\t")
        found, pixels = stretches[int(number)], int(pixels)
        total = sum(count * times for (_, count), times in found.items())
        covered = hot[int(number)]
        scale = total / sum(count * times for (_, count), times in covered.items())
        table[name][form] = [total / pixels] + [
            scale * sum(cycles[core][block] * times for block, times in covered.items()) / pixels for core in CORES]

    print("| kernel, scene, size | plain, instructions a pixel | NEON | ratio "
          "| A55, plain, cycles a pixel | NEON | ratio | A76, plain, cycles a pixel | NEON | ratio |")
    print("|---|" + "---:|" * 9)
    for name, forms in table.items():
        cells = []
        for plain, vector in zip(forms["scalar"], forms["neon"]):
            cells += [f"{plain:.2f}", f"{vector:.2f}", f"{plain / vector:.1f}"]
        print(f"| {name} | " + " | ".join(cells) + " |")


main()
