// The parts of the parser: each reads its bytes as far as they go, and reports findings.
#pragma once

#include "fruimage/image.h"

namespace FruImage {

using FINDINGS = std::vector<FINDING>;

constexpr BYTE FORMAT_VERSION = 1;
constexpr BYTE RECORD_FORMAT = 2;
constexpr BYTE END_OF_LIST = 0x80;

/// The format version in the first byte of the header and of an area.
constexpr BYTE Version(BYTE first) {
    return first & 0x0F;
}

void Note(FINDINGS& findings, const char* code, AREA_ID area, std::size_t offset, std::string text);
void Damage(FINDINGS& findings, const char* code, AREA_ID area, std::size_t offset, std::string text);
/// A wrong byte.
void WrongByte(FINDINGS& findings, const char* code, AREA_ID area, std::size_t offset, BYTE found, BYTE expected,
               const std::string& what);

/// Reads an info area at `offset`, of which at least one byte is there. The next area or the image's end limits it at
/// `end`.
AREA ReadInfoArea(const AREA_ROW& row, BYTE_VIEW image, std::size_t offset, std::size_t end, FINDINGS& findings);
/// Reads a chain of records at `offset` up to the first unreadable one.
AREA ReadRecords(BYTE_VIEW image, std::size_t offset, FINDINGS& findings);
/// Searches for areas and adds them to `fru`, whose header is damaged.
void SearchAreas(FRU& fru);
bool HasDamage(const FINDINGS& findings);
/// Whether an info area looks written on purpose: another area's bytes can be sound by chance.
bool IsPlausible(const AREA& area);
/// Whether a chain of sound record headers begins here and ends with its last record.
bool IsChain(const AREA& area);

} // namespace FruImage
