import { Component, createRef, h } from 'preact';
import { stream } from './api.js';
import { plainOutput } from './text.js';

const KEPT = 400_000;

/** Shows the output of a project's last run in `element`, and follows it until the returned function is called. */
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

/** Writes its own text, which the views never touch. */
class Log extends Component {
  element = createRef();

  shouldComponentUpdate() {
    return false;
  }

  componentDidMount() {
    this.unfollow = follow(this.element.current, this.props.path);
  }

  componentWillUnmount() {
    this.unfollow();
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
