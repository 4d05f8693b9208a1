# Writes a UTF-8 text as the setup program's agreement page reads it: UTF-16 of Windows' byte order, mark and CR LF.
# usage: utf16.py SOURCE TARGET
import sys

with open(sys.argv[1], encoding="utf-8") as source:
    text = source.read()
with open(sys.argv[2], "w", encoding="utf-16-le", newline="\r\n") as target:
    target.write("\ufeff" + text)
