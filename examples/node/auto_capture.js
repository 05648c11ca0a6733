// Waits until fingers lie still and writes their picture as fingers.pgm. Calls that wait run beside the event loop.
//
//   npm ci && node auto_capture.js
//
// Without a scanner: KELVARIN_SDK_SIMULATE=1 KELVARIN_VTSIM_SCENE=settling-slap node auto_capture.js
import { writeFileSync } from 'node:fs';
import { promisify } from 'node:util';
import koffi from 'koffi';

const MODE_AUTO = 0;
const SERIAL_SIZE = 16;
const MOST_SCANNERS = 127;

const library = koffi.load(process.env.KELVARIN_VT40_LIBRARY ?? 'libKelvarinLiveScannerVT40.so.1');
const initialize = library.func('long LS_VT40Initialize(const char *reserved)');
const uninitialize = library.func('long LS_VT40Uninitialize()');
const describe = library.func('const char *LS_VT40GetErrorDescriptionA(long number)');
const queryScanners = library.func('long LS_VT40QueryScanners(_Out_ uint8_t *serials, _Inout_ uint *count)');
const openScanner = library.func('long LS_VT40OpenScanner(const char *serial, _Out_ void **scanner)');
const closeScanner = library.func('long LS_VT40CloseScanner(_Inout_ void **scanner)');
const setCaptureMode = library.func('long LS_VT40SetCaptureMode(void *scanner, int mode)');
const getImageSize = library.func('long LS_VT40GetImageSize(void *scanner, _Out_ uint *width, _Out_ uint *height)');
const getPreviewImageSize = library.func(
  'long LS_VT40GetPreviewImageSize(void *scanner, _Out_ uint *width, _Out_ uint *height)');
// The library writes the pixels straight into the buffer, which must stay alive until the call has returned.
const imageArguments = '(void *scanner, void *pixels, _Out_ double *score, _Out_ uint8_t *done, _Out_ long *result)';
const getImage = library.func(`long LS_VT40GetImage${imageArguments}`);
const getPreviewImage = library.func(`long LS_VT40GetPreviewImage${imageArguments}`);

function check(what, number) {
  if (Number(number) !== 0) throw new Error(`${what}: ${describe(number)} (${number})`);
}

function connectedScanners() {
  const serials = Buffer.alloc(MOST_SCANNERS * SERIAL_SIZE);
  const count = [MOST_SCANNERS];
  check('scanners', queryScanners(serials, count));
  return Array.from({ length: count[0] }, (_, n) => {
    const cell = serials.subarray(n * SERIAL_SIZE, (n + 1) * SERIAL_SIZE);
    return cell.toString('ascii', 0, cell.indexOf(0));
  });
}

/** Memory for an image of the size that a function reports. */
function makeImage(sizeOf, scanner) {
  const [width, height] = [[0], [0]];
  check('size', sizeOf(scanner, width, height));
  return { width: width[0], height: height[0], pixels: Buffer.alloc(width[0] * height[0]) };
}

/** One image call, on a thread of its own; resolves to whether the image is finished. */
async function fetchImage(call, scanner, image) {
  const [score, done, result] = [[0], [0], [0]];
  check('image', await promisify(call.async)(scanner, image.pixels, score, done, result));
  return done[0] !== 0;
}

async function capture(scanner) {
  check('mode', setCaptureMode(scanner, MODE_AUTO));
  const preview = makeImage(getPreviewImageSize, scanner);
  const picture = makeImage(getImageSize, scanner);
  console.log('lay the fingers down and hold still');
  while (!(await fetchImage(getPreviewImage, scanner, preview)));
  if (!(await fetchImage(getImage, scanner, picture))) throw new Error('the fingers were lifted too early');
  const head = Buffer.from(`P5\n${picture.width} ${picture.height}\n255\n`);
  writeFileSync('fingers.pgm', Buffer.concat([head, picture.pixels]));
  console.log(`fingers.pgm, ${picture.width} x ${picture.height} pixels`);
}

try {
  check('initialise', initialize(null));
  try {
    const [serial] = connectedScanners();
    if (serial === undefined) throw new Error('no scanner is connected');
    const scanner = [null];
    check(serial, openScanner(serial, scanner));
    try {
      await capture(scanner[0]);
    } finally {
      closeScanner(scanner);
    }
  } finally {
    uninitialize();
  }
} catch (failure) {
  console.error(failure.message);
  process.exitCode = 1;
}
