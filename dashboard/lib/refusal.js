/**
 * Why something asked for is not done, in a sentence that may be shown to the user. `reason` is "invalid" (what was
 * asked for makes no sense), "unknown" (of what is not there), "conflict" (it cannot be done now), "failed" or "ending".
 */
export class Refusal extends Error {
  constructor(reason, message) {
    super(message);
    this.reason = reason;
  }
}
