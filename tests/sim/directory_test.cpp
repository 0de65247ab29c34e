// A BMC in a directory: round trip through its files, generated records, errors that name the place.
#include "tests/sim/support.h"

#include "sim/directory.h"
#include "sim/samples.h"
#include "tests/support/directory.h"

namespace Frudata_Sim {

namespace {

using namespace Frudata_Tests;

TEST(Directory, WritesReachTheFiles) {
    const CFreshDirectory directory;
    WriteSmallServer(directory.Path());
    {
        const auto bmc = LoadBmcDirectory(directory.Path());
        EXPECT_EQ(bmc->FruBytes(0), SampleBmcFru());
        EXPECT_EQ(Ask(*bmc, 0x0A, 0x12, {1, 0x10, 0, 0xDE, 0xAD}), (BYTES{0, 2}));
        EXPECT_EQ(Ask(*bmc, 6, 0x52, {1, 0xA0, 0, 0, 0x20, 0x77}), BYTES{0});
        bmc->Controller(0, 0xC0).Handle({.netFn = 0x0A, .cmd = 0x12, .data = {0, 0, 0, 0x42}}, true);
    }
    const auto bmc = LoadBmcDirectory(directory.Path());
    BYTES psu = SamplePsuFru(1);
    psu[0x10] = 0xDE;
    psu[0x11] = 0xAD;
    EXPECT_EQ(bmc->FruBytes(1), psu);
    EXPECT_EQ(bmc->EepromBytes(1, 0xA0)[0x20], 0x77);
    EXPECT_EQ(bmc->Controller(0, 0xC0).FruBytes(0)[0], 0x42);
    EXPECT_EQ(bmc->Controller(0, 0xC0).Identity().deviceId, 0x21);

    std::string records;
    for (const BYTES& record : bmc->Sdrs().Records())
        records += std::to_string(record[3]) + ':' + std::to_string(record[5]) + '/' + std::to_string(record[6]) + ' ';
    EXPECT_EQ(records, "18:32/0 1:32/0 17:32/1 2:32/0 17:32/160 18:192/0 ");
}

TEST(Directory, LargeServerWithDamage) {
    const CFreshDirectory directory;
    WriteLargeServer(directory.Path(), 40, {FRU_DAMAGE::NONE, FRU_DAMAGE::NOT_FRU}, {2});
    const auto bmc = LoadBmcDirectory(directory.Path());
    EXPECT_EQ(bmc->FruDevices().size(), 40U);
    EXPECT_EQ(Ask(*bmc, 0x0A, 0x11, {1, 0, 0, 1}), (BYTES{0, 1, 0xFF}));
    EXPECT_EQ(Ask(*bmc, 0x0A, 0x11, {2, 0, 0, 1}), BYTES{0xCB});
    EXPECT_EQ(bmc->Sdrs().Records().size(), 43U);
}

TEST(Directory, EveryKeyCounts) {
    const CFreshDirectory directory;
    WriteFile("f", "0123456789");
    WriteFile("s", std::string("\0\0\x51\xC0\x01z\0\0\x51\xC0\x09y", 12));
    WriteFile("bmc.json", R"({
        "identity": {"deviceId": 1, "deviceRevision": 2, "firmwareMajor": 3, "firmwareMinor": 4, "ipmiVersion": 5,
                     "additionalSupport": 6, "manufacturer": "0x090807", "product": "0x0B0A"},
        "fruDevices": [{"id": 3, "image": "f", "maxRead": 2, "readRefusal": "0xC8", "maxWrite": 1,
                        "writeRefusal": "0xC9", "partialReads": true, "readOnly": true}],
        "eeproms": [{"bus": 9, "address": "0x90", "kind": "DS1624S", "image": "f", "maxRead": 3, "pageSize": 2}],
        "sdr": {"file": "s", "maxRead": 6},
        "faults": [{"action": "nodeBusy", "netFn": 6, "cmd": "0x52", "device": "0x90", "controller": "0x20",
                    "occurrence": 2, "times": 1}]})");
    const auto bmc = LoadBmcDirectory(directory.Path());
    const std::pair<BYTES, BYTES> rows[] = {
        {{6, 1}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0, 0, 0, 0}},
        {{10, 0x11, 3, 9, 0, 2}, {0, 1, '9'}},
        {{10, 0x11, 3, 0, 0, 3}, {0xC8}},
        {{10, 0x12, 3, 0, 0, 1}, {0x80}},
        {{10, 0x12, 3, 0, 0, 1, 2}, {0xC9}},
        {{6, 0x52, 9, 0x90, 2, 0x17, 3}, {0, '3', '4'}},
        {{6, 0x52, 9, 0x90, 2, 0x17, 3}, {0xC0}},
        {{6, 0x52, 9, 0x90, 4, 0x17, 3}, {0xCA}},
        {{10, 0x23, 0, 0, 0, 0, 0, 0xFF}, {0, 2, 0, 1, 0, 0x51, 0xC0, 1, 'z'}},
        {{10, 0x23, 0, 0, 2, 0, 0, 0xFF}, {0, 0xFF, 0xFF, 2, 0, 0x51, 0xC0, 9, 'y'}},
    };
    for (const auto& [request, answer] : rows)
        EXPECT_EQ(Ask(*bmc, request[0], request[1], BYTES(request.begin() + 2, request.end())), answer);
}

TEST(Directory, ErrorsNameFileAndKey) {
    const CFreshDirectory directory;
    WriteFile("f", "01");
    const std::pair<const char*, const char*> rows[] = {
        {"{", "parse error"},
        {"[]", "bmc.json: must be an object"},
        {R"({"frus": []})", "bmc.json: frus: is not a known key"},
        {R"({"fruDevices": {}})", "bmc.json: fruDevices: must be an array"},
        {R"({"fruDevices": [{"image": "f"}]})", "bmc.json: fruDevices[0].id: is missing"},
        {R"({"fruDevices": [{"id": 1, "image": "g"}]})", "bmc.json: fruDevices[0].image: g: cannot be read"},
        {R"({"fruDevices": [{"id": 1, "image": "../f"}]})", "fruDevices[0].image: must name a file"},
        {R"({"fruDevices": [{"id": 256, "image": "f"}]})", "fruDevices[0].id: must be a number from 0 to 255"},
        {R"({"fruDevices": [{"id": "0xZ", "image": "f"}]})", "fruDevices[0].id: must be a number"},
        {R"({"fruDevices": [{"id": 1, "image": "f"}, {"id": 1, "image": "f"}]})", "fruDevices[1].id: is used twice"},
        {R"({"fruDevices": [{"id": 1, "image": "f", "maxread": 1}]})", "fruDevices[0].maxread: is not a known key"},
        {R"({"fruDevices": [{"id": 1, "image": "f", "readOnly": 1}]})", "fruDevices[0].readOnly: must be true"},
        {R"({"fruDevices": [{"id": 1, "image": "f", "name": "12345678901234567"}]})", "fruDevices[0].name: has at"},
        {R"({"eeproms": [{"bus": 1, "address": 2, "image": "f", "kind": "X"}]})", "eeproms[0].kind: must be AT24"},
        {R"({"controllers": [{"channel": 16, "address": 2}]})", "controllers[0].channel: must be"},
        {R"({"controllers": [{"channel": 0, "address": 2, "fruDevices": [3]}]})", "controllers[0].fruDevices[0]: must"},
        {R"({"identity": {"x": 1}})", "bmc.json: identity.x: is not a known key"},
        {R"({"faults": [{"action": "explode"}]})", "faults[0].action: \"explode\" is not a known action"},
    };
    for (const auto& [json, expected] : rows) {
        WriteFile("bmc.json", json);
        try {
            LoadBmcDirectory(directory.Path());
            ADD_FAILURE() << json;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find(expected), std::string::npos) << error.what();
        }
    }
    EXPECT_THROW(LoadBmcDirectory(directory.Path() / "none"), std::runtime_error);
}

} // namespace

} // namespace Frudata_Sim
