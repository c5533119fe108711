"""The plots of the documentation, drawn by gnuplot from what limn_tables and limn make."""

import math
import os
import subprocess

SCREENSHOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../docs/pictures/lighting-en-light.png")
SPREADS = (0, 64, 128, 192, 255)
RADII = (10, 20, 40, 80, 140)
COLOURS = ("#7a3b00", "#c06a00", "#e0a800", "#6a9f3a", "#2a6f97")
HEAD = "font 'sans,13' background rgb 'white' linewidth 1.4 dashlength 0.6"


def table(program, *words):
    """Columns of numbers as limn_tables prints them."""
    told = subprocess.run([program, *map(str, words)], check=True, capture_output=True, text=True).stdout
    return [[float(number) for number in line.split()] for line in told.splitlines()]


def block(name, rows):
    lines = "\n".join(" ".join(f"{number:g}" for number in row) for row in rows)
    return f"${name} << END\n{lines}\nEND"


def gnuplot(target, size, *lines):
    text = "\n".join([f"set terminal svg size {size} {HEAD}", f"set output '{target}'", "set grid lc rgb '#dddddd'",
                      "set border lc rgb '#555555'", *lines])
    subprocess.run(["gnuplot"], input=text + "\n", check=True, text=True)


def curves(values):
    return ", ".join(f"$d using 1:{column + 2} with lines lw 2 lc rgb '{colour}' title '{value}'"
                     for column, (value, colour) in enumerate(zip(values, COLOURS)))


def plot_spread(target, tables):
    gnuplot(target, "640,380", block("d", table(tables, "spread", *SPREADS)),
            "set xlabel 'degrees from the axis of the spotlight'", "set ylabel 'part of the light that is left'",
            "set xrange [0:50]", "set xtics 5", "set yrange [0:1.05]", "set key outside right title 'spread'",
            "plot " + curves(SPREADS))


def plot_spot(target, tables):
    """The lamps of three ellipses from the side: the axis, and the cone down to the picture."""
    lines = ["set multiplot layout 3,1", "unset key", "unset ytics", "unset grid", "set border 1", "set xtics 30 nomirror",
             "set xrange [-140:140]", "set yrange [0:96]", "set lmargin 3", "set rmargin 3", "set size ratio -1"]
    for second, x, height, right, up in table(tables, "spot", 90, 30, 60, 90):
        fall = math.atan2(up, right)
        near, far = (x - height / math.tan(fall + turn) for turn in (-math.pi / 4, math.pi / 4))
        tip = height * 0.3
        lines += ["unset arrow", "unset label", f"set label 'second axis {second:g}' at -138,84",
                  f"set object 1 polygon from {x},{height} to {near},0 to {far},0 to {x},{height} "
                  "fillcolor rgb '#fdf0c4' fillstyle solid noborder",
                  f"set arrow from {x},{height} to {x - (height - tip) / math.tan(fall)},{tip} head filled size 4,20 "
                  f"lw 1.5 lc rgb '{COLOURS[1]}'",
                  "set arrow from -90,0 to 90,0 nohead lw 5 lc rgb '#e0a800'",
                  f"plot '-' using 1:2 with points pt 7 ps 1.3 lc rgb '{COLOURS[0]}'", f"{x} {height}", "e"]
    gnuplot(target, "640,720", *lines, "unset multiplot")


def plot_omni(target, tables):
    gnuplot(target, "640,380", block("d", table(tables, "omni", *RADII)),
            "set xlabel 'distance from the centre; the edge of a picture is near 125 from its middle'",
            "set ylabel 'light on the picture'", "set xrange [-140:140]", "set yrange [0:1.05]",
            "set key outside right title 'radius'", "plot " + curves(RADII))


def plot_directional(target, tables):
    gnuplot(target, "640,380", block("d", table(tables, "directional")),
            "set xlabel 'length of the handle'", "set ylabel 'light on the picture'",
            "set y2label 'degrees above the picture'", "set ytics nomirror", "set y2tics 15", "set y2range [0:94.5]",
            "set yrange [0:1.05]", "set xrange [0:120]", "set key top right",
            f"plot $d using 1:3 with lines lw 2 lc rgb '{COLOURS[1]}' title 'light', "
            f"$d using 1:2 axes x1y2 with lines lw 2 lc rgb '{COLOURS[4]}' title 'height of the sun'")


# A row of a channel: a slope, a plateau, a step down, a small round bump.
CHANNEL = ([50] * 9 + [50 + 10 * i for i in range(1, 15)] + [190] * 14 + [50] * 9
           + [50, 66, 82, 94, 100, 100, 94, 82, 66, 50] + [50] * 8)
AMPLITUDE = 64
SUN = (-60, 0)  # the handle: from the left, 34 degrees high


def write_pnm(path, kind, rows):
    width = len(rows[0]) // (3 if kind == "P6" else 1)
    with open(path, "wb") as file:
        file.write(f"{kind}\n{width} {len(rows)}\n255\n".encode())
        file.write(bytes(value for row in rows for value in row))


def lit_row():
    """What a sun from the left makes of an even grey with the channel for relief, and without."""
    write_pnm("grey.ppm", "P6", [[200] * 3 * len(CHANNEL)] * 9)
    write_pnm("channel.pgm", "P5", [CHANNEL] * 9)
    rows = []
    for relief in (4, 0):
        settings = [f"bumpChannel={relief}", f"bumpAmplitude={AMPLITUDE}", "gloss=0", "ambientBrightness=12",
                    "light.0.type=directional", f"light.0.handle1={SUN[0]},{SUN[1]}", "light.0.intensity=30",
                    "light.0.color=65535,65535,65535"]
        sets = [word for setting in settings for word in ("--set", setting)]
        subprocess.run(["limn", "apply", "-q", "-f", "--channel", "channel.pgm", *sets, "grey.ppm", "-o", "row.ppm"],
                       check=True)
        with open("row.ppm", "rb") as file:
            pixels = file.read()[-9 * 3 * len(CHANNEL):]
        rows.append(pixels[4 * 3 * len(CHANNEL) : 5 * 3 * len(CHANNEL) : 3])
    return list(enumerate(zip(*rows)))


def plot_relief(target, tables):
    heights = table(tables, "height", AMPLITUDE, *CHANNEL)
    rays = [f"set arrow from {x},{10 + 0.0} to {x + 4.5},7 lw 1.2 lc rgb '#e0a800' head filled size 1,20"
            for x in range(2, 60, 6)]
    gnuplot(target, "640,520", block("c", enumerate(CHANNEL)), block("h", heights),
            block("l", [(x, lit, flat) for x, (lit, flat) in lit_row()]),
            f"set xrange [0:{len(CHANNEL) - 1}]", "set lmargin 10", "set rmargin 3", "unset key",
            "set multiplot layout 3,1", "set ylabel 'channel'", "set yrange [0:255]", "set ytics 0,50",
            f"plot $c with steps lw 2 lc rgb '#555555'",
            "set ylabel 'height, in pixels'", "set yrange [0:11]", "set ytics 0,2", *rays,
            f"plot $h with filledcurves y1=0 lc rgb '#d9c7b0', $h with lines lw 2 lc rgb '{COLOURS[0]}'",
            "unset arrow", "set ylabel 'lit picture'", "set yrange [0:255]", "set ytics 0,50",
            "set xlabel 'pixels from left to right; the sun stands on the left'",
            f"plot $l using 1:3 with lines dt 2 lc rgb '#888888', $l using 1:2 with lines lw 2 lc rgb '{COLOURS[1]}'",
            "unset multiplot")


def plot_reach(target, tables):
    """How many lights are worked out where; rows and columns of the picture from its top left."""
    rows = table(tables, "reach", "Festival Lights")
    gnuplot(target, "640,430", block("d", rows), "set terminal pngcairo size 640,430 font 'sans,11'", f"set output '{target}'",
            "unset grid", "unset tics", "set border 0", "set size ratio -1", "set colorbox", "set cbtics 0,1", "set cbrange [0:3]",
            "set xrange [0:6000]", "set yrange [4000:0]",
            "set palette defined (0 '#10131a', 1 '#5b2a10', 2 '#c98a1e', 3 '#fff1c4')",
            "plot $d using ($1 * 64 + 32):($2 * 20 + 10):3 matrix with image notitle")


DIALOG_PARTS = ((16, 16), (16, 306), (256, 306), (312, 26), (312, 150), (312, 306), (16, 372), (312, 406))


def plot_dialog(target, _tables):
    """The screenshot of the dialog with a number at each of its parts."""
    marks = "".join(f'<circle cx="{x}" cy="{y}" r="10" fill="#b3261e" stroke="white" stroke-width="2"/>'
                    f'<text x="{x}" y="{y + 4.5}" fill="white">{number}</text>'
                    for number, (x, y) in enumerate(DIALOG_PARTS, 1))
    with open("marks.svg", "w", encoding="utf-8") as file:
        file.write(f'<svg xmlns="http://www.w3.org/2000/svg" width="640" height="434" font-size="13" '
                   f'font-family="sans-serif" font-weight="bold" text-anchor="middle">{marks}</svg>')
    for words in (["composite2", SCREENSHOT, "marks.svg", "marked.v", "over"],
                  ["flatten", "marked.v", "flat.v"], ["copy", "flat.v", target + "[palette,strip]"]):
        subprocess.run(["vips", *words], check=True, capture_output=True)
