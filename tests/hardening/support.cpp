#include "support.h"

#include "frudata/debug.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

// In the place of the system's: nothing waits, and the ports are those of a server without a KCS interface.
extern "C" {
[[gnu::visibility("default")]] unsigned int sleep(unsigned int) {
    return 0;
}
[[gnu::visibility("default")]] int usleep(useconds_t) {
    return 0;
}
[[gnu::visibility("default")]] UINT8 inb(UINT16) {
    return 0xFF;
}
[[gnu::visibility("default")]] void outb(UINT8, UINT16) {}
/// Where the tests are built with the sanitizers.
[[gnu::weak]] int __lsan_do_recoverable_leak_check();
}

namespace Frudata_Tests {

namespace {

/// What the children leave behind.
struct SHARED {
    unsigned int next;
    char complaint[400];
};

[[noreturn]] void RunChild(SHARED& shared, unsigned int count, const std::function<void(unsigned int)>& run) {
    dup2(open("stderr.txt", O_CREAT | O_TRUNC | O_WRONLY, 0600), STDERR_FILENO);
    try {
        while (shared.next < count)
            run(shared.next++);
        Require(!__lsan_do_recoverable_leak_check || __lsan_do_recoverable_leak_check() == 0, "memory leaked");
    } catch (const std::string& complaint) {
        std::snprintf(shared.complaint, sizeof shared.complaint, "run %u: %s", shared.next - 1, complaint.c_str());
    }
    _exit(0);
}

std::string ChildError() {
    std::string line;
    std::getline(std::ifstream("stderr.txt"), line);
    return line;
}

BYTES BoardImage() {
    return FruImage::CImageBuilder()
        .Board({.manufacturer = "Maker", .serialNumber = "S1", .customFields = {"c1"}}, 8)
        .Build();
}

} // namespace

void Require(bool holds, const std::string& complaint) {
    if (!holds)
        throw complaint;
}

std::string StatusText(EFI_STATUS status) {
    char text[16];
    std::snprintf(text, sizeof text, "%08X", status);
    return text;
}

void RunInChildren(const std::string& title, unsigned int count, const std::function<void(unsigned int)>& run,
                   unsigned int assertions) {
    void* memory = mmap(nullptr, sizeof(SHARED), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    SHARED& shared = *static_cast<SHARED*>(memory);
    for (bool isDone = false; !isDone;) {
        const pid_t child = fork();
        if (child == 0)
            RunChild(shared, count, run);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        isDone = WIFEXITED(status) && WEXITSTATUS(status) == 0;
        if (!isDone) {
            const std::string error = ChildError();
            ASSERT_NE(error.find(".cpp: assertion failed: "), std::string::npos) << title << shared.next - 1 << error;
            ASSERT_GT(assertions--, 0U) << title << ": " << error;
        }
    }
    EXPECT_STREQ(shared.complaint, "") << title;
    munmap(memory, sizeof(SHARED));
}

BYTES FullImage() {
    return FruImage::CImageBuilder()
        .InternalUse({0xAB, 0x02, 0x81})
        .Chassis({.chassisType = 0x11, .serialNumber = "CS", .customFields = {"cc"}}, 8)
        .Board({.manufacturer = "Maker", .serialNumber = "S1", .customFields = {"c1", "c2"}}, 8)
        .Product({.manufacturer = "Maker", .assetTag = "A1"}, 8)
        .MultiRecord(0xC0, {1, 2, 3})
        .MultiRecord(0xC1, {4, 5})
        .Build();
}

std::unique_ptr<CSimulatedBmc> MakeServer() {
    auto bmc = std::make_unique<CSimulatedBmc>();
    bmc->AddFruDevice(0, FullImage());
    bmc->AddController(0, BRIDGED_DEVICE.address).AddFruDevice(0, BoardImage());
    bmc->AddEeprom(EEPROM_DEVICE.bus, EEPROM_DEVICE.address, EEPROM_KIND::AT24, BoardImage());
    bmc->AddSdr(ControllerRecord(BRIDGED_DEVICE.address, 0, 0x29, "HSC"));
    bmc->AddSdr(OemRecord({1, 2, 3}));
    bmc->AddSdr(PhysicalFruRecord(0x20, 0, 1, EEPROM_DEVICE.address, DEVICE_TYPE_EEPROM, "Riser"));
    return bmc;
}

CHardeningTest::CHardeningTest() {
    std::filesystem::create_directory_symlink(FRUDATA_TEXTS "/enus", "enus");
    SetLibDebugLevel(0);
    RenewServer();
    EXPECT_EQ(m_table->Initialize(m_table, 0), 0U);
    m_table->SetProgressCallback(m_table, IgnoreProgress);
}

void CHardeningTest::RenewServer() {
    m_bmc = MakeServer();
    SetCurrentBmc(m_bmc.get());
}

EFI_STATUS CHardeningTest::Load(const DEVICE& device) {
    return m_table->LoadFruAtAddress(m_table, device.type, 0, device.address, device.bus, 0x20, 0, 0, 0);
}

void CHardeningTest::EditAll() {
    const UINT8 internalUse[] = {1, 9, 9, 9, 9, 9, 9, 9}, records[] = {0xC0, 0x82, 0x01, 0xF6, 0xC7, 0x0A};
    for (const FRU_AREA area : {FRU_AREA_CHASSIS, FRU_AREA_BOARD, FRU_AREA_PRODUCT}) {
        m_table->SelectAreaEnum(m_table, area);
        m_table->SelectFieldInteger(m_table, 1);
        SetSelected("longer");
    }
    m_table->SelectAreaEnum(m_table, FRU_AREA_INTERNAL_USE);
    m_table->SetAreaData(m_table, internalUse, sizeof internalUse);
    m_table->SelectAreaEnum(m_table, FRU_AREA_MULTIRECORD);
    m_table->SetAreaData(m_table, records, sizeof records);
}

std::string CHardeningTest::Snapshot() {
    std::string all;
    const auto add = [&all](const UINT8* data, unsigned int length) {
        all += std::to_string(length) + ":" + std::string(reinterpret_cast<const char*>(data), length);
    };
    for (int area = FRU_AREA_COMMON_HEADER; area <= FRU_AREA_MULTIRECORD; ++area) {
        UINT8 buffer[512];
        const UINT8* data = nullptr;
        unsigned int fields = 0, length = area == FRU_AREA_COMMON_HEADER ? 8 : sizeof buffer;
        m_table->SelectAreaEnum(m_table, static_cast<FRU_AREA>(area));
        if (m_table->GetAreaData(m_table, buffer, length) == 0)
            add(buffer, length);
        m_table->GetNumberOfFields(m_table, fields);
        for (unsigned int field = 0; field < fields; ++field) {
            m_table->SelectFieldInteger(m_table, field);
            if (m_table->GetFieldDataValue(m_table, data, length) == 0)
                add(data, length);
        }
    }
    return all;
}

} // namespace Frudata_Tests
