"""Filters that make one table of the FRU reports of many servers."""

import csv
import io


def fru_rows(results, fields):
    """One row for each FRU device, and one for each server that could not be asked.

    results: server name -> what the module fructl returned there, null where the server could not be reached
    fields: the field names to take
    """
    rows = []
    for server, result in results.items():
        result = result or {"msg": "the server cannot be reached"}
        for fru in result.get("frus", []):
            values = {field["name"]: field["value"] for area in fru["areas"] for field in area.get("fields", [])}
            problems = "; ".join(f"{one['area']}: {one['text']}" for one in fru["problems"])
            rows.append({"server": server, "device": fru["source"]["name"], "at": fru["source"]["at"],
                         "status": fru["status"], "problem": problems,
                         **{name: values.get(name, "") for name in fields}})
        if "frus" not in result:
            rows.append({"server": server, "device": "", "at": "", "status": "failed", "problem": result["msg"],
                         **dict.fromkeys(fields, "")})
    return rows


def csv_text(rows):
    """Rows of equal keys as CSV with a heading."""
    text = io.StringIO()
    if rows:
        writer = csv.DictWriter(text, rows[0].keys(), lineterminator="\n")
        writer.writeheader()
        writer.writerows(rows)
    return text.getvalue()


class FilterModule:
    """The filters by name."""

    def filters(self):
        return {"fru_rows": fru_rows, "csv_text": csv_text}
