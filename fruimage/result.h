// Errors as values: what was asked for, or why not.
#pragma once

#include "fruimage/names.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace FruImage {

/// Why something was refused.
enum class REFUSAL {
    NO_SUCH_FIELD,   ///< the name stands for nothing that this FRU has or could have
    BAD_VALUE,       ///< the field cannot hold the value in any encoding, or not in the one that was asked for
    DAMAGED,         ///< the area, or the header, must be repaired first
    NO_ROOM,         ///< over the device's size: `needed` and `available` say by how much
    NOT_ADDRESSABLE, ///< over what the format can address, whatever the device's size
    FIXED_SIZE,      ///< it would move or resize the internal use area without having been asked to
    AMBIGUOUS,       ///< two candidates: `text` names both
    NOTHING_TO_DO,   ///< nothing that could be repaired
    BAD_DESCRIPTION  ///< a description that is no FRU: areas overlap, a length is too small, ...
};

struct ERROR {
    REFUSAL code = REFUSAL::BAD_VALUE;
    AREA_ID area = AREA_ID::HEADER;
    std::string field;         ///< AREA.FIELD where it is about one field, else empty
    std::string text;          ///< for people: one clause without the field's name and without a full stop
    std::string hint;          ///< what to do about it; may be empty
    std::size_t needed = 0;    ///< NO_ROOM: bytes of the image that would be needed
    std::size_t available = 0; ///< NO_ROOM: bytes that the device has
};

/// A value or an ERROR. Reading the one that is not there gives an empty one, so that no content can abort.
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
