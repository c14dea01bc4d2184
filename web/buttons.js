// A list item with a button, for lists of what can be chosen.
export function buttonItem(text, pressed) {
  const button = document.createElement('button');
  button.type = 'button';
  button.textContent = text;
  button.addEventListener('click', pressed);
  const item = document.createElement('li');
  item.append(button);
  return item;
}
