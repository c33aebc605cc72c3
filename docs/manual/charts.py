"""Draws the ratios of the benchmarks as bars. The pictures follow the light or dark setting of the reader, and are narrow
enough to be read on a telephone."""
import html

WIDTH, LABEL, BAR, ROW, LEFT = 420, 12, 9, 32, 10
LARGEST = 1.25  # longer bars are cut
STYLE = """text { font: 12px sans-serif; fill: #222 } .axis { stroke: #777 } .goal { stroke: #222; stroke-width: 2 }
.met { fill: #1779c4 } .missed { fill: #c75b12 } .none { fill: #8a94a0 }
@media (prefers-color-scheme: dark) { text { fill: #ddd } .goal { stroke: #eee } .met { fill: #4aa3e8 }
.missed { fill: #f0904a } .axis { stroke: #999 } }"""


def place(ratio):
    return round(LEFT + (WIDTH - 2 * LEFT) * min(ratio, LARGEST) / LARGEST, 1)


def bar(row, top):
    ratio, goal = float(row["ratio"]), float(row["goal"] or 0)
    kind = "none" if not goal else "met" if ratio <= goal else "missed"
    words = f"{row['job']}, {row['peer']}: {row['ratio']}" + (f" (goal {row['goal']}, missed)" if kind == "missed" else "")
    lines = [f'<text x="{LEFT}" y="{top + LABEL}">{html.escape(words)}</text>',
             f'<rect class="{kind}" x="{LEFT}" y="{top + LABEL + 4}" width="{place(ratio) - LEFT:.1f}" height="{BAR}"/>']
    if goal:
        x = place(goal)
        lines.append(f'<line class="goal" x1="{x}" x2="{x}" y1="{top + LABEL + 2}" y2="{top + LABEL + 6 + BAR}"/>')
    return lines


def picture(rows, title):
    height = ROW * len(rows) + 30
    one = place(1)
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" viewBox="0 0 {WIDTH} {height}">',
             f"<title>{html.escape(title)}</title>", f"<style>{STYLE}</style>",
             f'<line class="axis" x1="{one}" x2="{one}" y1="20" y2="{height}" stroke-dasharray="3 3"/>',
             f'<text x="{one}" y="14" text-anchor="middle">1: as fast as the peer</text>']
    for index, row in enumerate(rows):
        lines += bar(row, 22 + ROW * index)
    return "\n".join(lines + ["</svg>", ""])


def write_pictures(rows, folder):
    """Writes a picture of the conversions, compared with ICU, and one of the other jobs."""
    size = " 65536"
    conversions = [{**row, "job": row["job"].removesuffix(size)} for row in rows
                   if row["peer"] == "ICU" and row["job"].endswith(size)]
    jobs = [row for row in rows if row["peer"] not in ("ICU", "iconv", "moving", "own")]
    for name, chosen, title in (("ratios-conversions", conversions, "Conversions of 65536 bytes, compared with ICU"),
                                ("ratios-jobs", jobs, "Other jobs, compared with their peers")):
        (folder / f"{name}.svg").write_text(picture(chosen, title), encoding="utf-8")
