#!/usr/bin/env python3
"""Writes the inventory of the emulated machine and what has to come of it into a directory.

fru.bin     two FRU devices as the machine starts with them
afterN.bin  device N as it has to be after the edits
editsN      the place of device N and one edit a line, as fructl takes them
shown       one line a field of device 0 that a general IPMI tool shows after the edits
large.bin   one FRU device of 2 KiB, to compare costs with
sdr.bin     the SDR repository
locators    one line a locator that the scan of that repository has to find
bmc.commands, board.bin, satellite.bin
            a BMC and a controller behind it, for OpenIPMI's ipmi_sim, and the FRU of each

The images before and after the edits are built by the same code from two columns of values, never one
from the other. Layouts: FRU Information Storage Definition, sections 8 to 16; IPMI 2.0, section 43.
"""
import datetime
import pathlib
import sys

DEVICE_SIZE = 512
BEFORE, AFTER = 2, 3
BUILT = datetime.datetime(2019, 6, 22, 9, 18), datetime.datetime(2024, 3, 5, 16, 34)


def minutes(date):
    return int((date - datetime.datetime(1996, 1, 1)).total_seconds() // 60).to_bytes(3, "little")


# Fields in their order: (name for fructl, name that ipmitool prints or None, before, after). The chassis type and the
# board's date come first and lie before the texts.
CHASSIS_FIELDS = [
    ("type", "Chassis Type", bytes([17]), bytes([22])),
    ("part-number", "Chassis Part Number", b"CH-1000", b"CH-2000-B"),
    ("serial-number", "Chassis Serial", b"C0001", b"C0002-0042"),
    ("custom1", "Chassis Extra", b"bay 4", b"bay 11"),
]
BOARD_FIELDS = [
    ("mfg-date", "Board Mfg Date", minutes(BUILT[0]), minutes(BUILT[1])),
    ("manufacturer", "Board Mfg", b"Example Works", b"Example Works Ltd"),
    ("product-name", "Board Product", b"Controller Board", b"Board"),
    ("serial-number", "Board Serial", b"BS-1", b"BS-1 reworked"),
    ("part-number", "Board Part Number", b"BP-77", b"BP-78"),
    ("file-id", None, b"board.fru", b"board-2.fru"),
    ("custom1", "Board Extra", b"first run", b"second run"),
]
PRODUCT_FIELDS = [
    ("manufacturer", "Product Manufacturer", b"Example Works", b"Example Works Ltd"),
    ("name", "Product Name", b"Server One", b"Server One Plus"),
    ("part-number", "Product Part Number", b"P-1", b"P-1-PLUS"),
    ("version", "Product Version", b"1.0", b"1.1"),
    ("serial-number", "Product Serial", b"S-0815", b""),
    ("asset-tag", "Product Asset Tag", b"", b"rack 7, unit 12"),
    ("file-id", None, b"product.fru", b"product.fru"),
    ("custom1", "Product Extra", b"leased", b"bought"),
]
SUPPLY_FIELDS = [
    ("manufacturer", None, b"Example Power", b"Example Power"),
    ("name", None, b"Supply 500 W", b"Supply 750 W"),
] + [(None, None, b"", b"")] * 5

# What stands for the two fields that are no texts.
EDITED_VALUES = {"Chassis Type": "22", "Board Mfg Date": BUILT[1].strftime("%Y-%m-%dT%H:%MZ")}
SHOWN_VALUES = {"Chassis Type": "RAID Chassis", "Board Mfg Date": BUILT[1].strftime("%a %b %e %H:%M:%S %Y UTC")}


def checksum(data):
    return bytes([-sum(data) & 0xFF])


def area(header, fields, size, column):
    values = [field[column] for field in fields]
    data = bytes([1, size // 8]) + header
    if fields[0] in (CHASSIS_FIELDS[0], BOARD_FIELDS[0]):
        data += values.pop(0)
    for value in values:
        data += bytes([0xC0 | len(value)]) + value
    data += b"\xc1"
    assert len(data) < size
    data += bytes(size - 1 - len(data))
    return data + checksum(data)


def device(areas):
    """A whole device from its five areas, packed in the order of the common header."""
    offsets = []
    position = 8
    for content in areas:
        offsets.append(position // 8 if content else 0)
        position += len(content)
    header = bytes([1, *offsets, 0])
    image = header + checksum(header) + b"".join(areas)
    return image.ljust(DEVICE_SIZE, b"\0")


def internal_use(column):
    return bytes([1]) + bytes(range(60 * column, 60 * column + 31))


def multirecord(column):
    """One OEM record; the one after the edits is longer, as the last area can grow."""
    record = b"\x57\x01\x00maker's own" * (column - 1)
    start = bytes([0xC0, 0x82, len(record)]) + checksum(record)
    return start + checksum(start) + record


def server(column):
    return device([internal_use(column), area(b"", CHASSIS_FIELDS, 64, column),
                   area(b"\x00", BOARD_FIELDS, 104, column), area(b"\x19", PRODUCT_FIELDS, 128, column),
                   multirecord(column)])


def supply(column):
    return device([b"", b"", b"", area(b"\x19", SUPPLY_FIELDS, 64, column), b""])


def large():
    extra = [(None, None, b"", b"custom field %02d of thirty bytes" % number) for number in range(13)]
    return device([bytes([1]) + bytes(range(251)) * 2 + bytes([0]), area(b"", CHASSIS_FIELDS + extra, 512, AFTER),
                   area(b"\x00", BOARD_FIELDS + extra, 512, AFTER), area(b"\x19", PRODUCT_FIELDS + extra, 512, AFTER),
                   b""])


def changed(area_name, fields):
    for name, shown_name, before, after in fields:
        if before != after:
            yield f"{area_name}.{name}={EDITED_VALUES.get(shown_name) or after.decode()}\n"


def server_edits():
    yield "--system\n"
    yield f"internal.data={internal_use(AFTER).hex()}\n"
    yield from changed("chassis", CHASSIS_FIELDS)
    yield from changed("board", BOARD_FIELDS)
    yield from changed("product", PRODUCT_FIELDS)
    yield f"multirecord.data={multirecord(AFTER).hex()}\n"


def shown():
    for _, name, _, after in CHASSIS_FIELDS + BOARD_FIELDS + PRODUCT_FIELDS:
        if name and after:
            yield f"{name}: {SHOWN_VALUES.get(name) or after.decode()}\n"


def sdr(record_type, body):
    return bytes([0, 0, 0x51, record_type, len(body)]) + body


def named(name):
    return bytes([0xC0 | len(name)]) + name.encode()


def fru_locator(access, device_id, access_byte, device_type, name):
    return sdr(0x11, bytes([access, device_id, access_byte, 0, 0, device_type, 0, 10, 1, 0]) + named(name))


def controller_locator(address, name):
    return sdr(0x12, bytes([address, 0, 0, 0x29, 0, 0, 0, 46, 1, 0]) + named(name))


# The sensors only have to be stepped over; the locators lie among them.
REPOSITORY = [
    sdr(0x01, bytes([0x20, 0, 1, 7, 1]) + bytes(38) + named("Inlet Temp")),
    fru_locator(0x20, 1, 0x80, 0x10, "Power Supply"),
    sdr(0x02, bytes([0x20, 0, 2, 7, 1]) + bytes(22) + named("Fan 1")),
    controller_locator(0x20, "BMC"),
    sdr(0xC0, b"\x57\x01\x00\x01"),
    fru_locator(0x20, 0xA4, 0x09, 0x08, "Riser EEPROM"),
    controller_locator(0x40, "Satellite"),
    sdr(0x01, bytes([0x20, 0, 3, 7, 1]) + bytes(38) + named("CPU Temp")),
]

LOCATORS = """\
locator: address 0x20 bus 0x00 device 0x01 controller 0x20 lun 0 type 2 name Power Supply
locator: address 0xA4 bus 0x01 device 0xA4 controller 0x20 lun 1 type 0 name Riser EEPROM
locator: address 0x20 bus 0xFF device 0x00 controller 0x20 lun 0 type 2 name BMC
locator: address 0x40 bus 0x00 device 0x00 controller 0x20 lun 0 type 2 name Satellite
"""


def bmc_commands(folder):
    """A BMC with the FRU and SDR devices, and a controller at 0x30 behind it with a FRU (ipmi_sim_cmd(5))."""
    yield "mc_setbmc 0x20\n"
    for address, support, fru in ((0x20, 0x8A, "board.bin"), (0x30, 0x08, "satellite.bin")):
        yield f"mc_add {address:#x} 0 no-device-sdrs 1 1 0 {support:#x} 0x157 1\n"
        yield f"mc_add_fru_data {address:#x} 0 {DEVICE_SIZE} file 0 \"{folder / fru}\"\n"
        yield f"mc_enable {address:#x}\n"
    for record in (controller_locator(0x20, "BMC"), controller_locator(0x30, "Satellite")):
        yield f"main_sdr_add 0x20 {' '.join(f'{byte:#04x}' for byte in record)}\n"


def main(directory):
    folder = pathlib.Path(directory)
    (folder / "fru.bin").write_bytes(server(BEFORE) + supply(BEFORE))
    (folder / "after0.bin").write_bytes(server(AFTER))
    (folder / "after1.bin").write_bytes(supply(AFTER))
    (folder / "large.bin").write_bytes(large())
    (folder / "edits0").write_text("".join(server_edits()))
    (folder / "edits1").write_text("--at\nPower Supply\n" + "".join(changed("product", SUPPLY_FIELDS)))
    (folder / "shown").write_text("".join(shown()))
    (folder / "sdr.bin").write_bytes(b"".join(REPOSITORY))
    (folder / "locators").write_text(LOCATORS)
    (folder / "board.bin").write_bytes(server(BEFORE))
    (folder / "satellite.bin").write_bytes(supply(BEFORE))
    (folder / "bmc.commands").write_text("".join(bmc_commands(folder)))


main(sys.argv[1])
