// One FRU image in memory.
#pragma once

#include "frudata/areas/boardinfoarea.h"
#include "frudata/areas/chassisinfoarea.h"
#include "frudata/areas/internalusearea.h"
#include "frudata/areas/productinfoarea.h"
#include "frudata/image/fileheader.h"
#include "frudata/image/fruheader.h"
#include "frudata/image/multirecord.h"
#include "frudata/locator.h"

namespace Frudata_Private {

class CFile;

/// Bytes of the buffers for a FRU's identifier.
constexpr int FRU_IDENTIFIER_BYTES = 400;

/// The source file by which hosts know assertions of a FRU and its areas.
inline constexpr char FRU_SOURCE[] = "fru.cpp";

/// Common header, the four areas, the multi-record chain and the address of one FRU. References to the areas and the
/// locator are valid as long as the CFru.
class CFru {
  public:
    CFru() = default;
    CFru(const CFru&) = delete;
    CFru& operator=(const CFru&) = delete;
    ~CFru() = default;

    /// Begins the trace of an operation on a FRU.
    static constexpr CTraceSource TraceOf{L"CFru"};

    CFruHeader& GetFRUHeader();
    FRU_LOCATOR* GetDevLocator();
    /// The same without a trace, for functions that trace themselves.
    CFruHeader& Header() { return m_header; }
    FRU_LOCATOR& Locator() { return m_locator; }
    MULTIRECORD_AREA& MultiRecords() { return m_multiRecords; }
    CFileHeader& GetFileHeader() { return m_fileHeader; }
    CInternalUseArea& GetInternalUseArea() { return m_internalUse; }
    CChassisInfoArea& GetChassisInfoArea() { return m_chassis; }
    CBoardInfoArea& GetBoardInfoArea() { return m_board; }
    CProductInfoArea& GetProductInfoArea() { return m_product; }

    /// An area with fields; null for the others.
    CFruArea* GetFieldArea(FRU_AREA area);
    /// The chassis, board or product area; null for the others.
    CInfoArea* GetInfoArea(FRU_AREA area);

    /// The name of the FRU, or null. @return 0
    EFI_STATUS GetFruNameString(const WCHAR*& name) const;
    UINTN GetInternalAreaLength() const;
    UINT16 GetMultiRecAreaLength() const;

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
    /// Sets the lengths of the info areas and the multi-record area from the header's offsets: each runs up to
    /// the next present one, the last up to `totalLength`. @return 0
    EFI_STATUS ComputeAreaLengths(int totalLength);

    /// Replaces the multi-record chain. @return 0, OUT_OF_MEMORY
    EFI_STATUS SetMultiRecArea(const UINT8* data, UINTN length, bool modified);
    /// Decodes GetMultiRecAreaLength() bytes into the chain, whatever the end-of-list bits say.
    EFI_STATUS DecodeMultiRecArea(const UINT8* data);
    /// Writes the chain. @param length in: room; out: bytes written, 0 on failure
    /// @return 0, BUFFER_TOO_SMALL
    EFI_STATUS SerializeMultiRecArea(UINT8* buffer, UINTN& length) const;
    bool CheckMultiRecCheckSum() const;

    /// The text by which people know a FRU: its name, or its address in words. An empty text, and an untouched
    /// buffer, when an argument is null or `bufferBytes` is below 100.
    static const WCHAR* GetFriendlyFruIdentifier(const FRU_LOCATOR* locator, WCHAR* buffer, int bufferBytes);

    // The functions of these names in image/frutextfile.h and system/frudevice.h, for this image.
    EFI_STATUS ReadFRUFromFile(const char* filename);
    EFI_STATUS SaveFRUToFile(const char* path);
    EFI_STATUS LoadFromSystem(const FRU_LOCATOR* locator);
    EFI_STATUS WriteToSystem(const FRU_PROGRESS_CALLBACK& progress);
    static EFI_STATUS ReadDataFromFRU(const FRU_LOCATOR* locator, UINT16 offset, UINT16 length, UINT8* data);

    // Complete the interface; the library itself calls none of them. The first six are functions as above.
    static EFI_STATUS ParseArea(const char* tag, const CFile& file, UINTN line, UINT8*& data, UINTN& length);
    static void SetParseAreaErrorMessage(EFI_STATUS status, const WCHAR* areaName, const char* filename);
    static EFI_STATUS ReadFruDataFromBmc(const FRU_LOCATOR& locator, UINT16 offset, UINT8* buffer, UINT16& length);
    EFI_STATUS WriteFruData(UINT32 offset, UINT32 length, const UINT8* data);
    static EFI_STATUS WriteFruDataToBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length);
    static EFI_STATUS WriteFruDataTomBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length);
    static void Sleep(unsigned int seconds);
    /// Has no effect. @return 0
    EFI_STATUS CreateFruList();
    /// Not supported: a fatal assertion.
    EFI_STATUS LoadFromFile(std::FILE* file);

  private:
    CFruHeader m_header;
    MULTIRECORD_AREA m_multiRecords;
    FRU_LOCATOR m_locator;
    CFileHeader m_fileHeader;
    CInternalUseArea m_internalUse;
    CChassisInfoArea m_chassis;
    CBoardInfoArea m_board;
    CProductInfoArea m_product;
};

} // namespace Frudata_Private
