"""Reads a balance workbook of kplan stats with openpyxl and compares it with the JSON of
the same run: sheets, rows, 其中 indentation, formulas and their values, number formats,
the warnings sheet. Prints one line per difference; nothing when they agree."""
import json
import sys

import openpyxl


def base_area(table, area_col):
    """The area of the row whose share is 100: what the shares are shares of."""
    for row in table["rows"]:
        if row["total"] and row["values"][area_col + 1] == 100:
            return row["values"][area_col]
    raise ValueError("no base row")


def population(report, table, col):
    group = col // 3
    return report["balance"][group]["population"]


def main(xlsx_path, json_path):
    report = json.load(open(json_path, encoding="utf-8"))
    formulas = openpyxl.load_workbook(xlsx_path)
    values = openpyxl.load_workbook(xlsx_path, data_only=True)
    problems = []
    titles = [t["title"] for t in report["tables"]]
    if formulas.sheetnames != titles + ["警告"]:
        problems.append(f"sheets {formulas.sheetnames}")
    for table in report["tables"]:
        sheet, cached = formulas[table["title"]], values[table["title"]]
        if sheet["A1"].value != table["title"]:
            problems.append(f"{table['title']}: title {sheet['A1'].value}")
        decimals = [c["decimals"] for c in table["columns"]]
        for i, row in enumerate(table["rows"]):
            r = 4 + i
            where = f"{table['title']} row {r}"
            code, name = sheet.cell(r, 1).value or "", sheet.cell(r, 2).value
            if code != row["code"]:
                problems.append(f"{where}: code {code!r} != {row['code']!r}")
            if not name.endswith(row["name"]):
                problems.append(f"{where}: name {name!r}")
            if row["among"] and not name.startswith("其中："):
                problems.append(f"{where}: 其中 row without 其中")
            indent = sheet.cell(r, 2).alignment.indent
            if not row["total"] and indent != row["level"]:
                problems.append(f"{where}: indent {indent} != level {row['level']}")
            for c, value in enumerate(row["values"]):
                measure = table["columns"][c]["measure"]
                formula, got = sheet.cell(r, 3 + c).value, cached.cell(r, 3 + c).value
                fmt = sheet.cell(r, 3 + c).number_format
                want_fmt = "0" if decimals[c] == 0 else "0." + "0" * decimals[c]
                if fmt != want_fmt:
                    problems.append(f"{where} col {c}: format {fmt}")
                if value is None:
                    if got is not None:
                        problems.append(f"{where} col {c}: {got} where JSON has none")
                    continue
                if measure == "area":
                    if row["total"] and not str(formula).startswith("="):
                        problems.append(f"{where}: total {formula!r} is no formula")
                    if abs(got - value) > 1e-9:
                        problems.append(f"{where} col {c}: {got} != {value}")
                else:
                    if not str(formula).startswith("="):
                        problems.append(f"{where} col {c}: {formula!r} is no formula")
                    # The formula's value is that of the printed areas; the JSON's figure is
                    # of the exact areas, rounded to add up: they differ by at most the last
                    # place and what rounding an area moves it.
                    area_col = c - 1 if measure == "share" else c - 2
                    area = row["values"][area_col]
                    if measure == "share":
                        base = base_area(table, area_col)
                        own = area / base * 100
                        slack = 0.5 * 10 ** -decimals[area_col] / base * 100
                    else:
                        people = population(report, table, c)
                        per_unit = {"hm2": 1e4, "m2": 1, "mu": 1e4 / 15, "km2": 1e6}[table["unit"]]
                        own = area * per_unit / people
                        slack = 0.5 * 10 ** -decimals[area_col] * per_unit / people
                    if abs(got - own) > 1e-9:
                        problems.append(f"{where} col {c}: {got} != {own} of the sheet")
                    if abs(got - value) > 0.01 + slack + 1e-9:
                        problems.append(f"{where} col {c}: {got} != {value}")
    warnings = formulas["警告"]
    rows = list(warnings.iter_rows(min_row=2, values_only=True))
    if len(rows) != len(report["warnings"]):
        problems.append(f"warnings: {len(rows)} != {len(report['warnings'])}")
    for got, want in zip(rows, report["warnings"]):
        if got[0] != want["kind"] or (got[4] or "") != " ".join(want["handles"]):
            problems.append(f"warning {got[0]} {got[4]} != {want['kind']}")
        if got[5] != want["message"]:
            problems.append(f"warning text {got[5]}")
    for p in problems:
        print(p)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
