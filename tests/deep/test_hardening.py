"""The programs, modules and libraries as built: what makes a fault harder to use, and the symbols that each
library shows, which are those that its header or contract names and no others.

usage: test_hardening.py SOURCES BUILD NAME=FILE...
"""
import json
import pathlib
import re
import subprocess
import sys
import unittest

SOURCES, BUILD = (pathlib.Path(path) for path in sys.argv[1:3])
FILES = dict(word.split('=', 1) for word in sys.argv[3:])
PROGRAMS = {'limn', 'limn-edit', 'corvaline'}


def tool(*words):
    return subprocess.run(words, check=True, capture_output=True, text=True).stdout


def declared(pattern, *headers):
    """The names that the pattern's groups find in the headers."""
    found = set()
    for glob in headers:
        for header in SOURCES.glob(glob):
            found.update(re.findall(pattern, re.sub(r'(?m)^#.*', '', header.read_text())))
    return found


FUNCTION = r'[^;{()]*?(\w+)\s*\('
TOOLBOX = r'\bTB_EXPORT' + FUNCTION
EXPORTS = {
    'liblimn': declared(r'\bLIMN_API' + FUNCTION, 'library/limn.h'),
    'limn_module': {'main'},
    'limn_dialog_module': {'LM_dialog_main'},
    'limn_frei0r': {'f0r_' + name for name in (
        'init deinit get_plugin_info get_param_info construct destruct set_param_value get_param_value '
        'update').split()},
    'limn_vips_module': {'g_module_check_init'},
    'limn_gegl': {'gegl_module_query', 'gegl_module_register'},
    'toolbox': declared(TOOLBOX, 'toolbox/core/*.h'),
    'toolbox_qt': declared(TOOLBOX, 'toolbox/qt/*/*.h') | {'qd'},
}


def exported(path):
    """Without arguments and namespaces of versions."""
    names = set()
    for line in tool('nm', '-DC', '--defined-only', path).splitlines():
        kind, name = line.split(' ', 2)[1:]
        if kind == 'A':  # the name of a version
            continue
        names.add(re.sub(r'\[abi:\w+\]|\(.*|@.*', '', name))
    return names


class Hardening(unittest.TestCase):
    def test_loaded_files(self):
        for name, path in FILES.items():
            with self.subTest(name):
                text = tool('readelf', '-hldW', path)
                self.assertRegex(text, r'Type:\s+DYN')
                self.assertRegex(text, r'GNU_STACK .* RW +0x')
                self.assertNotRegex(text, r'LOAD .* RWE ')
                self.assertIn('GNU_RELRO', text)
                self.assertNotIn('TEXTREL', text)
                self.assertRegex(text, r'\(FLAGS_1\).*NOW' + ('.*PIE' if name in PROGRAMS else ''))
                for folders in re.findall(r'\((?:RUNPATH|RPATH)\).*\[(.*)\]', text):
                    self.assertTrue(all(folder.startswith('$ORIGIN') for folder in folders.split(':')), folders)
                if name != 'limn_frei0r':  # it has no arrays of its own to watch
                    self.assertIn('__stack_chk_fail', tool('nm', '-D', '--undefined-only', path))

    def test_symbols(self):
        for name, path in FILES.items():
            if name not in PROGRAMS:
                with self.subTest(name):
                    self.assertEqual(exported(path), EXPORTS[name])

    def test_every_source_file(self):
        """What leaves no trace in a file that has no use for it."""
        wanted = ['-fstack-protector-strong', '-D_FORTIFY_SOURCE=2', '-O']
        if machine() == 'x86_64':
            wanted += ['-fstack-clash-protection', '-fcf-protection']
        commands = json.loads((BUILD / 'compile_commands.json').read_text())
        self.assertGreater(len(commands), 100)
        for command in commands:
            for flag in wanted:
                self.assertIn(f' {flag}', command['command'], command['file'])


def machine():
    return tool('uname', '-m').strip()


unittest.main(argv=sys.argv[:1])
