// Reads projects' manifests one after the other, away from whoever answers requests: what lies on the disk may be long,
// slow or malicious.
import { parentPort } from 'node:worker_threads';
import { readProject } from './read-project.js';

parentPort.on('message', ({ path, names }) => {
  let project;
  let error;
  try {
    project = readProject(path, names);
  } catch (thrown) {
    error = String(thrown?.message ?? thrown);
  }
  parentPort.postMessage({ project, error });
});
parentPort.postMessage({ isReady: true });
