#include "gallery/page_style.h"

namespace tools {

// The number of columns comes from the page: --wide and --medium of each family.
const char pageStyle[] = R"(
:root { color-scheme: light dark; --ground: #f6f6f3; --card: #fff; --edge: #dcdcd6; --ink: #1b1d22; --quiet: #5d6470;
  --accent: #9a4a06; --code: #1d4f91; --mat: #e9e9e4; }
@media (prefers-color-scheme: dark) {
  :root { --ground: #0f1116; --card: #181b23; --edge: #262b37; --ink: #eceef3; --quiet: #98a0b3; --accent: #f6b26b;
    --code: #a9c7ff; --mat: #08090c; }
}
* { box-sizing: border-box; }
html { scroll-padding-top: 4rem; scroll-behavior: smooth; }
body { margin: 0; background: var(--ground); color: var(--ink);
  font: 15px/1.5 system-ui, "Segoe UI", "DejaVu Sans", sans-serif; }
header, main, footer { padding-inline: clamp(.9rem, 4vw, 4rem); }
header { display: flex; flex-wrap: wrap; align-items: baseline; gap: .1rem 1.5rem; padding-block: 1.6rem .9rem; }
h1 { margin: 0; font-size: 1.9rem; font-weight: 650; letter-spacing: -.02em; }
h1 span { color: var(--accent); }
header p { margin: 0; color: var(--quiet); overflow-wrap: anywhere; }
nav { position: sticky; top: 0; z-index: 2; display: flex; gap: .3rem; overflow-x: auto; scrollbar-width: thin;
  padding: .5rem clamp(.9rem, 4vw, 4rem); background: var(--ground); border-block: 1px solid var(--edge); }
nav a, nav button { flex: none; padding: .2rem .7rem; border: 1px solid var(--edge); border-radius: 99px;
  background: var(--card); color: var(--ink); font: inherit; font-size: .85rem; text-decoration: none; cursor: pointer; }
nav a:hover, nav button:hover { border-color: var(--accent); }
nav button[aria-pressed=true] { background: var(--accent); color: var(--card); }
h2 { margin: 2rem 0 .9rem; font-size: 1.15rem; font-weight: 600; color: var(--accent); }
.panels { display: grid; gap: 1.25rem; grid-template-columns: minmax(0, 1fr); }
@media (min-width: 700px) { .panels { grid-template-columns: repeat(var(--medium), minmax(0, 1fr)); } }
@media (min-width: 1300px) { nav { flex-wrap: wrap; } html { scroll-padding-top: 6rem; } .panels { grid-template-columns: repeat(var(--wide), minmax(0, 1fr)); } }
.panel { display: flex; flex-direction: column; min-width: 0; background: var(--card);
  border: 1px solid var(--edge); border-radius: 12px; overflow: hidden; }
.panel:hover { border-color: var(--accent); }
.panel > a { position: relative; display: block; background: var(--mat); }
.panel img { display: block; width: 100%; height: auto; aspect-ratio: var(--shape); max-height: 34rem;
  object-fit: contain; }
.panel .before { position: absolute; inset: 0; height: 100%; background: var(--mat); opacity: 0; }
.panel > a:hover .before, .panel > a:focus-visible .before, .compare .before { opacity: 1; }
.panel > a:hover::after, .panel > a:focus-visible::after, .compare .panel > a::after { position: absolute; left: .5rem;
  top: .5rem; padding: 0 .5rem; border-radius: 6px; background: #000b; color: #fff; font-size: .8rem;
  content: attr(data-before); }
.panel > a:not([data-before])::after { content: none !important; }
.about { padding: .8rem 1rem 1rem; display: grid; grid-template-columns: minmax(0, 1fr) auto; gap: .1rem 1rem; }
h3 { margin: 0; font-size: 1rem; font-weight: 600; }
.about time { color: var(--accent); font-variant-numeric: tabular-nums; white-space: nowrap; }
.about code, .about p, .about details { grid-column: 1 / -1; margin: 0; }
code, pre { color: var(--code); font: 13px/1.6 ui-monospace, "DejaVu Sans Mono", monospace; overflow-wrap: anywhere; }
.about p { color: var(--quiet); font-size: .9rem; }
.about p.number { color: var(--ink); font-variant-numeric: tabular-nums; }
summary { color: var(--quiet); font-size: .85rem; cursor: pointer; }
pre { margin: .3rem 0 0; padding: .6rem .8rem; background: var(--mat); border-radius: 8px; white-space: pre-wrap; }
footer { padding-block: 2rem 2.5rem; color: var(--quiet); font-size: .85rem; }
@media (min-width: 700px) {
  .alone .panel { display: grid; grid-template-columns: 1fr minmax(16rem, 1fr); }
  .alone .panel > a { display: flex; align-items: center; }
  .alone .about { align-content: center; }
}
@media print {
  :root { --ground: #fff; --card: #fff; --edge: #bbb; --ink: #000; --quiet: #444; --accent: #000; --code: #000; --mat: #fff; }
  nav, details, .before { display: none; }
  .panels { grid-template-columns: repeat(2, minmax(0, 1fr)); gap: .6rem; }
  .panel { break-inside: avoid; }
  h2 { break-after: avoid; }
}
)";

const char pageScript[] = R"(
const button = document.getElementById('compare');
function compare(on) {
  document.body.classList.toggle('compare', on);
  button.setAttribute('aria-pressed', on);
}
button.hidden = false;
button.addEventListener('click', () => compare(!document.body.classList.contains('compare')));
document.addEventListener('keydown', event => { if (event.key === 'b' && !event.ctrlKey && !event.metaKey) compare(true); });
document.addEventListener('keyup', event => { if (event.key === 'b') compare(false); });
addEventListener('beforeprint', () => document.querySelectorAll('img').forEach(image => { image.loading = 'eager'; }));
)";

} // namespace tools
