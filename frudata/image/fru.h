// One FRU image in memory.
#pragma once

#include "common/libfile.h"
#include "frudata/areas/boardinfoarea.h"
#include "frudata/areas/chassisinfoarea.h"
#include "frudata/areas/internalusearea.h"
#include "frudata/areas/productinfoarea.h"
#include "frudata/image/fileheader.h"
#include "frudata/image/fruheader.h"
#include "frudata/image/multirecord.h"
#include "frudata/locator.h"

namespace Frudata_Private {

/// The platform code given to `Initialize`; FRU_PLATFORM_MBMC opens the paths of FRU_TYPE_MBMC_FRU.
extern int g_fdPlatform;

/// Bytes of the buffer that a FRU's identifier is composed in, as its users have it.
constexpr int FRU_IDENTIFIER_BYTES = 400;

/// Common header, the four areas, the multi-record chain and the address of one FRU. The areas and the
/// locator live as long as the CFru. Its operations lie in fru.cpp (the image), frureadfile.cpp and
/// fruwritefile.cpp (FRU text file) and ../system (device).
class CFru {
  public:
    CFru() = default;
    CFru(const CFru&) = delete;
    CFru& operator=(const CFru&) = delete;
    ~CFru() = default;

    /// Begins the trace of one of its operations.
    static constexpr CTraceSource TraceOf{L"CFru"};

    // --- Image ------------------------------------------------------------------------------------

    CFruHeader& GetFRUHeader();
    FRU_LOCATOR* GetDevLocator();
    CFileHeader& GetFileHeader() { return m_fileHeader; }
    CInternalUseArea& GetInternalUseArea() { return m_internalUse; }
    CChassisInfoArea& GetChassisInfoArea() { return m_chassis; }
    CBoardInfoArea& GetBoardInfoArea() { return m_board; }
    CProductInfoArea& GetProductInfoArea() { return m_product; }

    /// The area that has fields, or null for the others.
    CFruArea* GetFieldArea(FRU_AREA area);
    /// The chassis, board or product area, or null for the others.
    CInfoArea* GetInfoArea(FRU_AREA area);

    /// The name of the FRU, or null. @return 0
    EFI_STATUS GetFruNameString(const WCHAR*& name) const;
    UINTN GetInternalAreaLength() const;
    UINT16 GetMultiRecAreaLength() const;
    /// Has no effect. @return 0
    EFI_STATUS CreateFruList();
    /// Not supported: a fatal assertion.
    EFI_STATUS LoadFromFile(std::FILE* file);

    bool HasInternalArea() const;
    bool HasChassisArea() const;
    bool HasBoardArea() const;
    bool HasProductArea() const;
    bool HasMultiRecArea() const;
    /// Present areas, 0 to 5; the common header does not count.
    UINTN GetNumberOfAreas() const;

    /// Takes the eight header bytes as they are. @return 0
    EFI_STATUS DecodeHeader(const UINT8* data);
    /// Writes the eight header bytes; a null `data` is a fatal assertion. @return 0
    EFI_STATUS SerializeCommonHeader(UINT8* data);
    static UINT8 CalculateChecksum(const UINT8* data, int length);
    /// Bytes of the whole image, modulo 65536.
    UINT16 GetOverallLength() const;
    /// Gives the info areas and the multi-record area their lengths from the header's offsets: each runs up
    /// to the next present one, the last up to `totalLength`. @return 0
    EFI_STATUS ComputeAreaLengths(int totalLength);

    /// Replaces the multi-record chain. @return 0, OUT_OF_MEMORY
    EFI_STATUS SetMultiRecArea(const UINT8* data, UINTN length, bool modified);
    /// Decodes GetMultiRecAreaLength() bytes into the chain, whatever the end-of-list bits say.
    EFI_STATUS DecodeMultiRecArea(const UINT8* data);
    /// Writes the chain. @param length in: room; out: bytes written, 0 on failure
    /// @return 0, BUFFER_TOO_SMALL
    EFI_STATUS SerializeMultiRecArea(UINT8* buffer, UINTN& length) const;
    bool CheckMultiRecCheckSum() const;

    /// The text by which a FRU is shown: its name, or its address in words. An empty text, and an untouched
    /// buffer, when an argument is null or `bufferBytes` is below 100.
    static const WCHAR* GetFriendlyFruIdentifier(const FRU_LOCATOR* locator, WCHAR* buffer, int bufferBytes);

    // --- FRU text file ----------------------------------------------------------------------------

    /// Fills this image from a file; what was read before a failure stays. A null name is a fatal assertion.
    /// @return 0, FILE_READ_ERROR
    EFI_STATUS ReadFRUFromFile(const char* filename);
    /// Reads the area block whose tag is on `line`; `data` is valid until the next call of any CFru.
    /// @return 0, MISSING_AREA_TAG, AREA_TOO_BIG, UNEXPECTED_CHARACTER
    static EFI_STATUS ParseArea(const char* tag, const CFile& file, UINTN line, UINT8*& data, UINTN& length);
    /// Turns a ParseArea failure into the last error.
    static void SetParseAreaErrorMessage(EFI_STATUS status, const WCHAR* areaName, const char* filename);
    /// Sets multiRecLength and decodes the chain of a text file's block.
    EFI_STATUS TakeMultiRecBlock(const UINT8* data, UINTN length);

    /// Writes this image to a file; a failure leaves the sections written so far.
    /// @return 0, OUT_OF_MEMORY, FILE_CREATE_ERROR, FILE_WRITE_ERROR
    EFI_STATUS SaveFRUToFile(const char* path);

    // --- Device -----------------------------------------------------------------------------------

    /// Takes over the address and the name of `locator` and fills this image from the device there; areas read
    /// before a failure stay. A null locator is a fatal assertion, here and below.
    /// @return 0, NOT_IPMI_FRU, CHECKSUM_ERROR, READ_FRU_ERROR, an INVALID_..._AREA code, OUT_OF_MEMORY, or a
    ///         transport value
    EFI_STATUS LoadFromSystem(const FRU_LOCATOR* locator);
    /// Reads `length` bytes at `offset` of the device. A null buffer is a fatal assertion.
    /// @return 0, READ_FRU_ERROR, or a transport value
    static EFI_STATUS ReadDataFromFRU(const FRU_LOCATOR* locator, UINT16 offset, UINT16 length, UINT8* data);
    /// Writes the header, the board area and the modified areas to the device that the locator names, and
    /// reports each step to `progress`, which is read anew for each: a callback may exchange or clear it. Areas written
    /// before a failure stay written. @return 0, WRITE_SYSTEM_ERROR
    EFI_STATUS WriteToSystem(const FRU_PROGRESS_CALLBACK& progress);
    /// Writes to the device, by the path that its BMC has. @return 0, WRITE_FRU_ERROR, or a transport value
    EFI_STATUS WriteFruData(UINT32 offset, UINT32 length, const UINT8* data);
    static void Sleep(unsigned int seconds);

  private:
    EFI_STATUS ReadFruFromSystem(const FRU_LOCATOR* locator);
    EFI_STATUS ReadFRUHeader(const FRU_LOCATOR* locator, UINT8* data);
    EFI_STATUS GetCommonHeader(const FRU_LOCATOR* locator);
    EFI_STATUS GetBoardArea(const FRU_LOCATOR* locator);
    EFI_STATUS GetProductArea(const FRU_LOCATOR* locator);
    EFI_STATUS GetChassisArea(const FRU_LOCATOR* locator);
    EFI_STATUS GetInternalArea(const FRU_LOCATOR* locator);
    EFI_STATUS GetMultiRecArea(const FRU_LOCATOR* locator);
    EFI_STATUS ReadMultiRecords(const FRU_LOCATOR* locator);
    /// Reads the area at `offset` (8-byte units). A `length` above `capacity` was not read.
    static EFI_STATUS GetTypeLengthArea(const FRU_LOCATOR* locator, UINT8* buffer, UINT16 capacity, UINT16 offset,
                                        UINT16& length);
    struct DEVICE_AREA;
    /// Reads and parses one info area. @return 0, its own status, or for the product area a read status
    EFI_STATUS ReadInfoArea(const FRU_LOCATOR* locator, const DEVICE_AREA& row);
    static EFI_STATUS GetFRUInternalData(const FRU_LOCATOR* locator, UINT8* buffer, UINT8 offset, UINT16 length);
    static EFI_STATUS GetMultiRecLength(const FRU_LOCATOR* locator, UINT16 offset, UINT8& length);
    static EFI_STATUS ReadMultiRecord(const FRU_LOCATOR* locator, UINT16 offset, UINT16 count, UINT8* buffer);
    /// @param length in: bytes wanted; out: bytes read
    static EFI_STATUS ReadFruDataFromBmc(const FRU_LOCATOR& locator, UINT16 offset, UINT8* buffer, UINT16& length);
    static EFI_STATUS WriteFruDataToBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length);
    static EFI_STATUS WriteFruDataTomBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length);
    bool WriteAreas(const FRU_PROGRESS_CALLBACK& progress);

    EFI_STATUS SaveFRUFileHeader(const char* path);
    EFI_STATUS SaveFRUCommonHeader(const char* path);
    EFI_STATUS SaveInternalAreaToFile(const char* path);
    EFI_STATUS SaveChassisAreaToFile(const char* path);
    EFI_STATUS SaveBoardAreaToFile(const char* path);
    EFI_STATUS SaveProductAreaToFile(const char* path);
    EFI_STATUS SaveMultiRecAreaToFile(const char* path);

    CFruHeader m_header;
    std::unique_ptr<FRUMultiRecord> m_multiRecords;
    UINT16 m_multiRecLength = 0;
    bool m_multiRecModified = false;
    FRU_LOCATOR m_locator;
    CFileHeader m_fileHeader;
    CInternalUseArea m_internalUse;
    CChassisInfoArea m_chassis;
    CBoardInfoArea m_board;
    CProductInfoArea m_product;
};

} // namespace Frudata_Private
