// Prints every field of every FRU: of the FRU text files given, else of all FRU devices of this server.
//
//   g++ inventory.cpp -o inventory $(pkg-config --cflags --libs frudata)
//
// FRUDATA_DATADIR names the directory of the library's texts where it is not /usr/share/frudata. Dates are the
// library's, one day before the standard's.
#include <frudata/frudata.h>
#include <frudata/sdrscan.h>

#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace {

_EFI_FRU_INTERFACE* const fru = GetFruDataInterface();

// Wide, as the library's own messages are: one stream cannot take both kinds.
const wchar_t* Text(const wchar_t* text) {
    return text ? text : L"";
}

std::wstring Wide(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    const std::size_t length = std::mbstowcs(wide.data(), text.c_str(), wide.size());
    wide.resize(length == static_cast<std::size_t>(-1) ? 0 : length);
    return wide;
}

bool Start() {
    const char* const given = std::getenv("FRUDATA_DATADIR");
    const std::wstring texts = Wide(given ? given : "/usr/share/frudata");
    if (fru->Initialize(nullptr, 0) != FRU_STATUS_SUCCESS) {
        std::wprintf(L"the library does not start\n");
        return false;
    }
    if (fru->SetLanguageLocale(fru, (texts + L"/en").c_str(), L"us") == FRU_STATUS_SUCCESS)
        return true;
    std::wprintf(L"no texts below %ls; FRUDATA_DATADIR names the directory that holds enus\n", texts.c_str());
    return false;
}

int Fail(const wchar_t* what) {
    const wchar_t* reason = nullptr;
    fru->GetLastErrorMessage(fru, reason);
    std::wprintf(L"%ls: %ls\n", what, reason ? reason : L"cannot be read");
    return EXIT_FAILURE;
}

// The library has names for these alone; asking for another's stops the process.
bool HasName(unsigned int chassisType) {
    return (chassisType >= 1 && chassisType <= 9) || (chassisType >= 16 && chassisType <= 22);
}

std::wstring SelectedValue(bool isChassisType) {
    const UINT8* data = nullptr;
    unsigned int length = 0;
    const wchar_t* value = nullptr;
    if (isChassisType && fru->GetFieldDataValue(fru, data, length) == FRU_STATUS_SUCCESS && !HasName(*data))
        return L"type " + std::to_wstring(*data);
    fru->GetFieldStringValue(fru, value);
    return Text(value);
}

// The fields of an area that are no custom fields, which the library counts from the last one backwards.
unsigned int FixedFields(int area, unsigned int fields) {
    const unsigned int fixed = area == FRU_AREA_CHASSIS   ? 3
                               : area == FRU_AREA_BOARD   ? 6
                               : area == FRU_AREA_PRODUCT ? 7
                                                          : fields;
    return fixed < fields ? fixed : fields;
}

void PrintSelectedFru() {
    for (int area = FRU_AREA_INTERNAL_USE; area <= FRU_AREA_MULTIRECORD; ++area) {
        const wchar_t* name = nullptr;
        unsigned int fields = 0;
        fru->SelectAreaEnum(fru, static_cast<FRU_AREA>(area));
        if (fru->GetAreaName(fru, name) != FRU_STATUS_SUCCESS)
            continue; // this FRU does not have the area
        fru->GetNumberOfFields(fru, fields);
        std::wprintf(L"  %ls\n", Text(name));
        const unsigned int fixed = FixedFields(area, fields);
        for (unsigned int field = 0; field < fields; ++field) {
            const wchar_t* title = nullptr;
            fru->SelectFieldInteger(fru, field < fixed ? field : fixed + fields - 1 - field);
            fru->GetFieldTitle(fru, title);
            std::wprintf(L"    %-30ls  %ls\n", Text(title),
                         SelectedValue(area == FRU_AREA_CHASSIS && field == 0).c_str());
        }
    }
}

int PrintFile(const std::wstring& path) {
    if (fru->LoadConfigurationFromFile(fru, path.c_str(), nullptr) != FRU_STATUS_SUCCESS)
        return Fail(path.c_str());
    std::wprintf(L"%ls\n", path.c_str());
    PrintSelectedFru();
    return EXIT_SUCCESS;
}

int PrintDevice(const FRU_LOCATOR& at) {
    std::wprintf(L"%ls\n", at.name ? at.name : L"FRU");
    if (fru->LoadFruAtAddress(fru, at.type, at.lun, at.deviceAddress, at.bus, at.controller, at.deviceId,
                              at.mbmcSizeData, at.mbmcSizeAddress) != FRU_STATUS_SUCCESS ||
        fru->SelectList(fru, FRU_LIST_SYSTEM) != FRU_STATUS_SUCCESS || fru->SelectFru(fru, 0) != FRU_STATUS_SUCCESS)
        return Fail(L"  not loaded");
    PrintSelectedFru();
    return EXIT_SUCCESS;
}

// A wrong checksum stops the process: in a child of its own, a damaged FRU hides no other.
template <typename PRINT> int InChild(PRINT print) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0)
        std::exit(print());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return EXIT_FAILURE;
    if (!WIFEXITED(status))
        std::wprintf(L"  damaged\n");
    return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}

int PrintServer() {
    OrderedList<FRU_LOCATOR*> found;
    OrderedList<FRU_LOCATOR*>* list = &found;
    ScanSystemForFruLocators(list);
    int result = found.Count() > 0 ? EXIT_SUCCESS : Fail(L"scan");
    while (FRU_LOCATOR* locator = found.First()) {
        result |= InChild([locator] { return PrintDevice(*locator); });
        delete found.Remove(locator);
    }
    return result;
}

} // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    if (!Start())
        return EXIT_FAILURE;
    int result = EXIT_SUCCESS;
    for (int index = 1; index < argc; ++index)
        result |= InChild([path = Wide(argv[index])] { return PrintFile(path); });
    if (argc == 1)
        result = PrintServer();
    fru->DeInitialize(fru);
    return result;
}
