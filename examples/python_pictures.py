# %% [markdown]
# # What the filters do
# Cells for a notebook; as a program it writes its pictures to the current folder.

# %%
import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import zvfilter

camera = zvfilter.VirtualCamera((320, 200), frames=8)
chain = zvfilter.Chain(["depth=DisparityTransform:",
                        zvfilter.NoiseRemovalFilter(min_diff=64, tag="despeckle"),
                        zvfilter.SpatialAdvancedFilter(alpha=0.4, tag="smooth"),
                        zvfilter.TemporalFilter(tag="calm"),
                        zvfilter.HoleFillingFilter(hole_filling_mode=1, tag="fill")], input=camera.input)

# %% [markdown]
# ## Step by step
# Eight frames, and what each step made of the last.

# %%
for frame in camera:
    chain(frame.disparity, stages=True)


def show(axes, depth, title):
    axes.imshow(np.where(depth > 0, depth, np.nan), vmin=400, vmax=5000, cmap="turbo")
    axes.set_title(title)
    axes.set_axis_off()


figure, places = plt.subplots(2, 3, figsize=(12, 6))
for axes, stage in zip(places.flat, chain.stages):
    show(axes, stage.array, f"{stage.tag}, {stage.milliseconds:.2f} ms")
show(places.flat[-1], frame.truth, "truth")
figure.savefig("stages.png")

# %% [markdown]
# ## A value between frames
# The weaker the weight of the new frame, the calmer a pixel; a moving edge follows later.

# %%
figure, axes = plt.subplots()
depth = list(zvfilter.DisparityTransform(input=camera.input).stream(frame.disparity for frame in camera))
for weight in (1, 0.4, 0.1):
    calm = zvfilter.TemporalFilter(weight=weight)
    made = np.stack(list(calm.stream(depth))).astype(int)
    axes.plot(np.abs(np.diff(made, axis=0)).mean(axis=(1, 2)), label=f"weight {weight}")
axes.set_xlabel("frame")
axes.set_ylabel("mean change from the frame before, mm")
axes.legend()
figure.savefig("weights.png")
