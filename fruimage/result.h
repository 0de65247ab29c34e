// Errors as values: a result, or the reason why there is none.
#pragma once

#include "fruimage/names.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace FruImage {

/// The reasons of a refusal.
enum class REFUSAL {
    NO_SUCH_FIELD,   ///< this FRU has and could have nothing of the name
    BAD_VALUE,       ///< the field cannot hold the value in any encoding, or not in the one asked for
    DAMAGED,         ///< the area, or the header, must be repaired first
    NO_ROOM,         ///< beyond the device's size: `needed` and `available` tell how far
    NOT_ADDRESSABLE, ///< beyond the offsets of the format, whatever the device's size
    FIXED_SIZE,      ///< moves or resizes the internal use area without being asked to
    AMBIGUOUS,       ///< two candidates: `text` names both
    NOTHING_TO_DO,   ///< no damage with a certain repair
    BAD_DESCRIPTION  ///< describes no FRU: areas overlap, a length is too small, ...
};

struct ERROR {
    REFUSAL code = REFUSAL::BAD_VALUE;
    AREA_ID area = AREA_ID::HEADER;
    std::string field;         ///< AREA.FIELD of the one field concerned, else empty
    std::string text;          ///< for people: one clause without the field's name and without a full stop
    std::string hint;          ///< a remedy; may be empty
    std::size_t needed = 0;    ///< NO_ROOM: bytes that the image needs
    std::size_t available = 0; ///< NO_ROOM: bytes that the device has
};

inline ERROR Refuse(REFUSAL code, AREA_ID area, std::string text, std::string hint = {}) {
    ERROR error;
    error.code = code;
    error.area = area;
    error.text = std::move(text);
    error.hint = std::move(hint);
    return error;
}
/// Of a value whose field is not known here.
inline ERROR BadValue(std::string text, std::string hint = {}) {
    return Refuse(REFUSAL::BAD_VALUE, AREA_ID::HEADER, std::move(text), std::move(hint));
}

/// Why something is refused; nothing where it is not.
using FAULT = std::optional<ERROR>;

/// A value or an ERROR. Reading the absent one gives an empty one: no content can abort.
template <class VALUE> class Result {
  public:
    Result(VALUE value) : m_state(std::move(value)) {}
    Result(ERROR error) : m_state(std::move(error)) {}

    explicit operator bool() const { return std::holds_alternative<VALUE>(m_state); }
    const VALUE& operator*() const { return Value(); }
    const VALUE* operator->() const { return &Value(); }
    const VALUE& Value() const {
        static const VALUE NONE{};
        const VALUE* value = std::get_if<VALUE>(&m_state);
        return value ? *value : NONE;
    }
    /// The value, moved out.
    VALUE Take() {
        VALUE* value = std::get_if<VALUE>(&m_state);
        return value ? std::move(*value) : VALUE{};
    }
    const ERROR& Error() const {
        static const ERROR NONE{};
        const ERROR* error = std::get_if<ERROR>(&m_state);
        return error ? *error : NONE;
    }

  private:
    std::variant<VALUE, ERROR> m_state;
};

} // namespace FruImage
