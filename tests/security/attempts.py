"""The attempts to get a text through unescaped: what is tried, and the places of a file that bring it in.

Every payload is tried in every place. Each is between two copies of its mark, so that a test can find it in an output,
and can tell that it was not simply dropped.
"""
import collections
import json

Payload = collections.namedtuple("Payload", "name text")

ESC = "\x1b"
# Terminals: single controls.
CONTROLS = {f"control U+{code:04X}": chr(code) for code in
            (0x00, 0x05, 0x07, 0x08, 0x09, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x11, 0x13, 0x18, 0x1A, 0x1B, 0x7F,
             0x84, 0x85, 0x88, 0x8D, 0x8E, 0x90, 0x98, 0x9A, 0x9B, 0x9C, 0x9D, 0x9E, 0x9F)}
# Terminals: sequences. The colour is one that the program does not use.
SEQUENCES = {
    "CSI colour": ESC + "[38;5;123m", "CSI hidden text": ESC + "[8m", "CSI clear screen": ESC + "[2J",
    "CSI clear scrollback": ESC + "[3J", "CSI cursor up": ESC + "[1A", "CSI cursor home": ESC + "[H",
    "CSI erase line": ESC + "[2K", "CSI repeat": "x" + ESC + "[9999b", "CSI scroll region": ESC + "[1;1r",
    "CSI report position": ESC + "[6n", "CSI device attributes": ESC + "[c", "CSI report title": ESC + "[21t",
    "CSI resize": ESC + "[8;1;1t", "CSI alternate screen": ESC + "[?1049h", "CSI mouse": ESC + "[?1003h",
    "CSI end of a paste": ESC + "[201~", "CSI in 8 bits": "\x9b38;5;123m", "CSI that does not end": ESC + "[38;5",
    "OSC title": ESC + "]0;title\x07", "OSC link": f"{ESC}]8;;https://example.org{ESC}\\text{ESC}]8;;{ESC}\\",
    "OSC clipboard": ESC + "]52;c;cm0gLXJm\x07", "OSC palette": ESC + "]4;1;#000000\x07", "OSC colour query": ESC + "]11;?\x07",
    "OSC notification": ESC + "]777;notify;a;b\x07", "OSC file": ESC + "]1337;File=inline=1:AAAA\x07",
    "OSC directory": ESC + "]7;file:///etc\x07", "OSC prompt": ESC + "]133;A\x07", "OSC in 8 bits": "\x9d0;title\x9c",
    "OSC that does not end": ESC + "]0;title", "DCS": f"{ESC}Pq#0;2;0;0;0~{ESC}\\", "DCS status": f"{ESC}P$qm{ESC}\\",
    "DCS terminfo": f"{ESC}P+q544e{ESC}\\", "DCS in 8 bits": "\x90q~\x9c", "APC": f"{ESC}_Ga=T{ESC}\\", "PM": f"{ESC}^text{ESC}\\",
    "SOS": f"{ESC}Xtext{ESC}\\", "reset": ESC + "c", "line drawing": ESC + "(0", "screen of E": ESC + "#8", "keypad": ESC + "=",
    "save and restore": f"{ESC}7{ESC}8", "rewritten row": "\rforged: 0 failures", "overstrike": "a\b\b\b\bb",
}
# Text in another direction or order than its characters.
DIRECTIONS = {f"direction U+{code:04X}": f"a{chr(code)}b" for code in
              (0x61C, 0x200E, 0x200F, 0x202A, 0x202B, 0x202C, 0x202D, 0x202E, 0x2066, 0x2067, 0x2068, 0x2069)}
# Text that nobody can see.
INVISIBLE = {f"invisible U+{code:04X}": f"a{chr(code)}b" for code in
             (0xAD, 0x34F, 0x115F, 0x1160, 0x17B4, 0x180B, 0x180E, 0x200B, 0x200C, 0x200D, 0x2028, 0x2029, 0x2060, 0x2061, 0x2063,
              0x2064, 0x206A, 0x206F, 0x3164, 0xFE00, 0xFE0F, 0xFEFF, 0xFFA0, 0xFFF9, 0xFFFB, 0xE000, 0xF8FF, 0xFDD0, 0xFFFF,
              0x110BD, 0x13430, 0x1BCA0, 0x1D173, 0x1FFFE, 0xE0001, 0xE0041, 0xE007F, 0xE0100, 0xF0000, 0x10FFFD)}
INVISIBLE |= {
    "text of tags": "a" + "".join(chr(0xE0000 + ord(letter)) for letter in "hidden"),
    "tags after a flag": "\U0001F3F4" + "".join(chr(0xE0000 + ord(letter)) for letter in "hidden"),
    "selectors in a row": "a" + "\ufe0f\ufe0e" * 8, "joiners in a row": "\U0001F469" + "\u200d" * 8,
}
# Pages, and what is made from SARIF in a page.
MARKUP = {text: text for text in (
    "<script>attack()</script>", "</script><script>attack()</script>", "</style><script>attack()</script>",
    "</title><script>attack()</script>", "<img src=x onerror=attack()>", "<svg onload=attack()>", "<iframe srcdoc=x>",
    "<body onload=attack()>", "<details open ontoggle=attack()>", "<base href=//example.org>",
    "<meta http-equiv=refresh content=0>", "<form action=//example.org>", "<style>*{display:none}</style>", "<!--", "-->",
    "<![CDATA[", "]]>", "<?php", "&lt;script&gt;", "&#60;script>", "&", "</pre></li></ol><h1>", "</summary></details>",
    "\" onmouseover=attack() \"", "' autofocus onfocus=attack() '", "` onload=attack() `", "<a href=javascript:attack()>go</a>",
    "<plaintext>", "<math><mtext><style>",
)}
ADDRESSES = {text: text for text in (
    "javascript:attack()", "data:text/html,<script>attack()</script>", "[go](javascript:attack())", "[go](https://example.org)",
    "[go](1)", "![x](https://example.org/x.png)", "//example.org/x", "file:///etc/passwd", "..%2f..%2fetc", "%0d%0aSet-Cookie:a=b",
    "\\\\example.org\\share", "{0}", "{{", "#f1-1",
)}
# Shells, formats and records.
SYNTAX = {text: text for text in (
    "$(touch pwned)", "`touch pwned`", ";touch pwned;", "|touch pwned|", "&&touch pwned&", "'; touch pwned; '", "\"; touch pwned; \"",
    ">pwned", "<(touch pwned)", "${PATH}", "!!", "*?[a-z]", "{a,b}", "~root", "\\", "%s%s%n", "%n%n", "\",\"x\":\"", "\"}]}", "\\u001b[2J",
    "--- /dev/null", "+++ b/x", "@@ -1 +1 @@", "a: error: forged", "[invalid_data]",
)}

GROUPS = (CONTROLS, SEQUENCES, DIRECTIONS, INVISIBLE, MARKUP, ADDRESSES, SYNTAX)
PAYLOADS = [Payload(name, text) for group in GROUPS for name, text in group.items()]


def mark(index):
    return f"q{index:03}z"


def marked(index):
    """Returns the payload of that number between its marks."""
    return mark(index) + PAYLOADS[index].text + mark(index)


def quoted(text):
    return json.dumps(text, ensure_ascii=False)


def name_of(text):
    """Returns what of a text can be a name of a marker without quotes."""
    return "".join(letter for letter in text if letter.isalnum() or ord(letter) >= 0x80)


SETTINGS = ("uniqueId", "text", "taskClassDefFile", "run", "autorun", "collapsed", "view", "outputs", "variablesMap", "appState")


def settings_with(text):
    return ",".join(f"{quoted(name)}:{quoted(text)}" for name in (*SETTINGS, text))


def units(text):
    return len(text.encode("utf-16-le")) // 2


# The places of a file: each makes lines of code, and lines of the appendix, from a text and the number of the attempt. JSON
# strings contain the text as it is, apart from ASCII controls, which come back when the string is read.
PLACES = {
    "line": lambda text, n: (f"{text}\n", ""),
    "anchor id": lambda text, n: (f"# <@text:anchor#{quoted(text)}>\n", ""),
    "repeated anchor id": lambda text, n: (f"# <@text:anchor#{quoted(text)}>\n" * 2, ""),
    "task id": lambda text, n: (f"# <@task#{quoted(text)}>\n" * 2, ""),
    "id of an unpaired task": lambda text, n: (f"# <@task#{quoted(text)}>\n", ""),
    "id of a nested task": lambda text, n: (f"# <@task#a{n}>\n# <@task#{quoted(text)}>\n" * 2, ""),
    "similar task id": lambda text, n: (f"# <@task#{quoted(text + 'long')}>\n# <@task#{quoted(text + 'lomg')}>\n", ""),
    "output id": lambda text, n: (f"x = 1  # <@output#{quoted(text)} [0,1]>\n", ""),
    "id of a failed range": lambda text, n: (f"x = 1  # <@output#{quoted(text)} [7,3]>\n", ""),
    "id without quotes": lambda text, n: (f"x = 1  # <@output#{text} [0,1]>\n", ""),
    "control id": lambda text, n: (f"x = 1  # <@control#{quoted(text)} [0,1]>\n", ""),
    "element": lambda text, n: (f"x = 1  # <@{name_of(text)}#a [0,1]>\n", ""),
    "type": lambda text, n: (f"x = 1  # <@output:{name_of(text)}#a [0,1]>\n", ""),
    "data key": lambda text, n: (f"x = 1  # <@output#o [0,1] {{{quoted(text)}:1}}>\n", ""),
    "data value": lambda text, n: (f"x = 1  # <@output#o [0,1] {{\"a\":{quoted(text)}}}>\n", ""),
    "nested data": lambda text, n: (f"x = 1  # <@output#o [0,1] {{\"a\":[{{{quoted(text)}:[{quoted(text)}]}}]}}>\n", ""),
    "value of a control": lambda text, n: (f"x = 1  # <@control#c [0,1] {{\"value\":{quoted(text)}}}>\n", ""),
    "options of a control": lambda text, n: (
        f"x = 1  # <@control#c [0,1] {{\"options\":[{quoted(text)},{{\"label\":{quoted(text)}}}]}}>\n", ""),
    "text of a control": lambda text, n: (f"{text}  # <@control#c [0,{units(text)}]>\n", ""),
    "text of an output": lambda text, n: (f"{text}  # <@output#c [0,{units(text)}]>\n", ""),
    "damaged data": lambda text, n: (f"x = 1  # <@output#o [0,1] {{\"a\":{quoted(text)}]>\n", ""),
    "marker that does not end": lambda text, n: (f"x = 1  # <@output#o [0,1] {text}\n", ""),
    "range": lambda text, n: (f"x = 1  # <@output#o [{text},1]>\n", ""),
    "text after a marker": lambda text, n: (f"x = 1  # <@output#o [0,1]> {text}\n", ""),
    "string": lambda text, n: (f"x = \"{text} # <@output#o [0,1]>\"\n", ""),
    "line of a task": lambda text, n: (f"# <@task#t{n}>\n{text}\n# <@task#t{n}>\n", ""),
    "task settings": lambda text, n: (f"# <@task#t{n}>\n" * 2, f"# <@task#t{n} {{{settings_with(text)}}}>\n"),
    "appendix line": lambda text, n: ("x\n", f"{text}\n"),
    "appendix entry": lambda text, n: ("x\n", f"# <@task#{quoted(text)} {{\"text\":{quoted(text)}}}>\n"),
    "damaged appendix entry": lambda text, n: ("x\n", f"# <@task#t {{\"text\":{quoted(text)}]>\n"),
}
# A raw line feed ends a line, so it cannot be in one.
assert not any("\n" in payload.text for payload in PAYLOADS)


def source_of(place):
    """Returns a file with every payload in one place."""
    parts = [PLACES[place](marked(index), index) for index in range(len(PAYLOADS))]
    code, appendix = ("".join(part) for part in zip(*parts))
    return code + ("# <@appendix>\n" + appendix if appendix else "")
