// Bundles the view of points with three.js into one module.
// Use: node bundle.mjs FILE
import {fileURLToPath} from "node:url";
import {build} from "esbuild";

await build({
  entryPoints: [fileURLToPath(new URL("cloud.js", import.meta.url))],
  outfile: process.argv[2],
  bundle: true,
  format: "esm",
  target: "es2022",
  minify: true,
  legalComments: "eof",
  charset: "ascii",
  logLevel: "warning"
});
