// A session's lines as the part of an address behind the '#', which no server sees.

export function toHash(lines) {
  const bytes = new TextEncoder().encode(JSON.stringify(lines));
  const letters = Array.from(bytes, (byte) => String.fromCharCode(byte)).join('');
  return '#s=' + btoa(letters).replaceAll('+', '-').replaceAll('/', '_').replace(/=+$/, '');
}

/** The lines, or none where the hash has none that can be read. */
export function fromHash(hash) {
  const found = /^#s=([\w-]+)$/.exec(hash);
  if (!found) return [];
  try {
    const letters = atob(found[1].replaceAll('-', '+').replaceAll('_', '/'));
    const lines = JSON.parse(new TextDecoder().decode(
        Uint8Array.from(letters, (letter) => letter.charCodeAt(0))));
    return Array.isArray(lines) && lines.every((line) => typeof line === 'string') ? lines : [];
  } catch {
    return [];
  }
}
