#include "tools/fructl/jsonimage.h"

#include "tools/fructl/fieldname.h"
#include "tools/fructl/jsonreport.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace Fructl {

namespace {

using FruImage::AREA_DESCRIPTION;
using FruImage::ENCODING;
using FruImage::FIELD_DESCRIPTION;
using FruImage::RECORD_DESCRIPTION;
using nlohmann::json;

/// A fault, and its place in the document.
[[noreturn]] void RefusePart(const std::string& part, const std::string& why) {
    throw CToolError(EXIT_REFUSED, part, why, "docs/json.md describes the document");
}

std::size_t Number(const json& object, const char* name, std::size_t fallback, std::size_t maximum) {
    const auto found = object.find(name);
    if (found == object.end())
        return fallback;
    if (!found->is_number_unsigned() || found->get<std::uint64_t>() > maximum)
        RefusePart(name, fmt::format("{} is no number from 0 to {}", found->dump(), maximum));
    return found->get<std::size_t>();
}

UINT8 Byte(const json& object, const char* name, UINT8 fallback) {
    return static_cast<UINT8>(Number(object, name, fallback, 0xFF));
}

std::string Word(const json& object, const char* name) {
    const auto found = object.find(name);
    if (found == object.end())
        return {};
    if (!found->is_string())
        RefusePart(name, fmt::format("{} is no text", found->dump()));
    return found->get<std::string>();
}

bool Flag(const json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_boolean() && found->get<bool>();
}

BYTES Bytes(const json& object, const char* name) {
    const std::string text = Word(object, name);
    const auto bytes = FromHex(text);
    if (!bytes)
        RefusePart(name, fmt::format("'{}' is not hexadecimal", text));
    return *bytes;
}

/// The bytes of a value.
FIELD_DESCRIPTION Encoded(const std::string& name, FIELD_KIND kind, const std::string& value, ENCODING encoding,
                          UINT8 language) {
    const auto take = [&](auto result) {
        if (!result)
            RefusePart(name, result.Error().text);
        return result.Take();
    };
    if (kind == FIELD_KIND::DATE)
        return {ENCODING::BINARY, take(FruImage::ParseDate(value))};
    if (kind == FIELD_KIND::CHASSIS_TYPE)
        return {ENCODING::BINARY, take(FruImage::ParseChassisType(value))};
    const FruImage::FIELD_VALUE field = take(FruImage::EncodeKeeping(value, encoding, language));
    return {field.encoding, field.bytes};
}

std::string ReadAs(FIELD_KIND kind, const FIELD_DESCRIPTION& field) {
    if (kind == FIELD_KIND::DATE)
        return FruImage::DateText(field.bytes);
    if (kind == FIELD_KIND::CHASSIS_TYPE)
        return field.bytes.empty() ? std::string() : FruImage::ChassisTypeText(field.bytes[0]);
    return FruImage::DecodeText(field.encoding, field.bytes);
}

FIELD_DESCRIPTION Field(const json& object, const AREA_ROW& row, std::size_t position, UINT8 language) {
    const std::string name = FieldNameText(FruImage::FieldAt(row.id, position));
    if (!object.is_object())
        RefusePart(name, "is no object");
    const FIELD_KIND kind = position < row.fields.size() ? row.fields[position].kind : FIELD_KIND::TEXT;
    const ENCODING text = FruImage::IsEnglish(language) ? ENCODING::TEXT : ENCODING::TWO_BYTE_TEXT;
    FIELD_DESCRIPTION field(FruImage::EncodingFromName(Word(object, "type")).value_or(text), Bytes(object, "raw"));
    const std::string value = Word(object, "value");
    const bool counts = object.contains("value") && (!object.contains("raw") || ReadAs(kind, field) != value);
    return counts ? Encoded(name, kind, value, field.encoding, language) : field;
}

/// If a field's value and the record's bytes disagree, the value counts.
void SetRecordField(const json& object, RECORD_DESCRIPTION& record) {
    const std::string key = Word(object, "name");
    const json value = object.value("value", json());
    const auto fields = FruRecords::DecodeRecord(record.type, record.data).fields;
    const auto same = [&](const auto& field) { return field.key == key && JsonRecordValue(field) == value; };
    if (value.is_null() || std::any_of(fields.begin(), fields.end(), same))
        return;
    const std::string text = value.is_string()    ? value.get<std::string>()
                             : value.is_boolean() ? (value.get<bool>() ? "yes" : "no")
                                                  : value.dump();
    auto result = FruRecords::EncodeField(record.type, record.data, key, text);
    if (!result.data)
        RefusePart(key, result.error);
    record.data = std::move(*result.data);
}

RECORD_DESCRIPTION Record(const json& object) {
    RECORD_DESCRIPTION record;
    record.type = Byte(object, "type", 0);
    record.data = Bytes(object, "data");
    if (object.contains("flags"))
        record.flags = Byte(object, "flags", 0);
    for (const json& field : object.value("fields", json::array()))
        SetRecordField(field, record);
    if (const auto checksum = object.find("checksum"); checksum != object.end() && checksum->is_object())
        record.checksum = Byte(*checksum, "is", 0);
    return record;
}

void ReadFields(const json& object, const AREA_ROW& row, AREA_DESCRIPTION& area) {
    if (const auto language = object.find("language"); language != object.end())
        area.language = language->is_object() ? Byte(*language, "code", 0) : Byte(object, "language", 0);
    area.version = Byte(object, "version", 1);
    const json fields = object.value("fields", json::array());
    for (std::size_t position = 0; position < fields.size(); ++position)
        area.fields.push_back(Field(fields[position], row, position, area.language));
    area.endsEarly = Flag(object, "endsEarly");
    area.padding = Bytes(object, "padding");
}

AREA_DESCRIPTION Area(const json& object) {
    const std::string name = Word(object, "name");
    const auto id = FruImage::AreaFromName(name);
    if (!id || *id == AREA_ID::HEADER)
        RefusePart("areas", fmt::format("'{}' is no area", name));
    AREA_DESCRIPTION area;
    area.id = *id;
    if (object.contains("offset"))
        area.offset = Number(object, "offset", 0, FruImage::MAXIMUM_OFFSET);
    area.length = area.id == AREA_ID::MULTIRECORD ? 0 : Number(object, "length", 0, FruImage::MAXIMUM_DEVICE);
    const AREA_ROW& row = AreaRow(*id);
    if (Flag(object, "damaged") || *id == AREA_ID::INTERNAL_USE)
        area.bytes = Bytes(object, "raw");
    else if (row.IsInfo())
        ReadFields(object, row, area);
    else
        for (const json& record : object.value("records", json::array()))
            area.records.push_back(Record(record));
    return area;
}

void CheckStatus(const json& document, const std::string& source) {
    const std::string status = Word(document, "status");
    const json header = document.value("header", json::object());
    const json checksum = header.value("checksum", json::object());
    if (status == "blank" || !checksum.value("ok", true))
        throw CToolError(EXIT_DAMAGED, source, fmt::format("it is the report of a FRU that is {}", status),
                         "'fructl repair' puts a damaged header right");
}

void ReadReport(const json& document, FruImage::DESCRIPTION& description) {
    description.size = Number(document, "size", 0, FruImage::MAXIMUM_DEVICE + 1);
    description.fill = Byte(document, "fill", 0);
    const json header = document.value("header", json::object());
    description.version = Byte(header, "version", 1);
    description.pad = Byte(header, "pad", 0);
    for (const json& area : document.at("areas"))
        description.areas.push_back(Area(area));
    for (const json& gap : document.value("gaps", json::array()))
        description.gaps.push_back({Number(gap, "offset", 0, FruImage::MAXIMUM_DEVICE), Bytes(gap, "raw")});
}

/// A value of a short document in the form that `set` takes.
void AddShort(const std::string& name, const json& value, std::vector<std::string>& words) {
    if (value.is_array())
        for (const json& one : value)
            AddShort(name, one, words);
    else if (value.is_string() || value.is_number_unsigned())
        words.push_back(name + (name.ends_with(".custom") ? "+=" : "=") +
                        (value.is_string() ? value.get<std::string>() : value.dump()));
    else
        RefusePart(name, fmt::format("{} is no text and no number", value.dump()));
}

std::vector<std::string> ShortWords(const json& document) {
    std::vector<std::string> words;
    for (const auto& [name, value] : document.items()) {
        if (name == "schema")
            continue;
        if (!value.is_object())
            AddShort(name, value, words);
        else
            for (const auto& [field, text] : value.items())
                AddShort(fmt::format("{}.{}", name, field), text, words);
    }
    return words;
}

} // namespace

JSON_IMAGE ReadJsonImage(const std::string& text, const std::string& source) {
    JSON_IMAGE image;
    try {
        const json document = json::parse(text);
        if (!document.is_object())
            throw CToolError(EXIT_REFUSED, source, "is no JSON object");
        if (document.contains("areas")) {
            CheckStatus(document, source);
            ReadReport(document, image.description);
        } else if (const std::vector<std::string> words = ShortWords(document); !words.empty()) {
            image.changes = ParseEdits(words, {});
        }
    } catch (const json::exception& error) {
        throw CToolError(EXIT_REFUSED, source, error.what(), "docs/json.md describes the document");
    }
    return image;
}

} // namespace Fructl
