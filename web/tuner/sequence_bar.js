// The controls of the sequence, and what is said of the frame shown.
import {button, byId, element} from "./dom.js";

// The controls are added to the page. @return what brings them up to date with a frame
export function addSequenceBar(player, chain, labels) {
  const last = player.count - 1;
  const play = button("Play", "Play or pause (space)", () => player.toggle(), {className: "play"});
  const seek = element("input", {type: "range", min: 0, max: last, step: 1, value: 0});
  const place = element("output", {className: "place"});
  seek.setAttribute("aria-label", "Frame");
  seek.oninput = () => player.seek(+seek.value);
  player.addEventListener("state", () => (play.textContent = player.playing ? "Pause" : "Play"));
  const back = button("◂", "One frame back (,)", () => player.step(-1));
  const on = button("▸", "One frame on (.)", () => player.step(1));
  byId("player").append(play, back, on, seek, place);

  return ({frame, first, restarted}) => {
    seek.value = frame;
    place.textContent = `${frame} / ${last}`;
    let text = `Frame ${frame} of 0 to ${last}, ${labels[frame]}`;
    if (chain.steps.some((step) => step.enabled)) {
      text +=
        first < frame
          ? `: the filters have seen frames ${first} to ${frame}`
          : `: the filters began anew at frame ${frame}`;
      if (restarted && first < frame) text += ", run up to it for the change";
    }
    byId("status").textContent = `${text}.`;
  };
}
