// What statements show: text, errors with their carets, pictures, pages.

/** Appends text to the entry; of errors the caret stands out. */
export function showText(entry, text, isError) {
  let block = entry.lastElementChild;
  const kind = isError ? 'error' : 'out';
  if (block?.className !== kind) {
    block = document.createElement('pre');
    block.className = kind;
    entry.append(block);
  }
  if (!isError) return block.append(text);
  for (const line of text.split(/(?<=\n)/)) {
    const caret = /^( *)(\^~*)(.*)$/s.exec(line);
    if (!caret) {
      block.append(line);
      continue;
    }
    const mark = document.createElement('span');
    mark.className = 'caret';
    mark.textContent = caret[2];
    block.append(caret[1], mark, caret[3]);
  }
}

const KINDS = {svg: 'image/svg+xml', html: 'text/html'};

function linkTo(address, text, download) {
  const link = document.createElement('a');
  link.href = address;
  link.textContent = text;
  if (download) link.download = download;
  else link.target = '_blank';
  return link;
}

/** Shows a file that a statement wrote: a drawing as a picture, a report as a page in the page. */
export function showFile(entry, name, content) {
  const kind = name.split('.').pop();
  const address = URL.createObjectURL(new Blob([content], {type: KINDS[kind] ?? 'text/plain'}));
  const figure = document.createElement('figure');
  if (kind === 'svg') {
    const picture = document.createElement('img');
    picture.src = address;
    picture.alt = `${name.split('-')[0]}, drawn from the values`;
    figure.append(picture);
  } else if (kind === 'html') {
    const page = document.createElement('iframe');
    page.sandbox = 'allow-same-origin';
    page.title = name;
    page.src = address;
    figure.className = 'page';
    figure.append(page);
  }
  const caption = document.createElement('figcaption');
  caption.append(name, linkTo(address, 'Open'), linkTo(address, 'Save', name));
  figure.append(caption);
  entry.append(figure);
}
