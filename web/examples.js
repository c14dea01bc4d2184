// Examples of the guide, to click: a name and the lines that are run.

export const EXAMPLES = [
  ['First numbers', ['rand(2,3)', 'randn(1,4)', 'randi(6,1,10)', 'randperm(8)']],
  ['A stream of your own', ["s = RandStream('mrg32k3a','Seed',7)", 'rand(s,1,3)',
                            'reset(s), rand(s,1,3)']],
  ['Parallel work', ["s = RandStream('philox','Seed',42);",
                     'for item = 1:4, s.Substream = item; print(item, mean(rand(s,1,1000))), end']],
  ['A histogram', ['histogram(randn(1,10000))']],
  ['A random walk', ["w = RandStream('philox','Seed',3);", 'chart(cumsum(randn(w,1,1000)))']],
  ['Pi by darts', ['x = rand(1,1e5); y = rand(1,1e5);', '4*mean(x.^2 + y.^2 < 1)']],
  ['What a call draws', ["s = RandStream('philox');", 'explain randn(s,1,3)']],
  ['The same as everywhere?', ['doctor']],
  ['A generator on a page', ['report philox4x32_10']],
];
