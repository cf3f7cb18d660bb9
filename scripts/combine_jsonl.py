#!/usr/bin/env python3
"""The combining step of a batch of `kplan stats --format jsonl` runs.

Reads the jsonl streams (files, or standard input), takes each drawing's line once (by
its path; the lines of drawings that failed and the runs' own totals are left aside) and
prints the balance tables of all drawings together, as `kplan stats` prints them for
several drawings of one run: the printed areas added up row by row, the shares and the
area a person worked again from the sums. Drawings are taken in the order of their paths,
as kplan takes the drawings of a folder.

    combine_jsonl.py [--lang en] [--json] [--expect LIST] [STREAM.jsonl ...]

--json prints the combined tables as kplan's total line has them ("tables").
Exit code 1 when no drawing's line was found, 3 when some drawings failed.
"""
import argparse
import json
import math
import sys

SHARE_BASE_EN = {"城乡用地": "rural and urban land", "城市建设用地": "urban construction land",
                 "合计": "total"}
UNIT_NAMES = {"hm2": ("公顷", "ha"), "m2": ("平方米", "m2"), "mu": ("亩", "mu"),
              "km2": ("平方千米", "km2")}
PER_HECTARE = {"hm2": 1.0, "m2": 10000.0, "mu": 15.0, "km2": 0.01}
MEASURES = ["area", "share", "per_person_m2"]


def std_round(x):
    """std::round: halves away from zero."""
    return math.copysign(math.floor(abs(x) + 0.5), x)


def round_to(value, decimals):
    scale = 10.0 ** decimals
    return std_round(value * scale + (1e-9 if value >= 0 else -1e-9)) / scale


def printed_units(value, decimals):
    return int(std_round(round_to(value, decimals) * 10.0 ** decimals))


def column_before(a, b):
    if a["scenario"] != b["scenario"]:
        return a["scenario"] == "current"
    return MEASURES.index(a["measure"]) < MEASURES.index(b["measure"])


def same_column(a, b):
    return a["measure"] == b["measure"] and a["scenario"] == b["scenario"]


def same_row(a, b):
    return all(a[k] == b[k] for k in ("level", "among", "total", "code", "name"))


def combine(drawings):
    """The tables of all drawings added up, as kplan's combineReports does."""
    tables = []  # {"table": header, "columns": [...], "rows": [{"row", "units", "filled"}]}

    def sums_of(table):
        for t in tables:
            if t["table"]["key"] == table["key"]:
                return t
        t = {"table": table, "columns": [], "rows": []}
        tables.append(t)
        return t

    for d in drawings:
        for table in d["tables"]:
            columns = sums_of(table)["columns"]
            for column in table["columns"]:
                if any(same_column(k, column) for k in columns):
                    continue
                at = next((i for i, k in enumerate(columns) if column_before(column, k)),
                          len(columns))
                columns.insert(at, column)
    balance = []
    for d in drawings:
        for table in d["tables"]:
            sums = sums_of(table)
            columns = sums["columns"]
            column_of = [next(i for i, k in enumerate(columns) if same_column(k, c))
                         for c in table["columns"]]
            nxt = 0
            for row in table["rows"]:
                found = next((i for i, r in enumerate(sums["rows"]) if same_row(r["row"], row)),
                             None)
                if found is None:
                    sums["rows"].insert(nxt, {"row": row, "units": [0] * len(columns),
                                              "filled": [False] * len(columns)})
                    found = nxt
                nxt = found + 1
                entry = sums["rows"][found]
                for c, value in enumerate(row["values"]):
                    if value is None:
                        continue
                    at = column_of[c]
                    entry["filled"][at] = True
                    if table["columns"][c]["measure"] == "area":
                        entry["units"][at] += printed_units(value, table["columns"][c]["decimals"])
        for line in d["balance"]:
            known = next((b for b in balance if b["scenario"] == line["scenario"]), None)
            if known is None:
                known = {"scenario": line["scenario"], "population": 0}
                at = next((i for i, b in enumerate(balance)
                           if line["scenario"] == "current" and b["scenario"] == "planned"),
                          len(balance))
                balance.insert(at, known)
            known["population"] += line["population"]
    combined = []
    for sums in tables:
        table, columns = sums["table"], sums["columns"]
        base = None
        for r in sums["rows"]:
            if r["row"]["total"] and r["row"]["name"] == table["share_of"]:
                base = r
        rows = []
        for r in sums["rows"]:
            values = [None] * len(columns)
            for c, column in enumerate(columns):
                if not r["filled"][c]:
                    continue
                area = next((i for i, k in enumerate(columns)
                             if k["measure"] == "area" and k["scenario"] == column["scenario"]),
                            None)
                if area is None:
                    continue
                value = r["units"][area] / 10.0 ** columns[area]["decimals"]
                if column["measure"] == "area":
                    values[c] = value
                elif column["measure"] == "share":
                    if base is not None and base["units"][area] > 0:
                        values[c] = round_to(r["units"][area] / base["units"][area] * 100,
                                             column["decimals"])
                else:
                    people = sum(b["population"] for b in balance
                                 if b["scenario"] == column["scenario"])
                    if people > 0:
                        values[c] = round_to(value / PER_HECTARE[table["unit"]] * 10000 / people,
                                             column["decimals"])
            row = dict(r["row"])
            row["values"] = values
            row["out_of_range"] = False
            rows.append(row)
        out = dict(table)
        out["columns"] = columns
        out["rows"] = rows
        out["notes"] = []
        combined.append(out)
    return combined


# ---------------------------------------------------------------- the table as kplan prints it

def is_wide(cp):
    return (0x1100 <= cp <= 0x115F or 0x2E80 <= cp <= 0xA4CF or 0xAC00 <= cp <= 0xD7A3 or
            0xF900 <= cp <= 0xFAFF or 0xFE30 <= cp <= 0xFE4F or 0xFF00 <= cp <= 0xFF60 or
            0xFFE0 <= cp <= 0xFFE6 or 0x20000 <= cp <= 0x3FFFD)


def width(text):
    return sum(2 if is_wide(ord(ch)) else 1 for ch in text)


def fixed(value, decimals):
    text = "%.*f" % (decimals, value)
    if text.strip("-0.") == "" and text.startswith("-"):
        text = text[1:]
    return text


def aligned(lines, right):
    widths = [0] * max(len(line) for line in lines)
    for line in lines:
        for c, cell in enumerate(line):
            widths[c] = max(widths[c], width(cell))
    out = ""
    for line in lines:
        text = ""
        for c, cell in enumerate(line):
            pad = " " * (widths[c] - width(cell))
            if c > 0:
                text += "  "
            text += pad + cell if right[c] else cell + (pad if c + 1 < len(line) else "")
        out += text.rstrip(" ") + "\n"
    return out


def column_title(table, column, en):
    current = column["scenario"] == "current"
    unit = UNIT_NAMES[table["unit"]][1 if en else 0]
    if column["measure"] == "area":
        return (("current" if current else "planned") + " area (" + unit + ")" if en
                else ("现状" if current else "规划") + "面积（" + unit + "）")
    if column["measure"] == "share":
        return (("current" if current else "planned") + " % of " +
                SHARE_BASE_EN.get(table["share_of"], table["share_of"]) if en
                else ("现状" if current else "规划") + "占" + table["share_of"] + "比例（%）")
    return (("current" if current else "planned") + " m2 per person" if en
            else ("现状" if current else "规划") + "人均（平方米/人）")


def terminal_tables(tables, en):
    out = ""
    for table in tables:
        if out:
            out += "\n"
        out += (table["title_en"] if en else table["title"]) + "\n"
        lines = [["code" if en else "代码", "name" if en else "名称"] +
                 [column_title(table, c, en) for c in table["columns"]]]
        right = [False, False] + [True] * len(table["columns"])
        mark = "of which: " if en else "其中："
        for r, row in enumerate(table["rows"]):
            name = row["name_en"] if en and row["name_en"] else row["name"]
            if row["among"]:
                name = mark + name
                previous = table["rows"][r - 1] if r > 0 else None
                if previous and previous["among"] and previous["level"] == row["level"]:
                    name = " " * width(mark) + name[len(mark):]
            lines.append([row["code"], "  " * row["level"] + name] +
                         ["" if v is None else fixed(v, c["decimals"])
                          for v, c in zip(row["values"], table["columns"])])
        out += aligned(lines, right)
    return out


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("streams", nargs="*", help="jsonl files (default: standard input)")
    parser.add_argument("--lang", choices=["zh", "en"], default="zh")
    parser.add_argument("--json", action="store_true", help="print the tables as JSON")
    parser.add_argument("--expect", metavar="LIST",
                        help="a file of the drawings' paths, one a line: those without a line "
                             "in the streams (a job that did not run) count as failed")
    args = parser.parse_args()
    drawings, failed = {}, {}
    for name in args.streams or ["-"]:
        stream = sys.stdin if name == "-" else open(name, encoding="utf-8")
        with stream:
            for number, line in enumerate(stream, 1):
                if not line.strip():
                    continue
                try:
                    item = json.loads(line)
                except json.JSONDecodeError as e:
                    sys.exit("combine_jsonl: %s:%d: not a JSON line (%s)" % (name, number, e))
                if item.get("kind") != "drawing":
                    continue
                if "error" in item:
                    failed[item["path"]] = item["error"]
                else:
                    drawings.setdefault(item["path"], item)
    if args.expect:
        with open(args.expect, encoding="utf-8") as listing:
            for path in filter(None, listing.read().splitlines()):
                if path not in drawings and path not in failed:
                    failed[path] = path + ": no line in the streams (its job did not run)"
    for path, error in sorted(failed.items()):
        if path not in drawings:
            print("combine_jsonl: " + error, file=sys.stderr)
    ok = [drawings[path] for path in sorted(drawings)]
    if not ok:
        print("combine_jsonl: no drawing's tables in the input", file=sys.stderr)
        return 1
    tables = combine(ok)
    if args.json:
        print(json.dumps(tables, ensure_ascii=False, indent=2))
    else:
        en = args.lang == "en"
        count = len(ok)
        print(("== total of %d %s ==" % (count, "drawing" if count == 1 else "drawings")) if en
              else "== 合计：%d 张图纸 ==" % count)
        sys.stdout.write(terminal_tables(tables, en))
    return 3 if any(path not in drawings for path in failed) else 0


if __name__ == "__main__":
    sys.exit(main())
