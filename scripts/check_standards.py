#!/usr/bin/python3
"""Checks a standards directory the way kplan reads it.

Usage: check_standards.py [standard directory] [-v]   (default: data/standards/通用国标)

Class tables: every class line must parse to the same code, name, colour and layers under the
reader of the full table and under the four-map reader (which needs a blank before "$", "*",
"&"); the colour lookup and the hatch lookup, which split lines at ":" and at their markers,
must find the same colour and a three-part hatch with an acad.pat pattern and a whole-number
scale of at least 1; no class line may stand after a section header or contain "="; remarks
must not hold a marker, ":" or "/" (the hatch lookup keeps a remark in its last part). The two
national tables must hold exactly the classes of their standards, and the underground tables
only codes of their standard.

Ini files: every FILE of FAppDataSet.ini exists and has the section of its application; every
conversion line names existing classes by their names in the tables; every facility kind has
its file, MENU entries have sections, AllowDKXZ codes exist in one of the national tables,
BLKFILE exists (and holds the named blocks when ezdxf is available).

Exits 1 and lists the faults when anything is wrong. -v prints each class with the colour index
nearest to its colour.
"""

import colorsys
import os
import re
import sys

MARKERS = ":$@*&#"
STOPS = {":": " $@*&#", "$": " @*&#", "@": " *&#", "*": " &#", "&": " #", "#": ""}

PATTERNS = set(
    "SOLID ANGLE ANSI31 ANSI32 ANSI33 ANSI34 ANSI35 ANSI36 ANSI37 ANSI38 AR-B816 AR-B816C AR-B88 "
    "AR-BRELM AR-BRSTD AR-CONC AR-HBONE AR-PARQ1 AR-RROOF AR-RSHKE AR-SAND BOX BRASS BRICK "
    "BRSTONE CLAY CORK CROSS DASH DOLMIT DOTS EARTH ESCHER FLEX GRASS GRATE GRAVEL HEX HONEY "
    "HOUND INSUL LINE MUDST NET NET3 PLAST PLASTI SACNCR SQUARE STARS STEEL SWAMP TRANS TRIANG "
    "ZIGZAG".split()
)


def expand(text):
    """'R1[1-4]' stands for R11 R12 R13 R14."""
    out = []
    for tok in text.split():
        m = re.fullmatch(r"([A-Z]\d*)\[(\d)-(\d)\]", tok)
        out += [m.group(1) + str(i) for i in range(int(m.group(2)), int(m.group(3)) + 1)] if m else [tok]
    return out


# GB 50137-2011: 2 + 9 + 14 urban-and-rural, 8 + 35 + 42 urban construction land classes
GB2011 = expand(
    "H H1 H1[1-4] H2 H2[1-5] H3 H4 H4[1-2] H5 H9 E E1 E1[1-3] E2 E9 "
    "R R1 R1[1-2] R2 R2[1-2] R3 R3[1-2] A A1 A2 A2[1-2] A3 A3[1-5] A4 A4[1-2] A5 A5[1-3] A59 "
    "A6 A7 A8 A9 B B1 B1[1-4] B2 B2[1-2] B29 B3 B3[1-2] B4 B41 B49 B9 M M[1-3] W W[1-3] "
    "S S1 S2 S3 S4 S4[1-2] S9 U U1 U1[1-6] U2 U2[1-2] U3 U3[1-2] U9 G G[1-3]"
)
# GBJ 137-90: 10 + 46 + 73 classes
GB1990 = expand(
    "R R1 R1[1-4] R2 R2[1-4] R3 R3[1-4] R4 R4[1-4] C C1 C1[1-2] C2 C2[1-6] C3 C3[1-6] "
    "C4 C4[1-2] C5 C5[1-3] C6 C6[1-5] C7 C9 M M[1-3] W W[1-3] T T1 T2 T2[1-3] T3 T4 T4[1-2] T5 "
    "S S1 S1[1-3] S19 S2 S2[1-2] S3 S3[1-2] U U1 U1[1-4] U2 U2[1-2] U29 U3 U4 U4[1-2] U5 U6 U9 "
    "G G1 G1[1-2] G2 G2[1-2] D D[1-3] E E[1-8] E2[1-2] E29 E6[1-3] E69"
)
assert len(GB2011) == 2 + 9 + 14 + 8 + 35 + 42 and len(GB1990) == 10 + 46 + 73

faults = []


def fault(where, what):
    faults.append(f"{where}: {what}")


def read_text(path):
    raw = open(path, "rb").read()
    if raw.startswith(b"\xef\xbb\xbf"):
        fault(path, "has a byte-order mark")
        raw = raw[3:]
    if b"\r" in raw:
        fault(path, "has CR line ends")
    return raw.decode("utf-8").split("\n")


def read_ini(path):
    """Sections in file order, each a list of (key, value)."""
    sections, cur = {}, None
    for n, line in enumerate(read_text(path), 1):
        s = line.strip()
        if not s or s.startswith(";"):
            continue
        if s.startswith("["):
            if not s.endswith("]"):
                fault(f"{path}:{n}", "broken section header")
            cur = sections.setdefault(s[1:-1].strip(), [])
        elif "=" in s and cur is not None:
            k, v = s.split("=", 1)
            cur.append((k.strip(), v.strip()))
        elif cur is not None:
            fault(f"{path}:{n}", f"not a key line: {s!r}")
    return sections


def ini_get(sections, sec, key):
    return next((v for k, v in sections.get(sec, []) if k == key), None)


# ---- class tables -------------------------------------------------------------------------------


def parse_full(line):
    s = line.strip()
    if not s or s[0] in ";[":
        return None
    pos = {m: s.find(m) for m in MARKERS}
    if pos[":"] <= 0 or not s[: pos[":"]].strip():
        return None
    fields = {}
    for m in MARKERS:
        if pos[m] < 0:
            continue
        rest = s[pos[m] + 1 :]
        ends = [rest.find(c) for c in STOPS[m] if rest.find(c) >= 0]
        value = rest[: min(ends)] if ends else rest
        if value.strip():
            fields[m] = value.strip()
    return s[: pos[":"]].strip(), fields


def parse_four(line):
    s = line.strip()
    code = s[: s.find(":")].strip()
    fields = {":": re.split(r"[ $@*&#]", s[s.find(":") + 1 :])[0].strip()}
    for m in "$*&":
        p = next((i for i in range(1, len(s)) if s[i] == m and s[i - 1] == " "), -1)
        if p >= 0:
            value = re.split("[" + re.escape(STOPS[m]) + "]", s[p + 1 :])[0].strip()
            if value:
                fields[m] = value
    return code, fields


def class_lines(lines, code):
    for line in lines:
        s = line.strip()
        if not s or s[0] in ";[":
            continue
        parts = s.split(":")
        if len(parts) >= 2 and parts[0] == code:
            yield parts[1]


def lookup_colour(lines, code):
    for second in class_lines(lines, code):
        pieces = second.split("$")
        if len(pieces) > 1:
            m = re.match(r"[0-9/(),]*", pieces[1].strip())
            return m.group(0).strip()
    return ""


def lookup_hatch(lines, code):
    for second in class_lines(lines, code):
        pieces = second.split("@")
        if len(pieces) < 2:
            continue
        t = pieces[1].strip()
        if t.find("*") > 0:
            t = t.split("*")[0]
        elif t.find("&") > 0:
            t = t.split("&")[0]
        elif t.find("#") > 0:
            t = t.split("&")[0]
        parts = t.strip().split("/")
        if len(parts) != 3:
            return None

        def num(x):
            m = re.match(r"\s*[-+]?\d*\.?\d*", x).group(0).strip()
            return float(m) if m not in ("", "+", "-", ".") else 0.0

        return parts[0], round(num(parts[1])), round(num(parts[2]))
    return None


def parse_colour(text):
    text = text.split("/")[0].strip().lstrip("(").rstrip(")")
    parts = text.split(",")
    if len(parts) == 3 and all(p.strip().isdigit() for p in parts):
        return tuple(int(p) % 256 for p in parts)
    if text.isdigit() and 0 <= int(text) <= 256:
        return int(text)
    return None


def aci_palette():
    pal = {1: (255, 0, 0), 2: (255, 255, 0), 3: (0, 255, 0), 4: (0, 255, 255), 5: (0, 0, 255)}
    pal.update({6: (255, 0, 255), 7: (255, 255, 255), 8: (128, 128, 128), 9: (192, 192, 192)})
    for i in range(10, 250):
        k = i % 10
        v = (1.0, 1.0, 0.65, 0.65, 0.5, 0.5, 0.3, 0.3, 0.15, 0.15)[k]
        rgb = colorsys.hsv_to_rgb((i // 10 - 1) * 15 / 360.0, 1.0 if k % 2 == 0 else 0.5, v)
        pal[i] = tuple(round(c * 255) for c in rgb)
    for i, g in zip(range(250, 256), (51, 80, 105, 130, 190, 255)):
        pal[i] = (g, g, g)
    return pal


PALETTE = aci_palette()


def nearest_index(rgb):
    return min(PALETTE, key=lambda i: sum((a - b) ** 2 for a, b in zip(PALETTE[i], rgb)))


def check_table(path, expected=None, allowed=None, verbose=False):
    lines = read_text(path)
    names, in_section = {}, False
    for n, line in enumerate(lines, 1):
        where, s = f"{os.path.basename(path)}:{n}", line.strip()
        in_section |= s.startswith("[")
        parsed = parse_full(line)
        if parsed is None:
            if s and s[0] not in ";[" and "=" not in s:
                fault(where, f"line is neither a class, a comment nor an ini key: {s!r}")
            continue
        code, f = parsed
        if in_section:
            fault(where, "class line after a section header")
        if "=" in s:
            fault(where, 'class line holds "="')
        if code in names:
            fault(where, f"{code} listed twice")
        if ":" not in f:
            fault(where, "no name")
            continue
        names[code] = f[":"]
        if "$" not in f:
            fault(where, "no colour")
        if parse_four(line) != (code, {k: v for k, v in f.items() if k in ":$*&"}):
            fault(where, f"the four-map reader sees {parse_four(line)}")
        colour = lookup_colour(lines, code)
        if colour != f.get("$") or parse_colour(colour) is None:
            fault(where, f"colour lookup finds {colour!r}")
        hatch = lookup_hatch(lines, code)
        if "@" in f:
            if hatch is None:
                fault(where, "hatch field is not pattern/scale/angle")
            else:
                if hatch[0] not in PATTERNS:
                    fault(where, f"{hatch[0]} is not an acad.pat pattern")
                if hatch[1] < 1:
                    fault(where, "hatch scale rounds below 1")
                if f["@"] != f"{hatch[0]}/{hatch[1]}/{hatch[2]}":
                    fault(where, f"hatch lookup reads {hatch}, the table says {f['@']}")
        if "#" in f and re.search(r"[:/$@*&]", f["#"]):
            fault(where, 'remark holds a marker, ":" or "/"')
        if verbose:
            c = parse_colour(colour)
            idx = nearest_index(c) if isinstance(c, tuple) else c
            print(f"  {code:5} {f[':']}  {colour}  ~{idx}  {f.get('@', '')}")
    if expected is not None:
        missing = [c for c in expected if c not in names]
        extra = [c for c in names if c not in expected]
        if missing:
            fault(path, f"classes missing: {' '.join(missing)}")
        if extra:
            fault(path, f"not classes of the standard: {' '.join(extra)}")
    if allowed is not None:
        extra = [c for c in names if c not in allowed]
        if extra:
            fault(path, f"codes not in the standard: {' '.join(extra)}")
    sections = read_ini(path)
    for sec, keys in (
        ("用地图层前后缀", ["规划用地边界前缀", "规划用地填充后缀", "现状用地边界前缀"]),
        ("地块颜色", ["填充颜色", "边界颜色", "图案颜色"]),
    ):
        for key in keys:
            if ini_get(sections, sec, key) is None:
                fault(path, f"[{sec}] lacks {key}")
    if ini_get(sections, "地块颜色", "填充颜色"):
        print(f"  note: {os.path.basename(path)} colours every class with [地块颜色] 填充颜色")
    print(f"{os.path.basename(path)}: {len(names)} classes")
    return names


# ---- configuration ----------------------------------------------------------------------------


def check_config(root, new_names, old_names):
    cfg = os.path.join(root, "参数配置")
    ghtype = read_ini(os.path.join(cfg, "KovaGHTypeSet.ini")).get("GHTYPE", [])
    default = dict(ghtype).get("DEFAULT")
    if not default or default not in dict(ghtype):
        fault("KovaGHTypeSet.ini", "DEFAULT does not name a planning type of [GHTYPE]")

    register = read_ini(os.path.join(cfg, "FAppDataSet.ini"))
    for app, keys in register.items():
        keys = dict(keys)
        if not keys.get("NAME"):
            fault("FAppDataSet.ini", f"[{app}] has no NAME")
        if keys.get("FILE"):
            name = keys["FILE"]
            if name[-4:].lower() not in (".ini", ".txt", ".xml"):
                name += ".ini"
            path = os.path.join(cfg, name)
            if not os.path.exists(path):
                fault("FAppDataSet.ini", f"[{app}] FILE {name} does not exist")
            elif not read_ini(path).get(app):
                fault(name, f"has no fields in section [{app}]")
            else:
                for key, value in read_ini(path)[app]:
                    if not re.fullmatch(r"F(S|D|N|DC)_[A-Z]+", key):
                        fault(name, f"{key} is not a field key")
                    alias, _, flag = value.partition(";")
                    if not alias or (flag and not re.fullmatch(r"\d+", flag)):
                        fault(name, f"{key}={value} is not alias[;flag]")
        if keys.get("BLKFILE") and not os.path.exists(os.path.join(root, "配套公建", keys["BLKFILE"])):
            fault("FAppDataSet.ini", f"[{app}] BLKFILE {keys['BLKFILE']} not in 配套公建")

    seen = set()
    for n, line in enumerate(read_text(os.path.join(cfg, "新旧标准代码转换输入表.txt")), 1):
        s = line.strip()
        if not s or s.startswith(";"):
            continue
        cols = s.split(",")
        where = f"新旧标准代码转换输入表.txt:{n}"
        if len(cols) != 5:
            fault(where, "needs 旧代码,旧名称,新代码,新名称,说明")
            continue
        old, old_name, new, new_name = (c.strip() for c in cols[:4])
        if old in seen:
            fault(where, f"{old} converted twice")
        seen.add(old)
        if old_names.get(old) != old_name:
            fault(where, f"{old} {old_name} is not a class of the 1990 table")
        if new_names.get(new) != new_name:
            fault(where, f"{new} {new_name} is not a class of the 2011 table")
    if set(old_names) - seen:
        fault("新旧标准代码转换输入表.txt", f"no conversion for {' '.join(sorted(set(old_names) - seen))}")

    kinds_of = read_ini(os.path.join(cfg, "分类要素对应表_配套设施.ini"))
    codes = set(new_names) | set(old_names)
    for folder, param in (("配套公建", "公共配套设施参数"), ("道路配套设施", "道路配套设施参数")):
        fdir = os.path.join(root, folder)
        kinds = (ini_get(read_ini(os.path.join(fdir, param + ".ini")), param, "MENU") or "").split(";")
        blocks = {}
        for kind in filter(None, kinds):
            path = os.path.join(fdir, kind + ".ini")
            if not os.path.exists(path):
                fault(folder, f"kind {kind} has no {kind}.ini")
                continue
            ini = read_ini(path)
            head = dict(ini.get(kind, []))
            for key in ("MENU", "AllowDKXZ", "BLKFILE"):
                if not head.get(key):
                    fault(f"{folder}/{kind}.ini", f"[{kind}] lacks {key}")
            bad = [c for c in head.get("AllowDKXZ", "").split(";") if c and c not in codes]
            if bad:
                fault(f"{folder}/{kind}.ini", f"AllowDKXZ codes of no table: {' '.join(bad)}")
            prefix = ini_get(kinds_of, kind, "分类代码")
            if ini_get(kinds_of, kind, "要素码") is None or prefix is None:
                fault("分类要素对应表_配套设施.ini", f"no section for {kind}")
            for name in filter(None, head.get("MENU", "").split(";")):
                sec = dict(ini.get(name, []))
                if not sec.get("代码", "").startswith(prefix or "?") or not sec.get("图块名"):
                    fault(f"{folder}/{kind}.ini", f"[{name}] needs 代码 starting {prefix} and 图块名")
                blocks.setdefault(head.get("BLKFILE"), []).append(sec.get("图块名"))
        for blkfile, names in blocks.items():
            check_blocks(os.path.join(fdir, blkfile or "?"), names)


def check_blocks(path, names):
    if not os.path.exists(path):
        fault(path, "missing")
        return
    try:
        import ezdxf
    except ImportError:
        print(f"  (ezdxf not found, blocks of {os.path.basename(path)} not checked)")
        return
    doc = ezdxf.readfile(path)
    missing = [n for n in names if doc.blocks.get(n) is None]
    if missing:
        fault(path, f"blocks missing: {' '.join(missing)}")


def main():
    args = [a for a in sys.argv[1:] if a != "-v"]
    verbose = "-v" in sys.argv
    here = os.path.dirname(os.path.abspath(__file__))
    root = args[0] if args else os.path.join(here, "..", "data", "standards", "通用国标")
    tables = os.path.join(root, "用地分类")
    new = check_table(os.path.join(tables, "2011国标城乡用地类别.txt"), GB2011, None, verbose)
    old = check_table(os.path.join(tables, "1990国标城市用地类别.txt"), GB1990, None, verbose)
    check_table(os.path.join(tables, "2011国标城乡用地类别_地下.txt"), None, GB2011, verbose)
    check_table(os.path.join(tables, "1990国标城市用地类别_地下.txt"), None, GB1990, verbose)
    check_config(root, new, old)
    for f in faults:
        print("FAULT", f)
    print("ok" if not faults else f"{len(faults)} faults")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
