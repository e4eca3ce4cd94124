// Keeps the phone's own screen on while the page is looked at, where the browser can.

/** @param {() => boolean} wanted */
export function keepAwake(wanted) {
  /** @type {{release: () => Promise<void>} | null} */
  let lock = null;
  return async () => {
    const wants = wanted() && !document.hidden;
    try {
      if (wants && !lock) {
        lock = await navigator.wakeLock?.request("screen");
        /** @type {any} */ (lock)?.addEventListener("release", () => { lock = null; });
      } else if (!wants && lock) {
        await lock.release();
      }
    } catch {
      lock = null; // a battery that runs low
    }
  };
}
