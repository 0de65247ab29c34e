#include "fruimage/draft.h"
#include "fruimage/text.h"

#include <charconv>

namespace FruImage {

namespace {

FAULT About(const FIELD_NAME& name, ERROR error) {
    error.area = name.area;
    error.field = FieldNameText(name);
    return error;
}

FAULT NoSuchField(const FIELD_NAME& name, std::string text, std::string hint = {}) {
    return About(name, Refuse(REFUSAL::NO_SUCH_FIELD, name.area, std::move(text), std::move(hint)));
}

bool IsLeading(const FIELD_NAME& name) {
    return name.part == FIELD_NAME::FIXED && name.index < AreaRow(name.area).LeadingFields();
}

std::string ValueText(const FIELD_NAME& name, const FIELD_DESCRIPTION& field, BYTE language) {
    if (!IsLeading(name))
        return DecodeText(EncodingOf(TypeLength(field.encoding, 0), language), field.bytes);
    if (AreaRow(name.area).fields[0].kind == FIELD_KIND::DATE)
        return DateText(field.bytes);
    return field.bytes.empty() ? std::string() : ChassisTypeText(field.bytes[0]);
}

/// Whether the name is one of a field that this FRU has or can get without a gap.
FAULT CheckName(DRAFT& draft, const FIELD_NAME& name) {
    const AREA_ROW& row = AreaRow(name.area);
    const bool field =
        name.part == FIELD_NAME::CUSTOM || (name.part == FIELD_NAME::FIXED && name.index < row.fields.size());
    if (!row.IsInfo() || !field)
        return NoSuchField(name, "it is no field that can be set");
    const DRAFT_AREA* area = draft.Find(name.area);
    const std::size_t fields = area ? area->description.fields.size() : 0;
    const std::size_t custom = fields > row.fields.size() ? fields - row.fields.size() : 0;
    if (name.part == FIELD_NAME::CUSTOM && name.index > custom)
        return NoSuchField(name, Text("the ", row.name, " area has ", Count(custom, "custom field")),
                           Text("the next one is ", row.name, ".custom", custom + 1));
    return std::nullopt;
}

/// Puts the value at its place; fields between the end of the list and this one become empty.
FAULT Store(DRAFT& draft, const FIELD_NAME& name, FIELD_DESCRIPTION value) {
    const Result<DRAFT_AREA*> found = draft.FindOrMake(name.area);
    if (!found)
        return About(name, found.Error());
    DRAFT_AREA& area = **found;
    auto& fields = area.description.fields;
    const std::size_t position = name.Position();
    std::string before;
    if (position < fields.size())
        before = ValueText(name, fields[position], area.description.language);
    else
        fields.resize(position + 1);
    fields[position] = std::move(value);
    area.description.endsEarly = area.description.endsEarly && fields.size() < AreaRow(name.area).fields.size();
    area.changed = true;
    draft.Say(area, FieldNameText(name), std::move(before),
              ValueText(name, fields[position], area.description.language));
    return std::nullopt;
}

const FIELD_DESCRIPTION* Present(DRAFT& draft, const FIELD_NAME& name) {
    const DRAFT_AREA* area = draft.Find(name.area);
    return area && name.Position() < area->description.fields.size() ? &area->description.fields[name.Position()]
                                                                     : nullptr;
}

FAULT SetLeading(DRAFT& draft, const SET_FIELD& edit) {
    const bool date = AreaRow(edit.name.area).fields[0].kind == FIELD_KIND::DATE;
    if (edit.encoding)
        return About(edit.name, Refuse(REFUSAL::BAD_VALUE, edit.name.area, "it has no encoding"));
    Result<BYTES> bytes = date ? ParseDate(edit.text) : ParseChassisType(edit.text);
    if (!bytes)
        return About(edit.name, bytes.Error());
    const FIELD_DESCRIPTION* present = Present(draft, edit.name);
    if (present && present->bytes == *bytes)
        return std::nullopt;
    return Store(draft, edit.name, {ENCODING::BINARY, bytes.Take()});
}

/// The encoding asked for; an area's text has only one.
Result<FIELD_VALUE> EncodeAsked(std::string_view text, ENCODING asked, BYTE language) {
    const ENCODING ofArea = EncodingOf(EMPTY_FIELD, language);
    if (asked == ENCODING::TWO_BYTE_TEXT && ofArea != asked)
        return Refuse(REFUSAL::BAD_VALUE, AREA_ID::HEADER, "text of an English area has one byte a character",
                      "two-byte text needs another language");
    return EncodeText(text, asked == ENCODING::TEXT ? ofArea : asked);
}

FAULT SetText(DRAFT& draft, const SET_FIELD& edit) {
    if (FAULT fault = CheckName(draft, edit.name))
        return fault;
    const DRAFT_AREA* area = draft.Find(edit.name.area);
    const BYTE language = area ? area->description.language : BYTE{0};
    const FIELD_DESCRIPTION* present = Present(draft, edit.name);
    const bool filled = present && !present->bytes.empty();
    const ENCODING before = filled ? EncodingOf(TypeLength(present->encoding, 0), language) : ENCODING::TEXT;
    const Result<FIELD_VALUE> value =
        edit.encoding ? EncodeAsked(edit.text, *edit.encoding, language) : EncodeKeeping(edit.text, before, language);
    if (!value)
        return About(edit.name, value.Error());
    const bool same = present && ValueText(edit.name, *present, language) == edit.text &&
                      (!filled || !edit.encoding || value->encoding == before);
    const bool nothing = !present && area && edit.text.empty() && edit.name.part == FIELD_NAME::FIXED;
    if (same || nothing)
        return std::nullopt;
    return Store(draft, edit.name, {value->encoding, value->bytes});
}

/// Text in the encoding of another language; a value that is no text cannot follow.
FAULT Translate(const FIELD_NAME& name, FIELD_DESCRIPTION& field, BYTE before, BYTE after) {
    const ENCODING encoding = EncodingOf(TypeLength(field.encoding, 0), before);
    if ((encoding != ENCODING::TEXT && encoding != ENCODING::TWO_BYTE_TEXT) || field.bytes.empty())
        return std::nullopt;
    const std::string text = DecodeText(encoding, field.bytes);
    const Result<FIELD_VALUE> again = EncodeText(text, encoding);
    if (!again || DecodeText(encoding, again->bytes) != text || again->bytes.size() > field.bytes.size())
        return About(name, Refuse(REFUSAL::BAD_VALUE, name.area, "its bytes are no text of the language before"));
    const Result<FIELD_VALUE> value = EncodeKeeping(text, encoding, after);
    if (!value)
        return About(name, value.Error());
    field = {value->encoding, value->bytes};
    return std::nullopt;
}

Result<BYTE> ParseLanguage(std::string_view text) {
    unsigned number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec == std::errc() && read.ptr == text.data() + text.size() && number <= 0xFF)
        return static_cast<BYTE>(number);
    if (const auto code = LanguageFromName(text))
        return *code;
    return Refuse(REFUSAL::BAD_VALUE, AREA_ID::HEADER, Text("'", text, "' is no language"),
                  "give a number such as 25, or a name of the standard");
}

FAULT SetLanguage(DRAFT& draft, const SET_FIELD& edit) {
    if (!AreaRow(edit.name.area).hasLanguage)
        return NoSuchField(edit.name, "the area has no language");
    const Result<BYTE> language = ParseLanguage(edit.text);
    if (!language)
        return About(edit.name, language.Error());
    const Result<DRAFT_AREA*> found = draft.FindOrMake(edit.name.area);
    if (!found)
        return About(edit.name, found.Error());
    AREA_DESCRIPTION& description = (*found)->description;
    const BYTE before = description.language;
    if (before == *language)
        return std::nullopt;
    if (IsEnglish(before) != IsEnglish(*language))
        for (std::size_t position = AreaRow(description.id).LeadingFields(); position < description.fields.size();
             ++position)
            if (FAULT fault =
                    Translate(FieldAt(description.id, position), description.fields[position], before, *language))
                return fault;
    description.language = *language;
    (*found)->changed = true;
    draft.Say(**found, FieldNameText(edit.name), std::to_string(before), std::to_string(*language));
    return std::nullopt;
}

} // namespace

FAULT Edit(DRAFT& draft, const SET_FIELD& edit) {
    if (edit.name.part == FIELD_NAME::LANGUAGE)
        return SetLanguage(draft, edit);
    return IsLeading(edit.name) ? SetLeading(draft, edit) : SetText(draft, edit);
}

FAULT Edit(DRAFT& draft, const SET_BYTES& edit) {
    if (FAULT fault = CheckName(draft, edit.name))
        return fault;
    const FIELD_DESCRIPTION value(edit.encoding, edit.bytes);
    const FIELD_DESCRIPTION* present = Present(draft, edit.name);
    const bool leading = IsLeading(edit.name);
    if (present && present->bytes == value.bytes &&
        (leading || TypeLength(present->encoding, 0) == TypeLength(value.encoding, 0)))
        return std::nullopt;
    if (leading && (!present || present->bytes.size() != value.bytes.size()) &&
        value.bytes.size() != (edit.name.area == AREA_ID::CHASSIS ? 1U : 3U))
        return About(edit.name, Refuse(REFUSAL::BAD_VALUE, edit.name.area, "the value has another number of bytes"));
    if (!leading && (value.bytes.size() > MAXIMUM_FIELD || ReadsAsEnd(value)))
        return About(edit.name, Refuse(REFUSAL::BAD_VALUE, edit.name.area,
                                       ReadsAsEnd(value) ? "a text of one byte would read as the end of the fields"
                                                         : "a field holds 63 bytes"));
    return Store(draft, edit.name, value);
}

FAULT Edit(DRAFT& draft, const ADD_FIELD& edit) {
    const DRAFT_AREA* area = draft.Find(edit.area);
    const std::size_t fixed = AreaRow(edit.area).fields.size();
    const std::size_t fields = area ? area->description.fields.size() : 0;
    return Edit(
        draft,
        SET_FIELD{{edit.area, FIELD_NAME::CUSTOM, fields > fixed ? fields - fixed : 0}, edit.text, edit.encoding});
}

FAULT Edit(DRAFT& draft, const REMOVE_FIELD& edit) {
    const DRAFT_AREA* present = draft.Find(edit.name.area);
    if (edit.name.part != FIELD_NAME::CUSTOM)
        return NoSuchField(edit.name, "only custom fields can be removed", "a predefined field can be set to nothing");
    if (!present || edit.name.Position() >= present->description.fields.size())
        return NoSuchField(edit.name, "there is no such field");
    const Result<DRAFT_AREA*> found = draft.FindOrMake(edit.name.area);
    if (!found)
        return About(edit.name, found.Error());
    auto& fields = (*found)->description.fields;
    const auto field = fields.begin() + static_cast<std::ptrdiff_t>(edit.name.Position());
    const std::string before = ValueText(edit.name, *field, (*found)->description.language);
    fields.erase(field);
    (*found)->changed = true;
    draft.changes.push_back({edit.name.area,
                             FieldNameText(edit.name),
                             before,
                             {},
                             Text(FieldNameText(edit.name), ": \"", before, "\" is removed")});
    return std::nullopt;
}

} // namespace FruImage
