"""Two kinds of charts as SVG, readable on white, on black and on a phone, whose width they fit: times of
peers as dots in rows, and times against sizes as lines. Axes of time are logarithmic."""
import html
import math

# Middle tones. The first is Corvale's.
COLOURS = ["#e0463c", "#2f86d6", "#2f9e58", "#a865c9", "#c98a1b", "#13a0a8", "#8c8c8c", "#d0569a",
           "#5f7d2e", "#6c7bd9", "#b3653a", "#4f9fbf", "#777777"]
WIDTH = 440  # a phone shows nearly all of it: a letter stays ten pixels high
STYLE = """<style>
:root { color-scheme: light dark; }
text { font: 13px sans-serif; fill: #222; }
.title { font-weight: bold; }
.grid { stroke: #888; stroke-opacity: .3; fill: none; }
@media (prefers-color-scheme: dark) { text { fill: #ddd; } }
</style>"""
UNITS = [(1e9, "s"), (1e6, "ms"), (1e3, "µs"), (1.0, "ns")]


def show_time(nanoseconds, digits=3):
    """Three digits and the unit: 0.93 ns, 12.5 µs, 230 ms."""
    size, unit = next((entry for entry in UNITS if nanoseconds >= entry[0] * 0.9995), UNITS[-1])
    value = nanoseconds / size
    decimals = max(0, digits - 1 - math.floor(math.log10(value))) if value > 0 else 0
    text = f"{value:.{decimals}f}"
    return f"{text.rstrip('0').rstrip('.') if '.' in text and digits == 1 else text} {unit}"


class Axis:
    """A logarithmic axis from pixel `start` on, `length` pixels long; a negative length goes up."""

    def __init__(self, values, start, length, margin=1.15):
        self.low, self.high = min(values) / margin, max(values) * margin
        self.start, self.length = start, length

    def place(self, value):
        share = math.log(value / self.low) / math.log(self.high / self.low)
        return self.start + share * self.length

    def ticks(self):
        """Powers of ten, or of more steps between them where there are less than three."""
        first, last = (math.log10(limit) for limit in (self.low, self.high))
        for steps in ([1], [1, 3], [1, 2, 5], range(1, 10)):
            found = [step * 10.0 ** power for power in range(math.floor(first), math.ceil(last)) for step in (*steps, 10)]
            found = sorted({tick for tick in found if self.low <= tick <= self.high})
            if len(found) >= 3:
                break
        return found


def text(x, y, words, anchor="start", more=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{more}>{html.escape(str(words))}</text>'


def frame(height, title, body):
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height:.0f}" width="{WIDTH}" '
        f'height="{height:.0f}" role="img">',
        f"<title>{html.escape(title)}</title>", STYLE, *body, "</svg>"]) + "\n"


def legend(names, y):
    """Coloured dots and names in lines across the chart; the last line's place comes along."""
    x, lines = 10, []
    for name, colour in names:
        width = 31 + 7.4 * len(name)
        if x + width > WIDTH and x > 10:
            x, y = 10, y + 20
        lines += [f'<circle cx="{x + 6}" cy="{y - 4}" r="4.5" fill="{colour}"/>', text(x + 15, y, name)]
        x += width
    return lines, y


def colours_of(peers):
    return dict(zip(peers, COLOURS))


def dots(title, rows, peers, note="time, logarithmic: left is faster"):
    """Rows of (label, {peer: nanoseconds}), each label above its line; the peers in the order of their colours."""
    left, right, step = 14, WIDTH - 14, 38
    colours = colours_of(peers)
    axis = Axis([time for _, times in rows for time in times.values()], left, right - left)
    keys, top = legend(list(colours.items()), 44)
    top += 12
    bottom = top + step * len(rows)
    body = [text(10, 20, title, more=' class="title"'), *keys]
    for tick in axis.ticks():
        x = axis.place(tick)
        body += [f'<path class="grid" d="M{x:.1f} {top}V{bottom}"/>',
                 text(x, bottom + 17, show_time(tick, 1), "middle")]
    for index, (label, times) in enumerate(rows):
        y = top + step * index + 28
        body += [text(left - 4, y - 11, label), f'<path class="grid" d="M{left} {y}H{right}"/>']
        for peer in reversed([name for name in peers if name in times]):
            radius = 6 if peer == peers[0] else 4.5
            body.append(f'<circle cx="{axis.place(times[peer]):.1f}" cy="{y}" r="{radius}" '
                        f'fill="{colours[peer]}"/>')
    body += [text(WIDTH / 2, bottom + 38, note, "middle")]
    return frame(bottom + 48, title, body)


def end_names(curves, colours, right, height_of):
    """Names beside the ends of their lines, moved apart where they would touch."""
    ends = [(height_of(sizes[max(sizes)]), name) for name, sizes in curves.items() if sizes]
    y = -math.inf
    for end, name in sorted(ends):
        y = max(y + 16, end + 4)
        yield text(right + 6, y, name, more=f' style="fill:{colours[name]}"')


def panel(title, curves, colours, place, ranges, show_size, has_names):
    """One diagram: curves of {name: {size: nanoseconds}} in the rectangle (left, top, width, height)."""
    left, top, width, height = place
    across = Axis(ranges[0], left, width, 1.25)
    up = Axis(ranges[1], top + height, -height, 1.25)
    yield text(left + width / 2, top - 12, title, "middle", ' class="title"')
    for tick in across.ticks():
        x = across.place(tick)
        yield f'<path class="grid" d="M{x:.1f} {top}v{height}"/>'
        yield text(x, top + height + 17, show_size(tick), "middle")
    for tick in up.ticks():
        y = up.place(tick)
        yield f'<path class="grid" d="M{left} {y:.1f}h{width}"/>'
        yield text(left - 6, y + 4, show_time(tick, 1), "end")
    if has_names:
        yield from end_names(curves, colours, left + width, up.place)
    for index, (name, sizes) in reversed(list(enumerate(curves.items()))):
        points = [(across.place(size), up.place(time)) for size, time in sorted(sizes.items())]
        line = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        yield (f'<polyline fill="none" stroke="{colours[name]}" stroke-width="{2.6 if index == 0 else 1.6}" '
               f'points="{line}"/>')
        yield from (f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2.4" fill="{colours[name]}"/>' for x, y in points)


def lines(title, panels, size_name, show_size=lambda size: f"{size:,.0f}"):
    """Diagrams one below the other with the same axes: panels of (title, {name: {size: nanoseconds}}). The
    names stand below them, those of a single diagram beside their lines."""
    left, height, top = 58, 300, 34
    is_single = len(panels) == 1
    width = WIDTH - left - (120 if is_single else 14)
    colours = colours_of(dict.fromkeys(name for _, curves in panels for name in curves))
    points = [point for _, curves in panels for sizes in curves.values() for point in sizes.items()]
    ranges = [[size for size, _ in points], [time for _, time in points]]
    body = []
    for panel_title, curves in panels:
        body += panel(panel_title, curves, colours, (left, top, width, height), ranges, show_size, is_single)
        top += height + 58
    body.append(text(left + width / 2, top - 20, size_name, "middle"))
    if is_single:
        return frame(top - 8, title, body)
    keys, bottom = legend(list(colours.items()), top + 6)
    return frame(bottom + 14, title, body + keys)
