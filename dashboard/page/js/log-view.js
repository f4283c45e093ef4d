import { Component, createRef, h } from 'preact';
import { stream } from './api.js';
import { backOff } from './live.js';
import { plainOutput } from './text.js';

const KEPT = 400_000;

/**
 * Shows the output of a project's last run in `element`, and follows it until `signal` says so. After an interruption it
 * is shown anew: nothing is lost, and nothing there twice.
 */
async function follow(element, path, signal) {
  const attempts = backOff();
  while (!signal.aborted) {
    let content = '';
    const show = (text) => {
      attempts.succeeded();
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
    try {
      await stream(`project/log?follow=1&path=${encodeURIComponent(path)}`, show, { patience: Infinity, signal });
      if (content === '') remark('Nothing has been printed yet. The output of the start command appears here.');
      return;
    } catch (error) {
      if (signal.aborted) return;
      if (error.status !== 0) {
        remark(`The output cannot be shown: ${error.message}`);
        return;
      }
    }
    await attempts.next();
  }
}

/** Writes its own text, which the views never touch. */
class Log extends Component {
  element = createRef();
  removed = new AbortController();

  shouldComponentUpdate() {
    return false;
  }

  componentDidMount() {
    follow(this.element.current, this.props.path, this.removed.signal);
  }

  componentWillUnmount() {
    this.removed.abort();
  }

  render() {
    return h('pre', {
      ref: this.element,
      class: 'log',
      role: 'log',
      'aria-live': 'off',
      tabindex: '0',
      'aria-label': 'Output',
    });
  }
}

/** The output of a project; `run` tells one run from the next. */
export function logView(path, run) {
  return h(Log, { key: `log ${path} ${run?.startedAt ?? ''}`, path });
}
