# Makes a package with each fault that a checker of packages knows, once: broken.py PRODUCT LIBRARY FOLDER
# In the list a remark "NAME:" stands before each faulty line. The product is to have no version.
import os
import shutil
import sys

LINES = [
    (None, "File Copy: Lumacap8.exe"),
    (None, "File Copy: ThumbLcp64.dll"),
    ("long-line", "File Del: " + "long" * 125 + ".txt"),
    ("near-miss", "File copy: Lumacap8.exe"),
    ("install-made", "Shell Link: C:\\users\\Public\\Desktop\\Lumacap.lnk"),
    ("absolute", "File Copy: C:\\Lumacap\\Lumacap8.exe"),
    ("climbing", "File Overwrite: ..\\settings.ini"),
    ("tail", "File Copy: Lumacap8.exe | the product"),
    ("forward-slash", "File Del: Lang/*.lng"),
    ("mask-renamed", "File Copy: *.dll > one.dll"),
    ("empty-target", "File Copy: Lumacap8.exe >"),
    ("impossible-name", "File Copy: Lumacap8.exe > *.bin"),
    ("text-format", "File Copy: Gr\u00fcn.txt".encode().decode("latin-1")),
    ("no-match", "File Copy: missing.txt"),
    ("folder-caught", "File Copy: Extra*"),
    (None, "Make Dir: Taken"),
    ("target-is-folder", "File Copy: Lumacap8.exe > Taken"),
    ("renamed-too-early", "File Copy: Lumacap8.exe > Early\\copy.exe"),
    ("made-too-early", "Make Dir: Early\\Deep"),
    (None, "File Copy: Lumacap8.exe > twice.bin"),
    ("written-twice", "File Copy: ThumbLcp64.dll > twice.bin"),
    ("library-test", "File Copy ind: Thumb*.dll"),
    ("folder-unnamed", "File Copy: Docs\\*.txt"),
    ("parent-first", "Make Dir: Outer"),
    (None, "Make Dir: Outer\\Inner"),
    ("list-named", "File Overwrite: *.log"),
    ("end-mark", "\x1a"),
]


def list_bytes():
    text = "A package with each fault once; this line has a byte-order mark.\r\n"
    for name, line in LINES:
        text += (name + ":\r\n" if name else "") + line + "\r\n"
    return b"\xef\xbb\xbf" + text.encode("latin-1")


def write(path, data):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(data)


product, library, folder = sys.argv[1:]
shutil.rmtree(folder, ignore_errors=True)
os.makedirs(os.path.join(folder, "Extra"))
write(os.path.join(folder, "LumUnInst.log"), list_bytes())
write(os.path.join(folder, "Docs", "guide.txt"), b"named by a mask")
write(os.path.join(folder, "forgotten.txt"), b"named by nothing")
shutil.copyfile(product, os.path.join(folder, "Lumacap8.exe"))
shutil.copyfile(library, os.path.join(folder, "ThumbLcp64.dll"))
