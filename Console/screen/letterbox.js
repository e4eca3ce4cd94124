// Where a picture lies in the box that shows it, and what a place in the box means in the picture.
// Pure.

// The host gives no picture narrower or wider than this.
const NARROWEST = 320;
const WIDEST = 1920;

/** The picture's rectangle, as large as the box allows and in its middle. */
export function fit(width, height, boxWidth, boxHeight) {
  const scale = Math.min(boxWidth / width, boxHeight / height);
  const shown = { width: width * scale, height: height * scale };
  return { x: (boxWidth - shown.width) / 2, y: (boxHeight - shown.height) / 2, ...shown };
}

/** A place in the box as fractions of the picture, limited to it, and whether it is on the picture. */
export function fractionsAt(rect, x, y) {
  const [across, down] = [(x - rect.x) / rect.width, (y - rect.y) / rect.height];
  const [limitedX, limitedY] = [across, down].map((part) => Math.min(1, Math.max(0, part)));
  return { x: limitedX, y: limitedY, inside: across === limitedX && down === limitedY };
}

/** The width (pixels) to ask the host for, so that each pixel of the picture gets one of the page's. */
export function pictureWidth(rect, pixelRatio) {
  return Math.min(WIDEST, Math.max(NARROWEST, Math.round(rect.width * pixelRatio)));
}
