#!/usr/bin/env python3
"""Shows what stands on a throwaway Windows machine, in a form that a person likes to read.

usage: show-machine.py tree FOLDER              the files and folders below a folder, with sizes
       show-machine.py links FOLDER...          the shell links below folders, with target and working folder
       show-machine.py registry BEFORE AFTER    what an export of the registry has and an earlier one hadn't, and back
       show-machine.py boot EXPORT              what the system is to do at the next boot
       show-machine.py files BEFORE AFTER       the lines that one list of files has and the other hasn't
"""
import os
import re
import struct
import sys

BOOT_KEY = r'HKEY_LOCAL_MACHINE\System\CurrentControlSet\Control\Session Manager'
BOOT_VALUE = '"PendingFileRenameOperations"'


def show_tree(folder):
    for path, folders, files in os.walk(folder):
        folders.sort(key=str.lower)
        depth = path[len(folder):].count(os.sep)
        print('  ' + '    ' * depth + os.path.basename(path) + '\\')
        for name in sorted(files, key=str.lower):
            size = os.path.getsize(os.path.join(path, name))
            print('  ' + '    ' * (depth + 1) + f'{name:<{max(4, 44 - 4 * depth)}}{size:>10,}')


def read_link(path):
    """Target, working folder and arguments of a shell link, by its published file format."""
    with open(path, 'rb') as file:
        data = file.read()
    flags = struct.unpack_from('<I', data, 20)[0]
    offset = 76
    target = ''
    if flags & 1:
        offset += 2 + struct.unpack_from('<H', data, offset)[0]
    if flags & 2:
        size, header, _, _, base = struct.unpack_from('<5I', data, offset)
        if header >= 36:
            start = offset + struct.unpack_from('<I', data, offset + 28)[0]
            target = data[start:].decode('utf-16-le', 'replace').split('\0')[0]
        else:
            target = data[offset + base:].split(b'\0')[0].decode('latin-1')
        offset += size
    texts = {}
    for bit, name in ((4, 'description'), (8, 'relative'), (16, 'folder'), (32, 'arguments'), (64, 'icon')):
        if flags & bit:
            count = struct.unpack_from('<H', data, offset)[0]
            width = 2 if flags & 128 else 1
            raw = data[offset + 2:offset + 2 + count * width]
            texts[name] = raw.decode('utf-16-le' if width == 2 else 'latin-1')
            offset += 2 + count * width
    return target, texts.get('folder', '').rstrip('\0'), texts.get('arguments', '').rstrip('\0')


def windows_path(path):
    return 'C:\\' + path.split('/drive_c/', 1)[1].replace('/', '\\')


def show_links(folders):
    count = 0
    for top in folders:
        for path, _, files in os.walk(top):
            for name in sorted(files):
                if name.lower().endswith('.lnk'):
                    target, folder, arguments = read_link(os.path.join(path, name))
                    print(f'  {windows_path(os.path.join(path, name))}')
                    print(f'      target  {target}{" " + arguments if arguments else ""}')
                    print(f'      folder  {folder or "(none)"}')
                    count += 1
    if count == 0:
        print('  none')


def read_export(path):
    """The values of a registry export, by key and name; a key without values has the one name ''."""
    with open(path, 'rb') as file:
        data = file.read()
    text = data.decode('utf-16') if data[:2] == b'\xff\xfe' else data.decode('latin-1')
    text = re.sub(r'\\\r?\n *', '', text)
    values = {}
    key = ''
    for line in text.splitlines():
        if line.startswith('['):
            key = line.strip('[]')
            values[key, ''] = ''
        elif match := re.match(r'(@|"(?:[^"\\]|\\.)*")=(.*)', line):
            values[key, match.group(1)] = match.group(2)
    return values


def is_noise(key):
    """What the system writes by itself while programs run on it, and one view of what stands in another place too."""
    return (key.startswith('HKEY_CLASSES_ROOT') or 'Wow6432Node' in key or key == BOOT_KEY or
            re.search(r'\\(Explorer\\(User )?Shell Folders|Windows NT\\CurrentVersion|ControlSet001|Hardware|'
                      r'Software\\Wine|Volatile Environment|DeviceClasses|Enum|Control\\(Class|Video|ServiceCurrent)|Hardware Profiles)(\\|$)', key, re.IGNORECASE))


def show_registry(before_path, after_path):
    before, after = read_export(before_path), read_export(after_path)
    lines = []
    for sign, one, other in (('+', after, before), ('-', before, after)):
        for (key, name), data in one.items():
            if (other.get((key, name)) != data) and not is_noise(key):
                lines.append((key, name, sign, data))
    shown_keys = {key for key, name, _, _ in lines if name}
    last = None
    for key, name, sign, data in sorted(lines):
        if not name and any(other == key or other.startswith(key + '\\') for other in shown_keys):
            continue
        if key != last:
            print(f'  {key}' if name else f'  {key}\n    {sign} (key)')
            last = key
        if name:
            shown = '(default)' if name == '@' else name.strip('"')
            print(f'    {sign} {shown:<18} {data}')
    if not lines:
        print('  nothing')


def show_boot(path):
    data = read_export(path).get((BOOT_KEY, BOOT_VALUE), '')
    raw = bytes(int(byte, 16) for byte in data.partition(':')[2].split(',') if byte)
    texts = raw.decode('utf-16-le').split('\0')
    count = 0
    for source, target in zip(texts[0::2], texts[1::2]):
        if source:
            source = source.replace('\\??\\', '')
            target = target.lstrip('!').replace('\\??\\', '')
            print(f'  move    {source}\n     to   {target}' if target else f'  delete  {source}')
            count += 1
    if count == 0:
        print('  nothing')


def show_files(before_path, after_path):
    with open(before_path, encoding='utf-8') as file:
        before = set(file.read().splitlines())
    with open(after_path, encoding='utf-8') as file:
        after = set(file.read().splitlines())
    lines = [('+', line) for line in after - before] + [('-', line) for line in before - after]
    for sign, line in sorted(lines, key=lambda row: row[1].lower()):
        print(f'  {sign} {line}')
    if not lines:
        print('  nothing')


COMMANDS = {'tree': lambda args: show_tree(*args), 'links': show_links,
            'registry': lambda args: show_registry(*args), 'boot': lambda args: show_boot(*args),
            'files': lambda args: show_files(*args)}

if len(sys.argv) < 3 or sys.argv[1] not in COMMANDS:
    sys.exit(__doc__)
COMMANDS[sys.argv[1]](sys.argv[2:])
