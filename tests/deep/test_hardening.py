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
    'limn_dialog_module': {'LM_UseDesktopDialog'},
    'limn_frei0r': {'f0r_' + name for name in (
        'init deinit get_plugin_info get_param_info construct destruct set_param_value get_param_value '
        'update').split()},
    'limn_vips_module': {'g_module_check_init'},
    'limn_python': {'PyInit__limn'},
    'limn_gegl': {'gegl_module_query', 'gegl_module_register'},
    'toolbox': declared(TOOLBOX, 'toolbox/core/*.h'),
    'toolbox_qt': declared(TOOLBOX, 'toolbox/qt/*/*.h') | {'qd'},
}


def symbols(path, which):
    """Without arguments and namespaces of versions."""
    for line in tool('nm', '-DC', which, path).splitlines():
        kind, name = line[17:].split(' ', 1)
        if kind != 'A':  # the name of a version
            yield re.sub(r'\[abi:\w+\]|\(.*|@.*', '', name)


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
                    self.assertEqual(set(symbols(path, '--defined-only')), EXPORTS[name])

    def test_the_dialog_is_the_dialog_alone(self):
        """Session and engine are the plug-in's beside it, whatever other copy the process has."""
        self.assertIn('LM_SetDialogServices', EXPORTS['limn_module'])
        self.assertIn('[$ORIGIN/limn.so]', tool('readelf', '-dW', FILES['limn_dialog_module']))

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


# The plug-in shows what its dialog asks for, and its entry.
EXPORTS['limn_module'] = {'main'} | {
    name for name in symbols(FILES['limn_dialog_module'], '--undefined-only') if name.startswith('LM_')}
unittest.main(argv=sys.argv[:1])
