// What is done with the chain as a whole: taken back, saved, carried elsewhere.
import {button, byId, element} from "./dom.js";

// The buttons are added to the page; `complain` takes what failed.
export function addActions(chain, server, chainFile, complain) {
  const said = element("output", {className: "said"});
  let forget = null;
  const doing = (work) => async () => {
    try {
      said.textContent = await work();
      clearTimeout(forget);
      forget = setTimeout(() => (said.textContent = ""), 4000);
    } catch (problem) {
      complain(problem);
    }
  };
  const copy = (what) =>
    doing(async () => {
      await navigator.clipboard.writeText((await server.texts(chain.toFile()))[what]);
      return "copied";
    });
  const download = doing(async () => {
    const {file} = await server.texts(chain.toFile());
    const href = URL.createObjectURL(new Blob([file], {type: "application/json"}));
    element("a", {href, download: "chain.json"}).click();
    setTimeout(() => URL.revokeObjectURL(href), 1000);
    return "downloaded";
  });
  const save = chainFile && doing(async () => `saved into ${(await server.save(chain.toFile())).file}`);

  const undo = button("Undo", "Undo (Ctrl+Z)", () => chain.undo(), {disabled: true});
  const redo = button("Redo", "Redo (Ctrl+Shift+Z)", () => chain.redo(), {disabled: true});
  chain.addEventListener("change", () => {
    undo.disabled = !chain.canUndo;
    redo.disabled = !chain.canRedo;
  });
  byId("actions").append(said, undo, redo);
  if (save) byId("actions").append(button("Save", `Save the chain into ${chainFile} (Ctrl+S)`, save));
  byId("actions").append(
    button("Download", "Download the chain as chain.json", download),
    button("Copy command", "Copy the command that runs this chain", copy("command")),
    button("Copy Python", "Copy lines of Python that run this chain", copy("python"))
  );
  return {save};
}
