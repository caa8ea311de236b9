// The distinctive identifier: one for each origin, derived from what the platform gives for it by a function that
// cannot be reversed (TS 102 796 12.1.5).

// A status word instead of an identifier. Which of the words means "switched off" is not confirmed.
const kDeviceIdIsOff = '#2';

function deviceIdOfOrigin() {
    const [content, enabled] = exchangeCalls([callOf('IConfiguration.GetDeviceIdContent'),
        callOf('IConfiguration.GetDeviceIdEnable')]);
    if (content === null || enabled === null || !enabled.enabled) return kDeviceIdIsOff;
    return sha256([content.serial, content.product, content.requestTime, location.origin].join('\n'));
}

const primes = [];
for (let number = 2; primes.length < 64; ++number) {
    if (primes.every((prime) => number % prime !== 0)) primes.push(number);
}
const fractionOfRoot = (number, exponent) => (Math.pow(number, exponent) % 1) * 0x100000000 | 0;
const roundConstants = primes.map((prime) => fractionOfRoot(prime, 1 / 3));
const firstHash = primes.slice(0, 8).map((prime) => fractionOfRoot(prime, 1 / 2));
const turned = (word, bits) => word >>> bits | word << 32 - bits;

// Returns the SHA-256 hash of a text in hexadecimal (FIPS 180-4). The browser's own function is not synchronous.
function sha256(text) {
    const bytes = new TextEncoder().encode(text);
    const length = (bytes.length + 9 + 63) & ~63;
    const message = new DataView(new ArrayBuffer(length));
    bytes.forEach((byte, index) => message.setUint8(index, byte));
    message.setUint8(bytes.length, 0x80);
    message.setUint32(length - 4, bytes.length * 8);
    let hash = firstHash;
    for (let block = 0; block < length; block += 64) {
        hash = hashBlock(hash, Array.from({length: 16}, (_, index) => message.getUint32(block + index * 4)));
    }
    return hash.map((word) => (word >>> 0).toString(16).padStart(8, '0')).join('');
}

function hashBlock(hash, words) {
    for (let i = 16; i < 64; ++i) {
        const [before, last] = [words[i - 15], words[i - 2]];
        words[i] = words[i - 16] + words[i - 7] + (turned(before, 7) ^ turned(before, 18) ^ before >>> 3) +
            (turned(last, 17) ^ turned(last, 19) ^ last >>> 10) | 0;
    }
    let [a, b, c, d, e, f, g, h] = hash;
    for (let i = 0; i < 64; ++i) {
        const first = h + (turned(e, 6) ^ turned(e, 11) ^ turned(e, 25)) + (e & f ^ ~e & g) + roundConstants[i] +
            words[i] | 0;
        const second = (turned(a, 2) ^ turned(a, 13) ^ turned(a, 22)) + (a & b ^ a & c ^ b & c) | 0;
        [h, g, f, e, d, c, b, a] = [g, f, e, d + first | 0, c, b, a, first + second | 0];
    }
    return [a, b, c, d, e, f, g, h].map((word, index) => word + hash[index] | 0);
}
