#pragma once

// The style sheet of the pages. Colours: blue for what was measured, grey-blue for where it should
// lie, vermilion with a cross for what lies outside; told apart also without colour vision.

namespace report {

inline constexpr char kPageStyle[] = R"css(
:root {
  --paper: #fdfdfb; --card: #fff; --ink: #1d2329; --soft: #59636e; --line: #dfe3e6; --grid: #eceff1;
  --data: #0b62a8; --band: #e9f0f6; --core: #d3e2ee; --limit: #7f99ae; --bad: #c43d0b;
  --good: #10725a; --second: #a2570a; --third: #6b4fa0;
  --heat0: #2166ac; --heat1: #5b93c7; --heat2: #9dc1df; --heat3: #d3e3f0; --heat4: #f2f3f2;
  --heat5: #f6e3cd; --heat6: #ecc08a; --heat7: #d69643; --heat8: #a8640e;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #14181c; --card: #1a1f24; --ink: #e6eaed; --soft: #a3aeb8; --line: #38424b;
    --grid: #272e35; --data: #6db6f2; --band: #1f2d39; --core: #2b4051; --limit: #7f9bb1;
    --bad: #ff8a5c; --good: #5fc9a8; --second: #f0a650; --third: #b9a2ea;
    --heat0: #6db6f2; --heat1: #4c8fc9; --heat2: #35689a; --heat3: #26445f; --heat4: #252b31;
    --heat5: #4b3a22; --heat6: #7d5a26; --heat7: #b58035; --heat8: #f0b460;
  }
}
* { box-sizing: border-box; }
html { scroll-behavior: smooth; -webkit-text-size-adjust: 100%; }
body {
  margin: 0; background: var(--paper); color: var(--ink);
  font: 16px/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Helvetica Neue", sans-serif;
  font-variant-numeric: tabular-nums;
}
.page { max-width: 1080px; margin: 0 auto; padding: 32px 28px 64px; display: grid;
  grid-template-columns: 250px minmax(0, 720px); column-gap: 56px; }
header, footer { grid-column: 1 / -1; }
h1 { font-size: 34px; line-height: 1.15; margin: 0 0 4px; letter-spacing: -0.01em; }
h2 { font-size: 14px; font-weight: 600; color: var(--soft); margin: 44px 0 0;
  border-top: 2px solid var(--ink); padding-top: 8px; }
h3 { font-size: 21px; line-height: 1.25; margin: 22px 0 2px; }
a { color: inherit; text-decoration-color: var(--limit); text-underline-offset: 3px; }
.lead { color: var(--soft); margin: 0 0 18px; }
.summary { font-size: 21px; line-height: 1.35; margin: 0 0 8px; max-width: 40em; }
.explain { color: var(--soft); font-size: 15px; margin: 0; max-width: 46em; }
nav { font-size: 14px; position: sticky; top: 24px; align-self: start; padding-top: 44px; }
nav b { display: block; color: var(--soft); font-weight: 600; margin: 14px 0 2px; }
nav b:first-child { margin-top: 0; }
nav ul { list-style: none; margin: 0; padding: 0; }
nav li { display: grid; grid-template-columns: 18px 1fr auto; column-gap: 4px; padding: 1px 0; }
nav a { text-decoration: none; } nav a:hover { text-decoration: underline; }
nav .p { color: var(--soft); font-size: 12.5px; }
.sign { font-weight: 700; } .good .sign, .sign.good { color: var(--good); }
.bad .sign, .sign.bad { color: var(--bad); } .fact .sign, .sign.fact { color: var(--soft); }
.verdict { margin: 0 0 10px; } .verdict.bad { color: var(--bad); font-weight: 600; }
section.plot { padding-bottom: 26px; scroll-margin-top: 12px; }
figure { margin: 0; }
figcaption { color: var(--soft); font-size: 14px; line-height: 1.45; margin-top: 6px;
  max-width: 46em; }
svg { display: block; width: 100%; height: auto; overflow: visible; }
.narrow { display: none; }
footer { color: var(--soft); font-size: 14px; border-top: 1px solid var(--line); margin-top: 40px;
  padding-top: 14px; }
svg text { font: 12px system-ui, -apple-system, "Segoe UI", Roboto, "Helvetica Neue", sans-serif;
  font-variant-numeric: tabular-nums; fill: var(--soft); }
svg .name { fill: var(--ink); }
svg .hash { font-family: ui-monospace, "DejaVu Sans Mono", monospace; fill: var(--ink); }
svg .mark { fill: var(--ink); paint-order: stroke; stroke: var(--paper); stroke-width: 3px;
  stroke-linejoin: round; }
svg path, svg rect, svg circle { fill: none; }
.axis { stroke: var(--soft); } .grid { stroke: var(--grid); } .zero { stroke: var(--limit); }
.marker { stroke: var(--soft); stroke-dasharray: 2 3; }
svg .band { fill: var(--band); } svg .core { fill: var(--core); }
svg .limit { stroke: var(--limit); stroke-dasharray: 5 3; }
.data { stroke: var(--data); stroke-width: 1.5; stroke-linejoin: round; }
.dot { stroke: var(--data); stroke-width: 5.5; stroke-linecap: round; }
.dot.small { stroke-width: 3.4; }
.speck { stroke: var(--data); stroke-width: 1.7; stroke-linecap: round; opacity: 0.8; }
.dot.bad, .speck.bad { stroke: var(--bad); }
svg .ink { fill: var(--data); }
.road { stroke: var(--line); stroke-width: 4; }
.travelled { stroke: var(--data); stroke-width: 4; } svg .here { fill: var(--data); }
svg .heat0 { fill: var(--heat0); } svg .heat1 { fill: var(--heat1); }
svg .heat2 { fill: var(--heat2); } svg .heat3 { fill: var(--heat3); }
svg .heat4 { fill: var(--heat4); } svg .heat5 { fill: var(--heat5); }
svg .heat6 { fill: var(--heat6); } svg .heat7 { fill: var(--heat7); }
svg .heat8 { fill: var(--heat8); }
svg .outside { fill: var(--bad); stroke: var(--ink); stroke-width: 1.5; }
.series0 { stroke: var(--data); } .series1 { stroke: var(--second); }
.series2 { stroke: var(--third); }
svg .knot { fill: var(--paper); stroke-width: 1.5; }
svg text.series0 { fill: var(--data); stroke: var(--paper); }
svg text.series1 { fill: var(--second); stroke: var(--paper); }
svg text.series2 { fill: var(--third); stroke: var(--paper); }
table { border-collapse: collapse; font-size: 14px; }
th { font-weight: 600; text-align: left; } th, td { padding: 3px 10px 3px 0; }
td.n { text-align: right; }
.scroll { overflow-x: auto; }
.page.single { display: block; max-width: 860px; }
.matrix { width: 100%; table-layout: fixed; }
.matrix th[scope] { white-space: nowrap; overflow: visible; }
.matrix thead th:first-child { width: 142px; }
.matrix thead th { vertical-align: bottom; padding: 0; font-weight: 400; font-size: 13px; }
.matrix thead th span { writing-mode: vertical-rl; transform: rotate(180deg); color: var(--soft);
  margin: 0 auto 6px; display: block; }
.matrix td { text-align: center; padding: 4px 0; border-left: 2px solid var(--paper);
  background: var(--band); }
.matrix td.bad { background: var(--bad); } .matrix td.bad .sign { color: var(--paper); }
.multiples { display: grid; grid-template-columns: repeat(auto-fill, minmax(140px, 1fr));
  gap: 14px 16px; }
.multiples b { display: block; font-size: 13px; font-weight: 600; margin-bottom: 3px; }
.multiples svg { border-bottom: 1px solid var(--line); }
@media (max-width: 900px) {
  .page { display: block; padding: 20px 16px 40px; max-width: 720px; }
  h1 { font-size: 27px; overflow-wrap: anywhere; } .summary { font-size: 18px; }
  h3 { font-size: 19px; }
  nav { position: static; padding-top: 20px; }
}
@media (max-width: 600px) { .wide { display: none; } .narrow { display: block; } }
@media (max-width: 600px) {
  .matrix { font-size: 12px; } .matrix thead th:first-child { width: 120px; }
  .matrix td { border-left-width: 1px; }
}
@page { size: A4; margin: 14mm 16mm; }
@media print {
  :root { --paper: #fff; }
  body { font-size: 9.5pt; } .page { display: block; padding: 0; } nav { position: static; }
  nav ul { columns: 2; } h2, h3 { break-after: avoid; }
  section.plot { break-inside: avoid; margin-top: 14px; }
  section.plot svg { max-height: 82mm; }
  .wide { display: block; } .narrow { display: none; }
}
@media (prefers-reduced-motion: reduce) { html { scroll-behavior: auto; } }
)css";

}  // namespace report
