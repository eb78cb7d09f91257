// The appearance of the report. Holds no content.
#pragma once

namespace kivo::overview {

/// Returns the page's style sheet: for screens of any width, light and dark, and for paper. Text
/// and background differ by a contrast of 4.5 or more.
inline constexpr char reportStyle[] = R"(
:root{color-scheme:light dark;--ground:#f5f6f8;--sheet:#fff;--ink:#1b2230;--soft:#545e70;--line:#dfe3e9;
--spent:#2b6cb0;--received:#2f855a;--notice:#fdf6e3;--edge:#b7791f}
@media(prefers-color-scheme:dark){:root{--ground:#11151b;--sheet:#191f28;--ink:#e7ebf2;--soft:#a2adbd;
--line:#2b3440;--spent:#63a4e6;--received:#52b788;--notice:#2a2416;--edge:#d6a645}}
*{box-sizing:border-box}
body{margin:0;background:var(--ground);color:var(--ink);overflow-wrap:break-word;
font:16px/1.45 system-ui,-apple-system,"Segoe UI",Roboto,"Noto Sans","DejaVu Sans",sans-serif;
font-variant-numeric:tabular-nums lining-nums}
header,main,footer{max-width:62rem;margin:0 auto;padding:0 1rem}
header{padding-top:2rem;padding-bottom:.5rem}
h1{margin:0;font-size:1.75rem;line-height:1.2;letter-spacing:-.01em}
h2{margin:0 0 .9rem;font-size:1.05rem}
p{margin:.3rem 0}
.soft,small,caption,th,.axis,.slots,.legend,dd small{color:var(--soft)}
.sheet,.cards>div{background:var(--sheet);border:1px solid var(--line);border-radius:.6rem;padding:1.1rem 1.2rem;
margin:1rem 0;min-width:0}
.cards{display:grid;grid-template-columns:repeat(3,1fr);gap:1rem;margin:1rem 0}
.cards>div{margin:0}
.four{grid-template-columns:repeat(4,1fr)}
dt{color:var(--soft);font-size:.9rem}
dd{margin:0}
dd strong{display:block;font-size:1.5rem;line-height:1.3;font-weight:650;letter-spacing:-.01em}
dd small{font-size:.85rem}
.notice{background:var(--notice);border-left:.25rem solid var(--edge);border-radius:.3rem;padding:.6rem .9rem}
.two{display:grid;grid-template-columns:1fr 1fr;gap:1rem;align-items:start}
.two>*{margin:0}
.wide{overflow-x:auto}
.wide:focus-visible{outline:2px solid var(--spent);outline-offset:3px;border-radius:.2rem}
.wide th[scope=row]{white-space:nowrap}
.by-month .wide table{font-size:.75rem}
.by-month .wide th,.by-month .wide td{padding-left:.5rem}
.by-month .wide th:first-child{padding-left:0;position:sticky;left:0;background:var(--sheet);max-width:9rem;overflow:hidden;
text-overflow:ellipsis}
tfoot th,tfoot td{border-top:1px solid var(--line);border-bottom:0;font-weight:600;color:inherit}
bdi{overflow-wrap:anywhere}
.sum bdi{overflow-wrap:normal}
table{width:100%;border-collapse:collapse;font-size:.94rem}
caption{text-align:start;font-size:.85rem;padding-bottom:.3rem}
th{font-weight:500;font-size:.82rem;text-align:start}
th,td{padding:.38rem 0 .38rem 1.1rem;vertical-align:baseline;border-bottom:1px solid var(--line)}
th:first-child,td:first-child{padding-left:0}
tbody tr:last-child>*{border-bottom:0}
tbody th{color:inherit;font-size:inherit;font-weight:400}
.sum,.count{text-align:right;white-space:nowrap;width:1%}
.share{display:block;width:100%;height:.32rem;margin-top:.25rem;fill:var(--spent);background:var(--line);
border-radius:.16rem;overflow:hidden}
.chart{display:grid;grid-template-columns:auto 1fr;column-gap:.5rem;font-size:.75rem}
.chart svg{width:100%;height:11rem;overflow:visible}
.axis{display:flex;flex-direction:column;justify-content:space-between;text-align:right;height:12.2rem;
margin-top:-.6rem;line-height:1.2rem}
.grid path{stroke:var(--line);stroke-width:1;vector-effect:non-scaling-stroke;fill:none}
.spent{fill:var(--spent)}.received{fill:var(--received)}
.slots{grid-column:2;display:grid;grid-auto-flow:column;grid-auto-columns:minmax(0,1fr);text-align:center;
padding-top:.3rem;white-space:nowrap;overflow-wrap:normal}
.legend{display:flex;gap:1.1rem;font-size:.85rem;margin:0 0 1rem;padding:0;list-style:none}
.legend svg{width:.7rem;height:.7rem;margin-right:.4rem}
details{margin-top:.9rem}
summary{cursor:pointer;color:var(--soft);font-size:.9rem}
summary:focus-visible{outline:2px solid var(--spent);outline-offset:3px;border-radius:.2rem}
.list>details{margin:0;border-top:1px solid var(--line)}
.list>details>summary{padding:.6rem 0;color:inherit;font-size:1rem}
.what{display:grid;grid-template-columns:1fr 13rem;column-gap:1rem;align-items:baseline}
.message{display:block}
.income{color:var(--received)}
.day{white-space:nowrap;width:1%}
footer{padding-top:.5rem;padding-bottom:2.5rem;font-size:.85rem;color:var(--soft)}
code{font-family:ui-monospace,"DejaVu Sans Mono",monospace;font-size:.92em}
@media(max-width:60rem){.four{grid-template-columns:1fr 1fr}}
@media(max-width:44rem){.wide table{font-size:.8rem}.wide th,.wide td{padding-left:.5rem}
.wide th:first-child{padding-left:0}
header{padding-top:1.3rem}h1{font-size:1.5rem}.cards,.two{grid-template-columns:1fr;gap:.8rem}
.cards>div{padding:.7rem 1rem}.sheet{padding:1rem}
th,td{padding-left:.7rem}.two>*{margin:0}.what{grid-template-columns:1fr}
.chart svg{height:9rem}.axis{height:10.2rem}.chart{font-size:.7rem}}
@page wide{size:A4 landscape}
@media print{:root{color-scheme:light;--ground:#fff;--sheet:#fff;--ink:#000;--soft:#444;--line:#ccc;--spent:#2b6cb0;
--received:#2f855a;--notice:#fff;--edge:#777}body{font-size:10pt}.sheet,.cards>div{border-color:#bbb;break-inside:avoid}
.list{break-inside:auto}
.by-month{page:wide}.by-month .wide table{font-size:6.5pt}.by-month th,.by-month td{padding-left:.3rem}.wide{overflow:visible}footer{display:none}tr{break-inside:avoid}thead{display:table-header-group}details:not([open]){display:none}
*{-webkit-print-color-adjust:exact;print-color-adjust:exact}}
)";

}  // namespace kivo::overview
