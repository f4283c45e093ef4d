import { stream } from './api.js';
import { h } from './dom.js';
import { plainOutput } from './text.js';

const KEPT = 400_000;

/** Shows the output of a project's last run in `element`, and follows it while it runs and the element is shown. */
function follow(element, path) {
  const ended = new AbortController();
  let content = '';
  const show = (text) => {
    const atEnd = element.scrollTop + element.clientHeight >= element.scrollHeight - 24;
    content += plainOutput(text);
    if (content.length > KEPT) content = content.slice(content.indexOf('\n', content.length - KEPT) + 1);
    element.textContent = content;
    if (atEnd) element.scrollTop = element.scrollHeight;
  };
  const remark = (text) => {
    element.textContent = text;
    element.classList.add('remark');
  };
  stream(`project/log?follow=1&path=${encodeURIComponent(path)}`, show, ended.signal)
    .then(() => {
      if (content === '') remark('Nothing has been printed yet. The output of the start command appears here.');
    })
    .catch((error) => {
      if (error.name !== 'AbortError') remark(`The output cannot be shown: ${error.message}`);
    });
  return () => ended.abort();
}

/** The output of a project; `run` tells one run from the next. */
export function logView(path, run) {
  return h('pre', {
    class: 'log', key: `log ${path} ${run?.startedAt ?? ''}`, role: 'log', 'aria-live': 'off', tabindex: '0', 'aria-label': 'Output', mount: (element) => follow(element, path),
  });
}
