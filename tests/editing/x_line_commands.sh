#!/bin/bash
# In a real window: Alt+Down twice moves a line, Ctrl+Shift+A wraps the line above in a block comment, "f(x" then ")" types over the paired
# bracket, Ctrl+S saves; the file is read back. Run from the project root after building morvane.
set -u
. /work/shared/tools/xwindow.sh
file=$E2E_DIR/demo.cpp
printf 'int main()\n{\n    zeta();\n    alpha();\n    Beta();\n}\n' > "$file"
e2e_x
e2e_start "$file"
sleep 3
e2e_keys ctrl+Home Down Down alt+Down alt+Down
e2e_keys Up ctrl+shift+a
e2e_keys ctrl+End Up End Return
xdotool type --delay 80 'f(x'
xdotool key --delay 80 parenright semicolon
e2e_keys ctrl+s
sleep 1
e2e_shot "${1:-/tmp/line_commands.png}"
e2e_quit
expected=$(printf 'int main()\n{\n    alpha();\n    /* Beta(); */\n    zeta();\n}\nf(x);\n')
[ "$(cat "$file")" = "$expected" ] && echo "line commands: ok" || { echo "line commands: FAILED"; cat "$file"; exit 1; }
