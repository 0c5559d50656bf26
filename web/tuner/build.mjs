// Makes dist/ of src/. dist/ is kept with the sources, so that who builds the program needs no npm.
// Use: npm run build [-- FOLDER]
import {copyFileSync} from "node:fs";
import {fileURLToPath} from "node:url";
import {build} from "esbuild";

const here = (path) => fileURLToPath(new URL(path, import.meta.url));
const folder = process.argv[2] ?? here("dist");
await build({
  entryPoints: {tuner: here("src/main.js"), cloud: here("src/cloud.js")},
  outdir: folder,
  bundle: true,
  format: "esm",
  target: "es2022",
  minify: true,
  legalComments: "eof",
  charset: "ascii",
  logLevel: "warning"
});
await build({entryPoints: [here("src/tuner.css")], outdir: folder, bundle: true, minify: true, logLevel: "warning"});
copyFileSync(here("src/index.html"), folder + "/index.html");
copyFileSync(here("../node_modules/three/LICENSE"), folder + "/cloud.LICENSE");
