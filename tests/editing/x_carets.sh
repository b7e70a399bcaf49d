#!/bin/bash
# In a real window: Select All Occurrences (Ctrl+Alt+Shift+D) renames a word everywhere,
# Select Next Occurrence (Ctrl+Alt+D) twice edits two of three, Esc returns to one caret,
# Enter inside a paired brace indents; the saved file is read back. A screenshot shows the
# occurrences of the word under the caret marked in the text and beside the scroll bar.
# Run from the project root after building morvane; DISPLAY_NUMBER picks the display.
set -u
. /work/shared/tools/xwindow.sh
. "$(dirname "$0")/../e2e/x_display.sh"
file=$E2E_DIR/demo.cpp
printf 'int count = 0;\ncount = count + 1;\nprint(count);\nab ab ab\n' > "$file"
e2e_x_ours
e2e_start "$file"
sleep 3
e2e_keys ctrl+Home Right Right Right Right Right
sleep 0.6
e2e_shot "${1:-/tmp/carets_highlight.png}"
e2e_keys ctrl+alt+shift+d
e2e_type total
e2e_keys Escape
e2e_type X
e2e_keys ctrl+End Up Home ctrl+alt+d ctrl+alt+d
e2e_type cd
e2e_keys Escape ctrl+End
e2e_type 'void f() {'
e2e_keys Return
e2e_type 'g();'
e2e_shot "${2:-/tmp/carets_edit.png}"
e2e_keys ctrl+s
sleep 1
e2e_quit
expected=$(printf 'int totalX = 0;\ntotal = total + 1;\nprint(total);\ncd cd ab\nvoid f() {\n    g();\n}')
[ "$(cat "$file")" = "$expected" ] && echo "carets: ok" || { echo "carets: FAILED"; cat "$file"; exit 1; }
