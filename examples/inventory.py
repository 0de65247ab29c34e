#!/usr/bin/env python3
"""Prints every field of FRU text files as JSON: inventory.py FILE...

Needs the library of Python's own word size (usually the 64-bit one). FRUDATA_DATADIR names the directory of the
library's texts where it is not /usr/share/frudata. Dates are the library's, one day before the standard's.
"""
import ctypes
import json
import locale
import os
import sys
from ctypes import POINTER, byref, c_int, c_ubyte, c_uint, c_uint32, c_void_p, c_wchar_p

# The slots of the table that are used here; slot n lies n pointers from its start.
SLOTS = {
    "Initialize": (1, [c_int]),
    "DeInitialize": (2, []),
    "LoadConfigurationFromFile": (4, [c_wchar_p, c_wchar_p]),
    "GetLastErrorMessage": (9, [POINTER(c_wchar_p)]),
    "SetLanguageLocale": (10, [c_wchar_p, c_wchar_p]),
    "SelectAreaEnum": (28, [c_int]),
    "GetAreaName": (30, [POINTER(c_wchar_p)]),
    "GetNumberOfFields": (31, [POINTER(c_uint)]),
    "SelectFieldInteger": (33, [c_uint]),
    "GetFieldTitle": (34, [POINTER(c_wchar_p)]),
    "GetFieldStringValue": (36, [POINTER(c_wchar_p)]),
    "GetFieldDataValue": (37, [POINTER(POINTER(c_ubyte)), POINTER(c_uint)]),
}
AREAS = range(2, 7)  # internal use to multi-record
CHASSIS = 3
FIXED_FIELDS = {CHASSIS: 3, 4: 6, 5: 7}  # of chassis, board and product: those behind them are custom fields
# The library has names for these alone; asking for another's stops the process.
NAMED_CHASSIS_TYPES = {*range(1, 10), *range(16, 23)}
REVISION = 0x00020000


class FruError(Exception):
    """An operation failed; the text is the library's own where it has one."""


class Fru:
    """The function table, with an exception in the place of a status."""

    def __init__(self):
        library = ctypes.CDLL("libfrudata.so.2")
        library.GetFruDataInterface.restype = c_void_p
        self._table = library.GetFruDataInterface()
        if c_uint32.from_address(self._table).value != REVISION:
            raise FruError("the library has another interface")

    def call(self, name, *arguments, this=True):
        slot, types = SLOTS[name]
        address = c_void_p.from_address(self._table + slot * ctypes.sizeof(c_void_p)).value
        function = ctypes.CFUNCTYPE(c_uint32, c_void_p, *types)(address)
        status = function(self._table if this else None, *arguments)
        if status:
            message = c_wchar_p()
            if name != "GetLastErrorMessage":
                self.call("GetLastErrorMessage", byref(message))
            raise FruError(message.value or f"{name}: status {status:08X}")

    def ask(self, name, kind):
        answer = kind()
        self.call(name, byref(answer))
        return answer.value

    def value(self, is_chassis_type):
        if is_chassis_type:
            data = POINTER(c_ubyte)()
            self.call("GetFieldDataValue", byref(data), byref(c_uint()))
            if data[0] not in NAMED_CHASSIS_TYPES:
                return f"type {data[0]}"
        return self.ask("GetFieldStringValue", c_wchar_p)

    def inventory(self, path):
        """Area names, each with the titles and values of its fields, in the file's order.

        The library counts custom fields from the last one backwards: they are turned round here.
        """
        self.call("LoadConfigurationFromFile", path, None)
        areas = {}
        for area in AREAS:
            self.call("SelectAreaEnum", area)
            try:
                fields = areas[self.ask("GetAreaName", c_wchar_p)] = []
            except FruError:
                continue  # this FRU does not have the area
            count = self.ask("GetNumberOfFields", c_uint)
            fixed = min(count, FIXED_FIELDS.get(area, count))
            for field in [*range(fixed), *reversed(range(fixed, count))]:
                self.call("SelectFieldInteger", field)
                fields.append({"title": self.ask("GetFieldTitle", c_wchar_p),
                               "value": self.value(is_chassis_type=area == CHASSIS and field == 0)})
        return areas


def main():
    # The library converts file names with the C locale, which Python leaves at "C".
    locale.setlocale(locale.LC_CTYPE, "C.UTF-8")
    fru = Fru()
    fru.call("Initialize", 0, this=False)
    texts = os.environ.get("FRUDATA_DATADIR", "/usr/share/frudata")
    try:
        fru.call("SetLanguageLocale", texts + "/en", "us")
    except FruError:
        raise FruError(f"no texts below {texts}; FRUDATA_DATADIR names the directory that holds enus") from None
    print(json.dumps({path: fru.inventory(path) for path in sys.argv[1:]}, indent=2, ensure_ascii=False))
    fru.call("DeInitialize")


if __name__ == "__main__":
    try:
        main()
    except FruError as error:
        sys.exit(f"inventory.py: {error}")
