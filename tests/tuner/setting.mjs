// What the tests of a file share: a folder with a recording, and a tuner at work on it.
import {after, before} from "node:test";
import {makeFolder} from "../web/folder.mjs";
import {startTuner, stopTuners} from "./tuner.mjs";

export let place, tuner;

// Called once in a file, which has `place` and `tuner` while its tests run. `words` are those of zvfilter tune in the folder;
// the recording is rec/.
export function useTuner(words, camera = ["--size", "160x100", "--frames", "24"]) {
  useFolder();
  before(async () => {
    place.zvfilter("camera", "-o", "rec", ...camera);
    tuner = await startTuner(place.folder, ...words);
  });
}

// The folder alone.
export function useFolder() {
  before(() => {
    place = makeFolder();
  });
  after(async () => {
    await stopTuners();
    place?.remove();
  });
}
