"""Runs a chain file on raw frames of its input's size: run_chain.py CHAIN DIR FRAME.raw... writes DIR/FRAME.raw"""

import json
import pathlib
import sys

import zvfilter

chain_file, folder, *frames = sys.argv[1:]
size = json.loads(pathlib.Path(chain_file).read_text())["input"]
chain = zvfilter.Chain.load(chain_file)
for frame in frames:
    image = zvfilter.read(frame, size=(size["width"], size["height"]))
    zvfilter.write(pathlib.Path(folder) / pathlib.Path(frame).name, chain(image))
