#!/usr/bin/env python3
# Holds the manifests of a download against winget's rules, the download itself, what an install registers and what
# administrators read.
# usage: manifests.py DIST-FOLDER SCENARIO-SETS DEPLOYMENT-PAGE
import hashlib
import re
import sys
from pathlib import Path

import yaml

ALL = 'PackageIdentifier PackageVersion ManifestType ManifestVersion'
# Of each file its type, the keys that it must have beside those, and those that it can have.
FILES = {
    '': ('version', 'DefaultLocale', ''),
    '.installer': ('installer', 'Installers InstallerType InstallerSwitches AppsAndFeaturesEntries',
                   'ExpectedReturnCodes Scope InstallModes UpgradeBehavior UnsupportedArguments ElevationRequirement'),
    '.locale.en-US': ('defaultLocale', 'PackageLocale Publisher PackageName License ShortDescription', 'PublisherUrl'),
}
SWITCHES = 'Silent SilentWithProgress Interactive InstallLocation'
# What the installer's says of the setup.
CHOICES = {
    'InstallerType': 'exe',
    'Scope': 'machine',
    'InstallModes': ['interactive', 'silent'],
    'UpgradeBehavior': 'install',
    'UnsupportedArguments': ['log'],
    'ElevationRequirement': 'elevatesSelf',
}


def check_installer(manifest):
    (download,), (entry,) = manifest['Installers'], manifest['AppsAndFeaturesEntries']
    assert (download['Architecture'], download['InstallerSha256']) == ('x64', total)
    assert entry.pop('ProductCode') == 'Lumacap 8'
    for value in entry:
        assert f'{value} = {entry[value]}\n' in sets, value
    assert CHOICES == {key: manifest[key] for key in CHOICES}
    silent, progress, interactive, location = map(manifest['InstallerSwitches'].get, SWITCHES.split())
    assert silent == progress and silent.startswith(interactive + ' ') and f'Lumacap8Setup.exe {silent}\n' in page
    assert location.replace('<INSTALLPATH>', r'C:\Tools\Lumacap 8') + '\n' in page
    codes = [(code['InstallerReturnCode'], code['ReturnResponse']) for code in manifest['ExpectedReturnCodes']]
    assert codes == [(int(code), 'custom') for code in re.findall(r'^\| (?:0x.* )?([1-9]\d*) ', page, re.M)]


dist = Path(sys.argv[1])
sets, page = (Path(name).read_text() for name in sys.argv[2:])
program = (dist / 'Lumacap8Setup.exe').read_bytes()
total = hashlib.sha256(program).hexdigest()
assert (dist / 'SHA256SUMS').read_text() == f'{total}  Lumacap8Setup.exe\n'
for setup in program, (dist / '../setup.exe').read_bytes():
    assert b'level="requireAdministrator" uiAccess="false"' in setup
assert bytes.fromhex('14000800 00000100' * 2) in program  # 8.20.1.0, of the file and of the product
for name, (kind, needed, possible) in FILES.items():
    content = (dist / f'winget/Tandrel.Lumacap8{name}.yaml').read_bytes()
    assert content[:1] == b'P' and b'\r' not in content, name
    manifest = yaml.safe_load(content)
    assert set(f'{ALL} {needed}'.split()) <= set(manifest) <= set(f'{ALL} {needed} {possible}'.split()), name
    assert [manifest[key] for key in ALL.split()] == ['Tandrel.Lumacap8', '8.20.1.0', kind, '1.6.0'], name
    assert manifest.get('DefaultLocale', 'en-US') == 'en-US'
    if kind == 'installer':
        check_installer(manifest)
