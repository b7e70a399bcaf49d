#!/bin/bash
# In a real window, under a window manager that leaves Alt to the editor: Alt+drag makes a
# rectangle and a typed letter replaces it on every line; Alt+Shift+arrows make one from
# the keyboard; a Ctrl+click adds a caret and a quick second one (a double click) adds the
# word there, keeping the other carets. The saved file is read back.
# Run from the project root after building morvane; DISPLAY_NUMBER picks the display, and
# screenshots go to the folder given as the first argument (default /tmp).
set -u
shots=${1:-/tmp}
. /work/shared/tools/xwindow.sh
. "$(dirname "$0")/x_display.sh"
file=$E2E_DIR/words.txt
line='alpha beta gamma delta epsilon zeta theta iota kappa lambda omicron sigma upsilon omega'
for i in $(seq 60); do echo "$line"; done > "$file"
e2e_x_ours
e2e_start "$file" || exit 1
sleep 2
eval "$(xdotool getwindowgeometry --shell "$WID")"
# Screen points of the text: a column's left edge (about 9 pixels a column) and a line's
# middle, from the window's place and the layout of its bars.
px() { echo $((X + 302 + 9 * $1)); }
py() { echo $((Y + 87 + 21 * $1)); }
click() { xdotool mousemove "$(px "$1")" "$(py "$2")" click 1; sleep 0.3; }

# From the keyboard: two lines down and two characters right, from line 6.
click 0 5
e2e_keys alt+shift+Down alt+shift+Down alt+shift+Right alt+shift+Right
e2e_type K
e2e_keys Escape
# With the mouse: Alt held through a drag from line 13 to line 16.
xdotool mousemove "$(px 0)" "$(py 12)" keydown alt mousedown 1
for row in 13 14 15; do xdotool mousemove "$(px 4)" "$(py $row)"; sleep 0.05; done
sleep 0.2
e2e_shot "$shots/rectangle_drag.png"
xdotool mouseup 1 keyup alt
e2e_type Z
e2e_keys Escape
# A caret by Ctrl+click, then a word by a quick Ctrl+double-click, then one letter for all.
click 3 18
xdotool mousemove "$(px 20)" "$(py 20)" keydown ctrl click 1
sleep 0.4
xdotool mousemove "$(px 26)" "$(py 22)" click --repeat 2 --delay 60 1 keyup ctrl
sleep 0.3
e2e_shot "$shots/ctrl_double_click.png"
e2e_type Q
e2e_keys Escape ctrl+s
sleep 1
e2e_quit
python3 - "$file" "$line" <<'PY'
import sys
lines = open(sys.argv[1]).read().split('\n')[:-1]
orig = sys.argv[2]
# The letter replaced the same columns of three or more consecutive lines (`width` of them
# when known; the mouse's rectangle depends on the font).
def block(letter, width=None):
    rows = [i for i, l in enumerate(lines) if letter in l]
    cols = {lines[i].index(letter) for i in rows}
    lengths = {len(lines[i]) for i in rows}
    ok = (len(rows) >= 3 and rows == list(range(rows[0], rows[0] + len(rows))) and len(cols) == 1
          and len(lengths) == 1 and (width is None or lengths == {len(orig) - width + 1}))
    print(f"{letter}: lines {rows} columns {sorted(cols)}", "ok" if ok else "FAILED")
    for i in rows[:4]: print("   ", lines[i])
    return ok
ok = block('K', 2)
ok = block('Z') and ok
# The plain click's caret and the Ctrl+click's each got a Q; the double-clicked word became one.
q = [l for l in lines if 'Q' in l]
word = [l for l in q if l.split().count('Q') == 1 and len(l.split()) == len(orig.split())]
carets = [l for l in q if len(l) == len(orig) + 1 and l.replace('Q', '', 1) == orig]
qok = len(q) == 3 and len(word) == 1 and len(carets) == 2
print("Q: a word replaced on one line and a caret's letter on two others:", "ok" if qok else "FAILED")
for l in q: print("   ", l)
sys.exit(0 if ok and qok else 1)
PY
