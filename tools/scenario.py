#!/usr/bin/env python3
"""Turns the text of a scenario into steps for the player, and what the player told of them into a text again.

usage: scenario.py steps SCENARIO VERSION BUILD-FOLDER    prints the steps
       scenario.py MODE SCENARIO VERSION TOLD             what becomes of the machine's text:
           check      fails if it isn't the scenario's
           --write    it takes the scenario's place; lines of other Windows versions stay
           --whole    it is printed with plain paths, and with the sets written out
"""
import difflib
import getpass
import itertools
import os
import re
import sys

PLACES = r'''
HKCR\ is HKLM\Software\Classes\
HKCU\ is HKU\S-1-5-21-0-0-0-1000\
<app path> is HKLM\Software\Microsoft\Windows\CurrentVersion\App Paths\Lumacap8.exe
<entries> is HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall
<entry> is <entries>\Lumacap 8
<product> is Software\Tandrel\Lumacap 8
<hosts> is Software\Mozilla\NativeMessagingHosts
<handler> is {6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}
<thumbnails> is {E357FCCD-A995-4576-B01F-234630154E96}
<formats> is HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer\FileExts
<package> is C:\Package
<target> is C:\Program Files\Lumacap 8
<program> is "<target>\Lumacap8.exe"
<programs> is C:\ProgramData\Microsoft\Windows\Start Menu\Programs
<group> is <programs>\Lumacap 8
<desktop> is C:\users\Public\Desktop
<boot copy> is <user>\Temp\uni*.tmp
AllUsers = <kind> is AllUsers = B
> setup is > run <package>\setup.exe
> uninstall is > run "<target>\LumUnInst.exe"
> pkgtool is > run <build>\pkgtool.exe'''
CURRENT_USER = r'''
<programs> is <user>\AppData\Roaming\Microsoft\Windows\Start Menu\Programs
<desktop> is <user>\Desktop
AllUsers = <kind> is AllUsers = A'''
VERSION = r'> copy /y <build>\\variants\\Lumacap8-\1.exe <package>\\Lumacap8.exe'
PACKAGE = 'C:\\Package'
LIST = PACKAGE + '\\LumUnInst.log'
ANSWERS = {'ok': '1', 'yes': '6', 'no': '7'}
OPPOSITE = {'+': '-', '-': '+'}

# The boot list is told in words of its own. The file takes the output of the programs that the player starts. Exit code
# 0 is what a reader expects, and the product's first line of its report is empty.
UNTOLD = r'.* : PendingFileRenameOperations = |.*\\Temp\\out\w+\.tmp|exit code 0$|started: $'
STAYS = 'exit code 259'  # of a product that has opened

names = {'<user>': 'C:\\users\\' + (os.environ.get('USER') or getpass.getuser())}  # as Wine has it
places = {}    # the other way round
sets = {}      # of lines; one that holds another comes behind it
contents = {}  # by number: where it comes from
unknown = []   # numbers of contents that are nobody's and no short text
lists = []     # the text of the package's list
waiting = []   # what the boot list held before the step


def read(path):
    """The lines that hold on this Windows version, and None for the others."""
    for line in open(path).read().splitlines():
        mark, other, versions, text = re.match(r'(\[(not )?(.*?)\] )?(.*)', line).groups('')
        yield text if not mark or (version in versions.split()) != bool(other) else None


def place(text):
    for _ in range(4):  # a place may begin with another one
        for name in names:
            text = text.replace(name, names[name])
    return text


def define(line):
    """Takes up a line that says where something lies; true for one."""
    name, _, text = line.partition(' is ')
    if line == '<kind> is the current user':
        for line in CURRENT_USER.splitlines():
            define(line)
    elif text and line[0] in '<=>HA':
        names[name] = text
        if name.endswith(' 2>'):  # the second of a place makes one of each that lies there
            names.update((other[:-1] + ' 2>', text.replace(name[:-3] + '>', name)) for other, text in list(names.items())
                         if other[0] == '<' and name[:-3] + '>' in text)
        places.update((place(name), name) for name in names if mode != '--whole' or '<' not in name)
    return text


def rename(text):
    text = re.sub(r'uni\w+\.tmp', 'uni*.tmp', text)
    for place in sorted(places, key=len, reverse=True):
        text = text.replace(place, places[place])
    return text


def head(line):
    """What indented lines below the line go on from: the values of a key, the content of a folder."""
    found = re.match(r'[+-] (.*? : |.*\\$)', line)
    return found[0] if found else '\n'


def read_sets(lines):
    for line in filter(None, lines):
        if line.startswith('* '):
            members = sets['{' + line[2:] + '}'] = []
        elif line in sets:
            members += sets[line]
        elif line.startswith('    '):
            members.append(start + line[4:])
        elif line[0] != '#' and not define(line):
            members.append(line)
            start = head(line)


def opposite(line):
    return OPPOSITE.get(line[0], '?') + line[1:]


def parts(line, step):
    """The line of a file with its content's name, which the package's file of that name needs none of; for its log
    a line besides for each that stands behind the package's list."""
    found = re.match(r'([+-] (C:.*)) = (\d+)( \(.*\))?(?:\t(.*))?$', line)
    if not found:
        yield line.replace('\t', ' in ')
        return
    file, path, number, attributes, text = found.groups('')
    origins = contents.setdefault(number, [])
    if path == LIST:
        lists.append(text)
    if path.startswith(PACKAGE):
        origins.append(step or path)
    elif not origins:
        text = text.replace(lists[0], LIST + '\t').removesuffix('\t')
        unknown.extend([number] * (not text))
        origins.append(text or f'content {len(unknown)}')
    own = [origin for origin in origins if origin[:10] == PACKAGE and path.endswith(origin.split('\t')[0][10:])]
    name, *added = (own or origins)[0].split('\t')
    yield file + (f' = {name}' if not own else '') + attributes
    for text in added:
        yield f'{file} : {text}'.rstrip()


def changes(told, step):
    lines = [line for line in told.splitlines() if not re.match(UNTOLD, line)]
    boot = [line for line in lines if line.startswith('boot: ')]
    new = boot[len(waiting):] if boot[:len(waiting)] == waiting else boot
    waiting[:] = boot
    lines = [rename(part) for line in lines[:len(lines) - len(boot)] + new for part in parts(line, step)]
    # Gone and come alike is what was written anew as it stood, under another number. A product that the step itself
    # starts tells of its start, and stays.
    own = [f'started: {step[4:]} in <package>']
    own += [STAYS] if own[0] in lines else []
    lines = [line for line in lines if opposite(line) not in lines and line not in own]
    return sorted(lines, key=lambda line: line[line[0] in OPPOSITE and 2:] if line[0] in '+-s' else '')


def fold(lines):
    """Lines of a set give way to its name, and to those of its lines that are missing, if these are few."""
    told = []
    for name, number, sign in itertools.product(reversed(sets), (' 2', ''), OPPOSITE):
        members = [re.sub('(<.*?)>', lambda match: match[1] + number * (match[1] + ' 2>' in names) + '>', line)
                   for line in sets[name]]
        if number and members == sets[name]:
            continue
        if sign == '-':
            members = [opposite(line) for line in members if line[0] in OPPOSITE]
        missing = [line for line in members if line not in lines]
        if len(missing) * 4 < len(members):
            for line in set(members) - set(missing):
                lines.remove(line)
            told.append(f'{sign} {name}{number}')
            told += ['    without ' + line.lstrip('+- ') for line in fold(missing)]
    return told + lines


def indent(lines):
    start = '\n'
    for line in lines:
        if line.startswith(start):
            yield '    ' + line[len(start):]
        else:
            yield line
            start = head(line)


def tell(said, told):
    yield from (line for line in changes(told.pop(0), '') if line.startswith('FAILED'))
    for line in said:
        define(line)
        if mode != '--whole' and line[:1] in '<#>':
            yield line
        elif line.startswith('>'):
            yield '\n' + place(line).replace('> run ', '> ')
        if line.startswith('>'):
            block = changes(told.pop(0), line[2:])
            if re.match('> (run|restart)', place(line)):
                yield from indent(sorted(fold(list(block)), key=lambda line: line[0] in '+- '))
                if mode == '--whole':
                    sets['{all that the command above brought}'] = block
            elif not block and not re.match('> (hold|map|answer)', line):
                yield 'FAILED: nothing changed'
    yield from told[:-1]


def print_steps(said, build):
    names['<build>'] = 'Z:' + build.replace('/', '\\')
    print(place('xcopy /s /e /q <build>\\package <package>\\'), end='')
    for line in said:
        define(line)
        if line.startswith('>'):
            line = re.sub('> version (.*)', VERSION, line)
            if line.startswith('> answer'):
                line = re.sub('ok|yes|no', lambda match: ANSWERS[match[0]], line)
            print('\n' + place(line)[2:], end='')


def check(said, shown):
    """Of the page that a scenario may name, too: its commands are steps of the scenario."""
    difference = list(difflib.unified_diff(said, shown, path, 'this machine, ' + version, lineterm=''))
    for page in re.findall('# Commands of (.*)', '\n'.join(said)):
        commands = re.findall('^    (.*)', open(page).read(), re.M)
        difference += [f'no step: {command}' for command in commands if '> run ' + command not in said]
    for line in difference:
        print(line)
    sys.exit(bool(difference) or not any(line.startswith('> ') for line in shown))


def write(said, shown):
    lines = open(path).read().splitlines()
    own = [number for number, line in enumerate(read(path)) if line is not None] + [len(lines)]
    for _, first, last, new_first, new_last in reversed(difflib.SequenceMatcher(None, said, shown).get_opcodes()):
        for number in reversed(own[first:last]):
            del lines[number]
        lines[own[first]:own[first]] = shown[new_first:new_last]
    print(*lines, sep='\n', file=open(path, 'w'))


mode, path, version, other = sys.argv[1:]
for line in PLACES.splitlines():
    define(line)
said = [line for line in read(path) if line is not None]
if mode != '--whole':
    read_sets(read(os.path.dirname(path) + '/sets'))
if mode == 'steps':
    print_steps(said, other)
else:
    shown = list(tell(said, re.split(r'^\.\n', open(other, encoding='latin-1').read(), flags=re.M)))
    {'check': check, '--write': write, '--whole': lambda _, shown: print(*shown, sep='\n')}[mode](said, shown)
