// Chassis info area (FRU Information Storage Definition, section 10).
#pragma once

#include "frudata/areas/infoarea.h"

namespace Frudata_Private {

/// Its setters refuse values without trace or message.
class CChassisInfoArea : public CInfoArea {
  public:
    static constexpr UINTN NUMBER_OF_FIELDS = 3;

    CChassisInfoArea();

    UINT8 GetType() const { return GetHeaderByte(L"GetType", HEADER_LANGUAGE_OR_TYPE); }
    /// @return false for type 0 and types above 23
    bool SetType(UINT8 type);
    /// The type's name. Types without one (0, 10 to 15, 23 and above) are a fatal assertion.
    const WCHAR* GetChassisString() const;

    // By name, to complete the interface; the library reaches fields by index.

    const UINT8* GetPartNumber() const { return GetField(L"GetPartNumber", PART_NUMBER); }
    const UINT8* GetSerialNumber() const { return GetField(L"GetSerialNumber", SERIAL_NUMBER); }
    UINT8 GetPartNumberTL() const { return GetFieldTL(L"GetPartNumberTL", PART_NUMBER); }
    UINT8 GetSerialNumberTL() const { return GetFieldTL(L"GetSerialNumberTL", SERIAL_NUMBER); }
    bool SetPartNumber(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(PART_NUMBER, data, length, type);
    }
    bool SetSerialNumber(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(SERIAL_NUMBER, data, length, type);
    }

  protected:
    bool SetHeaderField(const CTrace& trace, const UINT8* data, UINTN length) override;
    std::unique_ptr<WCHAR[]> HeaderFieldText(const CTrace& trace) const override;

  private:
    enum : UINTN {
        PART_NUMBER = 1,
        SERIAL_NUMBER
    };
};

} // namespace Frudata_Private
